// The shelf's window: how it stands among other windows, the focus, and drags over it.
#include <gtest/gtest.h>

#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>

#include "ShelfFixture.h"
#include "interaction/DropHighlight.h"
#include "interaction/ShelfPalette.h"
#include "interaction/ShelfView.h"
#include "shelf/ShelfContentView.h"
#include "shelf/ShelfDropHandler.h"
#include "shelf/ShelfPanel.h"

namespace mosswick {
namespace {

class RecordingDropHandler final : public ShelfDropHandler {
public:
    bool drop(const QMimeData& data, const DropContext& context) override {
        formats.push_back(data.formats());
        actions = context.offeredActions;
        return takes;
    }
    bool takes = true;
    std::vector<QStringList> formats;
    Qt::DropActions actions;
};

class ShelfPanelTest : public testing::ShelfFixture {
protected:
    void SetUp() override {
        ShelfFixture::SetUp();
        panel = std::make_unique<ShelfPanel>(*store, motion(), windowHints);
        panel->contentView().setDropHandler(&handler);
    }
    void TearDown() override {
        panel.reset();
        ShelfFixture::TearDown();
    }

    static QMimeData* files() {
        auto* data = new QMimeData;
        data->setUrls({QUrl::fromLocalFile("/tmp/report.pdf")});
        return data;
    }

    // Sends a drag's enter to the content view; true when it was taken.
    bool enter(const QMimeData& data, Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction) {
        QDragEnterEvent event(QPoint(50, 60), actions, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&panel->contentView(), &event);
        return event.isAccepted();
    }
    bool drop(const QMimeData& data) {
        QDropEvent event(QPointF(50, 60), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(&panel->contentView(), &event);
        return event.isAccepted();
    }
    void leave() {
        QDragLeaveEvent event;
        QCoreApplication::sendEvent(&panel->contentView(), &event);
    }

    RecordingDropHandler handler;
    std::unique_ptr<ShelfPanel> panel;
};

// How the window stands among others (above them, out of the task bar, the focus left where it
// was, Escape) is shown by the desktop tests under a real window manager.
TEST_F(ShelfPanelTest, IsMappedAtItsFrameWithTheShelfFillingIt) {
    EXPECT_FALSE(panel->acceptsFocus());
    panel->mapAt(QRect(1200, 300, 196, 320));
    EXPECT_TRUE(panel->isVisible());
    EXPECT_EQ(panel->frame(), QRect(1200, 300, 196, 320));
    EXPECT_EQ(panel->contentView().geometry(), QRect(0, 0, 196, 320));
    EXPECT_EQ(panel->shelfView().geometry(), QRect(0, 0, 196, 320));
    EXPECT_FALSE(panel->isActiveWindow());
}

// Drops are mapped with where Qt believes the window stands, so a false report of a window
// manager must not stick; but one that insists is not fought either.
TEST_F(ShelfPanelTest, AsksOnceMoreForItsFrameWhenReportedElsewhereAfterMapping) {
    panel->mapAt(QRect(300, 200, 196, 320));
    panel->windowHandle()->setPosition(0, 0);
    QCoreApplication::processEvents();
    EXPECT_EQ(panel->windowHandle()->position(), QPoint(300, 200));

    panel->windowHandle()->setPosition(10, 10);
    QCoreApplication::processEvents();
    EXPECT_EQ(panel->windowHandle()->position(), QPoint(10, 10));

    panel->orderOut();
    panel->mapAt(QRect(300, 200, 196, 320));
    panel->windowHandle()->setPosition(0, 0);
    QCoreApplication::processEvents();
    EXPECT_EQ(panel->windowHandle()->position(), QPoint(300, 200));
}

TEST_F(ShelfPanelTest, AClickLetsTheFocusInUntilThePanelGoesAway) {
    panel->mapAt(QRect(0, 0, 196, 320));
    QTest::mouseClick(panel->windowHandle(), Qt::LeftButton, {}, QPoint(98, 200));
    EXPECT_TRUE(panel->acceptsFocus());
    EXPECT_FALSE(panel->windowHandle()->flags().testFlag(Qt::WindowDoesNotAcceptFocus));

    panel->orderOut();
    EXPECT_FALSE(panel->isVisible());
    EXPECT_FALSE(panel->acceptsFocus());
    EXPECT_TRUE(panel->windowHandle()->flags().testFlag(Qt::WindowDoesNotAcceptFocus));
}

TEST_F(ShelfPanelTest, TakesTheAppearanceItIsGiven) {
    panel->setAppearance(AppearanceMode::dark);
    EXPECT_TRUE(ShelfPalette::isDark(panel->shelfView().palette()));
    panel->setAppearance(AppearanceMode::light);
    EXPECT_FALSE(ShelfPalette::isDark(panel->shelfView().palette()));
}

TEST_F(ShelfPanelTest, ADragOfFilesLightsTheShelfUntilItLeaves) {
    panel->mapAt(QRect(0, 0, 196, 320));
    QSignalSpy target(&panel->contentView(), &ShelfContentView::targetChanged);
    std::unique_ptr<QMimeData> data(files());

    EXPECT_TRUE(enter(*data));
    EXPECT_TRUE(store->isTargeted());
    EXPECT_TRUE(panel->shelfView().dropHighlight().isLit());
    leave();
    EXPECT_FALSE(store->isTargeted());
    EXPECT_FALSE(panel->shelfView().dropHighlight().isLit());
    ASSERT_EQ(target.count(), 2);
    EXPECT_EQ(target.at(0).at(0).toBool(), true);
    EXPECT_EQ(target.at(1).at(0).toBool(), false);
}

TEST_F(ShelfPanelTest, APanelPutAwayUnderAHoveringDragDoesNotStayLit) {
    panel->mapAt(QRect(0, 0, 196, 320));
    std::unique_ptr<QMimeData> data(files());
    ASSERT_TRUE(enter(*data));
    panel->orderOut();
    EXPECT_FALSE(store->isTargeted());
}

TEST_F(ShelfPanelTest, ADragOfSomethingElseIsRefusedAndLeavesTheShelfDark) {
    QMimeData data;
    data.setData("application/x-qabstractitemmodeldatalist", "rows");
    EXPECT_FALSE(enter(data));
    EXPECT_FALSE(store->isTargeted());
}

TEST_F(ShelfPanelTest, ADropGoesToTheHandlerWhichDecidesWhetherItWasTaken) {
    std::unique_ptr<QMimeData> data(files());
    ASSERT_TRUE(enter(*data));
    EXPECT_TRUE(drop(*data));
    EXPECT_FALSE(store->isTargeted()) << "the highlight goes as the drop lands";
    ASSERT_EQ(handler.formats.size(), 1u);
    EXPECT_TRUE(handler.formats[0].contains("text/uri-list"));
    EXPECT_EQ(handler.actions, Qt::CopyAction | Qt::MoveAction);

    handler.takes = false;
    ASSERT_TRUE(enter(*data));
    EXPECT_FALSE(drop(*data));

    panel->contentView().setDropHandler(nullptr);
    ASSERT_TRUE(enter(*data));
    EXPECT_FALSE(drop(*data)) << "without a handler nothing is taken";
    EXPECT_EQ(handler.formats.size(), 2u);
}

}  // namespace
}  // namespace mosswick

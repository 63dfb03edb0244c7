// The shelf's window: how it stands among other windows, the focus, and drags over it.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QMimeData>
#include <QScreen>
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
        urls.push_back(data.urls());
        actions = context.offeredActions;
        return takes;
    }
    bool takes = true;
    std::vector<QStringList> formats;
    std::vector<QList<QUrl>> urls;
    Qt::DropActions actions;
};

// A compositor that hands the drag's data over only while the drag hovers (wlroots).
class DataOnlyBeforeDropHints final : public PanelWindowHints {
public:
    void keepOffTaskbarOnAllWorkspaces(quintptr) override {}
    bool compositorRunning(quintptr) const override { return true; }
    bool letStandOffScreen(quintptr) override { return true; }
    void giveUpFocus(quintptr) override {}
    bool dataOnlyBeforeDrop() const override { return true; }
};

// A window manager that lets windows stand outside the screen, and remembers being asked.
class AsideWindowHints final : public PanelWindowHints {
public:
    void keepOffTaskbarOnAllWorkspaces(quintptr) override { ++taskbarRequests; }
    bool compositorRunning(quintptr) const override { return true; }
    bool letStandOffScreen(quintptr) override {
        ++asideRequests;
        return allowsAside;
    }
    void giveUpFocus(quintptr) override { ++focusGivenUp; }

    bool allowsAside = true;
    int taskbarRequests = 0;
    int asideRequests = 0;
    int focusGivenUp = 0;
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

// --- Standing aside while hidden --------------------------------------------------------------

class ParkedShelfPanelTest : public ShelfPanelTest {
protected:
    void SetUp() override {
        ShelfPanelTest::SetUp();
        panel = std::make_unique<ShelfPanel>(*store, motion(), hints);
    }

    static bool onAnyScreen(const QRect& frame) {
        for (const QScreen* screen : QGuiApplication::screens())
            if (screen->geometry().intersects(frame)) return true;
        return false;
    }
    QRect windowFrame() const { return panel->windowHandle()->geometry(); }

    AsideWindowHints hints;
};

TEST_F(ParkedShelfPanelTest, PutAwayTheWindowStaysMappedOutsideEveryScreenAtItsSize) {
    panel->setFrame(QRect(1200, 300, 196, 320));
    panel->orderOut();
    QCoreApplication::processEvents();
    EXPECT_TRUE(panel->isVisible()) << "mapped, so drag sources that list windows once know it";
    EXPECT_FALSE(panel->isShown());
    EXPECT_TRUE(panel->standsAside());
    EXPECT_FALSE(onAnyScreen(windowFrame())) << windowFrame().x() << "," << windowFrame().y();
    EXPECT_EQ(windowFrame().size(), QSize(196, 320));
    EXPECT_EQ(panel->frame(), QRect(1200, 300, 196, 320)) << "the frame to come back to";
    EXPECT_EQ(hints.taskbarRequests, 1);
    EXPECT_GE(hints.asideRequests, 1);

    // Placing it meanwhile (the controller does before a slide) leaves it where it stands.
    panel->setFrame(QRect(1000, 200, 196, 320));
    QCoreApplication::processEvents();
    EXPECT_FALSE(onAnyScreen(windowFrame()));
}

TEST_F(ParkedShelfPanelTest, BroughtBackItMovesInWithoutBeingMappedAnew) {
    panel->setFrame(QRect(300, 200, 196, 320));
    panel->orderOut();
    panel->orderFront();
    QCoreApplication::processEvents();
    EXPECT_TRUE(panel->isShown());
    EXPECT_EQ(windowFrame(), QRect(300, 200, 196, 320));
    EXPECT_EQ(hints.taskbarRequests, 1) << "hints are only needed for a map";

    panel->orderOut();
    QCoreApplication::processEvents();
    EXPECT_TRUE(panel->isVisible());
    EXPECT_FALSE(onAnyScreen(windowFrame()));
    EXPECT_EQ(hints.taskbarRequests, 1);
}

TEST_F(ParkedShelfPanelTest, EachPutAwayAsksAgainToStandAsideAndGivesUpTheFocusItTook) {
    panel->mapAt(QRect(0, 0, 196, 320));
    const int asked = hints.asideRequests;
    panel->orderOut();
    EXPECT_EQ(hints.asideRequests, asked + 1) << "the type is lost whenever Qt rewrites the flags";
    EXPECT_EQ(hints.focusGivenUp, 0) << "never clicked, it never had the focus";

    panel->orderFront();
    QTest::mouseClick(panel->windowHandle(), Qt::LeftButton, {}, QPoint(98, 200));
    ASSERT_TRUE(panel->acceptsFocus());
    panel->orderOut();
    EXPECT_EQ(hints.focusGivenUp, 1);
    EXPECT_FALSE(panel->acceptsFocus());
    EXPECT_TRUE(panel->isVisible());
}

TEST_F(ParkedShelfPanelTest, PulledBackOnScreenItIsSentOutAgainThenWithdrawnIfTheManagerInsists) {
    panel->setFrame(QRect(300, 200, 196, 320));
    panel->orderOut();
    QCoreApplication::processEvents();
    const QRect parking = windowFrame();
    const int asked = hints.asideRequests;

    // As a window manager does that still took the window for a utility one: a tenth shows.
    // (The first report after a map is answered as any false report is, without the type.)
    for (int pull = 0; pull < 2; ++pull) {
        panel->windowHandle()->setPosition(-176, -288);
        QCoreApplication::processEvents();
        EXPECT_EQ(windowFrame(), parking);
        EXPECT_TRUE(panel->isVisible());
    }
    EXPECT_EQ(hints.asideRequests, asked + 1) << "told the type again with the second";

    for (int i = 0; i < 10 && panel->isVisible(); ++i) {
        panel->windowHandle()->setPosition(-176, -288);
        QCoreApplication::processEvents();
    }
    EXPECT_FALSE(panel->isVisible()) << "gone for real rather than showing a corner";
    EXPECT_FALSE(panel->standsAside());

    // And it comes back mapped anew, the hints set again.
    panel->orderFront();
    QCoreApplication::processEvents();
    EXPECT_TRUE(panel->isShown());
    EXPECT_EQ(windowFrame(), QRect(300, 200, 196, 320));
    EXPECT_EQ(hints.taskbarRequests, 2);
}

TEST_F(ParkedShelfPanelTest, WhereItCannotStandAsideItIsWithdrawn) {
    hints.allowsAside = false;
    panel->mapAt(QRect(0, 0, 196, 320));
    panel->orderOut();
    EXPECT_FALSE(panel->isVisible());
    EXPECT_FALSE(panel->standsAside());
}

TEST_F(ParkedShelfPanelTest, PutAwayUnderAHoveringDragItDoesNotStayLit) {
    panel->contentView().setDropHandler(&handler);
    panel->mapAt(QRect(0, 0, 196, 320));
    std::unique_ptr<QMimeData> data(files());
    ASSERT_TRUE(enter(*data));
    panel->orderOut();
    ASSERT_TRUE(panel->isVisible());
    EXPECT_FALSE(store->isTargeted());
    EXPECT_FALSE(panel->shelfView().dropHighlight().isLit());
}

TEST_F(ParkedShelfPanelTest, ParkedForTheDragThatEntersItRefusesIt) {
    panel->contentView().setDropHandler(&handler);
    panel->mapAt(QRect(0, 0, 4, 320));
    // The controller puts the strip away for a drag it will not take, as that drag enters.
    QObject::connect(&panel->contentView(), &ShelfContentView::foreignDragEntered, panel.get(),
                     [this](bool bringsShelfUp) {
                         if (!bringsShelfUp) panel->orderOut();
                     });
    QMimeData text;
    text.setText(QStringLiteral("a note"));
    EXPECT_FALSE(enter(text));
    ASSERT_TRUE(panel->isVisible()) << "parked, not withdrawn";
    EXPECT_FALSE(store->isTargeted());
}

TEST_F(ShelfPanelTest, TheClassicMaterialIsSolidAndCutToShapeUnderACompositor) {
    panel->mapAt(QRect(1200, 300, 196, 320));
    EXPECT_TRUE(panel->contentView().isTranslucent());
    EXPECT_TRUE(panel->mask().isEmpty());
    panel->setClassicMaterial(true);
    EXPECT_FALSE(panel->contentView().isTranslucent());
    EXPECT_FALSE(panel->mask().isEmpty());
    EXPECT_FALSE(panel->mask().contains(QPoint(0, 0)));  // the rounded corner is cut away
    panel->setClassicMaterial(false);
    EXPECT_TRUE(panel->contentView().isTranslucent());
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

TEST_F(ShelfPanelTest, WhereDataCanBeReadOnlyWhileHoveringTheDropHandsOnWhatWasReadAsItEntered) {
    DataOnlyBeforeDropHints hints;
    panel = std::make_unique<ShelfPanel>(*store, motion(), hints);
    panel->contentView().setDropHandler(&handler);
    const QMimeData gone;  // what the drop itself carries there
    std::unique_ptr<QMimeData> data(files());
    data->setText(QStringLiteral("file:///tmp/report.pdf"));
    QMimeData text;
    text.setText(QStringLiteral("a note"));
    QMimeData unreadable;
    unreadable.setData(QStringLiteral("text/uri-list"), {});

    ASSERT_TRUE(enter(*data));
    EXPECT_TRUE(drop(gone));
    ASSERT_EQ(handler.formats.size(), 1u);
    EXPECT_EQ(handler.formats[0], QStringList{"text/uri-list"})
        << "a file drag's URI list is all that is read";
    EXPECT_EQ(handler.urls[0], QList<QUrl>{QUrl::fromLocalFile("/tmp/report.pdf")});

    ASSERT_TRUE(enter(text));
    EXPECT_TRUE(drop(gone));
    ASSERT_EQ(handler.formats.size(), 2u);
    EXPECT_TRUE(handler.formats[1].contains("text/plain")) << handler.formats[1].join(' ').toStdString();

    ASSERT_TRUE(enter(unreadable));
    EXPECT_FALSE(drop(gone)) << "nothing read as it entered: refused, the source keeps its file";
    EXPECT_EQ(handler.formats.size(), 2u);

    // What was read goes with the drag that left: the next one is read anew.
    ASSERT_TRUE(enter(*data));
    leave();
    ASSERT_TRUE(enter(text));
    EXPECT_TRUE(drop(gone));
    ASSERT_EQ(handler.formats.size(), 3u);
    EXPECT_TRUE(handler.formats[2].contains("text/plain"));
    EXPECT_FALSE(handler.formats[2].contains("text/uri-list"));
}

}  // namespace
}  // namespace mosswick

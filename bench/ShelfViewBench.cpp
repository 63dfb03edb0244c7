// How quickly the shelf reaches the screen and how much main-thread time a full shelf costs to
// lay out, and a start-up: 500 saved items (each original moved, so its bookmark must be searched)
// restored and laid out. Runs on a real X server (bench/view.sh starts one): mapping and painting are what is
// measured, so the offscreen platform would flatter it. Prints "name seconds" lines, each the
// median of its runs, or for a shelf of 1,000 items scrolled the longest main-thread stall and the
// 99th percentile of them.
#include <QApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QMenu>
#include <QScreen>
#include <QWheelEvent>
#include <QWindow>
#include <filesystem>
#include <fstream>
#include <set>
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <vector>

#include "shelf/ReducedMotion.h"
#include "interaction/MenuRenderer.h"
#include "interaction/ShelfMenus.h"
#include "StallMeter.h"
#include "interaction/DragImage.h"
#include "interaction/DragOutMimeData.h"
#include "interaction/DragSource.h"
#include "interaction/ShelfView.h"
#include "interaction/TileListView.h"
#include "model/LocalPath.h"
#include "shelf/ReducedMotion.h"
#include "model/AppFiles.h"
#include "model/DefaultsStore.h"
#include "model/FileBookmark.h"
#include "model/ItemStaging.h"
#include "model/LocalPath.h"
#include "model/Preferences.h"
#include "model/ShelfStore.h"
#include "platform/qt/QtDisplayEnvironment.h"
#include "platform/qt/QtScheduler.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11PanelHints.h"
#include "shelf/NoDesktopMotionSetting.h"
#include "shelf/QtShelfPanelSurface.h"
#include "shelf/ShelfPanel.h"
#include "shelf/ShelfWindowController.h"

using namespace mosswick;

namespace {

constexpr int kRuns = 20;
constexpr int kLargeShelf = 500;
constexpr int kHugeShelf = 1000;
constexpr int kScrollNotches = 120;
constexpr int kDraggedItems = 100;

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void report(const char* name, const std::vector<double>& seconds) {
    std::printf("%s %.6f\n", name, median(seconds));
}

std::vector<ShelfItem> makeItems(int count) {
    std::vector<ShelfItem> items;
    for (int i = 0; i < count; ++i) {
        ShelfItem item;
        item.id = QUuid::createUuid();
        item.displayName = QStringLiteral("Quarterly report %1.pdf").arg(i);
        item.contentTypeIdentifier = QStringLiteral("application/pdf");
        item.byteSize = 1234567 + i;
        items.push_back(std::move(item));
    }
    return items;
}

// Notes when the panel's window is exposed and when its first frame is painted after that, or
// when a panel that stayed mapped is moved back on screen.
class FirstFrameWatch final : public QObject {
public:
    void watch(QWidget* panel) {
        panel_ = panel;
        panel->installEventFilter(this);
        panel->windowHandle()->installEventFilter(this);
    }
    void reset() { exposed_ = painted_ = false; }
    bool painted() const { return painted_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Expose && watched != panel_) exposed_ = everExposed_ = true;
        if (event->type() == QEvent::Paint && watched == panel_ && exposed_) painted_ = true;
        // A panel kept mapped while away comes back by moving on screen, its frame already drawn.
        if (event->type() == QEvent::Move && watched == panel_ && everExposed_ && panel_->screen() &&
            panel_->screen()->geometry().intersects(panel_->geometry()))
            painted_ = true;
        return false;
    }

private:
    QWidget* panel_ = nullptr;
    bool exposed_ = false;
    bool everExposed_ = false;
    bool painted_ = false;
};

void settleFor(int milliseconds) {
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < milliseconds) QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

// From `summon()` until the panel is mapped and has painted, for the first show (the window is
// made then) and for a show of a panel that exists and was put away.
void measureShow() {
    MemoryDefaultsStore defaults;
    Preferences preferences(defaults);
    preferences.setReduceMotion(true);  // the slide's length is a design choice, not a cost
    QtScheduler scheduler;
    Scheduler::setShared(&scheduler);
    std::vector<double> first, again;
    // The hints as the application sets them, over its own connection's atoms; none off X11.
    const std::unique_ptr<X11Connection> x11 = X11Connection::open();
    NoPanelWindowHints noHints;
    std::unique_ptr<X11PanelHints> x11Hints;
    if (x11) x11Hints = std::make_unique<X11PanelHints>(x11->atoms());
    PanelWindowHints& hints = x11Hints ? static_cast<PanelWindowHints&>(*x11Hints) : noHints;
    for (int run = 0; run < kRuns; ++run) {
        ShelfStore store(preferences, scheduler, AppFiles::saveFile());
        store.add(makeItems(3));
        QtDisplayEnvironment displays;
        NoDesktopMotionSetting desktopMotion;
        FirstFrameWatch watch;
        ShelfWindowController controller({preferences, store, scheduler, displays, desktopMotion,
                                          [&](const ScreenRect&) -> std::unique_ptr<ShelfPanelSurface> {
                                              auto* panel = new ShelfPanel(
                                                  store, ReducedMotion(preferences, desktopMotion), hints);
                                              watch.watch(panel);
                                              return std::make_unique<QtShelfPanelSurface>(panel);
                                          }});
        for (std::vector<double>* series : {&first, &again}) {
            watch.reset();
            QElapsedTimer timer;
            timer.start();
            controller.summon();
            while (!watch.painted() && timer.elapsed() < 5000)
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
            series->push_back(timer.nsecsElapsed() / 1e9);
            controller.escape();
            settleFor(150);
        }
    }
    Scheduler::setShared(nullptr);
    report("show_first", first);
    report("show_again", again);
}

// From the change of a shelf of 500 items until the view has every tile placed.
void measureLayout() {
    MemoryDefaultsStore defaults;
    Preferences preferences(defaults);
    preferences.setReduceMotion(true);
    QtScheduler scheduler;
    Scheduler::setShared(&scheduler);
    NoDesktopMotionSetting desktopMotion;
    preferences.setMaximumItemCount(kLargeShelf);
    std::vector<double> seconds;
    for (int run = 0; run < kRuns; ++run) {
        ShelfStore store(preferences, scheduler, AppFiles::saveFile());
        ShelfView view(store, ReducedMotion(preferences, desktopMotion));
        view.resize(320, 600);
        auto items = makeItems(kLargeShelf);
        QElapsedTimer timer;
        timer.start();
        store.add(std::move(items));
        view.updateTilesNow();  // rather than at the next frame: the layout's cost, not the wait
        QCoreApplication::processEvents();
        seconds.push_back(timer.nsecsElapsed() / 1e9);
        store.removeAll();
    }
    Scheduler::setShared(nullptr);
    report("layout_500", seconds);
}

// From the right click on a tile of a 500-item shelf, with half of it selected, until its menu
// has painted: the menu is built from the store each time it opens.
void measureMenu() {
    MemoryDefaultsStore defaults;
    Preferences preferences(defaults);
    QtScheduler scheduler;
    Scheduler::setShared(&scheduler);
    preferences.setMaximumItemCount(kLargeShelf);
    ShelfStore store(preferences, scheduler, AppFiles::saveFile());
    store.add(makeItems(kLargeShelf));
    std::set<QUuid> half;
    for (std::size_t i = 0; i < store.items().size(); i += 2) half.insert(store.items()[i].id);
    store.setSelection(half);
    std::vector<double> seconds;
    for (int run = 0; run < kRuns; ++run) {
        QMenu menu;
        FirstFrameWatch watch;
        QElapsedTimer timer;
        timer.start();
        const ShelfItem clicked = store.items()[run];
        fillMenu(menu, ShelfMenus::itemMenu({preferences, store}, clicked), [](const MenuEntry&) {});
        menu.popup(QPoint(200, 200));
        watch.watch(&menu);
        while (!watch.painted() && timer.elapsed() < 5000)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
        seconds.push_back(timer.nsecsElapsed() / 1e9);
        menu.hide();
        settleFor(50);
    }
    Scheduler::setShared(nullptr);
    report("menu_500", seconds);
}

void reportStalls(const char* name, const bench::StallMeter& stalls) {
    std::printf("%s_longest %.6f\n%s_p99 %.6f\n", name, stalls.longest(), name, stalls.percentile(0.99));
}

// A shown shelf of 1,000 items scrolled from top to bottom by the wheel, a notch at a time, each
// notch painted before the next: the longest stall and the 99th percentile.
void measureScroll() {
    MemoryDefaultsStore defaults;
    Preferences preferences(defaults);
    preferences.setReduceMotion(true);
    preferences.setMaximumItemCount(0);
    QtScheduler scheduler;
    Scheduler::setShared(&scheduler);
    NoDesktopMotionSetting desktopMotion;
    {
        ShelfStore store(preferences, scheduler, AppFiles::saveFile());
        store.add(makeItems(kHugeShelf));
        ShelfView view(store, ReducedMotion(preferences, desktopMotion));
        view.resize(320, 600);
        view.show();
        settleFor(200);
        QWidget* viewport = view.tileList().viewport();
        const QPoint inside = viewport->rect().center();
        bench::StallMeter stalls;
        for (int notch = 0; notch < kScrollNotches; ++notch) {
            QWheelEvent wheel(inside, viewport->mapToGlobal(inside), QPoint(), QPoint(0, -120), Qt::NoButton,
                              Qt::NoModifier, Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(viewport, &wheel);
            settleFor(16);
        }
        reportStalls("scroll_1000", stalls);
        store.removeAll();
    }
    Scheduler::setShared(nullptr);
}

// From the press on one of 100 selected items of a shelf of 1,000 to the drag's data and picture
// made: what the main thread does before the drag can show anything (the drag itself is Qt's).
void measureDragStart() {
    MemoryDefaultsStore defaults;
    Preferences preferences(defaults);
    preferences.setMaximumItemCount(0);
    QtScheduler scheduler;
    Scheduler::setShared(&scheduler);
    const auto folder = std::filesystem::temp_directory_path() / "mosswick-view-bench";
    std::filesystem::create_directories(folder);
    std::vector<double> seconds;
    {
        ShelfStore store(preferences, scheduler, AppFiles::saveFile());
        std::vector<ShelfItem> items = makeItems(kHugeShelf);
        std::set<QUuid> selected;
        for (int i = 0; i < kDraggedItems; ++i) {
            const auto file = folder / ("Quarterly report " + std::to_string(i) + ".pdf");
            std::ofstream(file) << "report";
            items[static_cast<size_t>(i) * 10].originURL = LocalPath::toUrl(file);
            selected.insert(items[static_cast<size_t>(i) * 10].id);
        }
        store.add(items);
        store.setSelection(selected);
        DragSource source(store, preferences);
        const ShelfItem pressed = store.items()[0];
        for (int run = 0; run < kRuns; ++run) {
            QElapsedTimer timer;
            timer.start();
            source.mouseDown(pressed, {40, 40}, QRectF(0, 0, 300, 80), false);
            const auto drag = source.mouseDragged({50, 40});
            const DragOutMimeData data(drag->types);
            const QPixmap image = DragImage::of(drag->items, 2.0);
            seconds.push_back(timer.nsecsElapsed() / 1e9);
            if (drag->items.size() != static_cast<size_t>(kDraggedItems))
                std::fprintf(stderr, "wrong drag\n");
            source.dragEnded(false, false);
        }
        store.removeAll();
    }
    std::filesystem::remove_all(folder);
    Scheduler::setShared(nullptr);
    report("drag_start_100", seconds);
}

// 500 records whose originals were renamed after the drop, each with its staged copy.
std::vector<ShelfItem> makeMovedShelf() {
    const auto originals = AppFiles::root().parent_path() / "originals";
    std::filesystem::create_directories(originals);
    std::vector<ShelfItem> items = makeItems(kLargeShelf);
    for (ShelfItem& item : items) {
        const std::string name = item.displayName.toStdString();
        std::ofstream(originals / name) << "x";
        item.originURL = LocalPath::toUrl(originals / name);
        item.originBookmark = FileBookmark::create(originals / name);
        std::filesystem::rename(originals / name, originals / ("Renamed " + name));
        const auto staged = ItemStaging::itemFolder(item.id);
        std::filesystem::create_directories(staged);
        std::ofstream(staged / name) << "x";
        item.stagedURL = LocalPath::toUrl(staged / name);
    }
    return items;
}

// From the store's construction at start-up until the view has every restored tile placed.
void measureRestoreAndShow() {
    MemoryDefaultsStore defaults;
    Preferences preferences(defaults);
    preferences.setReduceMotion(true);
    preferences.setMaximumItemCount(kLargeShelf);
    QtScheduler scheduler;
    Scheduler::setShared(&scheduler);
    NoDesktopMotionSetting desktopMotion;
    const std::vector<ShelfItem> records = makeMovedShelf();
    std::vector<double> seconds;
    for (int run = 0; run < kRuns; ++run) {
        ShelfSaveFile(AppFiles::saveFile()).write(records, 1);
        QElapsedTimer timer;
        timer.start();
        {
            ShelfStore store(preferences, scheduler, AppFiles::saveFile());
            ShelfView view(store, ReducedMotion(preferences, desktopMotion));
            view.resize(320, 600);
            view.show();
            // The records arrive from the background; the tiles follow at the next frame.
            while (view.tileList().tileViews().size() < records.size() && timer.elapsed() < 5000)
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
            seconds.push_back(timer.nsecsElapsed() / 1e9);
            if (store.items().size() != records.size()) std::fprintf(stderr, "restore lost items\n");
            // The background check and its save finish before the next run rewrites the file.
            while (store.isCheckingRestoredItems() || store.hasPendingSave())
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
            scheduler.waitForBackgroundWork();
        }
    }
    Scheduler::setShared(nullptr);
    // The other measurements start from an empty shelf.
    for (const ShelfItem& item : records) ItemStaging::discard(item.id);
    std::filesystem::remove(AppFiles::saveFile());
    report("restore_show_500", seconds);
}

}  // namespace

int main(int argc, char** argv) {
    bench::MeteredApplication app(argc, argv);
    measureMenu();
    measureRestoreAndShow();
    measureLayout();
    measureScroll();
    measureDragStart();
    measureShow();
    return 0;
}

// The main thread's share of a drop of 1,000 files: reading the drop and making the items, and
// later taking in the finished copies. The copies themselves run on other threads and are not
// counted. With and without the shelf's view, which redraws on every change of the store. Taking
// in the copies also reports its longest main-thread stall and the 99th percentile of them.
// And a drop of 100 MB of text, as GTK offers it (text/plain with CR LF line ends): the main
// thread's share from the drop until the text is on disk. The drop's data is already in the
// process here; reading it from the dragging program over X is Qt's, inside its drop event, and
// not counted.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QMimeData>
#include <algorithm>
#include <ctime>
#include <fstream>
#include <memory>

#include "StallMeter.h"
#include "ingest/DropIngest.h"
#include "shelf/ReducedMotion.h"
#include "interaction/ShelfView.h"
#include "model/AppFiles.h"
#include "model/DefaultsStore.h"
#include "model/ItemStaging.h"
#include "model/LocalPath.h"
#include "model/Preferences.h"
#include "model/ShelfStore.h"
#include "platform/qt/QMimeDataPasteboard.h"
#include "platform/qt/QtScheduler.h"
#include "shelf/NoDesktopMotionSetting.h"

using namespace mosswick;

namespace {

constexpr int kFiles = 1000;

double threadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

const QList<QUrl>& droppedFiles() {
    static const QList<QUrl> urls = [] {
        const auto folder = std::filesystem::temp_directory_path() / "mosswick-ingest-bench";
        std::filesystem::create_directories(folder);
        QList<QUrl> list;
        const std::string contents(4096, 'x');
        for (int i = 0; i < kFiles; ++i) {
            const auto file = folder / ("Photo " + std::to_string(i) + ".jpg");
            std::ofstream(file, std::ios::binary) << contents;
            list << LocalPath::toUrl(file);
        }
        return list;
    }();
    return urls;
}

// A shelf with no limit, so every file is kept and copied.
struct Shelf {
    explicit Shelf(bool withView) {
        for (const ShelfItem& item : store.items()) ItemStaging::discard(item.id);
        preferences.setMaximumItemCount(0);
        if (withView) {
            view = std::make_unique<ShelfView>(store, ReducedMotion(preferences, motion));
            view->resize(360, 600);
            view->show();
        }
        QObject::connect(&store, &ShelfStore::itemsChanged, [this] {
            staged = static_cast<int>(
                std::count_if(store.items().begin(), store.items().end(),
                              [](const ShelfItem& item) { return item.stagedURL.has_value(); }));
        });
    }
    ~Shelf() {
        view.reset();
        scheduler.waitForBackgroundWork();
        for (const ShelfItem& item : store.items()) ItemStaging::discard(item.id);
    }

    // The drop, as the shelf's drop handler makes it; the main thread's seconds.
    double drop() {
        QMimeData data;
        data.setUrls(droppedFiles());
        const double start = threadSeconds();
        const QMimeDataPasteboard pasteboard(data);
        std::vector<ShelfItem> items = DropIngest::items(
            pasteboard, true, [this](const ShelfItem& item) { store.update(item); }, services);
        store.add(std::move(items));
        return threadSeconds() - start;
    }

    // Until every copy is in the store; the main thread's seconds.
    double takeInCopies() {
        const double start = threadSeconds();
        while (staged < kFiles) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return threadSeconds() - start;
    }

    MemoryDefaultsStore defaults;
    Preferences preferences{defaults};
    QtScheduler scheduler;
    // Each drop starts from an empty shelf, not from what the one before saved.
    bool startsEmpty = std::filesystem::remove(AppFiles::saveFile());
    ShelfStore store{preferences, scheduler, AppFiles::saveFile()};
    IngestServices services{scheduler, preferences, store};
    NoDesktopMotionSetting motion;
    std::unique_ptr<ShelfView> view;
    int staged = 0;
};

void BM_Drop1000Files(benchmark::State& state) {
    double longest = 0;
    for (auto _ : state) {
        Shelf shelf(state.range(0) != 0);
        const double seconds = shelf.drop();
        state.SetIterationTime(seconds);
        longest = std::max(longest, seconds);
        shelf.takeInCopies();
    }
    // The drop is one stretch of the main thread, all of it work. (Every run reports the same
    // counters.)
    state.counters["longest_ms"] = longest * 1000;
    state.counters["p99_ms"] = longest * 1000;
    state.counters["longest_work_ms"] = longest * 1000;
}
BENCHMARK(BM_Drop1000Files)->Arg(0)->Arg(1)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);

void BM_TakeIn1000Copies(benchmark::State& state) {
    double longest = 0, p99 = 0, longestWork = 0;
    for (auto _ : state) {
        Shelf shelf(state.range(0) != 0);
        shelf.drop();
        bench::StallMeter stalls;
        state.SetIterationTime(shelf.takeInCopies());
        longest = std::max(longest, stalls.longest());
        p99 = std::max(p99, stalls.percentile(0.99));
        longestWork = std::max(longestWork, stalls.longestWork());
    }
    // The worst of the drops: what the user sees is a stall, not the sum. Its wall time is
    // stretched by the copying threads and by anything else this machine runs; the main thread's
    // own processor time in its longest stretch is the share that is ours.
    state.counters["longest_ms"] = longest * 1000;
    state.counters["p99_ms"] = p99 * 1000;
    state.counters["longest_work_ms"] = longestWork * 1000;
}
BENCHMARK(BM_TakeIn1000Copies)->Arg(0)->Arg(1)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);

void BM_Drop100MBText(benchmark::State& state) {
    QByteArray line =
        QByteArrayLiteral("Lorem ipsum dolor sit amet, consectetur adipiscing elit, sed do eiusmod.\r\n");
    QByteArray text;
    text.reserve(100 << 20);
    while (text.size() + line.size() <= (100 << 20)) text.append(line);
    double longestWork = 0;
    for (auto _ : state) {
        Shelf shelf(false);
        QMimeData data;
        data.setData(QStringLiteral("text/plain"), text);
        const double start = threadSeconds();
        const QMimeDataPasteboard pasteboard(data);
        std::vector<ShelfItem> items = DropIngest::items(
            pasteboard, true, [&shelf](const ShelfItem& item) { shelf.store.update(item); }, shelf.services);
        shelf.store.add(std::move(items));
        const double dropped = threadSeconds() - start;
        state.SetIterationTime(dropped);
        longestWork = std::max(longestWork, dropped);
        // Until the text is written; the write's arrival is main-thread work too.
        while (shelf.store.items().empty() || shelf.store.items().front().isPromised) {
            const double before = threadSeconds();
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
            longestWork = std::max(longestWork, threadSeconds() - before);
        }
    }
    state.counters["longest_ms"] = longestWork * 1000;
}
BENCHMARK(BM_Drop100MBText)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    bench::MeteredApplication app(argc, argv);
    droppedFiles();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

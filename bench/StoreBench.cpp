// Saving and restoring a full shelf of 500 items, each with a staged copy on disk, as the
// application does at quit and at launch. With --stalls: a restore of 20,000 records whose
// originals moved, so that every bookmark must be searched; prints "name seconds" lines.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <optional>

#include "StallMeter.h"
#include "model/AppFiles.h"
#include "model/DefaultsStore.h"
#include "model/FileBookmark.h"
#include "model/ItemStaging.h"
#include "model/LocalPath.h"
#include "model/Preferences.h"
#include "model/ShelfStore.h"
#include "platform/qt/QtScheduler.h"

using namespace mosswick;

namespace {

constexpr int kItems = 500;

std::vector<ShelfItem> makeShelf() {
    std::vector<ShelfItem> items;
    for (int i = 0; i < kItems; ++i) {
        ShelfItem item;
        item.id = QUuid::createUuid();
        item.displayName = QStringLiteral("Report %1.pdf").arg(i);
        const auto folder = ItemStaging::itemFolder(item.id);
        std::filesystem::create_directories(folder);
        std::ofstream(folder / item.displayName.toStdString()) << "x";
        item.stagedURL = LocalPath::toUrl(folder / item.displayName.toStdString());
        item.originURL = LocalPath::toUrl("/home/user/Documents/" + item.displayName.toStdString());
        item.contentTypeIdentifier = QStringLiteral("application/pdf");
        item.byteSize = 1234567 + i;
        items.push_back(std::move(item));
    }
    return items;
}

struct Shelf {
    MemoryDefaultsStore defaults;
    Preferences preferences{defaults};
    QtScheduler scheduler;
};

void BM_Save500Items(benchmark::State& state) {
    const auto items = makeShelf();
    ShelfSaveFile file(AppFiles::saveFile());
    for (auto _ : state) benchmark::DoNotOptimize(file.write(items, file.nextGeneration()));
    for (const ShelfItem& item : items) ItemStaging::discard(item.id);
}
BENCHMARK(BM_Save500Items)->Unit(benchmark::kMillisecond);

void BM_Restore500Items(benchmark::State& state) {
    ShelfSaveFile(AppFiles::saveFile()).write(makeShelf(), 1);
    Shelf shelf;
    // The largest shelf the settings allow, so restoring keeps every item.
    shelf.preferences.setMaximumItemCount(kItems);
    for (auto _ : state) {
        ShelfStore store(shelf.preferences, shelf.scheduler, AppFiles::saveFile());
        // Read off the main thread: until its records are on the shelf.
        while (!store.isRestored()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        if (store.items().size() != kItems) state.SkipWithError("restore lost items");
    }
}
BENCHMARK(BM_Restore500Items)->Unit(benchmark::kMillisecond);

constexpr int kRecords = 20000;
constexpr int kRecordsPerFolder = 1000;

// Records whose originals were renamed after the drop (each found again only by searching its old
// folder), each with its staged copy.
std::vector<ShelfItem> makeMovedShelf(const std::filesystem::path& originals) {
    std::vector<ShelfItem> items;
    for (int i = 0; i < kRecords; ++i) {
        ShelfItem item;
        item.id = QUuid::createUuid();
        item.displayName = QStringLiteral("Photo %1.jpg").arg(i);
        const std::string name = item.displayName.toStdString();
        const auto folder = originals / std::to_string(i / kRecordsPerFolder);
        std::filesystem::create_directories(folder);
        std::ofstream(folder / name) << "x";
        item.originURL = LocalPath::toUrl(folder / name);
        item.originBookmark = FileBookmark::create(folder / name);
        std::filesystem::rename(folder / name, folder / ("Renamed " + name));
        const auto staged = ItemStaging::itemFolder(item.id);
        std::filesystem::create_directories(staged);
        std::ofstream(staged / name) << "x";
        item.stagedURL = LocalPath::toUrl(staged / name);
        item.contentTypeIdentifier = QStringLiteral("image/jpeg");
        item.byteSize = 1;
        items.push_back(std::move(item));
    }
    return items;
}

double threadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

// From the store's construction at start: the longest stretch the main thread could not answer
// anything (the construction itself, then each event until the records are on the shelf), and
// when they were. Then, with the event loop running, the longest gap between ticks of a 1 ms timer
// until every record is looked into and the findings are saved: in wall time (which a busy
// machine stretches, as other threads take the cores) and in the main thread's own processor
// time (the work that is ours).
void measureStalls(qint64 itemLimit, const char* label) {
    const auto originals = AppFiles::root().parent_path() / "originals";
    static const std::vector<ShelfItem> records = makeMovedShelf(originals);
    ShelfSaveFile(AppFiles::saveFile()).write(records, 1);
    MemoryDefaultsStore defaults;
    Preferences preferences(defaults);
    preferences.setMaximumItemCount(itemLimit);
    QtScheduler scheduler;
    QElapsedTimer clock;
    std::optional<bench::StallMeter> start(std::in_place);
    const double startWork = threadSeconds();
    clock.start();
    ShelfStore store(preferences, scheduler, AppFiles::saveFile());
    start->add(clock.nsecsElapsed() / 1e9, threadSeconds() - startWork);
    while (!store.isRestored()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    const double restore = clock.nsecsElapsed() / 1e9;
    const double startStretch = start->longest();
    const double startWorkStretch = start->longestWork();
    start.reset();
    if (store.items().size() != (itemLimit >= 1 ? static_cast<size_t>(itemLimit) : records.size()))
        std::printf("%s_error 1\n", label);
    double longest = 0;
    double longestWork = 0;
    qint64 last = clock.nsecsElapsed();
    double lastWork = threadSeconds();
    QTimer tick;
    tick.setTimerType(Qt::PreciseTimer);
    QObject::connect(&tick, &QTimer::timeout, [&] {
        const qint64 now = clock.nsecsElapsed();
        const double work = threadSeconds();
        longest = std::max(longest, (now - last) / 1e9);
        longestWork = std::max(longestWork, work - lastWork);
        last = now;
        lastWork = work;
    });
    tick.start(1);
    while (store.isCheckingRestoredItems() || store.hasPendingSave())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    scheduler.waitForBackgroundWork();
    const double total = clock.nsecsElapsed() / 1e9;
    const auto saved = ShelfSaveFile(AppFiles::saveFile()).read().items;
    const bool allFound =
        !saved.empty() && std::all_of(saved.begin(), saved.end(), [](const ShelfItem& item) {
            return item.originURL && item.originURL->path().contains(QStringLiteral("Renamed "));
        });
    std::printf(
        "%s_restore %.6f\n%s_start_longest_stall %.6f\n%s_start_longest_work %.6f\n"
        "%s_longest_stall %.6f\n%s_longest_work %.6f\n%s_all_looked_into %.6f\n",
        label, restore, label, startStretch, label, startWorkStretch, label, longest, label, longestWork,
        label, total);
    if (!allFound) std::printf("%s_error 1\n", label);
}

}  // namespace

int main(int argc, char** argv) {
    bench::MeteredCoreApplication app(argc, argv);
    if (argc > 1 && std::strcmp(argv[1], "--stalls") == 0) {
        measureStalls(0, "moved20000_all_shown");
        measureStalls(100, "moved20000_default_limit");
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

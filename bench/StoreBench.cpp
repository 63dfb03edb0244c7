// Saving and restoring a full shelf of 500 items, each with a staged copy on disk, as the
// application does at quit and at launch.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <fstream>

#include "model/AppFiles.h"
#include "model/DefaultsStore.h"
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
        if (store.items().size() != kItems) state.SkipWithError("restore lost items");
    }
}
BENCHMARK(BM_Restore500Items)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

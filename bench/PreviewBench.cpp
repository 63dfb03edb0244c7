// Previews of a full shelf, on a real X server (bench/previews.sh starts one and times the
// desktop's own thumbnailer on the same files). Modes:
//   preview_bench photos FOLDER COUNT   writes COUNT photo-sized JPEGs (4000 x 3000) once
//   preview_bench measure FOLDER        prints "name value" lines: cold and warm times until every
//                                       tile has its preview, the longest main-thread stall meanwhile
//   preview_bench memory FOLDER         prints the memory 500 previews take (MB)
#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QElapsedTimer>
#include <QImage>
#include <QPainter>
#include <QTimer>
#include <QThread>
#include <atomic>
#include <thread>
#include <algorithm>
#include <cstdio>
#include <fstream>

#include "interaction/ShelfView.h"
#include "interaction/ThumbnailProvider.h"
#include "model/AppFiles.h"
#include "model/DefaultsStore.h"
#include "model/LocalPath.h"
#include "model/Preferences.h"
#include "model/ShelfStore.h"
#include "platform/qt/LowPriorityPool.h"
#include "platform/qt/QtScheduler.h"
#include "platform/qt/ThemeWorkspaceIcons.h"
#include "shelf/NoDesktopMotionSetting.h"
#include "shelf/ReducedMotion.h"

using namespace mosswick;

namespace {

constexpr int kMemoryShelf = 500;

// Something like a photo to a JPEG encoder: smooth areas, edges and fine grain, a few MB.
QImage photo(int index) {
    QImage image(4000, 3000, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, 0, 3000);
    sky.setColorAt(0, QColor::fromHsv((index * 37) % 360, 120, 230));
    sky.setColorAt(1, QColor::fromHsv((index * 37 + 90) % 360, 200, 80));
    painter.fillRect(image.rect(), sky);
    for (int i = 0; i < 60; ++i) {
        painter.setBrush(QColor::fromHsv((index * 13 + i * 29) % 360, 180, 60 + (i * 7) % 180));
        painter.setPen(Qt::NoPen);
        painter.drawEllipse(QPointF((i * 677 + index * 91) % 4000, (i * 409 + index * 53) % 3000), 80 + i * 9,
                            60 + i * 5);
    }
    painter.end();
    quint32 seed = 2654435761u * static_cast<quint32>(index + 1);
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            seed = seed * 1664525u + 1013904223u;
            const int grain = static_cast<int>(seed >> 28) - 8;
            const QRgb p = line[x];
            line[x] = qRgb(std::clamp(qRed(p) + grain, 0, 255), std::clamp(qGreen(p) + grain, 0, 255),
                           std::clamp(qBlue(p) + grain, 0, 255));
        }
    }
    return image;
}

int writePhotos(const QString& folder, int count) {
    QDir().mkpath(folder);
    QList<int> missing;
    for (int i = 0; i < count; ++i) {
        if (!QFile::exists(folder + QStringLiteral("/photo-%1.jpg").arg(i, 3, 10, QLatin1Char('0'))))
            missing << i;
    }
    std::atomic<int> next{0};
    std::vector<std::thread> workers;
    for (int w = 0; w < std::max(1, QThread::idealThreadCount()); ++w) {
        workers.emplace_back([&] {
            for (int k = next++; k < missing.size(); k = next++) {
                const int i = missing[k];
                const QString name = folder + QStringLiteral("/photo-%1.jpg").arg(i, 3, 10, QLatin1Char('0'));
                photo(i).save(name + QStringLiteral(".part"), "jpg", 90);
                QFile::rename(name + QStringLiteral(".part"), name);
            }
        });
    }
    for (std::thread& worker : workers) worker.join();
    return 0;
}

qint64 residentBytes() {
    std::ifstream statm("/proc/self/statm");
    qint64 pages = 0, resident = 0;
    statm >> pages >> resident;
    return resident * 4096;
}

// The longest the main thread went without turning its event loop, sampled by a 1 ms timer.
class StallWatch {
public:
    StallWatch() {
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.setInterval(1);
        QObject::connect(&timer_, &QTimer::timeout, [this] {
            const qint64 now = clock_.nsecsElapsed();
            longest_ = std::max(longest_, now - last_);
            last_ = now;
        });
    }
    // Counts from now: a first stall before the timer's first turn counts too.
    void start() {
        clock_.start();
        last_ = 0;
        longest_ = 0;
        timer_.start();
    }
    double stop() {
        timer_.stop();
        longest_ = std::max(longest_, clock_.nsecsElapsed() - last_);
        return static_cast<double>(longest_) / 1e9;
    }

private:
    QTimer timer_;
    QElapsedTimer clock_;
    qint64 last_ = 0;
    qint64 longest_ = 0;
};

struct Shelf {
    MemoryDefaultsStore defaults;
    Preferences preferences{defaults};
    QtScheduler scheduler;
    NoDesktopMotionSetting motion;
    ThemeWorkspaceIcons icons;
    LowPriorityPool previewThreads{QThread::idealThreadCount()};
    std::unique_ptr<ShelfStore> store;
    std::unique_ptr<ThumbnailProvider> provider;
    std::unique_ptr<ShelfView> view;
    double addSeconds = 0;  // the drop itself: the store takes the items, the list makes their tiles

    Shelf() {
        Scheduler::setShared(&scheduler);
        preferences.setReduceMotion(true);
        preferences.setMaximumItemCount(kMemoryShelf);
        store = std::make_unique<ShelfStore>(preferences, scheduler, AppFiles::saveFile());
        provider = std::make_unique<ThumbnailProvider>(ThumbnailProvider::Services{
            preferences, scheduler, icons,
            std::make_shared<const PreviewGenerator>(ThumbnailFolder(ThumbnailFolder::defaultRoot()),
                                                     Thumbnailers::load(Thumbnailers::defaultFolders()),
                                                     PreviewGenerator::Limits()),
            ThumbnailProvider::primaryScreenScale, QThread::idealThreadCount(),
            [this](std::function<void()> work, std::function<void()> done) {
                previewThreads.run(std::move(work), std::move(done));
            }});
        ThumbnailProvider::setShared(provider.get());
        store->setThumbnailCache(provider.get());
        view = std::make_unique<ShelfView>(*store, ReducedMotion(preferences, motion));
        view->resize(320, 900);
        view->show();
        settle(300);
    }
    ~Shelf() {
        view.reset();
        ThumbnailProvider::setShared(nullptr);
        provider.reset();
        store.reset();
        scheduler.waitForBackgroundWork();
        Scheduler::setShared(nullptr);
    }
    static void settle(int milliseconds) {
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < milliseconds) QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }

    // Seconds from the drop until every item has its preview.
    // The stall watch starts once the drop itself is done: laying out the new tiles is the list's
    // cost, measured on its own (view_bench), not the previews'.
    double dropAndWait(const QStringList& files, int copies = 1, StallWatch* stalls = nullptr) {
        std::vector<ShelfItem> items;
        for (int copy = 0; copy < copies; ++copy) {
            for (const QString& file : files) {
                ShelfItem item;
                item.id = QUuid::createUuid();
                item.displayName = QFileInfo(file).fileName();
                item.contentTypeIdentifier = QStringLiteral("image/jpeg");
                item.originURL = LocalPath::toUrl(LocalPath::fromBytes(QFile::encodeName(file)));
                item.byteSize = QFileInfo(file).size();
                items.push_back(std::move(item));
            }
        }
        const size_t wanted = items.size();
        // Waits without spinning: the previews are made on the other cores of a small machine.
        QEventLoop loop;
        QObject::connect(provider.get(), &ThumbnailProvider::previewArrived, &loop, [&] {
            if (provider->previewCount() >= wanted) loop.quit();
        });
        QTimer::singleShot(600'000, &loop, &QEventLoop::quit);
        QElapsedTimer timer;
        timer.start();
        store->add(std::move(items));
        addSeconds = timer.nsecsElapsed() / 1e9;
        if (stalls) stalls->start();
        if (provider->previewCount() < wanted) loop.exec();
        const double seconds = timer.nsecsElapsed() / 1e9;
        QCoreApplication::processEvents();  // the last tiles repaint
        return provider->previewCount() < wanted ? -1 : seconds;
    }
};

int measure(const QString& folder) {
    QStringList files;
    for (const QString& name : QDir(folder).entryList({QStringLiteral("*.jpg")}, QDir::Files, QDir::Name))
        files << QDir(folder).absoluteFilePath(name);
    StallWatch stalls;
    {
        Shelf shelf;
        const double cold = shelf.dropAndWait(files, 1, &stalls);
        std::printf("cold %.6f\n", cold);
        std::printf("cold_stall %.6f\n", stalls.stop());
        std::printf("drop %.6f\n", shelf.addSeconds);
    }
    {
        Shelf shelf;
        std::printf("warm %.6f\n", shelf.dropAndWait(files, 1, &stalls));
        std::printf("warm_stall %.6f\n", stalls.stop());
    }
    std::fflush(stdout);
    return 0;
}

// In a process of its own: memory freed by earlier measurements would be used again and hide
// what the previews take.
int measureMemory(const QString& folder) {
    QStringList files;
    for (const QString& name : QDir(folder).entryList({QStringLiteral("*.jpg")}, QDir::Files, QDir::Name))
        files << QDir(folder).absoluteFilePath(name);
    {
        Shelf shelf;
        Shelf::settle(500);
        const qint64 empty = residentBytes();
        QStringList five;  // the photos again and again, each an item of its own
        for (int i = 0; i < kMemoryShelf; ++i) five << files[i % files.size()];
        shelf.dropAndWait(five);
        Shelf::settle(500);
        std::printf("memory_500 %.3f\n", static_cast<double>(residentBytes() - empty) / (1024.0 * 1024.0));
        std::printf("previews %zu\n", shelf.provider->previewCount());
    }
    std::fflush(stdout);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    if (args.size() == 4 && args[1] == QLatin1String("photos")) return writePhotos(args[2], args[3].toInt());
    if (args.size() == 3 && args[1] == QLatin1String("measure")) return measure(args[2]);
    if (args.size() == 3 && args[1] == QLatin1String("memory")) return measureMemory(args[2]);
    std::fprintf(stderr, "usage: preview_bench photos FOLDER COUNT | measure FOLDER\n");
    return 2;
}

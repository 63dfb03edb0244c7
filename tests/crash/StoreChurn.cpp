// The child of the crash-safety test: changes the shelf for ever, in random bursts and pauses
// so that debounced saves and flushes happen all the time, until it is killed. Item n is always
// added at the top and items leave from the bottom, so every shelf that ever existed is a run of
// consecutive numbers, highest first: that is what the parent checks the save file against.
#include <QCoreApplication>
#include <QRandomGenerator>
#include <QTimer>
#include <cstdio>

#include "model/DefaultsStore.h"
#include "model/Preferences.h"
#include "model/ShelfStore.h"
#include "platform/qt/QtScheduler.h"

using namespace mosswick;

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: store_churn SAVE_FILE\n");
        return 2;
    }
    QtScheduler scheduler;
    MemoryDefaultsStore defaults;
    Preferences preferences(defaults);
    preferences.setMaximumItemCount(40);
    ShelfStore store(preferences, scheduler, argv[1]);

    qint64 next = 1;
    auto* random = QRandomGenerator::global();
    std::function<void()> step = [&] {
        const auto roll = random->bounded(100);
        if (roll < 60 || store.items().empty()) {
            ShelfItem item;
            item.id = QUuid::createUuid();
            item.displayName = QString::number(next++);
            item.byteSize = random->bounded(1 << 30);
            store.add({item});
        } else if (roll < 95) {
            store.remove({store.items().back().id}, roll < 80);
        } else {
            store.flush();
        }
        QTimer::singleShot(random->bounded(2) ? random->bounded(30) : random->bounded(600), step);
    };
    step();
    std::fprintf(stdout, "churning\n");
    std::fflush(stdout);
    return app.exec();
}

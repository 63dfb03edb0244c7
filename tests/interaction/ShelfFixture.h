#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "shelf/ReducedMotion.h"
#include "model/AppFiles.h"
#include "model/DefaultsStore.h"
#include "model/Preferences.h"
#include "model/ShelfStore.h"
#include "shelf/DesktopMotionSetting.h"
#include "shelf/PanelWindowHints.h"
#include "support/ManualScheduler.h"
#include "support/TestFolders.h"

namespace mosswick::testing {

// The desktop's animation setting, switched by the test.
class SwitchableMotionSetting final : public DesktopMotionSetting {
public:
    bool reducesMotion() const override { return reduces; }
    bool reduces = true;
};

// A shelf store over a fresh save file and the manual clock, as it is once started. Animations are off unless
// a test turns them on (and then only looks at whether they run, never waits for them).
class ShelfFixture : public ::testing::Test {
protected:
    void SetUp() override {
        clearAppData();
        Scheduler::setShared(&clock);
        store = std::make_unique<ShelfStore>(preferences, clock, AppFiles::saveFile());
        clock.drain();  // the saved shelf (none) has arrived
    }
    void TearDown() override {
        store.reset();
        Scheduler::setShared(nullptr);
    }

    ReducedMotion motion() const { return ReducedMotion(preferences, desktopMotion); }

    static ShelfItem item(const QString& name, const QString& type = QStringLiteral("application/pdf"),
                          std::optional<QUuid> batch = std::nullopt) {
        ShelfItem made;
        made.id = QUuid::createUuid();
        made.displayName = name;
        made.contentTypeIdentifier = type;
        made.byteSize = 2500;
        made.batchID = batch;
        return made;
    }
    static std::vector<ShelfItem> batch(const QStringList& names,
                                        const QString& type = QStringLiteral("image/jpeg")) {
        const QUuid id = QUuid::createUuid();
        std::vector<ShelfItem> items;
        for (const QString& name : names) items.push_back(item(name, type, id));
        return items;
    }
    std::vector<QString> itemNames() const {
        std::vector<QString> names;
        for (const ShelfItem& stored : store->items()) names.push_back(stored.displayName);
        return names;
    }

    ManualScheduler clock;
    MemoryDefaultsStore defaults;
    Preferences preferences{defaults};
    SwitchableMotionSetting desktopMotion;
    NoPanelWindowHints windowHints;
    std::unique_ptr<ShelfStore> store;
};

}  // namespace mosswick::testing

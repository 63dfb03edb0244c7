#pragma once

#include <functional>
#include <optional>

#include "model/Scheduler.h"
#include "triggers/HotKeyService.h"
#include "triggers/KeyCombo.h"

namespace mosswick {

class DefaultsStore;

// The one global shortcut and what its presses mean: a tap toggles the shelf (once the double
// press window has passed), holding brings back the files removed last, two quick taps add the
// clipboard. Main thread only.
class HotKeyManager {
public:
    static constexpr double kLongPressDelay = 0.45;
    static constexpr double kDoublePressWindow = 0.3;

    // The service must outlive the manager.
    HotKeyManager(HotKeyService& service, Scheduler& scheduler, DefaultsStore& store);
    ~HotKeyManager();
    HotKeyManager(const HotKeyManager&) = delete;
    HotKeyManager& operator=(const HotKeyManager&) = delete;

    // The process-wide manager; one over a service that never delivers a key unless one was
    // installed first.
    static HotKeyManager& shared();
    static void setShared(HotKeyManager* manager);

    std::function<void()> onToggle = [] {};
    std::function<void()> onLongPress = [] {};
    std::function<void()> onDoublePress = [] {};
    // The desktop refused the registered combo only after registerCombo() returned (a portal's
    // late answer); the combo stays stored, as with a refusal at once.
    std::function<void(const KeyCombo& combo)> onLateRefusal = [](const KeyCombo&) {};

    // Replaces the shortcut and stores it, none included, so the stored shortcut is always the
    // registered one. A refusal by the desktop is logged; the combo stays stored.
    void registerCombo(std::optional<KeyCombo> combo);
    // At quit: gives the key back to the desktop but keeps the stored shortcut.
    void unregister();
    void cancelTimers();

    const std::optional<KeyCombo>& combo() const { return combo_; }
    bool isRegistered() const { return hotKeyRef_.has_value(); }

private:
    void installHandlerIfNeeded();
    void handle(HotKeyService::Event event);
    void handleLateFailure(HotKeyService::Handle handle, qint32 status);
    void handlePress();
    void handleRelease();
    void reportFailure(qint32 status) const;

    HotKeyService& service_;
    Scheduler& scheduler_;
    DefaultsStore& store_;
    std::optional<KeyCombo> combo_;
    std::optional<HotKeyService::Handle> hotKeyRef_;
    bool handlerInstalled_ = false;
    ScheduledTask longPressTimer_;
    ScheduledTask pendingSingleTimer_;
    bool longPressFired_ = false;
};

}  // namespace mosswick

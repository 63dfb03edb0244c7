#include "triggers/HotKeyManager.h"

#include "model/Preferences.h"
#include "triggers/DummyHotKeyService.h"
#include "triggers/SystemLog.h"

namespace mosswick {

namespace {
HotKeyManager* installed = nullptr;
}

HotKeyManager::HotKeyManager(HotKeyService& service, Scheduler& scheduler, DefaultsStore& store)
    : service_(service), scheduler_(scheduler), store_(store) {}

HotKeyManager::~HotKeyManager() {
    unregister();
    if (handlerInstalled_) service_.installHandler({}, {});
    if (installed == this) installed = nullptr;
}

HotKeyManager& HotKeyManager::shared() {
    if (!installed) {
        static DummyHotKeyService noShortcuts;
        static HotKeyManager fallback(noShortcuts, Scheduler::shared(), Preferences::shared().store());
        installed = &fallback;
    }
    return *installed;
}

void HotKeyManager::setShared(HotKeyManager* manager) { installed = manager; }

void HotKeyManager::registerCombo(std::optional<KeyCombo> combo) {
    unregister();
    combo_ = combo;
    KeyCombo::save(store_, combo_);
    if (!combo_) return;
    installHandlerIfNeeded();
    const HotKeyService::Registration registration = service_.registerHotKey(*combo_);
    if (registration.handle)
        hotKeyRef_ = registration.handle;
    else
        reportFailure(registration.status);
}

void HotKeyManager::unregister() {
    if (hotKeyRef_) service_.unregisterHotKey(*hotKeyRef_);
    hotKeyRef_.reset();
    cancelTimers();
}

void HotKeyManager::cancelTimers() {
    longPressTimer_.cancel();
    pendingSingleTimer_.cancel();
    longPressFired_ = false;
}

void HotKeyManager::installHandlerIfNeeded() {
    if (handlerInstalled_) return;
    handlerInstalled_ = true;
    service_.installHandler(
        [this](HotKeyService::Event event) { handle(event); },
        [this](HotKeyService::Handle handle, qint32 status) { handleLateFailure(handle, status); });
}

void HotKeyManager::handle(HotKeyService::Event event) {
    // There is only ever one shortcut, so whichever key arrives is it.
    if (event == HotKeyService::Event::pressed)
        handlePress();
    else
        handleRelease();
}

void HotKeyManager::handleLateFailure(HotKeyService::Handle handle, qint32 status) {
    if (hotKeyRef_ != handle) return;
    hotKeyRef_.reset();
    cancelTimers();
    reportFailure(status);
    // A copy: the callback may register another combo.
    if (const std::optional<KeyCombo> refused = combo_) onLateRefusal(*refused);
}

void HotKeyManager::reportFailure(qint32 status) const {
    SystemLog::warning(QStringLiteral("Mosswick: could not register shortcut %1 (OSStatus %2)")
                           .arg(combo_ ? combo_->displayString() : QString())
                           .arg(status));
}

void HotKeyManager::handlePress() {
    if (pendingSingleTimer_.isPending()) {
        // Second press within the window: this press's release must not count as a tap.
        pendingSingleTimer_.cancel();
        longPressFired_ = true;
        onDoublePress();
        return;
    }
    longPressFired_ = false;
    longPressTimer_ = scheduler_.after(kLongPressDelay, [this] {
        longPressFired_ = true;
        onLongPress();
    });
}

void HotKeyManager::handleRelease() {
    longPressTimer_.cancel();
    if (longPressFired_) {
        longPressFired_ = false;
        return;
    }
    pendingSingleTimer_ = scheduler_.after(kDoublePressWindow, [this] { onToggle(); });
}

}  // namespace mosswick

#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "triggers/HotKeyService.h"

namespace mosswick {

// One shortcut service that prefers the desktop's way of holding a key and falls back to
// another for good once the desktop turns out unable to (a refusal, at once or late, whose status
// `fallsBack` accepts): the combo is registered again on the fallback and the manager keeps its
// handle, never hearing of the switch. Any other refusal passes through. Main thread only.
class FallbackHotKeyService final : public HotKeyService {
public:
    FallbackHotKeyService(std::unique_ptr<HotKeyService> preferred, std::unique_ptr<HotKeyService> fallback,
                          std::function<bool(qint32 status)> fallsBack);
    ~FallbackHotKeyService() override;

    void installHandler(EventHandler events, FailureHandler lateFailures) override;
    Registration registerHotKey(const KeyCombo& combo) override;
    void unregisterHotKey(Handle handle) override;

    // Whether the preferred service is still the one in use.
    bool usesPreferred() const { return usesPreferred_; }
    // Called once, when the switch to the fallback happens.
    std::function<void()> onFallBack = [] {};

private:
    struct Entry {
        Handle outer;
        Handle inner;
        bool preferred;
        KeyCombo combo;
    };
    HotKeyService& current() { return usesPreferred_ ? *preferred_ : *fallback_; }
    void preferredRefused(Handle inner, qint32 status);
    void fallbackRefused(Handle inner, qint32 status);

    std::unique_ptr<HotKeyService> preferred_;
    std::unique_ptr<HotKeyService> fallback_;
    std::function<bool(qint32)> fallsBack_;
    bool usesPreferred_ = true;
    EventHandler events_;
    FailureHandler lateFailures_;
    std::vector<Entry> entries_;
    Handle lastHandle_ = 0;
};

}  // namespace mosswick

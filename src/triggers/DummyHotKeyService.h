#pragma once

#include "triggers/HotKeyService.h"

namespace mosswick {

// For sessions without a hot-key facility: every registration succeeds and no key ever arrives.
class DummyHotKeyService final : public HotKeyService {
public:
    void installHandler(EventHandler, FailureHandler) override {}
    Registration registerHotKey(const KeyCombo&) override { return {++lastHandle_, 0}; }
    void unregisterHotKey(Handle) override {}

private:
    Handle lastHandle_ = 0;
};

}  // namespace mosswick

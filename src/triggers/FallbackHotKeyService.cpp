#include "triggers/FallbackHotKeyService.h"

#include <algorithm>

namespace mosswick {

FallbackHotKeyService::FallbackHotKeyService(std::unique_ptr<HotKeyService> preferred,
                                             std::unique_ptr<HotKeyService> fallback,
                                             std::function<bool(qint32)> fallsBack)
    : preferred_(std::move(preferred)), fallback_(std::move(fallback)), fallsBack_(std::move(fallsBack)) {}

FallbackHotKeyService::~FallbackHotKeyService() {
    for (const Entry& entry : entries_)
        (entry.preferred ? *preferred_ : *fallback_).unregisterHotKey(entry.inner);
}

void FallbackHotKeyService::installHandler(EventHandler events, FailureHandler lateFailures) {
    events_ = std::move(events);
    lateFailures_ = std::move(lateFailures);
    const auto forward = [this](Event event) {
        if (events_) events_(event);
    };
    preferred_->installHandler(forward,
                               [this](Handle inner, qint32 status) { preferredRefused(inner, status); });
    fallback_->installHandler(forward,
                              [this](Handle inner, qint32 status) { fallbackRefused(inner, status); });
}

HotKeyService::Registration FallbackHotKeyService::registerHotKey(const KeyCombo& combo) {
    Registration registration = current().registerHotKey(combo);
    if (!registration.handle && usesPreferred_ && fallsBack_(registration.status)) {
        usesPreferred_ = false;
        onFallBack();
        registration = fallback_->registerHotKey(combo);
    }
    if (!registration.handle) return registration;
    entries_.push_back({++lastHandle_, *registration.handle, usesPreferred_, combo});
    return {lastHandle_, 0};
}

void FallbackHotKeyService::unregisterHotKey(Handle handle) {
    const auto entry = std::find_if(entries_.begin(), entries_.end(),
                                    [handle](const Entry& e) { return e.outer == handle; });
    if (entry == entries_.end()) return;
    (entry->preferred ? *preferred_ : *fallback_).unregisterHotKey(entry->inner);
    entries_.erase(entry);
}

void FallbackHotKeyService::preferredRefused(Handle inner, qint32 status) {
    const auto entry = std::find_if(entries_.begin(), entries_.end(),
                                    [inner](const Entry& e) { return e.preferred && e.inner == inner; });
    if (entry == entries_.end()) return;
    if (!fallsBack_(status)) {
        const Handle outer = entry->outer;
        entries_.erase(entry);
        if (lateFailures_) lateFailures_(outer, status);
        return;
    }
    const bool switching = usesPreferred_;
    usesPreferred_ = false;
    const Handle outer = entry->outer;
    const Registration again = fallback_->registerHotKey(entry->combo);
    // The registration may have moved the vector; find the entry again.
    const auto same =
        std::find_if(entries_.begin(), entries_.end(), [outer](const Entry& e) { return e.outer == outer; });
    if (again.handle) {
        same->inner = *again.handle;
        same->preferred = false;
    } else {
        entries_.erase(same);
    }
    if (switching) onFallBack();
    if (!again.handle && lateFailures_) lateFailures_(outer, again.status);
}

void FallbackHotKeyService::fallbackRefused(Handle inner, qint32 status) {
    const auto entry = std::find_if(entries_.begin(), entries_.end(),
                                    [inner](const Entry& e) { return !e.preferred && e.inner == inner; });
    if (entry == entries_.end()) return;
    const Handle outer = entry->outer;
    entries_.erase(entry);
    if (lateFailures_) lateFailures_(outer, status);
}

}  // namespace mosswick

#include "model/DefaultsStore.h"

namespace mosswick {

std::optional<DefaultsValue> MemoryDefaultsStore::value(const QString& key) const {
    const auto found = values_.find(key);
    if (found == values_.end()) return std::nullopt;
    return found->second;
}

void MemoryDefaultsStore::setValue(const QString& key, const DefaultsValue& value) {
    values_.insert_or_assign(key, value);
}

void MemoryDefaultsStore::remove(const QString& key) { values_.erase(key); }

}  // namespace mosswick

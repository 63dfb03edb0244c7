#include "model/DefaultsStore.h"

namespace mosswick {
std::optional<DefaultsValue> MemoryDefaultsStore::value(const QString&) const { return std::nullopt; }
void MemoryDefaultsStore::setValue(const QString&, const DefaultsValue&) {}
void MemoryDefaultsStore::remove(const QString&) {}
}  // namespace mosswick

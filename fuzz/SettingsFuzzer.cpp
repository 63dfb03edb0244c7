// The settings reader must take any bytes: whatever it keeps must be a stored type that writes
// back and reads again as the same value.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "model/JsonDefaultsStore.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using mosswick::JsonDefaultsStore;
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QJsonObject settings = JsonDefaultsStore::parse(bytes);
    for (auto it = settings.begin(); it != settings.end(); ++it) {
        const auto value = JsonDefaultsStore::decode(it.value());
        if (!value) std::abort();  // parse() keeps only members that decode
        const auto again = JsonDefaultsStore::decode(JsonDefaultsStore::encode(*value));
        if (!again || *again != *value) std::abort();
    }
    return 0;
}

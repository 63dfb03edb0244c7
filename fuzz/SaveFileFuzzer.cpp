// The save file decoder must take any bytes: a damaged shelf.json reads as nothing or as the
// items that decode, and what decodes must survive its own round trip unchanged.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "model/ShelfSaveFile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto items = mosswick::ShelfSaveFile::decode(bytes);
    if (!items) return 0;
    const auto again = mosswick::ShelfSaveFile::decode(mosswick::ShelfSaveFile::encode(*items));
    if (!again || *again != *items) std::abort();
    return 0;
}

#include "model/FileBookmark.h"

namespace mosswick::FileBookmark {
std::optional<QByteArray> create(const std::filesystem::path&) { return std::nullopt; }
std::optional<std::filesystem::path> resolve(const QByteArray&) { return std::nullopt; }
}  // namespace mosswick::FileBookmark

#include "model/ShelfItem.h"

namespace mosswick {
bool ShelfItem::operator==(const ShelfItem&) const { return false; }
QJsonObject ShelfItem::toJson() const { return {}; }
std::optional<ShelfItem> ShelfItem::fromJson(const QJsonValue&) { return std::nullopt; }
std::optional<QUrl> ShelfItem::reachableOriginURL() const { return std::nullopt; }
std::optional<QUrl> ShelfItem::dragURL() const { return std::nullopt; }
std::optional<QUrl> ShelfItem::previewURL() const { return std::nullopt; }
bool ShelfItem::isDirectory() const { return false; }
QString uuidString(const QUuid& id) { return id.toString(QUuid::WithoutBraces).toUpper(); }
std::optional<QUuid> parseUuid(const QString&) { return std::nullopt; }
}  // namespace mosswick

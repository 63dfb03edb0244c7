#include "model/JsonDefaultsStore.h"

namespace mosswick {
JsonDefaultsStore::JsonDefaultsStore(std::filesystem::path file) : file_(std::move(file)) {}
std::filesystem::path JsonDefaultsStore::defaultLocation() { return {}; }
QJsonObject JsonDefaultsStore::parse(const QByteArray&) { return {}; }
std::optional<DefaultsValue> JsonDefaultsStore::decode(const QJsonValue&) { return std::nullopt; }
QJsonValue JsonDefaultsStore::encode(const DefaultsValue&) { return {}; }
std::optional<DefaultsValue> JsonDefaultsStore::value(const QString&) const { return std::nullopt; }
void JsonDefaultsStore::setValue(const QString&, const DefaultsValue&) {}
void JsonDefaultsStore::remove(const QString&) {}
void JsonDefaultsStore::save() const {}
}  // namespace mosswick

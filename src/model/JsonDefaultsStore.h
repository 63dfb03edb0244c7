#pragma once

#include <QJsonObject>
#include <filesystem>

#include "model/DefaultsStore.h"

namespace mosswick {

// The settings file, "$XDG_CONFIG_HOME/Mosswick/settings.json": one JSON object whose members
// are the stored keys. Booleans, integers, doubles, strings and string arrays are JSON's own
// types; a byte blob is {"data": "<base64>"}. Read once at construction (a missing or corrupt
// file reads as empty), written atomically on every change.
class JsonDefaultsStore final : public DefaultsStore {
public:
    explicit JsonDefaultsStore(std::filesystem::path file);

    // "$XDG_CONFIG_HOME/Mosswick/settings.json".
    static std::filesystem::path defaultLocation();

    // Reads a settings document; members that are none of the stored types are left out.
    static QJsonObject parse(const QByteArray& bytes);
    static std::optional<DefaultsValue> decode(const QJsonValue& json);
    static QJsonValue encode(const DefaultsValue& value);

    std::optional<DefaultsValue> value(const QString& key) const override;
    void setValue(const QString& key, const DefaultsValue& value) override;
    void remove(const QString& key) override;

private:
    void save() const;

    std::filesystem::path file_;
    QJsonObject document_;
};

}  // namespace mosswick

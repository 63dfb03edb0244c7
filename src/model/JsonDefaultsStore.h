#pragma once

#include <QJsonObject>
#include <filesystem>

#include "model/DefaultsStore.h"

namespace mosswick {

// The settings file, "$XDG_CONFIG_HOME/Mosswick/settings.json": one JSON object whose members
// are the stored keys. Booleans, integers, doubles, strings and string arrays are JSON's own
// types; a byte blob is {"data": "<base64>"}. JSON does not tell 2.0 from 2, so a whole number
// in the 64-bit range always reads as an integer, whichever type it was stored as.
//
// Read once at construction; written atomically on every change. A missing file reads as empty.
// A file that cannot be read or parsed also reads as empty, and is moved aside (to
// "settings.json.corrupt", or ".corrupt.2" and on if that is taken) before the first write
// replaces it, so the user can still recover it by hand. Members of a type the store does not
// know are not values, but they stay in the file through later writes.
class JsonDefaultsStore final : public DefaultsStore {
public:
    explicit JsonDefaultsStore(std::filesystem::path file);

    // "$XDG_CONFIG_HOME/Mosswick/settings.json".
    static std::filesystem::path defaultLocation();

    // Reads a settings document; members that are none of the stored types are left out.
    static QJsonObject parse(const QByteArray& bytes);
    static std::optional<DefaultsValue> decode(const QJsonValue& json);
    // Null for a value JSON cannot hold (a double that is not finite).
    static QJsonValue encode(const DefaultsValue& value);

    std::optional<DefaultsValue> value(const QString& key) const override;
    void setValue(const QString& key, const DefaultsValue& value) override;
    void remove(const QString& key) override;

private:
    void load();
    bool setAsideUnreadableFile();
    void save();

    std::filesystem::path file_;
    // Every member of the file as read, unknown ones included, so a write never drops them.
    QJsonObject document_;
    bool mustSetAside_ = false;
};

}  // namespace mosswick

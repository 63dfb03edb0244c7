#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <map>
#include <optional>
#include <variant>

namespace mosswick {

// One stored setting. The store keeps each value's type: a boolean stays a boolean, a number
// an integer, and so on, so a reader can tell a mistyped value from a good one.
using DefaultsValue = std::variant<bool, qint64, double, QString, QStringList, QByteArray>;

// The per-user key-value store behind Preferences and the shortcut. A key is absent until it is
// first set.
class DefaultsStore {
public:
    virtual ~DefaultsStore() = default;
    virtual std::optional<DefaultsValue> value(const QString& key) const = 0;
    virtual void setValue(const QString& key, const DefaultsValue& value) = 0;
    virtual void remove(const QString& key) = 0;
};

// A store in memory, for tests and for runs that must not touch the user's settings.
class MemoryDefaultsStore final : public DefaultsStore {
public:
    std::optional<DefaultsValue> value(const QString& key) const override;
    void setValue(const QString& key, const DefaultsValue& value) override;
    void remove(const QString& key) override;

private:
    std::map<QString, DefaultsValue> values_;
};

}  // namespace mosswick

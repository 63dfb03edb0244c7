#include "triggers/KeyCombo.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>
#include <limits>

#include "model/DefaultsStore.h"
#include "triggers/KeyCodeNames.h"

namespace mosswick {

namespace {

// A JSON number that is a whole number within [0, max]; doubles hold integers exactly only up to
// 2^53, which is far beyond any stored value.
std::optional<quint64> wholeNumber(const QJsonValue& value, double max) {
    if (!value.isDouble()) return std::nullopt;
    const double number = value.toDouble();
    if (number < 0 || number > max || std::floor(number) != number) return std::nullopt;
    return static_cast<quint64>(number);
}

}  // namespace

QString KeyCombo::displayString() const {
    QString text;
    if (modifierFlags & kControl) text += QStringLiteral("Ctrl+");
    if (modifierFlags & kOption) text += QStringLiteral("Alt+");
    if (modifierFlags & kShift) text += QStringLiteral("Shift+");
    if (modifierFlags & kCommand) text += QStringLiteral("Super+");
    return text + KeyCodeNames::name(keyCode);
}

QByteArray KeyCombo::encode(const KeyCombo& combo) {
    const QJsonObject object{{QStringLiteral("keyCode"), combo.keyCode},
                             {QStringLiteral("modifierFlags"), static_cast<qint64>(combo.modifierFlags)}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

std::optional<KeyCombo> KeyCombo::decode(const QByteArray& data) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(data, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) return std::nullopt;
    const QJsonObject object = document.object();
    const auto keyCode =
        wholeNumber(object.value(QStringLiteral("keyCode")), std::numeric_limits<quint16>::max());
    const auto flags = wholeNumber(object.value(QStringLiteral("modifierFlags")), 0x1p53);
    if (!keyCode || !flags) return std::nullopt;
    return KeyCombo{static_cast<quint16>(*keyCode), *flags};
}

std::optional<KeyCombo> KeyCombo::load(const DefaultsStore& store) {
    const std::optional<DefaultsValue> stored = store.value(kDefaultsKey);
    if (!stored) return KeyCombo{kF5, 0};
    const QByteArray* data = std::get_if<QByteArray>(&*stored);
    if (!data || data->isEmpty()) return std::nullopt;
    return decode(*data);
}

void KeyCombo::save(DefaultsStore& store, const std::optional<KeyCombo>& combo) {
    store.setValue(kDefaultsKey, combo ? encode(*combo) : QByteArray());
}

}  // namespace mosswick

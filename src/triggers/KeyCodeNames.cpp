#include "triggers/KeyCodeNames.h"

#include "triggers/EvdevKeyCodes.h"
#include "triggers/KeyboardLayout.h"

namespace mosswick::KeyCodeNames {

namespace {

struct SpecialName {
    quint16 keyCode;
    const char* name;
};

constexpr SpecialName kSpecial[] = {
    {122, "F1"},  {120, "F2"},  {99, "F3"},   {118, "F4"},   {96, "F5"},   {97, "F6"},
    {98, "F7"},   {100, "F8"},  {101, "F9"},  {109, "F10"},  {103, "F11"}, {111, "F12"},
    {105, "F13"}, {107, "F14"}, {113, "F15"}, {49, "Space"}, {36, "↩"},    {48, "⇥"},
    {53, "⎋"},    {51, "⌫"},    {117, "⌦"},   {115, "↖"},    {119, "↘"},   {116, "⇞"},
    {121, "⇟"},   {123, "←"},   {124, "→"},   {126, "↑"},    {125, "↓"},
};

std::optional<QString> printableName(quint16 keyCode, const KeyboardLayout& layout) {
    const std::optional<quint32> evdev = EvdevKeyCodes::toEvdev(keyCode);
    if (!evdev) return std::nullopt;
    const std::optional<QString> character = layout.character(*evdev);
    if (!character || character->isEmpty()) return std::nullopt;
    for (const QChar c : *character)
        if (!c.isPrint() && !c.isSurrogate()) return std::nullopt;
    return character->toUpper();
}

}  // namespace

std::optional<QString> special(quint16 keyCode) {
    for (const SpecialName& entry : kSpecial)
        if (entry.keyCode == keyCode) return QString::fromUtf8(entry.name);
    return std::nullopt;
}

std::optional<QString> symbol(quint16 keyCode, const KeyboardLayout& layout) {
    if (const std::optional<quint32> evdev = EvdevKeyCodes::toEvdev(keyCode))
        if (std::optional<QString> named = layout.symbolName(*evdev); named && !named->isEmpty())
            return named;
    const QString fixed = special(keyCode).value_or(QString());
    if (fixed == QLatin1String("Space")) return QStringLiteral("space");
    if (fixed.startsWith(u'F') && fixed.size() > 1 && fixed.at(1).isDigit()) return fixed;
    return std::nullopt;
}

QString name(quint16 keyCode) { return name(keyCode, KeyboardLayout::shared()); }

QString name(quint16 keyCode, const KeyboardLayout& layout) {
    if (auto fixed = special(keyCode)) return *fixed;
    if (auto printable = printableName(keyCode, layout)) return *printable;
    return QStringLiteral("Key %1").arg(keyCode);
}

}  // namespace mosswick::KeyCodeNames

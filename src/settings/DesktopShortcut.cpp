#include "settings/DesktopShortcut.h"

#include <QKeySequence>

#include "triggers/EvdevKeyCodes.h"
#include "triggers/KeyCodeNames.h"
#include "triggers/KeyboardLayout.h"

namespace mosswick {

namespace DesktopShortcuts {

namespace {

struct NamedKey {
    const char* symbol;
    Qt::Key key;
};

// Keys without a character, by their X keysym name.
constexpr NamedKey kNamedKeys[] = {
    {"space", Qt::Key_Space},    {"Return", Qt::Key_Return},
    {"KP_Enter", Qt::Key_Enter}, {"Tab", Qt::Key_Tab},
    {"Escape", Qt::Key_Escape},  {"BackSpace", Qt::Key_Backspace},
    {"Delete", Qt::Key_Delete},  {"Insert", Qt::Key_Insert},
    {"Home", Qt::Key_Home},      {"End", Qt::Key_End},
    {"Prior", Qt::Key_PageUp},   {"Page_Up", Qt::Key_PageUp},
    {"Next", Qt::Key_PageDown},  {"Page_Down", Qt::Key_PageDown},
    {"Left", Qt::Key_Left},      {"Right", Qt::Key_Right},
    {"Up", Qt::Key_Up},          {"Down", Qt::Key_Down},
    {"Print", Qt::Key_Print},    {"Pause", Qt::Key_Pause},
    {"Menu", Qt::Key_Menu},
};

std::optional<Qt::Key> keyNamed(const QString& symbol) {
    for (const NamedKey& named : kNamedKeys)
        if (symbol == QLatin1String(named.symbol)) return named.key;
    if (symbol.size() >= 2 && symbol.at(0) == u'F') {
        bool number = false;
        const int n = symbol.mid(1).toInt(&number);
        if (number && n >= 1 && n <= 35) return static_cast<Qt::Key>(Qt::Key_F1 + n - 1);
    }
    return std::nullopt;
}

bool isPlainPathCharacter(QChar c) {
    static const QString plain =
        QStringLiteral("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._-+,@=:");
    return plain.contains(c);
}

}  // namespace

std::optional<QString> gnomeAccelerator(const KeyCombo& combo, const KeyboardLayout& layout) {
    const std::optional<QString> key = KeyCodeNames::symbol(combo.keyCode, layout);
    if (!key) return std::nullopt;
    QString accelerator;
    if (combo.modifierFlags & KeyCombo::kControl) accelerator += QStringLiteral("<Control>");
    if (combo.modifierFlags & KeyCombo::kOption) accelerator += QStringLiteral("<Alt>");
    if (combo.modifierFlags & KeyCombo::kShift) accelerator += QStringLiteral("<Shift>");
    if (combo.modifierFlags & KeyCombo::kCommand) accelerator += QStringLiteral("<Super>");
    return accelerator + *key;
}

std::optional<QKeyCombination> qtKey(const KeyCombo& combo, const KeyboardLayout& layout) {
    std::optional<Qt::Key> key;
    const std::optional<QString> symbol = KeyCodeNames::symbol(combo.keyCode, layout);
    if (symbol) key = keyNamed(*symbol);
    if (!key) {
        // A key that types one character is that character's key in Qt (upper case for letters).
        const std::optional<quint32> evdev = EvdevKeyCodes::toEvdev(combo.keyCode);
        const QString character = evdev ? layout.character(*evdev).value_or(QString()) : QString();
        const QList<uint> points = character.toUcs4();
        if (points.size() == 1 && QChar::isPrint(points.front()) && !QChar::isSpace(points.front()))
            key = static_cast<Qt::Key>(QChar::toUpper(points.front()));
    }
    if (!key) return std::nullopt;
    Qt::KeyboardModifiers modifiers;
    if (combo.modifierFlags & KeyCombo::kControl) modifiers |= Qt::ControlModifier;
    if (combo.modifierFlags & KeyCombo::kOption) modifiers |= Qt::AltModifier;
    if (combo.modifierFlags & KeyCombo::kShift) modifiers |= Qt::ShiftModifier;
    if (combo.modifierFlags & KeyCombo::kCommand) modifiers |= Qt::MetaModifier;
    return QKeyCombination(modifiers, *key);
}

QString commandLine(const QString& executable) {
    bool plain = !executable.isEmpty();
    for (const QChar c : executable) plain = plain && isPlainPathCharacter(c);
    QString program = executable;
    if (!plain) program = QStringLiteral("'%1'").arg(program.replace(u'\'', QStringLiteral("'\\''")));
    return program + u' ' + kToggleArgument;
}

QString gvariantString(const QString& text) {
    QString quoted = QStringLiteral("'");
    for (const QChar c : text) {
        if (c == u'\\' || c == u'\'')
            quoted.append(u'\\').append(c);
        else if (c == u'\n')
            quoted.append(QStringLiteral("\\n"));
        else if (c.unicode() < 0x20 || c.unicode() == 0x7f)
            quoted.append(QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0')));
        else
            quoted.append(c);
    }
    return quoted.append(u'\'');
}

QString gvariantStringArray(const QStringList& list) {
    QStringList items;
    for (const QString& item : list) items << gvariantString(item);
    return u'[' + items.join(QStringLiteral(", ")) + u']';
}

std::optional<QStringList> parseGVariantStringArray(const QString& input) {
    QString text = input.trimmed();
    // An empty array carries its type ("@as []").
    if (text.startsWith(QLatin1String("@as"))) text = text.mid(3).trimmed();
    if (!text.startsWith(u'[') || !text.endsWith(u']')) return std::nullopt;
    QStringList list;
    qsizetype i = 1;
    const qsizetype end = text.size() - 1;
    const auto skipSpace = [&] {
        while (i < end && text.at(i).isSpace()) ++i;
    };
    skipSpace();
    if (i == end) return list;
    while (true) {
        if (i >= end) return std::nullopt;
        const QChar quote = text.at(i);
        if (quote != u'\'' && quote != u'"') return std::nullopt;
        QString item;
        for (++i;; ++i) {
            if (i >= end) return std::nullopt;
            const QChar c = text.at(i);
            if (c == quote) break;
            if (c != u'\\') {
                item += c;
                continue;
            }
            if (++i >= end) return std::nullopt;
            const QChar escaped = text.at(i);
            if (escaped == u'n')
                item += u'\n';
            else if (escaped == u't')
                item += u'\t';
            else if (escaped == u'u' || escaped == u'U') {
                const int digits = escaped == u'u' ? 4 : 8;
                bool ok = false;
                const uint point = text.mid(i + 1, digits).toUInt(&ok, 16);
                if (!ok || i + digits >= end) return std::nullopt;
                const char32_t character = point;
                item += QString::fromUcs4(&character, 1);
                i += digits;
            } else {
                item += escaped;
            }
        }
        list << item;
        ++i;
        skipSpace();
        if (i == end) return list;
        if (text.at(i) != u',') return std::nullopt;
        ++i;
        skipSpace();
    }
}

QStringList withEntry(QStringList paths, const QString& path) {
    if (!paths.contains(path)) paths << path;
    return paths;
}

}  // namespace DesktopShortcuts

DesktopShortcutOffer::DesktopShortcutOffer(DesktopSession session, DesktopShortcutStore* store,
                                           std::function<bool()> desktopHoldsShortcut, QString executable)
    : session_(session),
      store_(store),
      desktopHoldsShortcut_(std::move(desktopHoldsShortcut)),
      executable_(std::move(executable)) {}

QString DesktopShortcutOffer::desktopName() const {
    return session_ == DesktopSession::KdeWayland ? QStringLiteral("KDE") : QStringLiteral("GNOME");
}

bool DesktopShortcutOffer::isOffered() const {
    const bool desktopWithStore =
        session_ == DesktopSession::GnomeWayland || session_ == DesktopSession::KdeWayland;
    return desktopWithStore && store_ && !(desktopHoldsShortcut_ && desktopHoldsShortcut_());
}

QString DesktopShortcutOffer::buttonTitle() const {
    return session_ == DesktopSession::KdeWayland ? QStringLiteral("Add to &KDE Global Shortcuts")
                                                  : QStringLiteral("Add to GNOME &Keyboard Shortcuts");
}

QString DesktopShortcutOffer::explanation() const {
    return QStringLiteral(
               "On Wayland, %1 keeps keys to itself: Mosswick hears the shortcut only while one of its "
               "own windows is in front. Add it to %1's shortcuts to toggle the shelf from anywhere. "
               "If you change the shortcut, add it again.")
        .arg(desktopName());
}

void DesktopShortcutOffer::noShortcut() {
    failed_ = true;
    result_ = QStringLiteral("There is no shortcut to add: record one above first.");
}

void DesktopShortcutOffer::add(const KeyCombo& combo) {
    const QString failure =
        store_ ? store_->save({QStringLiteral("Mosswick: Toggle the Shelf"), executable_, combo})
               : QStringLiteral("this desktop has no shortcut settings Mosswick knows");
    failed_ = !failure.isEmpty();
    result_ = failed_ ? QStringLiteral("Couldn't add the shortcut: %1").arg(failure)
                      : QStringLiteral("Added to %1's shortcuts: %2 now toggles the shelf from anywhere.")
                            .arg(desktopName(), combo.displayString());
}

}  // namespace mosswick

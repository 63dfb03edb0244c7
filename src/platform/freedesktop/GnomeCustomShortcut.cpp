#include "platform/freedesktop/GnomeCustomShortcut.h"

#include "platform/freedesktop/DesktopShortcutPrograms.h"

namespace mosswick {

namespace {

const QString kGsettings = QStringLiteral("gsettings");

QString entrySchema() { return GnomeCustomShortcut::kEntrySchema + u':' + GnomeCustomShortcut::kEntryPath; }

}  // namespace

GnomeCustomShortcut::GnomeCustomShortcut(const KeyboardLayout& layout) : layout_(layout) {}

QString GnomeCustomShortcut::save(const DesktopShortcut& shortcut) {
    const std::optional<QString> binding = DesktopShortcuts::gnomeAccelerator(shortcut.combo, layout_);
    if (!binding)
        return QStringLiteral("GNOME has no name for the key of %1").arg(shortcut.combo.displayString());

    const ProgramRun list = ProgramRun::run(kGsettings, {QStringLiteral("get"), kSchema, kListKey});
    if (!list.ok) return list.failure;
    const std::optional<QStringList> paths = DesktopShortcuts::parseGVariantStringArray(list.output);
    // Never write back a list we could not read: the user's own shortcuts are in it.
    if (!paths)
        return QStringLiteral("GNOME's list of custom shortcuts could not be read (%1)").arg(list.output);

    const std::pair<QString, QString> fields[] = {
        {QStringLiteral("name"), shortcut.name},
        {QStringLiteral("command"), DesktopShortcuts::commandLine(shortcut.executable)},
        {QStringLiteral("binding"), *binding},
    };
    for (const auto& [key, value] : fields) {
        const ProgramRun set = ProgramRun::run(
            kGsettings, {QStringLiteral("set"), entrySchema(), key, DesktopShortcuts::gvariantString(value)});
        if (!set.ok) return set.failure;
    }
    if (!paths->contains(kEntryPath)) {
        const ProgramRun set = ProgramRun::run(
            kGsettings,
            {QStringLiteral("set"), kSchema, kListKey,
             DesktopShortcuts::gvariantStringArray(DesktopShortcuts::withEntry(*paths, kEntryPath))});
        if (!set.ok) return set.failure;
    }

    // Without a settings service gsettings writes to memory and forgets at once, saying nothing.
    const ProgramRun kept =
        ProgramRun::run(kGsettings, {QStringLiteral("get"), entrySchema(), QStringLiteral("binding")});
    const ProgramRun listed = ProgramRun::run(kGsettings, {QStringLiteral("get"), kSchema, kListKey});
    const std::optional<QStringList> after =
        listed.ok ? DesktopShortcuts::parseGVariantStringArray(listed.output) : std::nullopt;
    if (!kept.ok || kept.output != DesktopShortcuts::gvariantString(*binding) || !after ||
        !after->contains(kEntryPath))
        return QStringLiteral("GNOME's settings did not keep it (is dconf running?)");
    return {};
}

}  // namespace mosswick

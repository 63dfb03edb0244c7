#include "triggers/IgnoredApplications.h"

namespace mosswick {

namespace {

QStringView withoutDesktopSuffix(QStringView id) {
    if (id.endsWith(u".desktop", Qt::CaseInsensitive)) id.chop(8);
    return id;
}

char16_t asciiLower(char16_t c) { return c >= u'A' && c <= u'Z' ? c + (u'a' - u'A') : c; }

bool anyMatches(const QStringList& ignored, QStringView id) {
    if (id.isEmpty()) return false;
    for (const QString& entry : ignored)
        if (IgnoredApplications::sameDesktopId(entry, id)) return true;
    return false;
}

}  // namespace

bool IgnoredApplications::sameDesktopId(QStringView a, QStringView b) {
    a = withoutDesktopSuffix(a);
    b = withoutDesktopSuffix(b);
    if (a.isEmpty() || a.size() != b.size()) return false;
    for (qsizetype i = 0; i < a.size(); ++i)
        if (asciiLower(a[i].unicode()) != asciiLower(b[i].unicode())) return false;
    return true;
}

bool IgnoredApplications::includes(const QStringList& ignored, const FrontmostApplication& frontmost,
                                   InstalledApplications& installed) {
    if (ignored.isEmpty()) return false;
    // A bare window class is often the desktop file's name in other capitals ("Firefox-esr").
    if (anyMatches(ignored, frontmost.applicationId) || anyMatches(ignored, frontmost.windowClass))
        return true;
    if (frontmost.windowClass.isEmpty()) return false;
    // StartupWMClass is meant to be compared as written; only the entry's id is loose.
    for (const WindowClassEntry& entry : installed.windowClassEntries())
        if (entry.windowClass == frontmost.windowClass && anyMatches(ignored, entry.desktopId)) return true;
    return false;
}

}  // namespace mosswick

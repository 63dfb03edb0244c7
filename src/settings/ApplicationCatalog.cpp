#include "settings/ApplicationCatalog.h"

#include <algorithm>

#include "triggers/IgnoredApplications.h"

namespace mosswick::ApplicationChoices {

namespace {

bool contains(const QStringList& ids, const QString& id) {
    return std::any_of(ids.begin(), ids.end(),
                       [&id](const QString& other) { return IgnoredApplications::sameDesktopId(other, id); });
}

// Lower case without accents, so "e" finds "É".
QString folded(const QString& text) {
    QString plain;
    for (const QChar c : text.normalized(QString::NormalizationForm_D))
        if (c.category() != QChar::Mark_NonSpacing) plain += c.toCaseFolded();
    return plain;
}

}  // namespace

std::vector<IgnoredApplicationRow> rows(const QStringList& ignored,
                                        const std::vector<InstalledApplication>& installed) {
    std::vector<IgnoredApplicationRow> result;
    for (const QString& id : ignored) {
        const auto found =
            std::find_if(installed.begin(), installed.end(), [&id](const InstalledApplication& app) {
                return IgnoredApplications::sameDesktopId(app.desktopId, id);
            });
        if (found != installed.end())
            result.push_back({id, found->name, found->iconName, true});
        else
            result.push_back({id, id, {}, false});
    }
    return result;
}

std::vector<InstalledApplication> offered(const std::vector<InstalledApplication>& installed,
                                          const QStringList& ignored, const QString& filter) {
    const QString needle = folded(filter.trimmed());
    std::vector<InstalledApplication> result;
    for (const InstalledApplication& app : installed) {
        if (contains(ignored, app.desktopId)) continue;
        if (!needle.isEmpty() && !folded(app.name).contains(needle) &&
            !folded(app.desktopId).contains(needle))
            continue;
        result.push_back(app);
    }
    std::stable_sort(result.begin(), result.end(),
                     [](const InstalledApplication& a, const InstalledApplication& b) {
                         // Accents and case aside, so the order does not hang on the session's locale.
                         return std::pair(folded(a.name), a.name) < std::pair(folded(b.name), b.name);
                     });
    return result;
}

QStringList adding(const QStringList& ignored, const QStringList& ids) {
    QStringList result = ignored;
    for (const QString& id : ids)
        if (!contains(result, id)) result << id;
    return result;
}

}  // namespace mosswick::ApplicationChoices

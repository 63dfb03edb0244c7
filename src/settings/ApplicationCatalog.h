#pragma once

#include <QString>
#include <QStringList>
#include <vector>

namespace mosswick {

// An installed application as the ignore list shows it.
struct InstalledApplication {
    QString desktopId;  // the desktop entry's file id, without ".desktop"
    QString name;
    QString iconName;  // an icon-theme name or an absolute path; may be empty

    bool operator==(const InstalledApplication&) const = default;
};

// The applications the user could pick: the desktop entries meant to be shown in menus.
class ApplicationCatalog {
public:
    virtual ~ApplicationCatalog() = default;
    virtual std::vector<InstalledApplication> applications() = 0;
};

// A row of the ignore list: the stored id with what is known of its application. An id whose
// application was uninstalled still has a row (named by its id) so it can be removed.
struct IgnoredApplicationRow {
    QString storedId;
    QString name;
    QString iconName;
    bool installed = false;

    bool operator==(const IgnoredApplicationRow&) const = default;
};

namespace ApplicationChoices {

std::vector<IgnoredApplicationRow> rows(const QStringList& ignored,
                                        const std::vector<InstalledApplication>& installed);
// The applications the add dialog offers: not ignored already, matching the filter by name or
// id (case and accents aside), sorted by name.
std::vector<InstalledApplication> offered(const std::vector<InstalledApplication>& installed,
                                          const QStringList& ignored, const QString& filter);
// The ignore list with these ids added; one already there (by the same desktop-file id) is not
// added twice.
QStringList adding(const QStringList& ignored, const QStringList& ids);

}  // namespace ApplicationChoices

}  // namespace mosswick

#pragma once

#include <QDialog>
#include <QWidget>

#include "settings/ApplicationCatalog.h"

class QLineEdit;
class QListWidget;
class QPushButton;
class QToolButton;

namespace mosswick {

class Preferences;

// The installed applications to pick from: a filter field over a list of names and icons, and
// "Ignore" to confirm. Several may be picked at once.
class ApplicationPicker final : public QDialog {
    Q_OBJECT

public:
    ApplicationPicker(std::vector<InstalledApplication> installed, QStringList ignored, QWidget* parent);
    QStringList chosenIds() const;

private:
    void fill();

    const std::vector<InstalledApplication> installed_;
    const QStringList ignored_;
    QLineEdit* filter_;
    QListWidget* list_;
    QPushButton* ignore_;
};

// The ignore list of the Behavior pane, bound to ignoredApplications: a row per stored id, with
// "+" to pick applications and "−" to remove the selected rows.
class IgnoredApplicationsView final : public QWidget {
    Q_OBJECT

public:
    IgnoredApplicationsView(Preferences& preferences, ApplicationCatalog& catalog, QWidget* parent = nullptr);
    // Shows the stored ids with what was last read of the installed applications.
    void refresh();
    // Reads the installed applications again, then refreshes.
    void reread();
    QListWidget* list() const { return list_; }

private:
    void add();
    void removeSelected();

    Preferences& preferences_;
    ApplicationCatalog& catalog_;
    std::vector<InstalledApplication> installed_;
    QListWidget* list_;
    QToolButton* add_;
    QToolButton* remove_;
};

// An application's icon: a theme name or a file, else the generic application icon.
QIcon applicationIcon(const QString& iconName);

}  // namespace mosswick

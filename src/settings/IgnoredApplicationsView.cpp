#include "settings/IgnoredApplicationsView.h"

#include <QDialogButtonBox>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QToolButton>
#include <QVBoxLayout>

#include "model/Preferences.h"

namespace mosswick {

namespace {
constexpr int kIdRole = Qt::UserRole;
}

QIcon applicationIcon(const QString& iconName) {
    const QIcon fallback = QIcon::fromTheme(QStringLiteral("application-x-executable"));
    if (iconName.isEmpty()) return fallback;
    if (QFileInfo(iconName).isAbsolute()) return QFileInfo::exists(iconName) ? QIcon(iconName) : fallback;
    return QIcon::fromTheme(iconName, fallback);
}

ApplicationPicker::ApplicationPicker(std::vector<InstalledApplication> installed, QStringList ignored,
                                     QWidget* parent)
    : QDialog(parent),
      installed_(std::move(installed)),
      ignored_(std::move(ignored)),
      filter_(new QLineEdit(this)),
      list_(new QListWidget(this)) {
    setWindowTitle(QStringLiteral("Ignore Applications"));
    setObjectName(QStringLiteral("applicationPicker"));
    filter_->setPlaceholderText(QStringLiteral("Filter"));
    filter_->setClearButtonEnabled(true);
    list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list_->setIconSize(QSize(24, 24));
    list_->setUniformItemSizes(true);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    ignore_ = buttons->addButton(QStringLiteral("Ignore"), QDialogButtonBox::AcceptRole);
    ignore_->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(filter_, &QLineEdit::textChanged, this, &ApplicationPicker::fill);
    connect(list_, &QListWidget::itemSelectionChanged, this,
            [this] { ignore_->setEnabled(!list_->selectedItems().isEmpty()); });
    connect(list_, &QListWidget::itemActivated, this, &QDialog::accept);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(filter_);
    layout->addWidget(list_, 1);
    layout->addWidget(buttons);
    resize(380, 440);
    fill();
    filter_->setFocus();
}

void ApplicationPicker::fill() {
    list_->clear();
    for (const InstalledApplication& app :
         ApplicationChoices::offered(installed_, ignored_, filter_->text())) {
        auto* item = new QListWidgetItem(applicationIcon(app.iconName), app.name, list_);
        item->setData(kIdRole, app.desktopId);
        item->setToolTip(app.desktopId);
    }
    // Typing a filter then Return picks the one application it leaves.
    if (list_->count() > 0) list_->setCurrentRow(0);
    ignore_->setEnabled(!list_->selectedItems().isEmpty());
}

QStringList ApplicationPicker::chosenIds() const {
    QStringList ids;
    for (const QListWidgetItem* item : list_->selectedItems()) ids << item->data(kIdRole).toString();
    return ids;
}

IgnoredApplicationsView::IgnoredApplicationsView(Preferences& preferences, ApplicationCatalog& catalog,
                                                 QWidget* parent)
    : QWidget(parent),
      preferences_(preferences),
      catalog_(catalog),
      list_(new QListWidget(this)),
      add_(new QToolButton(this)),
      remove_(new QToolButton(this)) {
    list_->setObjectName(QStringLiteral("ignoredApplications"));
    list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list_->setIconSize(QSize(20, 20));
    list_->setMinimumHeight(96);
    list_->setMaximumHeight(140);
    add_->setText(QStringLiteral("+"));
    add_->setToolTip(QStringLiteral("Add an application"));
    add_->setAccessibleName(QStringLiteral("Add an application"));
    remove_->setText(QStringLiteral("−"));
    remove_->setToolTip(QStringLiteral("Remove the selected applications"));
    remove_->setAccessibleName(QStringLiteral("Remove the selected applications"));

    auto* buttons = new QHBoxLayout;
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->setSpacing(2);
    buttons->addWidget(add_);
    buttons->addWidget(remove_);
    buttons->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(list_);
    layout->addLayout(buttons);

    connect(add_, &QToolButton::clicked, this, &IgnoredApplicationsView::add);
    connect(remove_, &QToolButton::clicked, this, &IgnoredApplicationsView::removeSelected);
    connect(list_, &QListWidget::itemSelectionChanged, this,
            [this] { remove_->setEnabled(!list_->selectedItems().isEmpty()); });
    auto* deleteKey = new QShortcut(QKeySequence::Delete, list_, nullptr, nullptr, Qt::WidgetShortcut);
    connect(deleteKey, &QShortcut::activated, this, &IgnoredApplicationsView::removeSelected);
    reread();
}

void IgnoredApplicationsView::reread() {
    installed_ = catalog_.applications();
    refresh();
}

void IgnoredApplicationsView::refresh() {
    list_->clear();
    for (const IgnoredApplicationRow& row :
         ApplicationChoices::rows(preferences_.ignoredApplications(), installed_)) {
        auto* item = new QListWidgetItem(applicationIcon(row.iconName), row.name, list_);
        item->setData(kIdRole, row.storedId);
        item->setToolTip(row.installed ? row.storedId
                                       : QStringLiteral("%1 (not installed)").arg(row.storedId));
    }
    remove_->setEnabled(false);
}

void IgnoredApplicationsView::add() {
    installed_ = catalog_.applications();
    ApplicationPicker picker(installed_, preferences_.ignoredApplications(), window());
    if (picker.exec() != QDialog::Accepted) return;
    const QStringList ids = picker.chosenIds();
    if (ids.isEmpty()) return;
    preferences_.setIgnoredApplications(ApplicationChoices::adding(preferences_.ignoredApplications(), ids));
}

void IgnoredApplicationsView::removeSelected() {
    QStringList remaining = preferences_.ignoredApplications();
    for (const QListWidgetItem* item : list_->selectedItems())
        remaining.removeOne(item->data(kIdRole).toString());
    preferences_.setIgnoredApplications(remaining);
}

}  // namespace mosswick

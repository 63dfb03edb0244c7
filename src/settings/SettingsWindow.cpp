#include "settings/SettingsWindow.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QCursor>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPixmap>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QSpinBox>
#include <QStackedWidget>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>

#include "model/DefaultsStore.h"
#include "model/Preferences.h"
#include "triggers/HotKeyManager.h"
#include "settings/DesktopShortcut.h"
#include "settings/IgnoredApplicationsView.h"
#include "settings/PaneState.h"
#include "settings/ShortcutRecorderView.h"

namespace mosswick {

namespace {

constexpr int kSidebarWidth = 168;
constexpr int kFormWidth = 520;

QIcon themeIcon(const QStringList& names, QStyle::StandardPixmap fallback) {
    for (const QString& name : names) {
        if (QIcon::hasThemeIcon(name)) return QIcon::fromTheme(name);
        const QString symbolic = name + QStringLiteral("-symbolic");
        if (QIcon::hasThemeIcon(symbolic)) return QIcon::fromTheme(symbolic);
    }
    return QApplication::style()->standardIcon(fallback);
}

QStyle::StandardPixmap fallbackPixmap(SettingsPane pane) {
    switch (pane) {
        case SettingsPane::general:
            return QStyle::SP_ComputerIcon;
        case SettingsPane::behavior:
            return QStyle::SP_ArrowRight;
        case SettingsPane::window:
            return QStyle::SP_TitleBarNormalButton;
        case SettingsPane::advanced:
            return QStyle::SP_FileDialogDetailedView;
        case SettingsPane::about:
            return QStyle::SP_MessageBoxInformation;
    }
    return QStyle::SP_ComputerIcon;
}

// The desktop's font at another size; a font given in pixels keeps its unit.
QFont scaled(QFont font, double factor) {
    if (font.pointSizeF() > 0)
        font.setPointSizeF(font.pointSizeF() * factor);
    else if (font.pixelSize() > 0)
        font.setPixelSize(std::max(1, static_cast<int>(font.pixelSize() * factor + 0.5)));
    return font;
}

// Secondary text under a control: smaller, in the palette's placeholder colour, so it follows
// light and dark.
QLabel* hint(const QString& text) {
    auto* label = new QLabel(text);
    label->setWordWrap(true);
    label->setForegroundRole(QPalette::PlaceholderText);
    QFont font = label->font();
    font = scaled(font, 0.9);
    label->setFont(font);
    label->setMaximumWidth(kFormWidth - 40);
    return label;
}

QLabel* sectionTitle(const QString& text) {
    auto* label = new QLabel(text);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    return label;
}

// A form: controls down the page, each followed by its hint.
class Form {
public:
    explicit Form(const QString& title) : page_(new QWidget) {
        page_->setObjectName(title.toLower());
        column_ = new QVBoxLayout(page_);
        column_->setContentsMargins(20, 16, 20, 16);
        column_->setSpacing(4);
        auto* heading = new QLabel(title);
        QFont font = heading->font();
        font = scaled(font, 1.35);
        font.setBold(true);
        heading->setFont(font);
        column_->addWidget(heading);
        column_->addSpacing(8);
    }

    void add(QWidget* widget) { column_->addWidget(widget); }
    void add(QLayout* layout) { column_->addLayout(layout); }
    void addHint(const QString& text) { column_->addWidget(hint(text)); }
    void addGap() { column_->addSpacing(12); }
    // "Label:" and its control side by side; the label's mnemonic focuses the control.
    void addLabelled(const QString& label, QWidget* control, QWidget* buddy = nullptr) {
        auto* row = new QHBoxLayout;
        auto* text = new QLabel(label);
        text->setBuddy(buddy ? buddy : control);
        row->addWidget(text);
        row->addWidget(control);
        row->addStretch();
        column_->addLayout(row);
    }
    QWidget* finish() {
        column_->addStretch();
        auto* scroll = new QScrollArea;
        scroll->setWidget(page_);
        scroll->setWidgetResizable(true);
        scroll->setFrameShape(QFrame::NoFrame);
        return scroll;
    }

private:
    QWidget* page_;
    QVBoxLayout* column_;
};

template <typename E>
QComboBox* enumPicker(E current) {
    auto* picker = new QComboBox;
    for (const auto& c : EnumCases<E>::all)
        picker->addItem(QString::fromUtf8(c.title), QString::fromLatin1(c.rawValue));
    picker->setCurrentIndex(static_cast<int>(current));
    return picker;
}

template <typename E>
E enumAt(int index) {
    return EnumCases<E>::all.at(static_cast<size_t>(index)).value;
}

// The item limit: 5 to 500 in fives, "N files".
class ItemCountBox final : public QSpinBox {
public:
    ItemCountBox() {
        setRange(static_cast<int>(ItemCountStepper::kMinimum), static_cast<int>(ItemCountStepper::kMaximum));
        setSingleStep(static_cast<int>(ItemCountStepper::kStep));
        setMinimumWidth(110);
    }
    void stepBy(int steps) override { setValue(static_cast<int>(ItemCountStepper::stepped(value(), steps))); }

protected:
    QString textFromValue(int value) const override { return ItemCountStepper::text(value); }
    int valueFromText(const QString& text) const override {
        return static_cast<int>(ItemCountStepper::parse(text).value_or(value()));
    }
    QValidator::State validate(QString& text, int&) const override {
        return ItemCountStepper::parse(text) ? QValidator::Acceptable : QValidator::Intermediate;
    }
};

}  // namespace

SettingsWindow::SettingsWindow(Services services, QWidget* parent)
    : QWidget(parent, Qt::Window),
      services_(std::move(services)),
      login_(services_.loginItem),
      sidebar_(new QListWidget(this)),
      pages_(new QStackedWidget(this)) {
    setObjectName(QStringLiteral("settingsWindow"));
    setWindowTitle(QStringLiteral("Mosswick Settings"));
    setAttribute(Qt::WA_DeleteOnClose, false);

    sidebar_->setObjectName(QStringLiteral("settingsSidebar"));
    sidebar_->setFixedWidth(kSidebarWidth);
    sidebar_->setIconSize(QSize(20, 20));
    sidebar_->setFrameShape(QFrame::NoFrame);
    sidebar_->setSpacing(2);
    sidebar_->setBackgroundRole(QPalette::AlternateBase);
    sidebar_->setAutoFillBackground(true);
    for (SettingsPane pane : SettingsPanes::kAll) {
        auto* row = new QListWidgetItem(themeIcon(SettingsPanes::iconNames(pane), fallbackPixmap(pane)),
                                        SettingsPanes::title(pane), sidebar_);
        row->setSizeHint(QSize(kSidebarWidth - 8, 30));
    }
    pages_->addWidget(generalPane());
    pages_->addWidget(behaviorPane());
    pages_->addWidget(windowPane());
    pages_->addWidget(advancedPane());
    pages_->addWidget(aboutPane());
    pages_->setMinimumWidth(kFormWidth);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(sidebar_);
    layout->addWidget(pages_, 1);
    resize(kSidebarWidth + kFormWidth + 20, 560);

    connect(sidebar_, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0 && row < static_cast<int>(SettingsPanes::kAll.size()))
            setPane(SettingsPanes::kAll.at(static_cast<size_t>(row)));
    });
    auto* close = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(close, &QShortcut::activated, this, &QWidget::close);
    auto* closeW = new QShortcut(QKeySequence::Close, this);
    connect(closeW, &QShortcut::activated, this, &QWidget::close);
    const auto stepPane = [this](int by) {
        const int count = static_cast<int>(SettingsPanes::kAll.size());
        setPane(SettingsPanes::kAll.at(static_cast<size_t>((static_cast<int>(pane_) + by + count) % count)));
    };
    connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_PageDown), this), &QShortcut::activated, this,
            [stepPane] { stepPane(1); });
    connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_PageUp), this), &QShortcut::activated, this,
            [stepPane] { stepPane(-1); });

    // A hidden window catches up when it shows.
    connect(&services_.preferences, &Preferences::changed, this, [this] {
        if (isVisible()) sync();
    });
    // The portal answers a request later.
    services_.loginItem.onChange = [this] {
        login_.refresh();
        if (isVisible()) sync();
    };
    setPane(SettingsPane::general);
    sync();
}

SettingsWindow::~SettingsWindow() {
    services_.loginItem.onChange = [] {};
}

void SettingsWindow::setPane(SettingsPane pane) {
    pane_ = pane;
    const int row = static_cast<int>(pane);
    if (sidebar_->currentRow() != row) sidebar_->setCurrentRow(row);
    pages_->setCurrentIndex(row);
}

void SettingsWindow::show(std::optional<SettingsPane> pane) {
    if (pane) setPane(*pane);
    if (!isVisible()) centreOnActiveScreen();
    QWidget::show();
    raise();
    activateWindow();
}

void SettingsWindow::centreOnActiveScreen() {
    QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    if (!screen) screen = QGuiApplication::primaryScreen();
    if (!screen) return;
    const QRect available = screen->availableGeometry();
    QRect frame(QPoint(), size());
    frame.moveCenter(available.center());
    move(frame.topLeft());
}

void SettingsWindow::showEvent(QShowEvent* event) {
    // The login item may have changed behind our back (an entry removed by hand), and
    // applications may have come or gone.
    login_.refresh();
    if (ignored_) ignored_->reread();
    sync();
    QWidget::showEvent(event);
}

void SettingsWindow::hideEvent(QHideEvent* event) {
    if (recorder_) recorder_->stopRecording();
    QWidget::hideEvent(event);
}

void SettingsWindow::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        login_.refresh();
        sync();
    }
    QWidget::changeEvent(event);
}

void SettingsWindow::sync() {
    for (const auto& apply : syncs_) apply();
}

QWidget* SettingsWindow::generalPane() {
    Preferences& prefs = services_.preferences;
    Form form(QStringLiteral("General"));

    auto* appearance = enumPicker(prefs.appearance());
    connect(appearance, &QComboBox::activated, this,
            [&prefs](int index) { prefs.setAppearance(enumAt<AppearanceMode>(index)); });
    form.addLabelled(QStringLiteral("&Appearance:"), appearance);
    form.addGap();

    auto* login = new QCheckBox(QStringLiteral("&Launch Mosswick at login"));
    login->setObjectName(QStringLiteral("launchAtLogin"));
    auto* approval = new QWidget;
    {
        auto* row = new QHBoxLayout(approval);
        row->setContentsMargins(0, 0, 0, 0);
        row->addWidget(
            hint(QStringLiteral("Your desktop needs you to approve Mosswick before it can start at login.")));
        row->addStretch();
    }
    auto* loginError = new QLabel;
    loginError->setObjectName(QStringLiteral("loginItemError"));
    loginError->setWordWrap(true);
    {
        QPalette red = loginError->palette();
        red.setColor(QPalette::WindowText, QColor(0xd0, 0x30, 0x30));
        loginError->setPalette(red);
    }
    connect(login, &QCheckBox::toggled, this, [this](bool on) {
        login_.apply(on);
        sync();
    });
    form.add(login);
    form.add(approval);
    form.add(loginError);
    syncs_.push_back([this, login, approval, loginError] {
        const QSignalBlocker quiet(login);
        login->setChecked(login_.launchAtLogin());
        approval->setVisible(login_.needsApproval());
        loginError->setText(login_.error());
        loginError->setVisible(!login_.error().isEmpty());
    });
    form.addGap();

    auto* menuBarIcon = new QCheckBox(QStringLiteral("Show menu bar &icon"));
    menuBarIcon->setObjectName(QStringLiteral("showMenuBarIcon"));
    connect(menuBarIcon, &QCheckBox::toggled, this, [&prefs](bool on) { prefs.setShowMenuBarIcon(on); });
    form.add(menuBarIcon);
    form.addGap();

    auto* restore = new QCheckBox(QStringLiteral("Put the shelf &back the way it was on launch"));
    connect(restore, &QCheckBox::toggled, this, [&prefs](bool on) { prefs.setRestoreItemsOnLaunch(on); });
    form.add(restore);
    form.addHint(QStringLiteral("Files left on the shelf when you quit are still there next time."));

    QCheckBox* updates = nullptr;
    if (services_.checkForUpdates) {
        form.addGap();
        updates = new QCheckBox(QStringLiteral("Check for &updates automatically"));
        connect(updates, &QCheckBox::toggled, this,
                [&prefs](bool on) { prefs.setCheckForUpdatesAutomatically(on); });
        auto* checkNow = new QPushButton(QStringLiteral("Check &Now"));
        connect(checkNow, &QPushButton::clicked, this, [this] { services_.checkForUpdates(); });
        auto* row = new QHBoxLayout;
        row->addWidget(updates);
        row->addStretch();
        row->addWidget(checkNow);
        form.add(row);
        form.addHint(
            QStringLiteral("Updates are downloaded from %1 and installed in place. Each one is signed "
                           "with a key built into this app, and Mosswick sends nothing else anywhere.")
                .arg(services_.updateHost));
    }

    syncs_.push_back([&prefs, appearance, menuBarIcon, restore, updates] {
        const QSignalBlocker a(appearance), b(menuBarIcon), c(restore);
        appearance->setCurrentIndex(static_cast<int>(prefs.appearance()));
        menuBarIcon->setChecked(prefs.showMenuBarIcon());
        restore->setChecked(prefs.restoreItemsOnLaunch());
        if (updates) {
            const QSignalBlocker d(updates);
            updates->setChecked(prefs.checkForUpdatesAutomatically());
        }
    });
    return form.finish();
}

QWidget* SettingsWindow::behaviorPane() {
    Preferences& prefs = services_.preferences;
    Form form(QStringLiteral("Behavior"));

    auto* automatic = new QCheckBox(QStringLiteral("&Show the shelf automatically"));
    automatic->setObjectName(QStringLiteral("automaticallyShow"));
    connect(automatic, &QCheckBox::toggled, this, [&prefs](bool on) { prefs.setAutomaticallyShow(on); });
    form.add(automatic);
    auto* trigger = enumPicker(prefs.showTrigger());
    connect(trigger, &QComboBox::activated, this,
            [&prefs](int index) { prefs.setShowTrigger(enumAt<ShowTrigger>(index)); });
    {
        auto* row = new QHBoxLayout;
        row->addSpacing(22);
        row->addWidget(trigger);
        row->addStretch();
        form.add(row);
    }
    form.addHint(QStringLiteral("Hold shift while dragging to keep the shelf hidden just that once."));
    form.addGap();

    auto* hideWhenEmpty = new QCheckBox(QStringLiteral("&Hide the shelf when the last file leaves it"));
    connect(hideWhenEmpty, &QCheckBox::toggled, this, [&prefs](bool on) { prefs.setHideWhenEmpty(on); });
    form.add(hideWhenEmpty);
    form.addHint(QStringLiteral(
        "The shelf stays on screen while it's holding something, so you can drag it back out. Turn this off "
        "to "
        "keep the shelf up even when it's empty, until you dismiss it with Escape or the shortcut."));
    form.addGap();

    form.add(sectionTitle(QStringLiteral("Keyboard Shortcut")));
    recorder_ = new ShortcutRecorderView(services_.hotKeys);
    // The label's mnemonic presses the button itself: Alt+T starts recording.
    form.addLabelled(QStringLiteral("&Toggle the shelf:"), recorder_, recorder_->button());
    recorder_->setFocusProxy(recorder_->button());
    form.addHint(
        QStringLiteral("Hold it down to bring back the files you removed last. Press it twice quickly "
                       "to add the clipboard's contents."));
    form.addHint(QStringLiteral("On many laptop keyboards, F-keys need Fn held down unless Fn Lock is on."));
    if (!services_.shortcutNote.isEmpty()) form.addHint(services_.shortcutNote);
    if (DesktopShortcutOffer* offer = services_.desktopShortcut) {
        auto* add = new QPushButton(offer->buttonTitle());
        add->setObjectName(QStringLiteral("addDesktopShortcut"));
        auto* row = new QHBoxLayout;
        row->addWidget(add);
        row->addStretch();
        auto* box = new QWidget;
        box->setObjectName(QStringLiteral("desktopShortcut"));
        auto* column = new QVBoxLayout(box);
        column->setContentsMargins(0, 8, 0, 0);
        column->setSpacing(4);
        column->addLayout(row);
        column->addWidget(hint(offer->explanation()));
        auto* result = hint(QString());
        result->setObjectName(QStringLiteral("desktopShortcutResult"));
        result->setForegroundRole(QPalette::WindowText);
        column->addWidget(result);
        form.add(box);
        result->hide();
        connect(add, &QPushButton::clicked, this, [this, offer, result] {
            // The shortcut may have changed since the window last synced: the one held now counts.
            if (const std::optional<KeyCombo> combo = services_.hotKeys.combo())
                offer->add(*combo);
            else
                offer->noShortcut();
            result->setText(offer->result());
            result->setVisible(!offer->result().isEmpty());
        });
        syncs_.push_back([offer, box] { box->setVisible(offer->isOffered()); });
    }
    form.addGap();

    auto* ignored = new IgnoredApplicationsView(prefs, services_.applications);
    ignored_ = ignored;
    auto* ignoredLabel = new QLabel(QStringLiteral("I&gnored applications:"));
    ignoredLabel->setBuddy(ignored->list());
    form.add(ignoredLabel);
    form.add(ignored);
    form.addHint(QStringLiteral("The shelf stays hidden for drags that start in these apps."));

    syncs_.push_back([&prefs, automatic, trigger, hideWhenEmpty, ignored, this] {
        const QSignalBlocker a(automatic), b(trigger), c(hideWhenEmpty);
        automatic->setChecked(prefs.automaticallyShow());
        trigger->setCurrentIndex(static_cast<int>(prefs.showTrigger()));
        trigger->setEnabled(prefs.automaticallyShow());
        hideWhenEmpty->setChecked(prefs.hideWhenEmpty());
        ignored->refresh();
        recorder_->refresh();
    });
    return form.finish();
}

QWidget* SettingsWindow::windowPane() {
    Preferences& prefs = services_.preferences;
    Form form(QStringLiteral("Window"));

    auto* positions = new QListWidget;
    positions->setObjectName(QStringLiteral("position"));
    positions->setIconSize(QSize(16, 16));
    positions->setUniformItemSizes(true);
    positions->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const int rowHeight = std::max(positions->fontMetrics().height(), 16) + 8;
    for (const auto& c : EnumCases<ShelfPosition>::all) {
        auto* row = new QListWidgetItem(QString::fromUtf8(c.title), positions);
        row->setSizeHint(QSize(0, rowHeight));
    }
    positions->setFixedHeight(rowHeight * 6 + 2 * positions->frameWidth());
    positions->setMaximumWidth(280);
    auto* positionLabel = new QLabel(QStringLiteral("&Position"));
    positionLabel->setBuddy(positions);
    form.add(positionLabel);
    form.add(positions);
    connect(positions, &QListWidget::currentRowChanged, this, [&prefs](int row) {
        if (row >= 0) prefs.setPosition(enumAt<ShelfPosition>(row));
    });
    form.addHint(
        QStringLiteral("The shelf docks to the edge you pick, on whichever display the pointer is on."));
    form.addGap();

    auto* size = enumPicker(prefs.size());
    connect(size, &QComboBox::activated, this,
            [&prefs](int index) { prefs.setSize(enumAt<ShelfSize>(index)); });
    form.addLabelled(QStringLiteral("Si&ze:"), size);
    form.addHint(
        QStringLiteral("The automatic sizes grow and shrink with the number of files on the shelf."));
    form.addGap();

    auto* limit = new ItemCountBox;
    limit->setObjectName(QStringLiteral("maximumItemCount"));
    connect(limit, &QSpinBox::valueChanged, this, [&prefs](int value) { prefs.setMaximumItemCount(value); });
    form.addLabelled(QStringLiteral("&Keep at most:"), limit);
    form.addHint(QStringLiteral("Older files drop off the bottom once the shelf is full."));

    const QIcon check = themeIcon({QStringLiteral("object-select"), QStringLiteral("emblem-ok")},
                                  QStyle::SP_DialogApplyButton);
    // The rows without the checkmark keep its room, so the titles line up.
    QPixmap clear(16, 16);
    clear.fill(Qt::transparent);
    const QIcon blank(clear);
    syncs_.push_back([&prefs, positions, size, limit, check, blank] {
        const QSignalBlocker a(positions), b(size), c(limit);
        const int current = static_cast<int>(prefs.position());
        for (int row = 0; row < positions->count(); ++row)
            positions->item(row)->setIcon(row == current ? check : blank);
        positions->setCurrentRow(current);
        size->setCurrentIndex(static_cast<int>(prefs.size()));
        // A stored value out of range shows at its edge; it is written only when the user steps.
        limit->setValue(static_cast<int>(
            std::clamp(prefs.maximumItemCount(), ItemCountStepper::kMinimum, ItemCountStepper::kMaximum)));
    });
    return form.finish();
}

QWidget* SettingsWindow::advancedPane() {
    Preferences& prefs = services_.preferences;
    Form form(QStringLiteral("Advanced"));

    form.add(sectionTitle(QStringLiteral("Glass")));
    auto* legacy = new QCheckBox(QStringLiteral("Use the &classic material instead of glass"));
    connect(legacy, &QCheckBox::toggled, this, [this](bool on) {
        services_.defaults.setValue(kLegacyMaterialKey, on);
        if (services_.rebuildPanel) services_.rebuildPanel();
    });
    form.add(legacy);
    form.addHint(
        QStringLiteral("Falls back to the older frosted material. Worth trying if the shelf's background "
                       "looks stale or doesn't update behind moving windows."));
    form.addGap();

    auto* removeOnDragOut =
        new QCheckBox(QStringLiteral("&Remove files from the shelf once they're dragged out"));
    removeOnDragOut->setObjectName(QStringLiteral("removeItemsWhenDraggedOut"));
    connect(removeOnDragOut, &QCheckBox::toggled, this,
            [&prefs](bool on) { prefs.setRemoveItemsWhenDraggedOut(on); });
    form.add(removeOnDragOut);
    form.addHint(
        QStringLiteral("Hold shift while dragging out to do the opposite just that once. Anything removed "
                       "can be brought back from the shelf's toolbar."));

    auto* together = new QCheckBox(QStringLiteral("&Drag several selected files out together"));
    connect(together, &QCheckBox::toggled, this,
            [&prefs](bool on) { prefs.setCombineMultipleFilesToStack(on); });
    form.add(together);
    form.addHint(QStringLiteral("Ctrl-click to select more than one file on the shelf."));

    auto* previews = new QCheckBox(QStringLiteral("Show Quick Look &previews instead of file icons"));
    connect(previews, &QCheckBox::toggled, this, [&prefs](bool on) { prefs.setShowQuickLookPreviews(on); });
    form.add(previews);

    auto* aliases = new QCheckBox(QStringLiteral("&Follow aliases to the file they point at"));
    connect(aliases, &QCheckBox::toggled, this, [&prefs](bool on) { prefs.setResolveAliasFiles(on); });
    form.add(aliases);
    form.addHint(QStringLiteral("Off means the alias itself goes on the shelf."));
    form.addGap();

    auto* alternate = enumPicker(prefs.alternateDragData());
    alternate->setAccessibleName(QStringLiteral("Alternate data"));
    auto* ending = new QLabel;
    connect(alternate, &QComboBox::activated, this,
            [&prefs](int index) { prefs.setAlternateDragData(enumAt<AlternateDragData>(index)); });
    {
        auto* row = new QHBoxLayout;
        auto* lead = new QLabel(AlternateDataSentence::lead());
        lead->setBuddy(alternate);
        row->addWidget(lead);
        row->addWidget(alternate);
        row->addWidget(ending);
        row->addStretch();
        form.add(row);
    }
    form.addHint(
        QStringLiteral("The file itself is always provided. This adds a second representation alongside "
                       "it, for apps that would rather have text — a chat box, say."));
    form.addGap();

    auto* reduceMotion = new QCheckBox(QStringLiteral("Reduce &motion"));
    connect(reduceMotion, &QCheckBox::toggled, this, [&prefs](bool on) { prefs.setReduceMotion(on); });
    form.add(reduceMotion);
    form.addHint(QStringLiteral(
        "Skips the slide-in and the tile animations. Already on if your desktop asks for it."));

    syncs_.push_back([this, &prefs, legacy, removeOnDragOut, together, previews, aliases, alternate, ending,
                      reduceMotion] {
        const QSignalBlocker a(legacy), b(removeOnDragOut), c(together), d(previews), e(aliases),
            f(alternate), g(reduceMotion);
        const std::optional<DefaultsValue> stored = services_.defaults.value(kLegacyMaterialKey);
        const bool* useLegacy = stored ? std::get_if<bool>(&*stored) : nullptr;
        legacy->setChecked(useLegacy && *useLegacy);
        removeOnDragOut->setChecked(prefs.removeItemsWhenDraggedOut());
        together->setChecked(prefs.combineMultipleFilesToStack());
        previews->setChecked(prefs.showQuickLookPreviews());
        aliases->setChecked(prefs.resolveAliasFiles());
        alternate->setCurrentIndex(static_cast<int>(prefs.alternateDragData()));
        ending->setText(AlternateDataSentence::ending(prefs.alternateDragData()));
        reduceMotion->setChecked(prefs.reduceMotion());
    });
    return form.finish();
}

QWidget* SettingsWindow::aboutPane() {
    Form form(QStringLiteral("About"));
    auto* header = new QHBoxLayout;
    auto* icon = new QLabel;
    const QIcon appIcon = QApplication::windowIcon().isNull()
                              ? themeIcon({QStringLiteral("mosswick")}, QStyle::SP_DesktopIcon)
                              : QApplication::windowIcon();
    icon->setPixmap(appIcon.pixmap(64, 64));
    header->addWidget(icon);
    auto* names = new QVBoxLayout;
    auto* name = new QLabel(QStringLiteral("Mosswick"));
    QFont big = name->font();
    big = scaled(big, 1.6);
    big.setBold(true);
    name->setFont(big);
    names->addWidget(name);
    auto* version = new QLabel(QStringLiteral("Version %1").arg(QApplication::applicationVersion()));
    version->setObjectName(QStringLiteral("version"));
    version->setTextInteractionFlags(Qt::TextSelectableByMouse);
    names->addWidget(version);
    header->addLayout(names);
    header->addStretch();
    form.add(header);
    form.addGap();
    auto* line = new QLabel(QStringLiteral(
        "A place to put a file down mid-drag, so your hand is free to open wherever it's going."));
    line->setWordWrap(true);
    form.add(line);
    form.addGap();
    for (const char* tip :
         {"Drag a file onto the shelf, let go, then open where it's headed.",
          "Drag it back off the shelf to drop it — chat, mail, your file manager, anywhere.",
          "Ctrl-click to pick several files, then drag the whole pile out at once.",
          "Double-click a file on the shelf to open it.",
          "Right-click the shelf for its position, size, and everything else."}) {
        auto* row = new QHBoxLayout;
        auto* bullet = new QLabel(QStringLiteral("●"));
        QFont small = bullet->font();
        small = scaled(small, 0.6);
        bullet->setFont(small);
        bullet->setForegroundRole(QPalette::PlaceholderText);
        bullet->setAlignment(Qt::AlignTop | Qt::AlignHCenter);
        bullet->setFixedWidth(14);
        auto* text = new QLabel(QString::fromUtf8(tip));
        text->setWordWrap(true);
        row->addWidget(bullet);
        row->addWidget(text, 1);
        form.add(row);
    }
    return form.finish();
}

}  // namespace mosswick

#include "settings/ShortcutRecorderView.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include "triggers/EvdevKeyCodes.h"
#include "triggers/HotKeyManager.h"

namespace mosswick {

namespace {
// X keycodes are evdev codes shifted by 8.
constexpr quint32 kXKeycodeOffset = 8;
}  // namespace

ShortcutRecorderView::ShortcutRecorderView(HotKeyManager& hotKeys, QWidget* parent)
    : QWidget(parent),
      recorder_(hotKeys),
      button_(new QPushButton(this)),
      remove_(new QToolButton(this)),
      message_(new QLabel(this)) {
    button_->setObjectName(QStringLiteral("shortcutRecorder"));
    button_->setMinimumWidth(110);
    button_->setCheckable(false);
    button_->installEventFilter(this);
    remove_->setIcon(
        QIcon::fromTheme(QStringLiteral("edit-clear"), QIcon::fromTheme(QStringLiteral("window-close"))));
    remove_->setAutoRaise(true);
    remove_->setToolTip(QStringLiteral("Remove the shortcut"));
    remove_->setAccessibleName(QStringLiteral("Remove the shortcut"));
    message_->setWordWrap(true);
    message_->setObjectName(QStringLiteral("shortcutMessage"));
    QPalette red = message_->palette();
    red.setColor(QPalette::WindowText, QColor(0xd0, 0x30, 0x30));
    message_->setPalette(red);

    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(button_);
    row->addWidget(remove_);
    row->addStretch();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addLayout(row);
    column->addWidget(message_);

    recorder_.onChange = [this] { refresh(); };
    connect(button_, &QPushButton::clicked, this, [this] { recorder_.toggleRecording(); });
    connect(remove_, &QToolButton::clicked, this, [this] { recorder_.remove(); });
    refresh();
}

void ShortcutRecorderView::refresh() {
    button_->setText(recorder_.buttonTitle());
    button_->setDown(recorder_.isRecording());
    message_->setText(recorder_.message());
    message_->setVisible(!recorder_.message().isEmpty());
}

quint64 ShortcutRecorderView::modifierFlags(Qt::KeyboardModifiers modifiers) {
    quint64 flags = 0;
    if (modifiers & Qt::ShiftModifier) flags |= KeyCombo::kShift;
    if (modifiers & Qt::ControlModifier) flags |= KeyCombo::kControl;
    if (modifiers & Qt::AltModifier) flags |= KeyCombo::kOption;
    if (modifiers & Qt::MetaModifier) flags |= KeyCombo::kCommand;
    return flags;
}

bool ShortcutRecorderView::isModifierKey(int key) {
    switch (key) {
        case Qt::Key_Shift:
        case Qt::Key_Control:
        case Qt::Key_Alt:
        case Qt::Key_AltGr:
        case Qt::Key_Meta:
        case Qt::Key_Super_L:
        case Qt::Key_Super_R:
        case Qt::Key_Hyper_L:
        case Qt::Key_Hyper_R:
        case Qt::Key_CapsLock:
        case Qt::Key_NumLock:
            return true;
        default:
            return false;
    }
}

bool ShortcutRecorderView::eventFilter(QObject* watched, QEvent* event) {
    if (watched != button_ || !recorder_.isRecording()) return QWidget::eventFilter(watched, event);
    switch (event->type()) {
        case QEvent::ShortcutOverride:
            // Every key is ours while recording: no mnemonic, no Escape-closes-the-window.
            event->accept();
            return true;
        case QEvent::KeyPress: {
            auto* key = static_cast<QKeyEvent*>(event);
            if (isModifierKey(key->key()) || key->isAutoRepeat()) return true;
            const quint32 scanCode = key->nativeScanCode();
            if (scanCode < kXKeycodeOffset) return true;  // no hardware key behind it
            recorder_.keyPressed(EvdevKeyCodes::fromEvdev(scanCode - kXKeycodeOffset),
                                 modifierFlags(key->modifiers()));
            return true;
        }
        case QEvent::FocusOut:
            recorder_.stopRecording();
            return false;
        default:
            return QWidget::eventFilter(watched, event);
    }
}

}  // namespace mosswick

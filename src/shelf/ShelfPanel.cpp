#include "shelf/ShelfPanel.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainterPath>
#include <QWindow>

#include "interaction/ShelfLayout.h"
#include "interaction/ShelfPalette.h"
#include "shelf/ShelfContentView.h"

namespace mosswick {

ShelfPanel::ShelfPanel(ShelfStore& store, ReducedMotion motion, PanelWindowHints& hints, QWidget* parent)
    : QWidget(parent,
              Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus),
      content_(new ShelfContentView(store, motion, this)),
      hints_(hints) {
    setWindowTitle(QStringLiteral("Mosswick"));
    // Both must be set before the native window exists: the first picks a visual with alpha.
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    winId();
    windowHandle()->installEventFilter(this);
    applyPalette();
}

ShelfPanel::~ShelfPanel() = default;

ShelfView& ShelfPanel::shelfView() { return content_->shelfView(); }

void ShelfPanel::mapAt(const QRect& frame) {
    setFrame(frame);
    orderFront();
}

void ShelfPanel::setFrame(const QRect& frame) {
    frame_ = frame;
    setGeometry(frame);
}

void ShelfPanel::orderFront() {
    if (isVisible()) {
        raise();
        return;
    }
    // The window manager forgets these hints whenever the window is withdrawn.
    hints_.keepOffTaskbarOnAllWorkspaces(winId());
    updateTranslucency();
    confirmingPosition_ = true;
    show();
}

void ShelfPanel::orderOut() {
    confirmingPosition_ = false;
    hide();
    setAcceptsFocus(false);
}

void ShelfPanel::confirmPosition() {
    if (!confirmingPosition_ || !isVisible()) return;
    QWindow* window = windowHandle();
    if (window->position() == frame_.topLeft()) return;
    // A window manager may report a window it has just taken on at a place it never stood (openbox
    // says 0,0 for one placed and mapped in one go) and stay silent once it stands where asked.
    // Qt keeps believing the report and maps every drop's position with it, so drops would land
    // beside the shelf and be refused. Asking once more for the same frame draws a true report.
    confirmingPosition_ = false;
    window->setGeometry(frame_);
}

void ShelfPanel::setAppearance(AppearanceMode mode) {
    appearance_ = mode;
    applyPalette();
}

void ShelfPanel::applyPalette() {
    setPalette(ShelfPalette::forAppearance(appearance_, QGuiApplication::palette()));
}

void ShelfPanel::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange && appearance_ == AppearanceMode::system)
        applyPalette();
    QWidget::changeEvent(event);
}

bool ShelfPanel::eventFilter(QObject* watched, QEvent* event) {
    if (watched == windowHandle()) {
        if (event->type() == QEvent::Expose || event->type() == QEvent::Move) {
            confirmPosition();
        } else if (event->type() == QEvent::MouseButtonPress && !acceptsFocus()) {
            setAcceptsFocus(true);
        } else if (event->type() == QEvent::KeyPress &&
                   static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
            emit escapePressed();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void ShelfPanel::setAcceptsFocus(bool accepts) {
    if (accepts == acceptsFocus()) return;
    const Qt::WindowFlags flags = windowFlags().setFlag(Qt::WindowDoesNotAcceptFocus, !accepts);
    // Told to the existing window: setting the widget's flags would recreate and unmap it.
    overrideWindowFlags(flags);
    if (QWindow* window = windowHandle()) window->setFlags(flags);
    if (accepts) activateWindow();
}

void ShelfPanel::resizeEvent(QResizeEvent*) {
    content_->setGeometry(rect());
    updateMask();
}

void ShelfPanel::updateTranslucency() {
    content_->setTranslucent(hints_.compositorRunning(winId()));
    updateMask();
}

void ShelfPanel::updateMask() {
    if (content_->isTranslucent()) {
        clearMask();
        return;
    }
    // Without a compositor the corners would show black: cut the window to its rounded shape.
    QPainterPath shape;
    const double radius = ShelfLayout::kPanelCornerRadius;
    shape.addRoundedRect(QRectF(rect()), radius, radius);
    setMask(QRegion(shape.toFillPolygon().toPolygon()));
}

}  // namespace mosswick

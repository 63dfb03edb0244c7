#include "shelf/ShelfPanel.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainterPath>
#include <QScreen>
#include <QWindow>

#include "interaction/ShelfLayout.h"
#include "model/Logging.h"
#include "interaction/ShelfPalette.h"
#include "interaction/ShelfView.h"
#include "shelf/ShelfContentView.h"

namespace mosswick {

namespace {

Qt::WindowFlags panelFlags(const PanelWindowHints& hints) {
    const Qt::WindowFlags always = Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint;
    if (hints.dropsNeedFocusableWindow()) return Qt::Window | always;
    if (hints.placesItself())
        return Qt::Tool | always | Qt::WindowDoesNotAcceptFocus | Qt::BypassWindowManagerHint;
    return Qt::Tool | always | Qt::WindowDoesNotAcceptFocus;
}

}  // namespace

ShelfPanel::ShelfPanel(ShelfStore& store, ReducedMotion motion, PanelWindowHints& hints, QWidget* parent)
    : QWidget(parent, panelFlags(hints)),
      content_(new ShelfContentView(store, motion, this)),
      hints_(hints),
      staysFocusable_(hints.dropsNeedFocusableWindow()) {
    content_->setReadsDataOnEnter(hints.dataOnlyBeforeDrop());
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
    setGeometry(parked_ ? parkingFrame() : frame);
}

bool ShelfPanel::isShown() const { return isVisible() && !parked_; }

void ShelfPanel::orderFront() {
    qCDebug(lcShelf) << "panel: front; parked" << parked_ << "mapped" << isVisible();
    if (parked_) {
        parked_ = false;
        confirmingPosition_ = false;
        setGeometry(frame_);
        updateTranslucency();
        raise();
        return;
    }
    if (isVisible()) {
        raise();
        return;
    }
    standsAside_ = hints_.letStandOffScreen(winId());
    map();
}

void ShelfPanel::map() {
    // The window manager forgets these hints whenever the window is withdrawn.
    hints_.keepOffTaskbarOnAllWorkspaces(winId());
    updateTranslucency();
    confirmingPosition_ = true;
    show();
}

void ShelfPanel::orderOut() {
    qCDebug(lcShelf) << "panel: out; accepts focus" << acceptsFocus() << "mapped" << isVisible();
    confirmingPosition_ = false;
    const bool hadFocus = acceptsFocus();
    setAcceptsFocus(false);
    // Withdrawn, the window hands the focus on to another; standing aside, it would keep it. It is
    // not withdrawn and mapped again for that: some drag sources keep the list of windows they
    // made at their first drag, and a window mapped anew is one they never see.
    if (hadFocus && standsAside_ && isVisible()) hints_.giveUpFocus(winId());
    // Asked again each time: Qt rewrites the window's type whenever its flags change, and the
    // window manager follows.
    standsAside_ = hints_.letStandOffScreen(winId());
    if (!standsAside_) {
        hide();
        return;
    }
    content_->forgetDrag();
    parked_ = true;
    parkingAttempts_ = kParkingAttempts;
    setGeometry(parkingFrame());
    if (!isVisible()) map();
}

QRect ShelfPanel::parkingFrame() const {
    // Beyond the corner of the whole desktop: outside every monitor, however they are laid out.
    QRect desktop;
    for (const QScreen* screen : QGuiApplication::screens()) desktop |= screen->geometry();
    const QSize size = frame_.isValid() ? frame_.size() : QSize(1, 1);
    return QRect(
        QPoint(desktop.left() - size.width() - kParkingGap, desktop.top() - size.height() - kParkingGap),
        size);
}

void ShelfPanel::keepParked() {
    if (!parked_ || !isVisible()) return;
    QWindow* window = windowHandle();
    const QRect parking = parkingFrame();
    if (window->position() == parking.topLeft()) return;
    // A window manager that took the window for another type when the move reached it (Qt rewrites
    // the type on every change of flags, as the focus is given up) pulls it back until part of it
    // shows, where it could be seen and clicked. Told the type again, it lets the window go.
    if (parkingAttempts_ > 0) {
        --parkingAttempts_;
        qCDebug(lcShelf) << "panel: pulled back to" << window->position() << "while parked; asking again";
        if (hints_.letStandOffScreen(winId())) {
            window->setGeometry(parking);
            return;
        }
    }
    // One that insists keeps the window on screen: withdrawn, at least it is really gone.
    qCDebug(lcShelf) << "panel: kept at" << window->position() << "while parked; withdrawn instead";
    parked_ = false;
    standsAside_ = false;
    hide();
}

void ShelfPanel::confirmPosition() {
    if (!confirmingPosition_ || !isVisible()) return;
    QWindow* window = windowHandle();
    const QRect wanted = parked_ ? parkingFrame() : frame_;
    if (window->position() == wanted.topLeft()) return;
    // A window manager may report a window it has just taken on at a place it never stood (openbox
    // says 0,0 for one placed and mapped in one go) and stay silent once it stands where asked.
    // Qt keeps believing the report and maps every drop's position with it, so drops would land
    // beside the shelf and be refused. Asking once more for the same frame draws a true report.
    confirmingPosition_ = false;
    window->setGeometry(wanted);
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
            keepParked();
        } else if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
            qCDebug(lcShelf) << "panel:" << event->type();
        } else if (event->type() == QEvent::MouseButtonPress && !acceptsFocus()) {
            setAcceptsFocus(true);
        } else if (event->type() == QEvent::KeyPress &&
                   static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
            qCDebug(lcShelf) << "panel: Escape";
            emit escapePressed();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void ShelfPanel::takeFocus() {
    setAcceptsFocus(true);
    activateWindow();
    shelfView().setFocus(Qt::ShortcutFocusReason);
}

void ShelfPanel::setAcceptsFocus(bool accepts) {
    if (staysFocusable_) accepts = true;
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

void ShelfPanel::setClassicMaterial(bool classic) {
    classicMaterial_ = classic;
    updateTranslucency();
}

void ShelfPanel::updateTranslucency() {
    content_->setTranslucent(!classicMaterial_ && hints_.compositorRunning(winId()));
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

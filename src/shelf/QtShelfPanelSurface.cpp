#include "shelf/QtShelfPanelSurface.h"

#include <QEasingCurve>
#include <QVariantAnimation>
#include <algorithm>
#include <cmath>

#include "shelf/ScreenCoordinates.h"
#include "shelf/ShelfContentView.h"
#include "shelf/ShelfPanel.h"

namespace mosswick {

namespace {
// Qt's animation timer ticks this often.
constexpr int kFirstFrame = 16;

double mix(double from, double to, double progress) { return from + (to - from) * progress; }

ScreenRect mix(const ScreenRect& from, const ScreenRect& to, double progress) {
    return {mix(from.x, to.x, progress), mix(from.y, to.y, progress), mix(from.width, to.width, progress),
            mix(from.height, to.height, progress)};
}
}  // namespace

QtShelfPanelSurface::QtShelfPanelSurface(ShelfPanel* panel) : panel_(panel) {
    connect(&panel_->contentView(), &ShelfContentView::targetChanged, this, [this](bool targeted) {
        if (onTargetChange) onTargetChange(targeted);
    });
    connect(&panel_->contentView(), &ShelfContentView::foreignDragEntered, this, [this](bool bringsShelfUp) {
        if (onForeignDragEntered) onForeignDragEntered(bringsShelfUp);
    });
    connect(panel_, &ShelfPanel::escapePressed, this, [this] {
        if (onEscape) onEscape();
    });
}

QtShelfPanelSurface::~QtShelfPanelSurface() {
    for (Running& running : running_) {
        running.animation->disconnect(this);
        delete running.animation;
    }
    delete panel_.data();
}

bool QtShelfPanelSurface::isVisible() const { return panel_ && panel_->isShown(); }

bool QtShelfPanelSurface::standsAside() const {
    return panel_ && panel_->standsAside() && panel_->isVisible() && !panel_->isShown();
}

void QtShelfPanelSurface::applyFrame(const ScreenRect& frame) {
    frame_ = frame;
    const QRectF qt = ScreenCoordinates::current().toQt(frame);
    panel_->setFrame(QRect(static_cast<int>(std::lround(qt.x())), static_cast<int>(std::lround(qt.y())),
                           static_cast<int>(std::lround(qt.width())),
                           static_cast<int>(std::lround(qt.height()))));
}

void QtShelfPanelSurface::applyAlpha(double alpha) {
    alpha_ = alpha;
    panel_->setWindowOpacity(alpha);
}

void QtShelfPanelSurface::setFrame(const ScreenRect& frame) {
    for (Running& running : running_) running.ownsFrame = false;
    applyFrame(frame);
}

void QtShelfPanelSurface::setAlpha(double alpha) {
    for (Running& running : running_) running.ownsAlpha = false;
    applyAlpha(alpha);
}

void QtShelfPanelSurface::orderFront() { panel_->orderFront(); }

void QtShelfPanelSurface::orderOut() { panel_->orderOut(); }

void QtShelfPanelSurface::takeFocus() { panel_->takeFocus(); }

void QtShelfPanelSurface::setAppearance(AppearanceMode mode) { panel_->setAppearance(mode); }

void QtShelfPanelSurface::animate(const PanelAnimation& target, std::function<void()> completion) {
    for (Running& running : running_) {
        running.ownsFrame = false;
        if (target.alpha) running.ownsAlpha = false;
    }
    auto* animation = new QVariantAnimation(this);
    animation->setStartValue(0.0);
    animation->setEndValue(1.0);
    animation->setDuration(static_cast<int>(std::lround(target.duration * 1000)));
    animation->setEasingCurve(target.curve == AnimationCurve::easeIn ? QEasingCurve::InCubic
                                                                     : QEasingCurve::OutCubic);
    running_.push_back({animation, true, target.alpha.has_value()});

    const ScreenRect fromFrame = frame_;
    const double fromAlpha = alpha_;
    connect(animation, &QVariantAnimation::valueChanged, this, [=, this](const QVariant& value) {
        const auto found = std::find_if(running_.begin(), running_.end(),
                                        [&](const Running& r) { return r.animation == animation; });
        if (found == running_.end()) return;
        const double progress = value.toDouble();
        if (found->ownsFrame) applyFrame(mix(fromFrame, target.frame, progress));
        if (found->ownsAlpha && target.alpha) applyAlpha(mix(fromAlpha, *target.alpha, progress));
    });
    connect(animation, &QVariantAnimation::finished, this,
            [this, animation, completion = std::move(completion)] {
                std::erase_if(running_, [&](const Running& r) { return r.animation == animation; });
                animation->deleteLater();
                if (completion) completion();
            });
    animation->start();
    // The animation's own first frame would come a tick later and only repeat where the panel
    // stands: show the second at once instead. A shelf sliding in from beyond the edge reaches the
    // screen a frame sooner, while the drag that called it is only beginning.
    animation->setCurrentTime(std::min(kFirstFrame, animation->duration()));
}

}  // namespace mosswick

#include "interaction/DropHighlight.h"

#include <QPainter>

#include "interaction/ShelfColors.h"
#include "interaction/ShelfLayout.h"

namespace mosswick {

namespace {
constexpr double kFillOpacity = 0.1;
}

DropHighlight::DropHighlight(ReducedMotion motion, QWidget* parent) : QWidget(parent), motion_(motion) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    fade_.setDuration(kFadeMilliseconds);
    fade_.setEasingCurve(QEasingCurve::InOutQuad);
    connect(&fade_, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        level_ = value.toDouble();
        update();
    });
}

void DropHighlight::setLit(bool lit) {
    if (lit == isLit_) return;
    isLit_ = lit;
    fade_.stop();
    const double target = lit ? 1 : 0;
    if (motion_.applies() || !isVisible()) {
        level_ = target;
        update();
        return;
    }
    fade_.setStartValue(level_);
    fade_.setEndValue(target);
    fade_.start();
}

void DropHighlight::paintEvent(QPaintEvent*) {
    if (level_ <= 0) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(level_);
    const ShelfColors colors = ShelfColors::from(palette());
    const double radius = ShelfLayout::kHighlightCornerRadius;
    const double line = ShelfLayout::kHighlightLineWidth;
    QColor fill = colors.accent;
    fill.setAlphaF(static_cast<float>(kFillOpacity));
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(rect(), radius, radius);
    // Stroked inside the edge: the line's outer side lies on the frame.
    painter.setPen(QPen(colors.accent, line));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(line / 2, line / 2, -line / 2, -line / 2),
                            radius - line / 2, radius - line / 2);
}

}  // namespace mosswick

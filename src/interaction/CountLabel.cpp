#include "interaction/CountLabel.h"

#include <QPainter>

#include "interaction/ShelfColors.h"
#include "interaction/ShelfFonts.h"

namespace mosswick {

namespace {

constexpr double kFontPixels = 10;

qsizetype commonSuffixLength(const QString& a, const QString& b) {
    qsizetype n = 0;
    while (n < a.size() && n < b.size() && a.at(a.size() - 1 - n) == b.at(b.size() - 1 - n)) ++n;
    return n;
}

}  // namespace

CountLabel::CountLabel(ReducedMotion motion, QWidget* parent) : QWidget(parent), motion_(motion) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    roll_.setStartValue(0.0);
    roll_.setEndValue(1.0);
    roll_.setDuration(kRollMilliseconds);
    roll_.setEasingCurve(QEasingCurve::OutCubic);
    connect(&roll_, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
    connect(&roll_, &QVariantAnimation::finished, this, [this] {
        previous_.clear();
        update();
    });
}

void CountLabel::setText(const QString& text, int direction) {
    if (text == text_) return;
    previous_ = text_;
    text_ = text;
    direction_ = direction < 0 ? -1 : 1;
    roll_.stop();
    if (motion_.applies() || previous_.isEmpty() || text_.isEmpty()) {
        previous_.clear();
    } else {
        roll_.start();
    }
    setAccessibleName(text_);
    update();
}

QSize CountLabel::sizeHint() const {
    const QFontMetrics metrics(ShelfFonts::ofPixels(*this, kFontPixels));
    return {metrics.horizontalAdvance(QStringLiteral("000 items")), metrics.height()};
}

void CountLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setFont(ShelfFonts::ofPixels(*this, kFontPixels));
    painter.setPen(ShelfColors::from(palette()).secondaryText);
    const QRectF box = rect();
    if (previous_.isEmpty()) {
        painter.drawText(box, Qt::AlignLeft | Qt::AlignVCenter, text_);
        return;
    }
    // Only the part that differs rolls; the shared ending (" items") is drawn still.
    const qsizetype shared = commonSuffixLength(previous_, text_);
    const QString rolledIn = text_.left(text_.size() - shared);
    const QString rolledOut = previous_.left(previous_.size() - shared);
    const double progress = roll_.currentValue().toDouble();
    const double travel = box.height() * 0.8 * direction_;

    painter.save();
    painter.setClipRect(box);
    painter.setOpacity(1 - progress);
    painter.drawText(box.translated(0, -travel * progress), Qt::AlignLeft | Qt::AlignVCenter, rolledOut);
    painter.setOpacity(progress);
    painter.drawText(box.translated(0, travel * (1 - progress)), Qt::AlignLeft | Qt::AlignVCenter, rolledIn);
    painter.restore();
    const double offset = painter.fontMetrics().horizontalAdvance(rolledIn);
    painter.drawText(box.adjusted(offset, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, text_.right(shared));
}

}  // namespace mosswick

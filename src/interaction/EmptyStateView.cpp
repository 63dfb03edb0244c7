#include "interaction/EmptyStateView.h"

#include <QPainter>

#include "interaction/ShelfAccessibility.h"
#include "interaction/ShelfColors.h"
#include "interaction/ShelfFonts.h"
#include "interaction/ShelfSymbols.h"

namespace mosswick {

namespace {
constexpr double kSymbolSide = 26;
constexpr double kHeadlinePixels = 11;
constexpr double kHintPixels = 9.5;
constexpr double kSpacing = 6;
}  // namespace

EmptyStateView::EmptyStateView(QWidget* parent) : QWidget(parent) {
    ShelfAccessibility::install();
    setAccessibleName(QString::fromUtf8(kHeadline));
}

void EmptyStateView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const ShelfColors colors = ShelfColors::from(palette());
    const QFont headlineFont = ShelfFonts::ofPixels(*this, kHeadlinePixels);
    const QFont hintFont = ShelfFonts::ofPixels(*this, kHintPixels);
    const double headlineHeight = QFontMetricsF(headlineFont).height();
    const double hintHeight = QFontMetricsF(hintFont).height();
    const double total = kSymbolSide + kSpacing + headlineHeight + 1 + hintHeight;

    const QRectF area = rect();
    double y = area.center().y() - total / 2;
    ShelfSymbols::dropDocument(painter,
                               QRectF(area.center().x() - kSymbolSide / 2, y, kSymbolSide, kSymbolSide),
                               colors.secondaryText);
    y += kSymbolSide + kSpacing;
    painter.setFont(headlineFont);
    painter.setPen(colors.secondaryText);
    painter.drawText(QRectF(area.left(), y, area.width(), headlineHeight), Qt::AlignCenter,
                     QString::fromUtf8(kHeadline));
    y += headlineHeight + 1;
    painter.setFont(hintFont);
    painter.setPen(colors.tertiaryText);
    painter.drawText(QRectF(area.left(), y, area.width(), hintHeight), Qt::AlignCenter,
                     QString::fromUtf8(kHint));
}

}  // namespace mosswick

#include "interaction/ShelfSymbols.h"

#include <QPainter>
#include <QPainterPath>
#include <cmath>

namespace mosswick {

namespace {

// Saves the painter and maps the unit square onto `box`; the symbols below are drawn in [0, 1]².
class UnitBox {
public:
    UnitBox(QPainter& painter, const QRectF& box)
        : painter_(painter), side_(std::min(box.width(), box.height())) {
        painter_.save();
        painter_.setRenderHint(QPainter::Antialiasing);
        painter_.translate(box.center().x() - side_ / 2, box.center().y() - side_ / 2);
        painter_.scale(side_, side_);
    }
    ~UnitBox() { painter_.restore(); }
    UnitBox(const UnitBox&) = delete;
    UnitBox& operator=(const UnitBox&) = delete;

    // A pen `pixels` wide on screen, whatever the box's size.
    QPen pen(const QColor& color, double pixels) const {
        QPen pen(color, pixels / side_);
        pen.setCapStyle(Qt::RoundCap);
        pen.setJoinStyle(Qt::RoundJoin);
        return pen;
    }
    double side() const { return side_; }

private:
    QPainter& painter_;
    double side_;
};

QColor mixed(const QColor& a, const QColor& b, double t) {
    return QColor::fromRgbF(static_cast<float>(a.redF() + (b.redF() - a.redF()) * t),
                            static_cast<float>(a.greenF() + (b.greenF() - a.greenF()) * t),
                            static_cast<float>(a.blueF() + (b.blueF() - a.blueF()) * t),
                            static_cast<float>(a.alphaF() + (b.alphaF() - a.alphaF()) * t));
}

// A sheet of paper with its top-right corner folded down, in the unit square.
QPainterPath pagePath(double left, double top, double right, double bottom, double fold, double radius) {
    QPainterPath page;
    page.moveTo(left + radius, top);
    page.lineTo(right - fold, top);
    page.lineTo(right, top + fold);
    page.lineTo(right, bottom - radius);
    page.quadTo(right, bottom, right - radius, bottom);
    page.lineTo(left + radius, bottom);
    page.quadTo(left, bottom, left, bottom - radius);
    page.lineTo(left, top + radius);
    page.quadTo(left, top, left + radius, top);
    page.closeSubpath();
    return page;
}

QPainterPath foldPath(double right, double top, double fold) {
    QPainterPath corner;
    corner.moveTo(right - fold, top);
    corner.lineTo(right - fold, top + fold * 0.8);
    corner.quadTo(right - fold, top + fold, right - fold * 0.8, top + fold);
    corner.lineTo(right, top + fold);
    corner.closeSubpath();
    return corner;
}

QColor accentOf(FileGlyph glyph) {
    switch (glyph) {
        case FileGlyph::folder:
            return QColor(0x4a, 0x9b, 0xf0);
        case FileGlyph::image:
            return QColor(0x34, 0xa8, 0x53);
        case FileGlyph::text:
            return QColor(0x6b, 0x72, 0x80);
        case FileGlyph::link:
            return QColor(0x25, 0x7c, 0xe6);
        case FileGlyph::archive:
            return QColor(0xa0, 0x74, 0x4a);
        case FileGlyph::audio:
            return QColor(0xe8, 0x4a, 0x7a);
        case FileGlyph::video:
            return QColor(0x8b, 0x5c, 0xf6);
        case FileGlyph::document:
            break;
    }
    return QColor(0x5b, 0x7d, 0xb1);
}

void folder(QPainter& p, const UnitBox& unit) {
    const QColor blue = accentOf(FileGlyph::folder);
    QPainterPath back;
    back.addRoundedRect(QRectF(0.06, 0.16, 0.88, 0.7), 0.06, 0.06);
    QPainterPath tab;
    tab.addRoundedRect(QRectF(0.06, 0.12, 0.36, 0.14), 0.05, 0.05);
    p.setPen(Qt::NoPen);
    p.setBrush(blue.darker(118));
    p.drawPath(back.united(tab));
    QPainterPath front;
    front.addRoundedRect(QRectF(0.06, 0.3, 0.88, 0.58), 0.06, 0.06);
    QLinearGradient shade(0, 0.3, 0, 0.88);
    shade.setColorAt(0, blue.lighter(112));
    shade.setColorAt(1, blue);
    p.setBrush(shade);
    p.drawPath(front);
    p.setPen(unit.pen(QColor(255, 255, 255, 90), 1));
    p.drawLine(QPointF(0.1, 0.315), QPointF(0.9, 0.315));
}

void emblem(QPainter& p, const UnitBox& unit, FileGlyph glyph) {
    const QColor tint = accentOf(glyph);
    p.setBrush(Qt::NoBrush);
    switch (glyph) {
        case FileGlyph::image: {
            QPainterPath frame;
            frame.addRoundedRect(QRectF(0.3, 0.36, 0.4, 0.32), 0.04, 0.04);
            p.setPen(Qt::NoPen);
            p.setBrush(QColor(0xdc, 0xee, 0xfb));
            p.drawPath(frame);
            p.save();
            p.setClipPath(frame);
            QPainterPath hills;
            hills.moveTo(0.3, 0.68);
            hills.lineTo(0.42, 0.5);
            hills.lineTo(0.5, 0.6);
            hills.lineTo(0.58, 0.52);
            hills.lineTo(0.7, 0.68);
            hills.closeSubpath();
            p.setBrush(tint);
            p.drawPath(hills);
            p.setBrush(QColor(0xf5, 0xb7, 0x20));
            p.drawEllipse(QPointF(0.6, 0.44), 0.04, 0.04);
            p.restore();
            break;
        }
        case FileGlyph::text:
        case FileGlyph::document: {
            p.setPen(unit.pen(glyph == FileGlyph::text ? tint : QColor(0xb8, 0xbc, 0xc4),
                              std::max(1.0, unit.side() * 0.03)));
            const int lines = glyph == FileGlyph::text ? 5 : 3;
            for (int i = 0; i < lines; ++i) {
                const double y = 0.34 + i * 0.075;
                p.drawLine(QPointF(0.3, y), QPointF(i == lines - 1 ? 0.56 : 0.7, y));
            }
            break;
        }
        case FileGlyph::link: {
            const QPointF centre(0.5, 0.52);
            const double r = 0.17;
            p.setPen(unit.pen(tint, std::max(1.0, unit.side() * 0.028)));
            p.drawEllipse(centre, r, r);
            p.drawEllipse(centre, r * 0.45, r);
            p.drawLine(QPointF(centre.x() - r, centre.y()), QPointF(centre.x() + r, centre.y()));
            p.drawLine(QPointF(centre.x(), centre.y() - r), QPointF(centre.x(), centre.y() + r));
            break;
        }
        case FileGlyph::archive: {
            p.setPen(Qt::NoPen);
            p.setBrush(tint);
            for (int i = 0; i < 6; ++i) {
                const double y = 0.12 + i * 0.06;
                p.drawRect(QRectF(i % 2 ? 0.5 : 0.44, y, 0.06, 0.04));
            }
            QPainterPath pull;
            pull.addRoundedRect(QRectF(0.43, 0.5, 0.14, 0.16), 0.03, 0.03);
            p.drawPath(pull);
            p.setBrush(Qt::white);
            p.drawRect(QRectF(0.47, 0.58, 0.06, 0.04));
            break;
        }
        case FileGlyph::audio: {
            p.setPen(Qt::NoPen);
            p.setBrush(tint);
            p.drawEllipse(QPointF(0.42, 0.64), 0.07, 0.055);
            p.drawEllipse(QPointF(0.62, 0.6), 0.07, 0.055);
            p.setPen(unit.pen(tint, std::max(1.0, unit.side() * 0.035)));
            p.drawLine(QPointF(0.485, 0.64), QPointF(0.485, 0.38));
            p.drawLine(QPointF(0.685, 0.6), QPointF(0.685, 0.34));
            p.drawLine(QPointF(0.485, 0.38), QPointF(0.685, 0.34));
            break;
        }
        case FileGlyph::video: {
            QPainterPath screen;
            screen.addRoundedRect(QRectF(0.3, 0.38, 0.4, 0.3), 0.05, 0.05);
            p.setPen(Qt::NoPen);
            p.setBrush(tint);
            p.drawPath(screen);
            QPainterPath play;
            play.moveTo(0.46, 0.45);
            play.lineTo(0.58, 0.53);
            play.lineTo(0.46, 0.61);
            play.closeSubpath();
            p.setBrush(Qt::white);
            p.drawPath(play);
            break;
        }
        case FileGlyph::folder:
            break;
    }
}

}  // namespace

void ShelfSymbols::closeButton(QPainter& painter, const QRectF& box, const QColor& circle,
                               const QColor& mark) {
    UnitBox unit(painter, box);
    painter.setPen(Qt::NoPen);
    painter.setBrush(circle);
    painter.drawEllipse(QRectF(0, 0, 1, 1));
    painter.setPen(unit.pen(mark, std::max(1.2, unit.side() * 0.11)));
    painter.drawLine(QPointF(0.33, 0.33), QPointF(0.67, 0.67));
    painter.drawLine(QPointF(0.67, 0.33), QPointF(0.33, 0.67));
}

void ShelfSymbols::bringBack(QPainter& painter, const QRectF& box, const QColor& color) {
    UnitBox unit(painter, box);
    painter.setPen(unit.pen(color, std::max(1.3, unit.side() * 0.1)));
    painter.setBrush(Qt::NoBrush);
    QPainterPath turn;
    turn.moveTo(0.2, 0.36);
    turn.lineTo(0.6, 0.36);
    turn.arcTo(QRectF(0.4, 0.36, 0.42, 0.42), 90, -180);
    turn.lineTo(0.38, 0.78);
    painter.drawPath(turn);
    QPainterPath head;
    head.moveTo(0.36, 0.2);
    head.lineTo(0.2, 0.36);
    head.lineTo(0.36, 0.52);
    painter.drawPath(head);
}

void ShelfSymbols::trash(QPainter& painter, const QRectF& box, const QColor& color) {
    UnitBox unit(painter, box);
    painter.setPen(unit.pen(color, std::max(1.3, unit.side() * 0.09)));
    painter.setBrush(Qt::NoBrush);
    painter.drawLine(QPointF(0.16, 0.26), QPointF(0.84, 0.26));
    QPainterPath handle;
    handle.moveTo(0.38, 0.26);
    handle.lineTo(0.38, 0.18);
    handle.quadTo(0.38, 0.13, 0.43, 0.13);
    handle.lineTo(0.57, 0.13);
    handle.quadTo(0.62, 0.13, 0.62, 0.18);
    handle.lineTo(0.62, 0.26);
    painter.drawPath(handle);
    QPainterPath can;
    can.moveTo(0.25, 0.26);
    can.lineTo(0.29, 0.8);
    can.quadTo(0.3, 0.88, 0.38, 0.88);
    can.lineTo(0.62, 0.88);
    can.quadTo(0.7, 0.88, 0.71, 0.8);
    can.lineTo(0.75, 0.26);
    painter.drawPath(can);
    painter.setPen(unit.pen(color, std::max(1.0, unit.side() * 0.07)));
    painter.drawLine(QPointF(0.43, 0.4), QPointF(0.44, 0.74));
    painter.drawLine(QPointF(0.57, 0.4), QPointF(0.56, 0.74));
}

void ShelfSymbols::dropDocument(QPainter& painter, const QRectF& box, const QColor& color) {
    UnitBox unit(painter, box);
    const QPen line = unit.pen(color, std::max(1.0, unit.side() * 0.045));
    painter.setPen(line);
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(pagePath(0.2, 0.06, 0.8, 0.94, 0.22, 0.08));
    QPainterPath fold;
    fold.moveTo(0.58, 0.06);
    fold.lineTo(0.58, 0.22);
    fold.quadTo(0.58, 0.28, 0.64, 0.28);
    fold.lineTo(0.8, 0.28);
    painter.drawPath(fold);
    painter.drawLine(QPointF(0.5, 0.4), QPointF(0.5, 0.76));
    QPainterPath head;
    head.moveTo(0.36, 0.62);
    head.lineTo(0.5, 0.76);
    head.lineTo(0.64, 0.62);
    painter.drawPath(head);
}

void ShelfSymbols::missingOriginalBadge(QPainter& painter, const QRectF& box, const QColor& drive,
                                        const QColor& warning, const QColor& backing) {
    UnitBox unit(painter, box);
    painter.setPen(Qt::NoPen);
    painter.setBrush(backing);
    painter.drawRoundedRect(QRectF(-0.06, 0.3, 0.9, 0.56), 0.2, 0.2);
    painter.drawEllipse(QPointF(0.72, 0.3), 0.3, 0.3);
    // The drive: a slab with its light.
    painter.setBrush(drive);
    painter.drawRoundedRect(QRectF(0.02, 0.4, 0.72, 0.38), 0.1, 0.1);
    painter.setBrush(backing);
    painter.drawEllipse(QPointF(0.56, 0.59), 0.05, 0.05);
    painter.drawRect(QRectF(0.14, 0.565, 0.26, 0.05));
    // The badge: an exclamation mark on a warning disc.
    painter.setBrush(warning);
    painter.drawEllipse(QPointF(0.72, 0.3), 0.24, 0.24);
    painter.setPen(unit.pen(Qt::white, std::max(1.2, unit.side() * 0.09)));
    painter.drawLine(QPointF(0.72, 0.18), QPointF(0.72, 0.33));
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawEllipse(QPointF(0.72, 0.42), 0.045, 0.045);
}

void ShelfSymbols::fileGlyph(QPainter& painter, const QRectF& box, FileGlyph glyph, const QString& label) {
    UnitBox unit(painter, box);
    if (glyph == FileGlyph::folder) {
        folder(painter, unit);
        return;
    }
    const double left = 0.16, top = 0.04, right = 0.84, bottom = 0.96, fold = 0.2;
    const QPainterPath page = pagePath(left, top, right, bottom, fold, 0.06);
    QLinearGradient paper(0, top, 0, bottom);
    paper.setColorAt(0, QColor(0xff, 0xff, 0xff));
    paper.setColorAt(1, QColor(0xf0, 0xf1, 0xf4));
    painter.setPen(unit.pen(QColor(0, 0, 0, 60), 1));
    painter.setBrush(paper);
    painter.drawPath(page);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xdc, 0xde, 0xe3));
    painter.drawPath(foldPath(right, top, fold));

    emblem(painter, unit, glyph);

    if (!label.isEmpty() && glyph != FileGlyph::link) {
        const QRectF band(left, 0.76, right - left, 0.13);
        painter.setPen(Qt::NoPen);
        painter.setBrush(mixed(accentOf(glyph), Qt::white, 0.05));
        painter.drawRect(band);
        QFont font = painter.font();
        font.setBold(true);
        font.setPixelSize(std::max(1, static_cast<int>(std::lround(unit.side() * 0.1))));
        // Text is laid out in device-independent pixels, so the glyphs keep their hinting.
        painter.save();
        painter.scale(1 / unit.side(), 1 / unit.side());
        painter.setFont(font);
        painter.setPen(Qt::white);
        const QRectF textBox(band.left() * unit.side(), band.top() * unit.side(), band.width() * unit.side(),
                             band.height() * unit.side());
        painter.drawText(textBox, Qt::AlignCenter, label.left(4).toUpper());
        painter.restore();
    }
}

}  // namespace mosswick

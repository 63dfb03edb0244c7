#pragma once

#include <QColor>
#include <QRectF>
#include <QString>

#include "interaction/ItemIcon.h"

class QPainter;

namespace mosswick {

// The shelf's symbols, drawn as vector paths so they are sharp at any scale and need nothing from
// the desktop. Each fills the square `box` as its symbol font would fill its em square.
class ShelfSymbols {
public:
    ShelfSymbols() = delete;

    static void closeButton(QPainter& painter, const QRectF& box, const QColor& circle, const QColor& mark);
    static void bringBack(QPainter& painter, const QRectF& box, const QColor& color);
    static void trash(QPainter& painter, const QRectF& box, const QColor& color);
    static void dropDocument(QPainter& painter, const QRectF& box, const QColor& color);
    static void missingOriginalBadge(QPainter& painter, const QRectF& box, const QColor& drive,
                                     const QColor& warning, const QColor& backing);

    // A file's picture when the icon theme has none; `label` (a short file extension, may be
    // empty) is written across a document's foot.
    static void fileGlyph(QPainter& painter, const QRectF& box, FileGlyph glyph, const QString& label);
};

}  // namespace mosswick

#pragma once

#include <QPointF>
#include <Qt>

class QMimeData;

namespace mosswick {

// How a drop arrived, beside its data.
struct DropContext {
    Qt::DropActions offeredActions;
    Qt::KeyboardModifiers modifiers;
    // Where it landed, in the panel's own coordinates.
    QPointF position;
};

// What the shelf does with a drop: turn the data into items and put them on the shelf. The data
// is only readable during the call (an X Direct Save promise is asked for there and then).
class ShelfDropHandler {
public:
    virtual ~ShelfDropHandler() = default;
    // True when at least one item was made; the drag source is told the drop was taken.
    virtual bool drop(const QMimeData& data, const DropContext& context) = 0;
};

}  // namespace mosswick

#pragma once

#include "interaction/DragSource.h"

class QWidget;

namespace mosswick {

// Runs one drag out of the shelf with Qt's drag and drop: the types and operations the drag
// source chose, the items' picture under the pointer, and at the end tells the drag source
// whether a program took the drop and whether Shift was held then. Returns once the drag is over;
// the files it offered stay where they are, since targets may fetch them after that.
class DragOutSession {
public:
    DragOutSession() = delete;

    static void run(QWidget& from, DragSource& source, const DragSource::Drag& drag);
};

}  // namespace mosswick

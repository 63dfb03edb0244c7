#pragma once

#include <QWidget>
#include <memory>

#include "shelf/ReducedMotion.h"

class QMimeData;

namespace mosswick {

class ShelfDropHandler;
class ShelfStore;
class ShelfView;

// The panel's whole surface: it paints the shelf's rounded body, hosts the shelf view, and is the
// drop target. A drag offering something the shelf takes lights the shelf up (the store's
// `isTargeted`) for as long as it hovers; its drop goes to the drop handler.
class ShelfContentView : public QWidget {
    Q_OBJECT

public:
    ShelfContentView(ShelfStore& store, ReducedMotion motion, QWidget* parent = nullptr);

    // Without a handler every drop is refused. The handler must outlive this view or be reset.
    void setDropHandler(ShelfDropHandler* handler) { dropHandler_ = handler; }
    // Where a drag's data can be read only while it hovers (never at its drop), what the shelf
    // would take is read as the drag enters and that copy is what a drop hands on.
    void setReadsDataOnEnter(bool reads) { readsDataOnEnter_ = reads; }
    // Solid where no compositor would show what lies behind the window.
    void setTranslucent(bool translucent);
    bool isTranslucent() const { return isTranslucent_; }

    ShelfView& shelfView() { return *shelfView_; }

    // Put away under a hovering drag, the shelf hears no more of it: it must not stay lit. Hiding
    // does this by itself; a window kept mapped aside is told.
    void forgetDrag() {
        forgotten_ = true;
        setTargeted(false);
    }

signals:
    // A drag that the shelf takes came over it (true), or left, ended or dropped (false).
    void targetChanged(bool targeted);
    // A drag from another program came over the shelf; whether its types would bring the shelf up
    // by themselves (PasteboardTypes::bringsShelfUp), before it is taken or refused.
    void foreignDragEntered(bool bringsShelfUp);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void setTargeted(bool targeted);
    void keepEnteredData(const QMimeData& offered);

    ShelfStore& store_;
    ShelfView* shelfView_;
    ShelfDropHandler* dropHandler_ = nullptr;
    bool isTranslucent_ = true;
    bool isTargeted_ = false;
    bool readsDataOnEnter_ = false;
    bool forgotten_ = false;
    std::unique_ptr<QMimeData> enteredData_;
};

}  // namespace mosswick

#pragma once

#include <QHash>
#include <QScrollArea>
#include <QVariantAnimation>
#include <optional>
#include <set>
#include <vector>

#include "shelf/ReducedMotion.h"
#include "interaction/SpringCurve.h"
#include "interaction/TileDescription.h"
#include "model/ShelfTile.h"

namespace mosswick {

class DragSource;
class ShelfItemView;

// The scrolling column of tiles, newest at the top. A change of the list moves the tiles that
// stay to their new rows, grows the new ones in and shrinks the removed ones away, all on one
// spring, unless reduced motion applies.
class TileListView : public QScrollArea {
    Q_OBJECT

public:
    static constexpr double kSpringResponse = 0.32;
    static constexpr double kSpringDamping = 0.82;

    explicit TileListView(ReducedMotion motion, QWidget* parent = nullptr);
    ~TileListView() override;

    // Whether tiles that did not change are described anew, which asks the file system whether
    // their originals are still there.
    enum class FileCheck { changedTilesOnly, again };
    void setTiles(const std::vector<ShelfTile>& tiles, const std::set<QUuid>& selection,
                  FileCheck check = FileCheck::changedTilesOnly);
    void setSelection(const std::set<QUuid>& selection);
    void setOriginCheck(TileDescription::OriginCheck check) { originCheck_ = std::move(check); }
    // What handles the mouse on every tile; not owned.
    void setDragSource(DragSource* source);

    // Rings the tile with the key, and scrolls it into view; none when nothing is.
    void setKeyboardFocus(std::optional<QUuid> key);
    ShelfItemView* tileView(const QUuid& key) const { return byKey_.value(key); }

    // The tiles of the list in order, without those on their way out.
    std::vector<ShelfItemView*> tileViews() const;
    bool isAnimating() const { return animation_.state() == QAbstractAnimation::Running; }
    // Puts every tile where the running change would leave it.
    void settle();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Placement {
        ShelfItemView* view;
        QRectF from;
        QRectF to;
        double fromPresence;
        double toPresence;
        bool isLeaving;
    };

    ShelfItemView* makeTileView();
    void step(double springValue);
    void fitToWidth();

    ReducedMotion motion_;
    DragSource* dragSource_ = nullptr;
    SpringCurve spring_{kSpringResponse, kSpringDamping};
    TileDescription::OriginCheck originCheck_ = TileDescription::originMissing;
    QWidget* canvas_;
    std::vector<Placement> placements_;
    QHash<QUuid, ShelfItemView*> byKey_;
    std::optional<QUuid> keyboardFocus_;
    QVariantAnimation animation_;
};

}  // namespace mosswick

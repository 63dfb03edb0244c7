#pragma once

#include <QString>
#include <QUuid>
#include <functional>
#include <set>

#include "model/ShelfTile.h"

namespace mosswick {

// The words and flags a tile is drawn with, worked out once when the tile changes rather than at
// every paint: whether an original is missing is a question to the file system.
struct TileDescription {
    static constexpr const char* kWaitingSuffix = " — waiting for the file";
    static constexpr const char* kOriginMissing = "Original file is missing — Mosswick's copy will be used";
    static constexpr const char* kNoCopy = "Mosswick couldn't keep its own copy — the original will be used";

    // The tile's identity across list changes: a stack keeps its batch id, a single item its id.
    QUuid key;
    // The tile's caption as read out and shown in its tooltip.
    QString title;
    // As drawn: the headline, and below it in a quieter style the detail. A waiting item's name
    // runs on into the detail, which holds the rest of its caption.
    QString headline;
    QString detail;
    QString toolTip;
    // What a screen reader says for the tile: the name, the kind of file and its size; a stack's
    // count and names; that an item is still waiting for its file.
    QString spoken;
    int count = 1;
    // The first item's content type (a MIME type) and whether it stands for a web link.
    QString contentType;
    bool isLink = false;
    bool isDirectory = false;
    bool isWaiting = false;
    bool isOriginMissing = false;
    // No copy of the file could be kept; the tooltip says why.
    bool isCopyMissing = false;

    bool isStack() const { return count > 1; }

    using OriginCheck = std::function<bool(const ShelfItem&)>;
    static TileDescription of(const ShelfTile& tile, const OriginCheck& isOriginMissing = originMissing);

    // True when the item came from a file that can no longer be reached, so the shelf's copy
    // stands in for it. Asks the file system.
    static bool originMissing(const ShelfItem& item);
    static bool isSelected(const ShelfTile& tile, const std::set<QUuid>& selection);
    static QUuid keyOf(const ShelfTile& tile);
};

}  // namespace mosswick

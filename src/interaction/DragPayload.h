#pragma once

#include <QByteArray>
#include <QString>
#include <optional>
#include <utility>
#include <vector>

#include "model/PreferenceEnums.h"
#include "model/ShelfItem.h"

namespace mosswick {

// What a drag out of the shelf hands to the program it lands on: each item's file, the second
// representation the user chose for programs that would rather have text, and a shelved link as
// the link itself. Bytes throughout: file names need not be UTF-8.
class DragPayload {
public:
    DragPayload() = delete;

    // One item's part of a drag.
    struct PasteboardItem {
        // The file, as a file:// URI percent-encoded from the path's bytes.
        QByteArray fileURI;
        // The alternate text; none for `none`, or for contents that are not UTF-8 text.
        std::optional<QByteArray> text;
        // A shelved link's address and title, "url\ntitle" in UTF-8.
        std::optional<QByteArray> link;

        bool operator==(const PasteboardItem&) const = default;
    };

    // A file's contents are offered as text up to this size; a larger file gets no text (read
    // when the drag starts, it would hold the pointer up).
    static constexpr qint64 kLongestContentsText = 1 << 20;

    // Nothing when the item has no file to hand out (its original and its copy are both gone).
    static std::optional<PasteboardItem> pasteboardItem(const ShelfItem& item,
                                                        AlternateDragData alternateData);

    // The MIME types a drag of these items offers, in the order offered, each with its bytes: the
    // URIs one per line, the texts one per line, the links as UTF-16 "url\ntitle" pairs (as
    // browsers hand them over). A type none of the items has is not offered at all.
    using Types = std::vector<std::pair<QString, QByteArray>>;
    static Types types(const std::vector<PasteboardItem>& items);

    static constexpr const char* kUriList = "text/uri-list";
    static constexpr const char* kUtf8Text = "text/plain;charset=utf-8";
    static constexpr const char* kPlainText = "text/plain";
    static constexpr const char* kMozUrl = "text/x-moz-url";
};

}  // namespace mosswick

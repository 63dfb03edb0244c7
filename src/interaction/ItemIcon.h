#pragma once

#include <QIcon>
#include <QString>

namespace mosswick {

// The kinds of file the shelf can draw itself, for desktops whose icon theme has no icon for a
// type (or no theme at all, as on a bare X server).
enum class FileGlyph { document, folder, image, text, link, archive, audio, video };

// The picture of an item until thumbnails exist: the icon theme's icon for its content type, or
// a glyph of its kind.
class ItemIcon {
public:
    ItemIcon() = delete;

    // Null when the theme has no icon for the type nor for its generic kind.
    static QIcon themeIcon(const QString& contentType, bool isLink);
    static FileGlyph glyph(const QString& contentType, bool isLink);
};

}  // namespace mosswick

#pragma once

#include <QStringList>

namespace mosswick {

// The kinds of data the shelf takes from a drag: files, links, images, text and X Direct Save
// promises. A drag offering none of them is refused at once, so the shelf does not light up for it.
class ShelfDropTypes {
public:
    ShelfDropTypes() = delete;

    // In order of preference.
    static const QStringList& all();
    // Formats as a drag lists them: case and spaces around parameters do not matter.
    static bool accepts(const QStringList& offeredFormats);
};

}  // namespace mosswick

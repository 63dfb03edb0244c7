#include "shelf/ShelfDropTypes.h"

#include "ingest/TypeNameSet.h"

namespace mosswick {

const QStringList& ShelfDropTypes::all() {
    static const QStringList types = {
        QStringLiteral("text/uri-list"),
        QStringLiteral("XdndDirectSave0"),
        QStringLiteral("text/x-moz-url"),
        QStringLiteral("_NETSCAPE_URL"),
        QStringLiteral("image/png"),
        QStringLiteral("image/tiff"),
        QStringLiteral("image/jpeg"),
        QStringLiteral("application/x-qt-image"),
        QStringLiteral("text/plain;charset=utf-8"),
        QStringLiteral("UTF8_STRING"),
        QStringLiteral("text/plain"),
    };
    return types;
}

bool ShelfDropTypes::accepts(const QStringList& offeredFormats) {
    static const TypeNameSet known(all());
    return known.containsAnyOf(offeredFormats);
}

}  // namespace mosswick

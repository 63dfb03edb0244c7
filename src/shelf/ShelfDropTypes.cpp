#include "shelf/ShelfDropTypes.h"

namespace mosswick {

namespace {

QString normalised(const QString& format) {
    QString compact = format.toLower();
    compact.remove(QLatin1Char(' '));
    return compact;
}

}  // namespace

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
    static const QStringList known = [] {
        QStringList list;
        for (const QString& type : all()) list << normalised(type);
        return list;
    }();
    for (const QString& format : offeredFormats) {
        if (known.contains(normalised(format))) return true;
    }
    return false;
}

}  // namespace mosswick

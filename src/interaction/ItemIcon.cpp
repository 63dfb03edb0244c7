#include "interaction/ItemIcon.h"

#include <QHash>
#include <QMimeDatabase>

namespace mosswick {

namespace {

QStringList iconNames(const QString& contentType, bool isLink) {
    QStringList names;
    // Links are kept as desktop entries, whose own icon would read as "a program".
    if (isLink) names << QStringLiteral("text-html") << QStringLiteral("applications-internet");
    const QMimeType type = QMimeDatabase().mimeTypeForName(contentType);
    if (type.isValid()) {
        names << type.iconName() << type.genericIconName();
        for (const QString& parent : type.allAncestors()) {
            const QMimeType ancestor = QMimeDatabase().mimeTypeForName(parent);
            names << ancestor.iconName() << ancestor.genericIconName();
        }
    }
    if (contentType == QLatin1String("inode/directory")) names << QStringLiteral("folder");
    return names;
}

// By name, not by descent: office documents, e-books and Java archives are zip files underneath
// but not archives to the user.
bool isArchive(const QMimeType& type) {
    static const QStringList archives = {
        QStringLiteral("application/zip"),
        QStringLiteral("application/x-tar"),
        QStringLiteral("application/gzip"),
        QStringLiteral("application/x-7z-compressed"),
        QStringLiteral("application/x-xz"),
        QStringLiteral("application/x-bzip2"),
        QStringLiteral("application/x-bzip"),
        QStringLiteral("application/vnd.rar"),
        QStringLiteral("application/zstd"),
        QStringLiteral("application/x-compressed-tar"),
        QStringLiteral("application/x-bzip-compressed-tar"),
        QStringLiteral("application/x-bzip2-compressed-tar"),
        QStringLiteral("application/x-xz-compressed-tar"),
        QStringLiteral("application/x-zstd-compressed-tar"),
        QStringLiteral("application/x-archive"),
        QStringLiteral("application/x-cpio"),
    };
    return archives.contains(type.name());
}

}  // namespace

QIcon ItemIcon::themeIcon(const QString& contentType, bool isLink) {
    // Looked up once per type and theme: the theme lookup walks folders on disk.
    static QHash<QString, QIcon> found;
    const QString key =
        QIcon::themeName() + (isLink ? QStringLiteral("|link|") : QStringLiteral("|")) + contentType;
    if (auto cached = found.constFind(key); cached != found.constEnd()) return *cached;
    QIcon icon;
    for (const QString& name : iconNames(contentType, isLink)) {
        if (!name.isEmpty() && QIcon::hasThemeIcon(name)) {
            icon = QIcon::fromTheme(name);
            break;
        }
    }
    found.insert(key, icon);
    return icon;
}

FileGlyph ItemIcon::glyph(const QString& contentType, bool isLink) {
    if (isLink) return FileGlyph::link;
    if (contentType == QLatin1String("inode/directory")) return FileGlyph::folder;
    const QMimeType type = QMimeDatabase().mimeTypeForName(contentType);
    const QString name = type.isValid() ? type.name() : contentType;
    if (name.startsWith(QLatin1String("image/"))) return FileGlyph::image;
    if (name.startsWith(QLatin1String("audio/"))) return FileGlyph::audio;
    if (name.startsWith(QLatin1String("video/"))) return FileGlyph::video;
    if (type.isValid() && isArchive(type)) return FileGlyph::archive;
    if (name.startsWith(QLatin1String("text/")) ||
        (type.isValid() && type.inherits(QStringLiteral("text/plain"))))
        return FileGlyph::text;
    return FileGlyph::document;
}

}  // namespace mosswick

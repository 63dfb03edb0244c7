#include "platform/qt/ThemeWorkspaceIcons.h"

#include <QMimeDatabase>

#include "interaction/ItemIcon.h"
#include "model/LocalPath.h"

namespace mosswick {

QIcon ThemeWorkspaceIcons::iconForType(const QString& mimeType, bool isLink) {
    return ItemIcon::themeIcon(mimeType, isLink);
}

QIcon ThemeWorkspaceIcons::iconForFile(const std::filesystem::path& path, bool isDirectory,
                                       const QString& mimeType) {
    if (isDirectory) return ItemIcon::themeIcon(QStringLiteral("inode/directory"), false);
    const QList<QMimeType> byName = QMimeDatabase().mimeTypesForFileName(LocalPath::displayName(path));
    QIcon icon = byName.isEmpty() ? QIcon() : ItemIcon::themeIcon(byName.first().name(), false);
    return icon.isNull() ? ItemIcon::themeIcon(mimeType, false) : icon;
}

}  // namespace mosswick

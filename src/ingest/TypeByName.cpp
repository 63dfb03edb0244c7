#include "ingest/TypeByName.h"

#include "model/LocalPath.h"
#include "model/ShelfItem.h"

namespace mosswick {

QString TypeByName::of(const std::filesystem::path& file) {
    const QString name = LocalPath::displayName(file);
    // A leading dot starts a hidden name, not an extension.
    const qsizetype dot = name.indexOf(QLatin1Char('.'), 1);
    const QString extension = dot < 0 ? QString() : name.mid(dot + 1).toLower();
    if (!extension.isEmpty()) {
        if (auto known = byExtension_.constFind(extension); known != byExtension_.constEnd()) return *known;
    }
    const QMimeType type = database_.mimeTypeForFile(name, QMimeDatabase::MatchExtension);
    const QString found = type.isValid() ? type.name() : QString::fromLatin1(ShelfItem::kGenericContentType);
    if (!extension.isEmpty()) byExtension_.insert(extension, found);
    return found;
}

}  // namespace mosswick

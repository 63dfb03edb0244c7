#include "interaction/ShelfNotice.h"

namespace mosswick::ShelfNotice {

QString text(ShelfStore::Notice notice, const QString& detail) {
    switch (notice) {
        case ShelfStore::Notice::none:
            return {};
        case ShelfStore::Notice::recoveredFromDamage:
            return QStringLiteral(
                "The saved shelf could not be read. It was rebuilt from the copies Mosswick "
                "keeps; the damaged file was set aside.");
        case ShelfStore::Notice::cannotSave:
            return detail.isEmpty() ? QStringLiteral("Mosswick can't save the shelf. It keeps trying.")
                                    : QStringLiteral("Mosswick can't save the shelf (%1). It keeps trying.")
                                          .arg(reasonIn(detail));
    }
    return {};
}

QString reasonIn(const QString& error) { return error.section(QLatin1String(": "), -1); }

}  // namespace mosswick::ShelfNotice

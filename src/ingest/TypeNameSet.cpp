#include "ingest/TypeNameSet.h"

namespace mosswick {

TypeNameSet::TypeNameSet(const QStringList& names) {
    for (const QString& name : names) names_ << normalised(name);
}

bool TypeNameSet::contains(const QString& name) const { return names_.contains(normalised(name)); }

bool TypeNameSet::containsAnyOf(const QStringList& offered) const {
    for (const QString& name : offered) {
        if (contains(name)) return true;
    }
    return false;
}

QString TypeNameSet::normalised(const QString& name) {
    QString compact = name.toLower();
    compact.remove(QLatin1Char(' '));
    return compact;
}

}  // namespace mosswick

#pragma once

#include <QStringList>

namespace mosswick {

// A set of pasteboard type names matched the way drags and clipboards spell them: X11 targets
// and MIME types vary in case and in the blanks around their parameters
// ("text/plain; charset=UTF-8"), so both are ignored.
class TypeNameSet {
public:
    explicit TypeNameSet(const QStringList& names);

    bool contains(const QString& name) const;
    // True when any of `offered` is in the set.
    bool containsAnyOf(const QStringList& offered) const;

private:
    static QString normalised(const QString& name);

    QStringList names_;
};

}  // namespace mosswick

#include "DropActionNames.h"

#include <QStringList>

namespace mosswick::testpeer::DropActionNames {

QString name(Qt::DropAction action) {
    switch (action) {
        case Qt::CopyAction:
            return QStringLiteral("copy");
        case Qt::MoveAction:
            return QStringLiteral("move");
        case Qt::LinkAction:
            return QStringLiteral("link");
        default:
            return QStringLiteral("none");
    }
}

Qt::DropAction action(QStringView name) {
    if (name == u"move") return Qt::MoveAction;
    if (name == u"link") return Qt::LinkAction;
    return Qt::CopyAction;
}

Qt::DropActions actions(const QString& names) {
    Qt::DropActions result;
    for (const QString& each : names.split(u',')) result |= action(each);
    return result;
}

}  // namespace mosswick::testpeer::DropActionNames

#pragma once

#include <QString>
#include <Qt>

namespace mosswick::testpeer {

// Drop actions as the command line and the reports name them: "copy", "move", "link", "none".
namespace DropActionNames {

QString name(Qt::DropAction action);
// An unknown name reads as copy.
Qt::DropAction action(QStringView name);
// A comma-separated list: "copy,move".
Qt::DropActions actions(const QString& names);

}  // namespace DropActionNames
}  // namespace mosswick::testpeer

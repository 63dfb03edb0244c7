#pragma once

#include <QJsonObject>

namespace mosswick::testpeer {

// The screens as Qt sees them (geometry and available area, in Qt's coordinates), the window
// manager's work area and whether a compositor owns _NET_WM_CM_S0.
QJsonObject screenReport();

}  // namespace mosswick::testpeer

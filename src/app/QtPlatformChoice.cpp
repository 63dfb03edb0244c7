#include "app/QtPlatformChoice.h"

namespace mosswick::QtPlatformChoice {

QByteArray preferred(const std::function<QString(const char*)>& variable) {
    if (!variable("QT_QPA_PLATFORM").isEmpty() || variable("DISPLAY").isEmpty()) return {};
    return QByteArrayLiteral("xcb;wayland");
}

}  // namespace mosswick::QtPlatformChoice

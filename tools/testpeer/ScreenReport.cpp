#include "ScreenReport.h"

#include <QGuiApplication>
#include <QJsonArray>
#include <QScreen>

#include "XcbCalls.h"

namespace mosswick::testpeer {

namespace {
QJsonArray rectangle(const QRect& rect) { return {rect.x(), rect.y(), rect.width(), rect.height()}; }
}  // namespace

QJsonObject screenReport() {
    QJsonArray screens;
    for (const QScreen* screen : QGuiApplication::screens())
        screens.append(QJsonObject{{QStringLiteral("name"), screen->name()},
                                   {QStringLiteral("geometry"), rectangle(screen->geometry())},
                                   {QStringLiteral("available"), rectangle(screen->availableGeometry())},
                                   {QStringLiteral("ratio"), screen->devicePixelRatio()}});
    QJsonObject report{{QStringLiteral("screens"), screens},
                       {QStringLiteral("primary"), QGuiApplication::primaryScreen()->name()}};
    if (xcb_connection_t* connection = XcbCalls::qtConnection()) {
        const auto root = XcbCalls::rootWindow(connection);
        report[QStringLiteral("compositor")] =
            XcbCalls::selectionOwner(connection, XcbCalls::atom(connection, "_NET_WM_CM_S0")) != 0;
        if (const auto area =
                XcbCalls::property(connection, root, XcbCalls::atom(connection, "_NET_WORKAREA"))) {
            const QList<uint32_t> values = XcbCalls::cardinals(*area).mid(0, 4);
            QJsonArray workArea;
            for (const uint32_t value : values) workArea.append(static_cast<qint64>(value));
            report[QStringLiteral("workarea")] = workArea;
        }
    }
    return report;
}

}  // namespace mosswick::testpeer

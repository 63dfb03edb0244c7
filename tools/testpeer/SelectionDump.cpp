#include "SelectionDump.h"

#include <QJsonArray>

namespace mosswick::testpeer {

QJsonObject dumpSelection(SelectionReader& reader, XcbCalls::Atom selection,
                          const QList<XcbCalls::Atom>& targets, uint32_t time, int timeoutMs,
                          const QList<QByteArray>& skip) {
    QJsonArray names;
    QJsonArray refused;
    QJsonObject data;
    QJsonObject types;
    for (const XcbCalls::Atom target : targets) {
        const QByteArray name = reader.atomName(target);
        names.append(QString::fromLatin1(name));
        if (skip.contains(name)) continue;
        if (const auto reply = reader.read(selection, target, time, timeoutMs)) {
            data[QString::fromLatin1(name)] = QString::fromLatin1(reply->data.toBase64());
            types[QString::fromLatin1(name)] = QString::fromLatin1(reply->type);
        } else {
            refused.append(QString::fromLatin1(name));
        }
    }
    return {{QStringLiteral("targets"), names},
            {QStringLiteral("data"), data},
            {QStringLiteral("types"), types},
            {QStringLiteral("refused"), refused}};
}

}  // namespace mosswick::testpeer

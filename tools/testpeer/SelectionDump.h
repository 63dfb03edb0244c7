#pragma once

#include <QJsonObject>
#include <QList>

#include "SelectionReader.h"

namespace mosswick::testpeer {

// Every target of a selection read as it is: {"targets": [names in order], "data": {name:
// base64}, "types": {name: the type the owner answered with}, "refused": [names]}. Targets in
// `skip` are listed but not read (XdndDirectSave0 would make the source write its file).
QJsonObject dumpSelection(SelectionReader& reader, XcbCalls::Atom selection,
                          const QList<XcbCalls::Atom>& targets, uint32_t time, int timeoutMs,
                          const QList<QByteArray>& skip);

}  // namespace mosswick::testpeer

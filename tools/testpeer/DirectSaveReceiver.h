#pragma once

#include <QJsonObject>
#include <filesystem>

#include "DropTargetEvents.h"
#include "SelectionReader.h"

namespace mosswick::testpeer {

// The target's side of an X Direct Save: takes the name the source proposes, writes a file:// URI
// in `folder` back on the source window, asks for XdndDirectSave0 and records the source's reply
// ("S", "E", "F" or none), the files the folder then holds (a source may pick its own name) and
// the bytes of the file it asked for.
QJsonObject receivePromise(SelectionReader& reader, const DropTargetEvents::Offer& offer,
                           const std::filesystem::path& folder, int timeoutMs);

}  // namespace mosswick::testpeer

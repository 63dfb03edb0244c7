#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

namespace mosswick {

// The names of the files ingestion writes for links, images and text, and of the files it asks
// drag sources to deliver. Each is one plain name: it never holds a "/" or a NUL, is never "."
// or "..", and is short enough to be created beside the temporary name of an atomic write.
namespace DroppedFileNames {

// The longest name in bytes (the file system allows 255; an atomic write needs room beside it).
constexpr qsizetype kMaxNameBytes = 200;

// The title trimmed, "/" and ":" turned into "-", "Untitled" if nothing is left; ".desktop".
QString forLink(const QString& title);

// From the first non-empty line: its first 40 characters, trimmed, "/" and ":" turned into "-",
// "Untitled" if nothing is left; ".txt". A text without any line gives "Text.txt".
QString forText(const QString& text);

// "Image 2024-05-01 at 13.07.09.png", in the moment's own time zone.
QString forImage(const QDateTime& moment);
// "Document " and the same moment, ".pdf".
QString forDocument(const QDateTime& moment);

// The proposed name made safe: "/" and NUL turned into "-", surrounding blanks dropped. With
// nothing usable left, "Incoming" and the type's usual extension ("Incoming.pdf"), or "Incoming"
// alone for a type without one (the generic data type among them).
QByteArray forPromise(const QByteArray& proposed, const QString& mimeType);

// Cuts a name down to kMaxNameBytes, keeping a short extension and whole UTF-8 characters.
QByteArray fitted(const QByteArray& name);

}  // namespace DroppedFileNames
}  // namespace mosswick

#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace mosswick {

// What a pasteboard type carries, as ingestion reads it.
enum class PasteboardContent {
    files,        // file URLs (and other URLs) in a list
    filePromise,  // a file the source writes once the drop is taken
    link,         // a web link with its title
    image,
    document,  // PDF
    richText,
    text,
};

// One type name Linux programs offer, and where Mosswick takes it.
struct PasteboardType {
    QString name;
    PasteboardContent content;
    bool takenOnDrop;         // the shelf lights up for it and ingests it when dropped
    bool takenFromClipboard;  // it makes the clipboard worth importing
};

// Every pasteboard type Mosswick reads, in one table, matched in one way: the shelf's drop target,
// the drag monitor, clipboard import and the pasteboard readers all ask here, so a type one of
// them takes cannot be missed by another.
namespace PasteboardTypes {

inline const QString fileList = QStringLiteral("text/uri-list");
inline const QString directSave = QStringLiteral("XdndDirectSave0");

// In order of preference within each content.
const std::vector<PasteboardType>& all();
// The names carrying `content`, in order of preference.
QStringList names(PasteboardContent content);

// Drags and clipboards vary the case of a name and the blanks around its parameters
// ("text/plain; charset=UTF-8"): both are ignored. Parameters themselves count (a UTF-16 text is
// not a UTF-8 one).
bool same(const QString& offered, const QString& name);
// The offered spelling of `name`, when it is offered.
std::optional<QString> find(const QStringList& offered, const QString& name);

// The shelf takes a drop offering any of these (and lights up for it).
bool takenOnDrop(const QStringList& offered);
// A drag offering these is worth bringing the shelf up for: files, links and promised files.
// Text, images and documents alone are not (selecting text by dragging would bring it up).
bool bringsShelfUp(const QStringList& offered);
// The clipboard holds something worth importing; looser than ingestion.
bool takenFromClipboard(const QStringList& offered);

}  // namespace PasteboardTypes
}  // namespace mosswick

#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

#include "model/ShelfItem.h"

namespace mosswick {

// Why the shelf refuses a drop it has read, if it does. A drop is taken only when everything the
// shelf would keep of it can be read: a source told its drop was taken may delete its original (a
// move), so taking a drop whose data never arrived, or a file the shelf cannot copy, could lose
// the file. Refused, the source keeps it. Seen under KDE on Wayland, where a window the compositor
// did not activate gets a drop that names its types but carries no data.
namespace DropRefusal {

// Whether an item's data can be read now: a file or folder of the drop must be readable (a folder
// also searchable) by us; what the shelf wrote itself (texts, links, images) and files still to
// be delivered by their source always count as readable.
bool isReadable(const ShelfItem& item);

// Nothing when the drop is taken; else the reason, for the log. `offered`: the types the drop
// named; `items`: what ingestion made of it.
std::optional<QString> reason(const QStringList& offered, const std::vector<ShelfItem>& items,
                              const std::function<bool(const ShelfItem&)>& readable = isReadable);

}  // namespace DropRefusal
}  // namespace mosswick

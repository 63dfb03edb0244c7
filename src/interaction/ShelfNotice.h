#pragma once

#include <QString>

#include "model/ShelfStore.h"

namespace mosswick {

// The words of what the shelf tells about itself: that its saved list was lost and rebuilt, or
// that it cannot save. Empty for no notice.
namespace ShelfNotice {

QString text(ShelfStore::Notice notice, const QString& detail);

// The system's own words at the end of a file operation's error ("write /path: No space left on
// device" gives "No space left on device"), which is what the user can act on.
QString reasonIn(const QString& error);

}  // namespace ShelfNotice
}  // namespace mosswick

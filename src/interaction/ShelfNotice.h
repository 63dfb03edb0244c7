#pragma once

#include <QString>

#include "model/ShelfStore.h"

namespace mosswick {

// The words of what the shelf tells about itself: that its saved list was lost and rebuilt, or
// that it cannot save. Empty for no notice.
namespace ShelfNotice {

QString text(ShelfStore::Notice notice, const QString& detail);

}  // namespace ShelfNotice
}  // namespace mosswick

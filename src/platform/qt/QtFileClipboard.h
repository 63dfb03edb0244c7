#pragma once

#include "interaction/FileClipboard.h"

namespace mosswick {

// The clipboard in the three forms Linux programs read copied files in: a URI list for most,
// GNOME's own list (which says "copy", so file managers paste copies) and the paths as text.
class QtFileClipboard final : public FileClipboard {
public:
    void putFiles(const std::vector<QUrl>& locations) override;
};

}  // namespace mosswick

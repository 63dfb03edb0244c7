#pragma once

#include <QUrl>
#include <vector>

namespace mosswick {

// Puts files on the clipboard so that a file manager pastes copies and a text field the paths.
class FileClipboard {
public:
    virtual ~FileClipboard() = default;
    virtual void putFiles(const std::vector<QUrl>& locations) = 0;
};

}  // namespace mosswick

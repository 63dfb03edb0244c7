#pragma once

#include <QUrl>
#include <vector>

namespace mosswick {

// The desktop's own handling of files: the default application and the file manager.
class Workspace {
public:
    virtual ~Workspace() = default;
    // Opens one file or folder with the application the desktop chose for its type.
    virtual void open(const QUrl& location) = 0;
    // Shows the files selected in the file manager, all in one window where it can.
    virtual void reveal(const std::vector<QUrl>& locations) = 0;
};

// Puts files on the clipboard so that a file manager pastes copies and a text field the paths.
class FileClipboard {
public:
    virtual ~FileClipboard() = default;
    virtual void putFiles(const std::vector<QUrl>& locations) = 0;
};

}  // namespace mosswick

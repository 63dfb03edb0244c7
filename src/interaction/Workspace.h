#pragma once

#include <QUrl>
#include <vector>

namespace mosswick {

// The desktop's way to open a file with its default application and to show files in the file
// manager.
class Workspace {
public:
    virtual ~Workspace() = default;
    virtual void open(const QUrl& file) = 0;
    // Shows the files together, selected, in the file manager's window of their folder.
    virtual void reveal(const std::vector<QUrl>& files) = 0;
};

// Where no desktop answers (headless runs): nothing opens.
class NoWorkspace final : public Workspace {
public:
    void open(const QUrl&) override {}
    void reveal(const std::vector<QUrl>&) override {}
};

}  // namespace mosswick

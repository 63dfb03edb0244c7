#pragma once

#include <QIcon>
#include <QString>
#include <filesystem>

namespace mosswick {

// The desktop's icons for kinds of file (the icon theme, by MIME type). Null icons where the
// desktop has none; whoever draws them has a fall-back of its own.
class WorkspaceIcons {
public:
    virtual ~WorkspaceIcons() = default;
    // The icon of a content type (a MIME type); `isLink` for items that stand for a web address.
    virtual QIcon iconForType(const QString& mimeType, bool isLink) = 0;
    // The icon of the file or folder at `path`, by its name; `mimeType` when the name tells nothing.
    virtual QIcon iconForFile(const std::filesystem::path& path, bool isDirectory,
                              const QString& mimeType) = 0;
};

// Has no icons at all: tiles draw their own glyphs.
class NoWorkspaceIcons final : public WorkspaceIcons {
public:
    QIcon iconForType(const QString&, bool) override { return {}; }
    QIcon iconForFile(const std::filesystem::path&, bool, const QString&) override { return {}; }
};

}  // namespace mosswick

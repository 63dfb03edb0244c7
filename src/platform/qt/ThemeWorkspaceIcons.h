#pragma once

#include "interaction/WorkspaceIcons.h"

namespace mosswick {

// The icon theme's icons, by MIME type: a file's type is told by its name alone, so drawing a tile
// never reads the file.
class ThemeWorkspaceIcons final : public WorkspaceIcons {
public:
    QIcon iconForType(const QString& mimeType, bool isLink) override;
    QIcon iconForFile(const std::filesystem::path& path, bool isDirectory, const QString& mimeType) override;
};

}  // namespace mosswick

#pragma once

#include <QDBusConnection>

#include "interaction/Workspace.h"

namespace mosswick {

// Opens files with the desktop's default application, and reveals them through the file
// manager's D-Bus service, falling back to opening the folder that holds them.
class FreedesktopWorkspace final : public Workspace {
public:
    explicit FreedesktopWorkspace(const QDBusConnection& bus);

    void open(const QUrl& location) override;
    void reveal(const std::vector<QUrl>& locations) override;

private:
    QDBusConnection bus_;
};

}  // namespace mosswick

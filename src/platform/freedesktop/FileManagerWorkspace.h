#pragma once

#include <QDBusConnection>
#include <QObject>
#include <functional>

#include "interaction/Workspace.h"

namespace mosswick {

// Opens files with the desktop's default application and shows them in the file manager through
// its D-Bus interface (org.freedesktop.FileManager1, which Thunar, Nautilus, Dolphin, Nemo and
// PCManFM-Qt serve), falling back to opening their folders where no file manager answers.
class FileManagerWorkspace final : public QObject, public Workspace {
    Q_OBJECT

public:
    // How a URL is opened; the desktop's default application unless a test replaces it.
    using Opener = std::function<void(const QUrl&)>;

    explicit FileManagerWorkspace(const QDBusConnection& bus, Opener opener = {}, QObject* parent = nullptr);

    void open(const QUrl& file) override;
    void reveal(const std::vector<QUrl>& files) override;

private:
    void openFolders(const std::vector<QUrl>& files);

    QDBusConnection bus_;
    Opener opener_;
};

}  // namespace mosswick

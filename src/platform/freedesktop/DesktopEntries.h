#pragma once

#include <QDateTime>
#include <QFileSystemWatcher>
#include <QObject>
#include <QStringList>
#include <QThreadPool>
#include <memory>

#include "settings/ApplicationCatalog.h"
#include "triggers/InstalledApplications.h"

namespace mosswick {

// The installed desktop entries: the applications the ignore list offers (read afresh when
// asked, which takes a few milliseconds), and their window classes, read from the XDG application folders on
// a thread of their own when first asked for, and kept until a folder changes (or, for folders that did not
// exist to be watched, for a few minutes). Only the first question waits, briefly, for its reading; later
// ones answer from the last reading while a new one runs.
class DesktopEntries final : public QObject, public InstalledApplications, public ApplicationCatalog {
    Q_OBJECT

public:
    static constexpr int kRereadAfterSeconds = 300;
    static constexpr int kFirstReadingWaitMs = 250;

    // `folders` are "applications" folders, those that take precedence first.
    explicit DesktopEntries(QStringList folders);
    ~DesktopEntries() override;

    // $XDG_DATA_HOME/applications, then each of $XDG_DATA_DIRS/applications.
    static QStringList defaultFolders();

    // Reads now, on the calling thread. An id found in an earlier folder hides the same id
    // further on; ids of entries in subfolders join the path with "-".
    static std::vector<WindowClassEntry> read(const QStringList& folders);

    // The entries shown in menus (not Hidden, not NoDisplay), named in the user's language.
    static std::vector<InstalledApplication> applications(const QStringList& folders);
    std::vector<InstalledApplication> applications() override;

    std::vector<WindowClassEntry> windowClassEntries() override;
    void prepare() override;
    // Whether a reading has completed, and its folders are watched.
    bool hasRead() const;

private:
    struct Reading;

    void reread();
    void finished();

    const QStringList folders_;
    std::shared_ptr<Reading> reading_;
    QFileSystemWatcher watcher_;
    QDateTime startedAt_;
    bool inProgress_ = false;
    bool readAgain_ = false;
    QThreadPool pool_;
};

}  // namespace mosswick

#include "platform/freedesktop/DesktopEntries.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QLocale>
#include <QMutex>
#include <QSet>
#include <QStandardPaths>
#include <functional>

namespace mosswick {

struct DesktopEntries::Reading {
    mutable QMutex mutex;
    std::vector<WindowClassEntry> entries;
    QStringList watchedFolders;
    bool done = false;
};

namespace {

struct EntryKeys {
    QString type;
    QString windowClass;
    QString name;
    QString localizedName;
    QString icon;
    bool hidden = false;
    bool noDisplay = false;
};

// "Name[de_DE]", then "Name[de]", as the user's language picks them.
QByteArrayList localizedNameKeys() {
    const QString locale = QLocale().name();
    QByteArrayList keys{QStringLiteral("Name[%1]").arg(locale).toUtf8()};
    const qsizetype underscore = locale.indexOf(QLatin1Char('_'));
    if (underscore > 0) keys << QStringLiteral("Name[%1]").arg(locale.left(underscore)).toUtf8();
    return keys;
}

// Only the [Desktop Entry] group counts, and only its unlocalised keys.
EntryKeys keysOf(const QString& path, const QByteArrayList& nameKeys = {}) {
    EntryKeys keys;
    int localizedRank = nameKeys.size();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return keys;
    bool inMainGroup = false;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine().trimmed();
        if (line.isEmpty() || line.startsWith('#')) continue;
        if (line.startsWith('[')) {
            if (inMainGroup) break;
            inMainGroup = line == "[Desktop Entry]";
            continue;
        }
        if (!inMainGroup) continue;
        const qsizetype equals = line.indexOf('=');
        if (equals < 0) continue;
        const QByteArray key = line.left(equals).trimmed();
        const QString value = QString::fromUtf8(line.mid(equals + 1).trimmed());
        if (key == "Type")
            keys.type = value;
        else if (key == "StartupWMClass")
            keys.windowClass = value;
        else if (key == "Hidden")
            keys.hidden = value == QLatin1String("true");
        else if (key == "NoDisplay")
            keys.noDisplay = value == QLatin1String("true");
        else if (key == "Name")
            keys.name = value;
        else if (key == "Icon")
            keys.icon = value;
        else if (const int rank = static_cast<int>(nameKeys.indexOf(key));
                 rank >= 0 && rank < localizedRank) {
            localizedRank = rank;
            keys.localizedName = value;
        }
    }
    return keys;
}

// The desktop-file id: the path below the applications folder, "/" made "-", without ".desktop".
QString desktopIdOf(const QDir& folder, const QString& path) {
    QString id = folder.relativeFilePath(path);
    id.chop(8);
    id.replace(QLatin1Char('/'), QLatin1Char('-'));
    return id;
}

// Calls `visit(id, file)` for each desktop entry of the folders, in order; an id seen in an
// earlier folder hides the later entries of that id, as the desktop's own lookup does.
void forEachEntry(const QStringList& folders,
                  const std::function<void(const QString&, const QString&)>& visit) {
    QSet<QString> seen;
    for (const QString& path : folders) {
        const QDir folder(path);
        QDirIterator files(path, {QStringLiteral("*.desktop")}, QDir::Files,
                           QDirIterator::Subdirectories | QDirIterator::FollowSymlinks);
        while (files.hasNext()) {
            const QString file = files.next();
            const QString id = desktopIdOf(folder, file);
            if (seen.contains(id)) continue;
            seen.insert(id);
            visit(id, file);
        }
    }
}

// The folders and their subfolders, for the watcher.
QStringList foldersBelow(const QStringList& folders) {
    QStringList found;
    for (const QString& folder : folders) {
        if (!QFileInfo(folder).isDir()) continue;
        found << folder;
        QDirIterator below(folder, QDir::Dirs | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
        while (below.hasNext()) found << below.next();
    }
    return found;
}

}  // namespace

DesktopEntries::DesktopEntries(QStringList folders)
    : folders_(std::move(folders)), reading_(std::make_shared<Reading>()) {
    pool_.setMaxThreadCount(1);
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, &DesktopEntries::reread);
}

DesktopEntries::~DesktopEntries() { pool_.waitForDone(); }

QStringList DesktopEntries::defaultFolders() {
    QStringList folders;
    for (const QString& data : QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation))
        folders << QDir(data).filePath(QStringLiteral("applications"));
    return folders;
}

std::vector<WindowClassEntry> DesktopEntries::read(const QStringList& folders) {
    std::vector<WindowClassEntry> entries;
    forEachEntry(folders, [&](const QString& id, const QString& file) {
        const EntryKeys keys = keysOf(file);
        if (keys.hidden || keys.type != QLatin1String("Application") || keys.windowClass.isEmpty()) return;
        entries.push_back({id, keys.windowClass});
    });
    return entries;
}

std::vector<InstalledApplication> DesktopEntries::applications(const QStringList& folders) {
    const QByteArrayList nameKeys = localizedNameKeys();
    std::vector<InstalledApplication> found;
    forEachEntry(folders, [&](const QString& id, const QString& file) {
        const EntryKeys keys = keysOf(file, nameKeys);
        if (keys.hidden || keys.noDisplay || keys.type != QLatin1String("Application")) return;
        const QString name = !keys.localizedName.isEmpty() ? keys.localizedName
                             : !keys.name.isEmpty()        ? keys.name
                                                           : id;
        found.push_back({id, name, keys.icon});
    });
    return found;
}

std::vector<InstalledApplication> DesktopEntries::applications() { return applications(folders_); }

std::vector<WindowClassEntry> DesktopEntries::windowClassEntries() {
    const bool firstTime = !hasRead();
    // Folders created after the last reading have no watch on them yet.
    if (!startedAt_.isValid() ||
        (!inProgress_ && startedAt_.secsTo(QDateTime::currentDateTimeUtc()) >= kRereadAfterSeconds))
        reread();
    // So the first drag from a program known only by its window class is not missed.
    if (firstTime) pool_.waitForDone(kFirstReadingWaitMs);
    const QMutexLocker lock(&reading_->mutex);
    return reading_->entries;
}

void DesktopEntries::prepare() {
    if (!startedAt_.isValid()) reread();
}

bool DesktopEntries::hasRead() const {
    const QMutexLocker lock(&reading_->mutex);
    return reading_->done;
}

void DesktopEntries::reread() {
    if (inProgress_) {
        readAgain_ = true;
        return;
    }
    inProgress_ = true;
    startedAt_ = QDateTime::currentDateTimeUtc();
    pool_.start([this, reading = reading_, folders = folders_] {
        std::vector<WindowClassEntry> entries = read(folders);
        const QStringList watched = foldersBelow(folders);
        {
            const QMutexLocker lock(&reading->mutex);
            reading->entries = std::move(entries);
            reading->watchedFolders = watched;
        }
        // The destructor waits for this task, so the object is still there to be posted to.
        QMetaObject::invokeMethod(this, &DesktopEntries::finished, Qt::QueuedConnection);
    });
}

void DesktopEntries::finished() {
    inProgress_ = false;
    QStringList watched;
    {
        const QMutexLocker lock(&reading_->mutex);
        watched = reading_->watchedFolders;
        reading_->done = true;
    }
    if (!watcher_.directories().isEmpty()) watcher_.removePaths(watcher_.directories());
    if (!watched.isEmpty()) watcher_.addPaths(watched);
    if (readAgain_) {
        readAgain_ = false;
        reread();
    }
}

}  // namespace mosswick

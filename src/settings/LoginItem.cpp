#include "settings/LoginItem.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <cerrno>
#include <cstring>

#include "model/AtomicFile.h"

namespace mosswick {

namespace {

const QString kFileName = QStringLiteral("mosswick.desktop");

// The words after the last ": " of a file error ("create /x/.y.tmp: Permission denied"), which
// are the system's reason without our temporary file's name.
QString reasonOf(const std::string& failure) {
    const QString text = QString::fromLocal8Bit(failure.c_str());
    const qsizetype colon = text.lastIndexOf(QLatin1String(": "));
    return colon < 0 ? text : text.mid(colon + 2);
}

QString withFolder(const QString& reason, const QString& folder) {
    return QStringLiteral("%1 (%2)").arg(reason, QDir::toNativeSeparators(folder));
}

}  // namespace

XdgAutostartEntry::XdgAutostartEntry(QString folder, QString executable)
    : folder_(std::move(folder)), executable_(std::move(executable)) {}

QString XdgAutostartEntry::defaultFolder() {
    return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation))
        .filePath(QStringLiteral("autostart"));
}

QString XdgAutostartEntry::installedExecutable() {
    // An AppImage runs from a mount that is gone after the session; its own file stays.
    const QString appImage = qEnvironmentVariable("APPIMAGE");
    if (!appImage.isEmpty() && QFileInfo(appImage).isFile()) return appImage;
    return QCoreApplication::applicationFilePath();
}

QString XdgAutostartEntry::path() const { return QDir(folder_).filePath(kFileName); }

QString XdgAutostartEntry::execArgument(const QString& executable) {
    static const QString plain =
        QStringLiteral("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._-+,@");
    bool needsQuotes = executable.isEmpty();
    for (const QChar c : executable)
        if (!plain.contains(c)) needsQuotes = true;
    if (!needsQuotes) return executable;
    // Inside quotes, ", `, $ and \ take a backslash; then the value's own escaping doubles every
    // backslash once more.
    QString quoted;
    for (const QChar c : executable) {
        if (c == QLatin1Char('"') || c == QLatin1Char('`') || c == QLatin1Char('$') || c == QLatin1Char('\\'))
            quoted += QLatin1Char('\\');
        quoted += c;
    }
    quoted.replace(QLatin1String("\\"), QLatin1String("\\\\"));
    // A percent sign is a field code unless doubled.
    quoted.replace(QLatin1String("%"), QLatin1String("%%"));
    return QStringLiteral("\"%1\"").arg(quoted);
}

QByteArray XdgAutostartEntry::contents(const QString& executable) {
    QString text = QStringLiteral(
        "[Desktop Entry]\n"
        "Type=Application\n"
        "Version=1.0\n"
        "Name=Mosswick\n"
        "Comment=A place to put a file down mid-drag\n"
        "Icon=mosswick\n"
        "Terminal=false\n"
        "NoDisplay=true\n"
        "X-GNOME-Autostart-enabled=true\n");
    text += QStringLiteral("Exec=%1\n").arg(execArgument(executable));
    return text.toUtf8();
}

bool XdgAutostartEntry::isEnabled() const {
    QFile file(path());
    if (!file.open(QIODevice::ReadOnly)) return false;
    bool inMainGroup = false;
    bool sawMainGroup = false;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine().trimmed();
        if (line.startsWith('[')) {
            inMainGroup = line == "[Desktop Entry]";
            sawMainGroup |= inMainGroup;
            continue;
        }
        if (!inMainGroup) continue;
        const qsizetype equals = line.indexOf('=');
        if (equals < 0) continue;
        const QByteArray key = line.left(equals).trimmed();
        const QByteArray value = line.mid(equals + 1).trimmed();
        if (key == "Hidden" && value == "true") return false;
        if (key == "X-GNOME-Autostart-enabled" && value == "false") return false;
    }
    return sawMainGroup;
}

QString XdgAutostartEntry::setEnabled(bool enabled) {
    if (!enabled) {
        QFile file(path());
        if (!file.exists() || file.remove()) return {};
        return withFolder(file.errorString(), folder_);
    }
    if (!QDir().mkpath(folder_)) {
        // mkpath says nothing of why; the nearest folder that exists is where it stopped.
        return withFolder(QStringLiteral("The folder could not be created"), folder_);
    }
    const std::string failure =
        AtomicFile::write(QFile::encodeName(path()).toStdString(), contents(executable_), 0644);
    if (failure.empty()) return {};
    return withFolder(reasonOf(failure), folder_);
}

void LoginItemState::refresh() {
    launchAtLogin_ = item_.isEnabled();
    needsApproval_ = !launchAtLogin_ && item_.needsApproval();
}

void LoginItemState::apply(bool enabled) {
    const QString failure = item_.setEnabled(enabled);
    error_ = failure.isEmpty() ? QString() : QStringLiteral("Couldn't change the login item: ") + failure;
    refresh();
}

}  // namespace mosswick

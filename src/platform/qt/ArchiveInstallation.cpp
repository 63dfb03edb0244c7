#include "platform/qt/ArchiveInstallation.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdio>
#include <memory>
#include <unistd.h>

namespace mosswick {

namespace {
const char* const kMarker = "/share/mosswick/installed-from-archive";
constexpr int kUnpackTimeoutMs = 60000;
}  // namespace

std::unique_ptr<ArchiveInstallation> ArchiveInstallation::ofThisProcess() {
    const QString prefix = QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/.."));
    if (!QFileInfo::exists(prefix + QLatin1String(kMarker))) return nullptr;
    return std::make_unique<ArchiveInstallation>(prefix);
}

ArchiveInstallation::ArchiveInstallation(QString prefix) : prefix_(std::move(prefix)) {}

QString ArchiveInstallation::binary() const { return prefix_ + QStringLiteral("/bin/mosswick"); }

QString ArchiveInstallation::install(const QByteArray& archive) {
    // Inside the prefix, so the final rename stays on one file system.
    QTemporaryDir unpacked(prefix_ + QStringLiteral("/share/mosswick/update-XXXXXX"));
    if (!unpacked.isValid())
        return QStringLiteral("no room to unpack the update: %1.").arg(unpacked.errorString());
    QFile file(unpacked.filePath(QStringLiteral("update.tar.gz")));
    if (!file.open(QIODevice::WriteOnly) || file.write(archive) != archive.size() || !file.flush())
        return QStringLiteral("could not write the update: %1.").arg(file.errorString());
    file.close();
    QProcess tar;
    tar.start(QStringLiteral("tar"), {QStringLiteral("-xzf"), file.fileName(), QStringLiteral("-C"),
                                      unpacked.path(), QStringLiteral("--no-same-owner")});
    if (!tar.waitForFinished(kUnpackTimeoutMs) || tar.exitStatus() != QProcess::NormalExit ||
        tar.exitCode() != 0)
        return QStringLiteral("the update could not be unpacked.");
    QString top;
    for (const QFileInfo& entry : QDir(unpacked.path()).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot))
        if (QFileInfo(entry.filePath() + QStringLiteral("/bin/mosswick")).isExecutable())
            top = entry.filePath();
    if (top.isEmpty()) return QStringLiteral("the update holds no Mosswick.");

    // The shared files first (icons, manual, completions): a failure there leaves the old binary.
    QDirIterator shared(top + QStringLiteral("/share"), QDir::Files, QDirIterator::Subdirectories);
    while (shared.hasNext()) {
        const QString from = shared.next();
        const QString to = prefix_ + from.mid(top.size());
        QDir().mkpath(QFileInfo(to).path());
        if (::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) != 0)
            return QStringLiteral("could not replace %1.").arg(to);
    }
    const QByteArray current = QFile::encodeName(binary());
    const QByteArray old = current + ".old";
    const QByteArray next = QFile::encodeName(top + QStringLiteral("/bin/mosswick"));
    ::unlink(old.constData());
    if (::link(current.constData(), old.constData()) != 0)
        return QStringLiteral("could not keep the running copy aside.");
    if (::rename(next.constData(), current.constData()) != 0)  // atomic: the old binary or the new one
        return QStringLiteral("could not put the new copy in place.");
    return {};
}

void ArchiveInstallation::restart() {
    // A second Mosswick hands over to the running one, so the new one starts only once this is gone.
    const QString wait = QStringLiteral("while kill -0 %1 2>/dev/null; do sleep 0.1; done; exec \"$0\"")
                             .arg(QCoreApplication::applicationPid());
    QProcess::startDetached(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), wait, binary()});
    QCoreApplication::quit();
}

void ArchiveInstallation::removePreviousCopy() const { QFile::remove(binary() + QStringLiteral(".old")); }

}  // namespace mosswick

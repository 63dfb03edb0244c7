#include "interaction/Thumbnailers.h"

#include <signal.h>
#include <unistd.h>

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <set>

#include "interaction/ThumbnailFolder.h"
#include "model/LocalPath.h"

namespace mosswick {

namespace {

constexpr int kPollMilliseconds = 50;
// More than any thumbnail could need; a larger output is not read.
constexpr qint64 kLargestOutput = 64 * 1024 * 1024;

// The value escapes of a desktop entry's strings.
QString unescapeValue(const QString& value) {
    QString out;
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value[i] != QLatin1Char('\\') || i + 1 == value.size()) {
            out += value[i];
            continue;
        }
        const QChar next = value[++i];
        if (next == QLatin1Char('s'))
            out += QLatin1Char(' ');
        else if (next == QLatin1Char('n'))
            out += QLatin1Char('\n');
        else if (next == QLatin1Char('t'))
            out += QLatin1Char('\t');
        else if (next == QLatin1Char('r'))
            out += QLatin1Char('\r');
        else if (next == QLatin1Char('\\'))
            out += QLatin1Char('\\');
        else
            out += QLatin1Char('\\') + next;
    }
    return out;
}

// The extension a thumbnailer may go by to tell the type, kept only when it is plain ASCII.
std::string plainExtension(const std::filesystem::path& file) {
    const std::string extension = file.extension().native();
    if (extension.size() > 16) return {};
    for (const char c : extension) {
        const bool plain =
            (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.';
        if (!plain) return {};
    }
    return extension;
}

}  // namespace

std::optional<Thumbnailer> Thumbnailer::parse(const QByteArray& text) {
    Thumbnailer thumbnailer;
    bool inEntry = false;
    for (const QByteArray& rawLine : text.split('\n')) {
        const QString line = QString::fromUtf8(rawLine).trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#'))) continue;
        if (line.startsWith(QLatin1Char('['))) {
            inEntry = line == QLatin1String("[Thumbnailer Entry]");
            continue;
        }
        if (!inEntry) continue;
        const qsizetype equals = line.indexOf(QLatin1Char('='));
        if (equals < 0) continue;
        const QString key = line.left(equals).trimmed();
        const QString value = unescapeValue(line.mid(equals + 1).trimmed());
        if (key == QLatin1String("Exec"))
            thumbnailer.exec = value;
        else if (key == QLatin1String("TryExec"))
            thumbnailer.tryExec = value;
        else if (key == QLatin1String("MimeType"))
            thumbnailer.mimeTypes = value.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    }
    if (thumbnailer.exec.isEmpty() || thumbnailer.mimeTypes.isEmpty()) return std::nullopt;
    return thumbnailer;
}

std::vector<std::filesystem::path> Thumbnailers::defaultFolders() {
    std::vector<std::filesystem::path> folders;
    for (const QString& data : QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation))
        folders.push_back(LocalPath::fromBytes(QFile::encodeName(data)) / "thumbnailers");
    return folders;
}

Thumbnailers Thumbnailers::load(const std::vector<std::filesystem::path>& folders) {
    std::vector<Thumbnailer> installed;
    for (const std::filesystem::path& folder : folders) {
        std::error_code error;
        std::set<std::filesystem::path> files;  // in name order, as every desktop reads them
        for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
            if (entry.path().extension() == ".thumbnailer") files.insert(entry.path());
        }
        for (const std::filesystem::path& file : files) {
            QFile reader(QFile::decodeName(LocalPath::bytes(file)));
            if (!reader.open(QIODevice::ReadOnly)) continue;
            auto thumbnailer = Thumbnailer::parse(reader.read(1024 * 1024));
            if (!thumbnailer) {
                qCInfo(lcPreviews) << "thumbnailer without Exec or MIME types ignored:" << file.c_str();
                continue;
            }
            const QString program =
                thumbnailer->tryExec.isEmpty()
                    ? expand(thumbnailer->exec, {}).value_or(QStringList{QString()}).value(0)
                    : thumbnailer->tryExec;
            // An absolute path is found as it is when it can be run.
            if (program.isEmpty() || QStandardPaths::findExecutable(program).isEmpty()) continue;
            installed.push_back(std::move(*thumbnailer));
        }
    }
    return Thumbnailers(std::move(installed));
}

const Thumbnailer* Thumbnailers::forType(const QString& mimeType) const {
    for (const Thumbnailer& thumbnailer : installed_) {
        if (thumbnailer.mimeTypes.contains(mimeType, Qt::CaseInsensitive)) return &thumbnailer;
    }
    return nullptr;
}

std::optional<QStringList> Thumbnailers::expand(const QString& exec, const ThumbnailerArguments& arguments) {
    // Split first, then expand inside each word: what a code stands for is never split again.
    QStringList words;
    QString word;
    bool inWord = false;
    bool quoted = false;
    for (qsizetype i = 0; i < exec.size(); ++i) {
        const QChar c = exec[i];
        if (quoted) {
            if (c == QLatin1Char('"'))
                quoted = false;
            else if (c == QLatin1Char('\\') && i + 1 < exec.size())
                word += exec[++i];
            else
                word += c;
        } else if (c == QLatin1Char(' ') || c == QLatin1Char('\t')) {
            if (inWord) words << word;
            word.clear();
            inWord = false;
        } else {
            inWord = true;
            if (c == QLatin1Char('"'))
                quoted = true;
            else
                word += c;
        }
    }
    if (quoted) return std::nullopt;
    if (inWord) words << word;
    if (words.isEmpty()) return std::nullopt;

    QStringList expanded;
    for (const QString& raw : words) {
        QString out;
        for (qsizetype i = 0; i < raw.size(); ++i) {
            if (raw[i] != QLatin1Char('%') || i + 1 == raw.size()) {
                out += raw[i];
                continue;
            }
            switch (raw[++i].unicode()) {
                case 'i':
                    out += arguments.input;
                    break;
                case 'o':
                    out += arguments.output;
                    break;
                case 'u':
                    out += arguments.uri;
                    break;
                case 's':
                    out += QString::number(arguments.size);
                    break;
                case '%':
                    out += QLatin1Char('%');
                    break;
                default:
                    break;  // codes of application entries mean nothing here
            }
        }
        expanded << out;
    }
    return expanded;
}

std::optional<QByteArray> Thumbnailers::run(const Thumbnailer& thumbnailer, const std::filesystem::path& file,
                                            const QByteArray& uri, int size, std::chrono::milliseconds limit,
                                            const std::atomic<bool>& cancelled) {
    QTemporaryDir folder;
    if (!folder.isValid()) return std::nullopt;
    const std::filesystem::path place = LocalPath::fromBytes(QFile::encodeName(folder.path()));
    const std::filesystem::path input = place / ("input" + plainExtension(file));
    std::error_code error;
    std::filesystem::create_symlink(std::filesystem::absolute(file, error), input, error);
    if (error) return std::nullopt;
    const QString output = folder.filePath(QStringLiteral("output.png"));
    const auto arguments = expand(thumbnailer.exec, {QFile::decodeName(LocalPath::bytes(input)), output,
                                                     QString::fromLatin1(uri), size});
    if (!arguments) return std::nullopt;

    QProcess process;
    process.setProgram(arguments->first());
    process.setArguments(arguments->mid(1));
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.setWorkingDirectory(folder.path());
    // A group of its own, so that a hung thumbnailer is killed with whatever it started.
    process.setChildProcessModifier([] { ::setpgid(0, 0); });
    process.start();
    if (!process.waitForStarted()) {
        qCInfo(lcPreviews) << "thumbnailer did not start:" << arguments->first();
        return std::nullopt;
    }
    const auto started = std::chrono::steady_clock::now();
    while (!process.waitForFinished(kPollMilliseconds)) {
        if (process.state() == QProcess::NotRunning) break;
        if (cancelled.load() || std::chrono::steady_clock::now() - started >= limit) {
            if (!cancelled.load())
                qCWarning(lcPreviews)
                    << "thumbnailer killed after" << limit.count() << "ms:" << arguments->first();
            // The leader is not reaped yet, so the group's id cannot have been reused.
            ::kill(-static_cast<pid_t>(process.processId()), SIGKILL);
            process.kill();
            process.waitForFinished();
            return std::nullopt;
        }
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) return std::nullopt;
    QFile result(output);
    if (!result.open(QIODevice::ReadOnly) || result.size() == 0 || result.size() > kLargestOutput)
        return std::nullopt;
    return result.readAll();
}

}  // namespace mosswick

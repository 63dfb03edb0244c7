#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <optional>
#include <vector>

namespace mosswick {

// One installed thumbnailer (a `.thumbnailer` file): the program it runs and the MIME types it
// pictures.
struct Thumbnailer {
    QString tryExec;
    QString exec;
    QStringList mimeTypes;

    // Nothing when the text has no `[Thumbnailer Entry]` with an Exec line and MIME types.
    static std::optional<Thumbnailer> parse(const QByteArray& text);
};

// What an Exec line's field codes stand for in one run.
struct ThumbnailerArguments {
    QString input;   // %i: the file's path
    QString output;  // %o: where the PNG is to be written
    QString uri;     // %u: the file's URI
    int size = 0;    // %s: the thumbnail's side in pixels
};

// The thumbnailers the desktop has installed, and one run of one of them. A run is a child
// process with its argument list built here, never a shell command line: nothing in a file's
// name is ever interpreted.
class Thumbnailers {
public:
    Thumbnailers() = default;
    explicit Thumbnailers(std::vector<Thumbnailer> installed) : installed_(std::move(installed)) {}

    // $XDG_DATA_HOME/thumbnailers, then each of $XDG_DATA_DIRS: the first folder to name a MIME
    // type wins.
    static std::vector<std::filesystem::path> defaultFolders();
    // Reads every `*.thumbnailer` in the folders; those whose program is not installed are left out.
    static Thumbnailers load(const std::vector<std::filesystem::path>& folders);

    const Thumbnailer* forType(const QString& mimeType) const;

    // The argument list of an Exec line (the desktop entry quoting rules), field codes expanded:
    // each code becomes part of the one argument it stands in, whatever characters it holds.
    // Nothing when the line is malformed (an unclosed quote) or empty.
    static std::optional<QStringList> expand(const QString& exec, const ThumbnailerArguments& arguments);

    // Runs `thumbnailer` on `file` for a picture `size` pixels wide, killing it when it runs past
    // `limit` or `cancelled` turns true. The bytes it wrote; nothing when it failed, hung or wrote
    // nothing. The program sees the file through a link of a plain name in a private folder, so a
    // name that is not UTF-8 reaches it intact.
    static std::optional<QByteArray> run(const Thumbnailer& thumbnailer, const std::filesystem::path& file,
                                         const QByteArray& uri, int size, std::chrono::milliseconds limit,
                                         const std::atomic<bool>& cancelled);

private:
    std::vector<Thumbnailer> installed_;
};

}  // namespace mosswick

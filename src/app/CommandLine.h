#pragma once

#include <QByteArray>
#include <QString>
#include <vector>

namespace mosswick {

// What `mosswick <command> …` asks of the running shelf. Arguments are bytes, as the kernel hands
// them over: a path is never decoded, so a name that is not UTF-8 reaches the shelf intact.
namespace CommandLine {

// The process's exit status, also written in the manual page.
enum class ExitCode : int {
    ok = 0,
    partly = 1,       // the command ran, but some paths or IDs could not be used
    usage = 2,        // an unknown command or option, or a missing operand
    unreachable = 3,  // no running shelf could be reached or started
};

enum class Verb { add, paste, show, hide, toggle, restore, clear, remove, quit, list };

struct Command {
    Verb verb = Verb::show;
    // add: paths (absolute once Command::absolute ran; "-" stands for standard input's paths);
    // remove: the IDs as written.
    std::vector<QByteArray> operands;
    bool json = false;  // list --json
};

// How one invocation is to be handled.
struct Invocation {
    enum class Kind {
        launch,   // no command: start the shelf, or summon the running one
        help,     // print helpText()
        version,  // print the version
        command,  // send `command` to the shelf
        usageError,
    };
    Kind kind = Kind::launch;
    Command command;
    QString error;  // for usageError: one line, no program name, no newline
};

// `arguments` without the program name. A first argument that does not start with "-" names a
// command; "--help"/"-h" and "--version"/"-v" stand alone; anything else is left to the launch.
Invocation parse(const std::vector<QByteArray>& arguments);

// The command as words again, for the wire: the verb, then its options and operands.
std::vector<QByteArray> toArguments(const Command& command);

// Whether the command needs a shelf, which is started when none runs. `hide` and `quit` have
// nothing to do without one.
bool needsShelf(Verb verb);

// Paths for `add -`: NUL-separated when the input holds a NUL, else one a line. Empty entries
// are dropped; nothing else is touched (a name may end in a blank or hold a carriage return).
std::vector<QByteArray> splitPathList(const QByteArray& input);

// `path` taken from `workingFolder` unless it is absolute; bytes kept as they are.
QByteArray absolutePath(const QByteArray& path, const QByteArray& workingFolder);

// The usage text for --help.
QString helpText();

}  // namespace CommandLine
}  // namespace mosswick

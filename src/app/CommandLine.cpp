#include "app/CommandLine.h"

#include <array>
#include <utility>

#include "model/ShelfItem.h"

namespace mosswick::CommandLine {

namespace {

struct VerbName {
    Verb verb;
    const char* name;
};

constexpr std::array kVerbs{
    VerbName{Verb::add, "add"},     VerbName{Verb::paste, "paste"},   VerbName{Verb::show, "show"},
    VerbName{Verb::hide, "hide"},   VerbName{Verb::toggle, "toggle"}, VerbName{Verb::restore, "restore"},
    VerbName{Verb::clear, "clear"}, VerbName{Verb::remove, "remove"}, VerbName{Verb::quit, "quit"},
    VerbName{Verb::list, "list"},
};

const char* nameOf(Verb verb) {
    for (const VerbName& entry : kVerbs)
        if (entry.verb == verb) return entry.name;
    return "";
}

Invocation usageError(QString text) {
    Invocation invocation;
    invocation.kind = Invocation::Kind::usageError;
    invocation.error = std::move(text);
    return invocation;
}

QString shown(const QByteArray& word) { return QString::fromUtf8(word); }

}  // namespace

Invocation parse(const std::vector<QByteArray>& arguments) {
    Invocation invocation;
    if (arguments.empty()) return invocation;
    const QByteArray& first = arguments.front();
    if (first == "--help" || first == "-h") {
        invocation.kind = Invocation::Kind::help;
        return invocation;
    }
    if (first == "--version" || first == "-v") {
        invocation.kind = Invocation::Kind::version;
        return invocation;
    }
    if (first.startsWith('-')) return invocation;  // a launch option (--summon, Qt's own)

    const VerbName* found = nullptr;
    for (const VerbName& entry : kVerbs)
        if (first == entry.name) found = &entry;
    if (!found)
        return usageError(QStringLiteral("unknown command \"%1\" (see mosswick --help)").arg(shown(first)));

    Command& command = invocation.command;
    command.verb = found->verb;
    bool optionsEnded = false;
    for (size_t i = 1; i < arguments.size(); ++i) {
        const QByteArray& word = arguments[i];
        const bool isOption = !optionsEnded && word.startsWith('-') && word != "-";
        if (isOption && word == "--") {
            optionsEnded = true;
        } else if (isOption && command.verb == Verb::list && word == "--json") {
            command.json = true;
        } else if (isOption) {
            return usageError(QStringLiteral("%1: unknown option \"%2\" (see mosswick --help)")
                                  .arg(found->name, shown(word)));
        } else if (command.verb == Verb::add || command.verb == Verb::remove) {
            command.operands.push_back(word);
        } else {
            return usageError(
                QStringLiteral("%1 takes no operands, got \"%2\"").arg(found->name, shown(word)));
        }
    }
    if (command.verb == Verb::add && command.operands.empty())
        return usageError(
            QStringLiteral("add needs at least one path, or - to read paths from standard input"));
    if (command.verb == Verb::remove && command.operands.empty())
        return usageError(QStringLiteral("remove needs at least one item ID (see mosswick list)"));
    if (command.verb == Verb::remove) {
        for (const QByteArray& id : command.operands)
            if (!parseUuid(QString::fromUtf8(id)))
                return usageError(
                    QStringLiteral("remove: \"%1\" is not an item ID (see mosswick list)").arg(shown(id)));
    }
    invocation.kind = Invocation::Kind::command;
    return invocation;
}

std::vector<QByteArray> toArguments(const Command& command) {
    std::vector<QByteArray> words{nameOf(command.verb)};
    if (command.json) words.emplace_back("--json");
    if (!command.operands.empty()) words.emplace_back("--");
    words.insert(words.end(), command.operands.begin(), command.operands.end());
    return words;
}

bool needsShelf(Verb verb) { return verb != Verb::hide && verb != Verb::quit; }

std::vector<QByteArray> splitPathList(const QByteArray& input) {
    const char separator = input.contains('\0') ? '\0' : '\n';
    std::vector<QByteArray> paths;
    for (const QByteArray& entry : input.split(separator))
        if (!entry.isEmpty()) paths.push_back(entry);
    return paths;
}

QByteArray absolutePath(const QByteArray& path, const QByteArray& workingFolder) {
    if (path.startsWith('/')) return path;
    QByteArray joined = workingFolder;
    if (!joined.endsWith('/')) joined.append('/');
    return joined.append(path);
}

QString helpText() {
    return QStringLiteral(
        "Usage: mosswick [--summon]\n"
        "       mosswick COMMAND [ARGUMENT…]\n"
        "\n"
        "A place to put a file down mid-drag. Without a command, starts the shelf (or, with\n"
        "--summon, brings the running one up). Commands talk to the running shelf and start\n"
        "it first when none runs:\n"
        "\n"
        "  add PATH…       put the files and folders on the shelf as one batch, as if dropped;\n"
        "                  - reads paths from standard input (NUL- or newline-separated)\n"
        "  paste           add what the clipboard holds\n"
        "  show, hide, toggle\n"
        "                  bring the shelf up, put it away, or whichever it is not\n"
        "  restore         bring back what was removed last\n"
        "  clear           remove every item (restore brings them back)\n"
        "  remove ID…      remove the items with these IDs\n"
        "  list [--json]   one line per item: ID, name, kind, size in bytes and staged path,\n"
        "                  separated by tabs; --json prints an array of objects instead. A\n"
        "                  path that is not UTF-8 is printed as bytes, and in JSON as the field\n"
        "                  (invalid bytes as U+FFFD) plus the exact bytes in base64 under the\n"
        "                  field's name followed by \"Base64\"\n"
        "  quit            save the shelf and quit\n"
        "\n"
        "  -h, --help      this text\n"
        "  -v, --version   the version\n"
        "\n"
        "Exit status: 0 done; 1 some paths or IDs could not be used (each is named on standard\n"
        "error); 2 unknown command, option or operand; 3 the shelf could not be reached.\n");
}

}  // namespace mosswick::CommandLine

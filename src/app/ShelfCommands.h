#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QObject>
#include <functional>
#include <memory>
#include <vector>

#include "ingest/IngestServices.h"

namespace mosswick {

class ShelfStore;
class ShelfWindowController;
struct ShelfItem;

// What a command's run printed and how it ended, for the caller's terminal.
struct CommandReply {
    int exitCode = 0;
    QByteArray out;
    QByteArray err;
};

// Runs the commands another process sends to the running shelf (see CommandLine). Works on the
// main thread in slices of at most kSliceSeconds, so a command never holds the shelf up for more
// than a frame, even `add` with ten thousand paths.
class ShelfCommands {
public:
    struct Services {
        ShelfStore& store;
        ShelfWindowController& controller;
        IngestServices ingest;
        // The clipboard import of the shortcut's double press; whether it added anything.
        std::function<bool()> addClipboardContents;
        // A plain second launch: the re-open handler.
        std::function<void()> reopen;
        // Ends the application (after the reply is on its way).
        std::function<void()> quit;
    };
    using Respond = std::function<void(CommandReply)>;

    // Well inside a frame, with room for the rest of the turn on a busy machine.
    static constexpr double kSliceSeconds = 0.005;

    explicit ShelfCommands(Services services);
    ~ShelfCommands();
    ShelfCommands(const ShelfCommands&) = delete;
    ShelfCommands& operator=(const ShelfCommands&) = delete;

    // `arguments` as CommandLine::toArguments writes them (paths absolute). `respond` is called
    // once, now or on a later turn of the main loop. No arguments: a plain second launch. What
    // reads or changes the items already on the shelf waits until the saved ones have arrived.
    void run(const std::vector<QByteArray>& arguments, Respond respond);

    // One item as `list --json` prints it (an element of its array).
    static QJsonObject itemJson(const ShelfItem& item);
    // One tab-separated line as `list` prints it.
    static QByteArray itemLine(const ShelfItem& item);

private:
    // A command worked through a slice per turn of the main loop.
    class Run {
    public:
        virtual ~Run() = default;
        virtual void step() = 0;
    };
    class AddRun;
    class ListRun;

    void start(std::unique_ptr<Run> run);
    void finished(Run* run);

    Services services_;
    std::vector<std::unique_ptr<Run>> runs_;
    std::vector<std::pair<std::vector<QByteArray>, Respond>> waitingForRestore_;
    QObject observations_;
};

}  // namespace mosswick

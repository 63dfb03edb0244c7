#include "app/CommandClient.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QProcess>
#include <QThread>
#include <csignal>
#include <cstdio>
#include <unistd.h>

#include "app/BuildSettings.h"
#include "app/CommandLine.h"
#include "platform/qt/SingleInstance.h"

namespace mosswick {

namespace {

using CommandLine::ExitCode;

constexpr int kStartTimeoutMs = 20000;
constexpr int kRetryMs = 50;

void print(std::FILE* stream, const QByteArray& bytes) {
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
    std::fflush(stream);
}

QByteArray workingFolder() {
    QByteArray folder(4096, '\0');
    while (!::getcwd(folder.data(), size_t(folder.size()))) {
        if (errno != ERANGE) return "/";
        folder.resize(folder.size() * 2);
    }
    folder.truncate(int(qstrlen(folder.constData())));
    return folder;
}

QByteArray readStandardInput() {
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly)) return {};
    return input.readAll();
}

// `add`'s paths as the shelf needs them: standard input's in place of "-", each absolute.
std::vector<QByteArray> shelfPaths(const std::vector<QByteArray>& operands) {
    const QByteArray here = workingFolder();
    std::vector<QByteArray> paths;
    for (const QByteArray& operand : operands) {
        if (operand == "-") {
            for (const QByteArray& path : CommandLine::splitPathList(readStandardInput()))
                paths.push_back(CommandLine::absolutePath(path, here));
        } else {
            paths.push_back(CommandLine::absolutePath(operand, here));
        }
    }
    return paths;
}

// Starts a shelf of its own, detached and silent, and asks it once it listens.
std::optional<SingleInstance::Answer> startAndAsk(const SingleInstance::Arguments& arguments) {
    QProcess shelf;
    shelf.setProgram(QCoreApplication::applicationFilePath());
    shelf.setStandardInputFile(QProcess::nullDevice());
    shelf.setStandardOutputFile(QProcess::nullDevice());
    shelf.setStandardErrorFile(QProcess::nullDevice());
    qint64 pid = 0;
    if (!shelf.startDetached(&pid)) return std::nullopt;
    const QDeadlineTimer deadline(kStartTimeoutMs);
    // A shelf that could not start (no display) is gone at once: no use waiting for it.
    while (!deadline.hasExpired() && ::kill(pid_t(pid), 0) == 0) {
        if (auto answer = SingleInstance::request(arguments, SingleInstance::socketPath(), kRetryMs))
            return answer;
        QThread::msleep(kRetryMs);
    }
    return std::nullopt;
}

}  // namespace

std::optional<int> runCommandLine(int argc, char** argv) {
    std::vector<QByteArray> arguments;
    for (int i = 1; i < argc; ++i) arguments.emplace_back(argv[i]);
    CommandLine::Invocation invocation = CommandLine::parse(arguments);
    switch (invocation.kind) {
        case CommandLine::Invocation::Kind::launch:
            return std::nullopt;
        case CommandLine::Invocation::Kind::help:
            print(stdout, CommandLine::helpText().toUtf8());
            return int(ExitCode::ok);
        case CommandLine::Invocation::Kind::version:
            print(stdout, QByteArray("mosswick ").append(BuildSettings::version()).append('\n'));
            return int(ExitCode::ok);
        case CommandLine::Invocation::Kind::usageError:
            print(stderr, QByteArray("mosswick: ").append(invocation.error.toUtf8()).append('\n'));
            return int(ExitCode::usage);
        case CommandLine::Invocation::Kind::command:
            break;
    }

    QCoreApplication application(argc, argv);  // no display needed to talk to the shelf
    CommandLine::Command& command = invocation.command;
    if (command.verb == CommandLine::Verb::add) command.operands = shelfPaths(command.operands);
    SingleInstance::Arguments wire;
    for (QByteArray& word : CommandLine::toArguments(command)) wire.append(std::move(word));

    std::optional<SingleInstance::Answer> answer = SingleInstance::request(wire);
    if (!answer && !CommandLine::needsShelf(command.verb))
        return int(ExitCode::ok);  // nothing to hide or quit
    if (!answer) answer = startAndAsk(wire);
    if (!answer) {
        print(stderr, "mosswick: could not reach or start the shelf\n");
        return int(ExitCode::unreachable);
    }
    if (answer->exitCode < 0) {
        print(stderr, "mosswick: the shelf did not answer in time\n");
        return int(ExitCode::unreachable);
    }
    print(stdout, answer->out);
    print(stderr, answer->err);
    return answer->exitCode;
}

}  // namespace mosswick

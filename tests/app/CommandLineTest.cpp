#include <gtest/gtest.h>

#include "app/CommandLine.h"

namespace mosswick {
namespace {

using CommandLine::Invocation;
using CommandLine::Verb;

std::vector<QByteArray> words(std::initializer_list<const char*> list) { return {list.begin(), list.end()}; }

TEST(CommandLine, ReadsEachInvocation) {
    struct Case {
        std::vector<QByteArray> arguments;
        Invocation::Kind kind;
        Verb verb = Verb::show;
        std::vector<QByteArray> operands = {};
        bool json = false;
    };
    const QByteArray id = "0F8FAD5B-D9CB-469F-A165-70867728950E";
    const Case cases[] = {
        {{}, Invocation::Kind::launch},
        {words({"--summon"}), Invocation::Kind::launch},
        {words({"-platform", "xcb"}), Invocation::Kind::launch},  // Qt's own options
        {words({"--help", "add"}), Invocation::Kind::help},
        {words({"-v"}), Invocation::Kind::version},
        {words({"add", "a", "-", "/b"}), Invocation::Kind::command, Verb::add, words({"a", "-", "/b"})},
        // After "--" a path may look like an option.
        {words({"add", "--", "--json", "-x"}), Invocation::Kind::command, Verb::add, words({"--json", "-x"})},
        {{"add", "caf\xe9"}, Invocation::Kind::command, Verb::add, {"caf\xe9"}},
        {words({"list", "--json"}), Invocation::Kind::command, Verb::list, {}, true},
        {{"remove", id, id.toLower()}, Invocation::Kind::command, Verb::remove, {id, id.toLower()}},
        {words({"quit"}), Invocation::Kind::command, Verb::quit},
        {words({"restore"}), Invocation::Kind::command, Verb::restore},
    };
    for (const Case& c : cases) {
        const Invocation parsed = CommandLine::parse(c.arguments);
        SCOPED_TRACE(c.arguments.empty() ? "" : c.arguments.front().constData());
        EXPECT_EQ(parsed.kind, c.kind) << qPrintable(parsed.error);
        if (c.kind != Invocation::Kind::command) continue;
        EXPECT_EQ(parsed.command.verb, c.verb);
        EXPECT_EQ(parsed.command.operands, c.operands);
        EXPECT_EQ(parsed.command.json, c.json);
        // What goes over the wire reads back as the same command.
        const Invocation again = CommandLine::parse(CommandLine::toArguments(parsed.command));
        EXPECT_EQ(again.command.operands, c.operands);
        EXPECT_EQ(again.command.json, c.json);
    }
}

TEST(CommandLine, SaysWhatIsWrong) {
    const std::pair<std::vector<QByteArray>, const char*> cases[] = {
        {words({"frob"}), "unknown command \"frob\" (see mosswick --help)"},
        {words({"list", "--jsn"}), "list: unknown option \"--jsn\" (see mosswick --help)"},
        {words({"add", "--json", "a"}), "add: unknown option \"--json\" (see mosswick --help)"},
        {words({"show", "now"}), "show takes no operands, got \"now\""},
        {words({"add"}), "add needs at least one path, or - to read paths from standard input"},
        {words({"remove"}), "remove needs at least one item ID (see mosswick list)"},
        {words({"remove", "42"}), "remove: \"42\" is not an item ID (see mosswick list)"},
    };
    for (const auto& [arguments, error] : cases) {
        const Invocation parsed = CommandLine::parse(arguments);
        EXPECT_EQ(parsed.kind, Invocation::Kind::usageError) << error;
        EXPECT_EQ(parsed.error, QString::fromUtf8(error));
    }
}

TEST(CommandLine, ReadsPathListsAsBytes) {
    const std::pair<QByteArray, std::vector<QByteArray>> cases[] = {
        {QByteArray("a b\nc\xff\n\nd\r\n"), {"a b", "c\xff", "d\r"}},  // lines; a CR may be in a name
        {QByteArray("a\nb\0c\0\0", 7), {"a\nb", "c"}},                 // a NUL anywhere: NULs separate
        {QByteArray(), {}},
    };
    for (const auto& [input, paths] : cases) EXPECT_EQ(CommandLine::splitPathList(input), paths);

    EXPECT_EQ(CommandLine::absolutePath("x/\xe9", "/home/u"), QByteArray("/home/u/x/\xe9"));
    EXPECT_EQ(CommandLine::absolutePath("../x", "/"), QByteArray("/../x"));
    EXPECT_EQ(CommandLine::absolutePath("/abs", "/home/u"), QByteArray("/abs"));
}

}  // namespace
}  // namespace mosswick

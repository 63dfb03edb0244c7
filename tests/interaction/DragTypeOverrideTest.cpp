#include <gtest/gtest.h>

#include "interaction/DragTypeOverride.h"

namespace mosswick {
namespace {

using Kind = DragTypeOverride::Answer::Kind;

struct Read {
    const char* name;
    const char* target;
    bool bridged;
    Kind kind;
    const char* bytes;
};

class DragTypeOverrideReads : public ::testing::TestWithParam<Read> {};

// A drag of one file offering its URI list and a link's own text/x-moz-url, and no text.
TEST_P(DragTypeOverrideReads, AnswerWhatQtWouldGetWrong) {
    const DragPayload::Types offered = {{QStringLiteral("text/uri-list"), "file:///a.txt\r\n"},
                                        {QStringLiteral("text/x-moz-url"), "https://example.org\nTitle"}};
    const Read& read = GetParam();
    const DragTypeOverride::Answer answer = DragTypeOverride::answer(offered, read.target, read.bridged);
    EXPECT_EQ(answer.kind, read.kind);
    EXPECT_EQ(answer.bytes, QByteArray(read.bytes));
}

const Read kReads[] = {
    {"ownLink", "text/x-moz-url", false, Kind::bytes, "https://example.org\nTitle"},
    {"noTextChosen", "text/plain", false, Kind::refusal, ""},
    {"noTextChosenBridged", "text/plain", true, Kind::refusal, ""},
    {"uriListOnX11", "text/uri-list", false, Kind::qtDefault, ""},
    // Handed to a Wayland program by the compositor, at a time Qt would not recognise.
    {"uriListBridged", "text/uri-list", true, Kind::bytes, "file:///a.txt\r\n"},
    {"ownLinkBridged", "text/x-moz-url", true, Kind::bytes, "https://example.org\nTitle"},
    {"notOfferedBridged", "image/png", true, Kind::qtDefault, ""},
};

INSTANTIATE_TEST_SUITE_P(Table, DragTypeOverrideReads, ::testing::ValuesIn(kReads),
                         [](const ::testing::TestParamInfo<Read>& row) { return row.param.name; });

}  // namespace
}  // namespace mosswick

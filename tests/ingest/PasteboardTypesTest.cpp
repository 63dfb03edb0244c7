// The one table of pasteboard types: what the shelf takes on drop, what brings it up during a
// drag, and what makes the clipboard worth importing, all matched the same way.
#include <gtest/gtest.h>

#include "ingest/PasteboardTypes.h"
#include "ingest/RichText.h"

namespace mosswick {
namespace {

// The spellings programs use for one name: as written, shouted, and with blanks around parameters.
QStringList spellingsOf(const QString& name) {
    QString spaced = name;
    spaced.replace(QLatin1Char(';'), QStringLiteral("; "));
    return {name, name.toUpper(), spaced};
}

TEST(PasteboardTypes, EveryTypeTakenOnDropIsTakenInEverySpellingAndLinksFilesAndPromisesBringTheShelfUp) {
    for (const PasteboardType& type : PasteboardTypes::all()) {
        const bool worthAShelf = type.content == PasteboardContent::files ||
                                 type.content == PasteboardContent::filePromise ||
                                 type.content == PasteboardContent::link;
        for (const QString& spelling : spellingsOf(type.name)) {
            SCOPED_TRACE(spelling.toStdString());
            EXPECT_EQ(PasteboardTypes::takenOnDrop({spelling}), type.takenOnDrop);
            EXPECT_EQ(PasteboardTypes::bringsShelfUp({spelling}), type.takenOnDrop && worthAShelf);
            EXPECT_EQ(PasteboardTypes::takenFromClipboard({spelling}), type.takenFromClipboard);
        }
    }
}

struct OfferRow {
    const char* name;
    QStringList offered;
    bool onDrop;
    bool bringsShelfUp;
    bool fromClipboard;
};

class PasteboardOffers : public ::testing::TestWithParam<OfferRow> {};

TEST_P(PasteboardOffers, AreJudgedAlikeEverywhere) {
    const OfferRow& row = GetParam();
    EXPECT_EQ(PasteboardTypes::takenOnDrop(row.offered), row.onDrop);
    EXPECT_EQ(PasteboardTypes::bringsShelfUp(row.offered), row.bringsShelfUp);
    EXPECT_EQ(PasteboardTypes::takenFromClipboard(row.offered), row.fromClipboard);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, PasteboardOffers,
    ::testing::Values(
        OfferRow{"fileManager", {"text/uri-list", "text/plain"}, true, true, true},
        OfferRow{"browserLink", {"text/x-moz-url", "text/html", "text/plain"}, true, true, true},
        OfferRow{"chromiumImage",
                 {"XdndDirectSave0", "application/octet-stream", "text/x-moz-url"},
                 true,
                 true,
                 true},
        OfferRow{"copiedFiles", {"x-special/gnome-copied-files"}, false, false, true},
        OfferRow{"jpegOnly", {"image/jpeg"}, true, false, false},
        OfferRow{"textSelection", {"UTF8_STRING", "TEXT/PLAIN; charset=UTF-8"}, true, false, true},
        OfferRow{"htmlOnly", {"text/html"}, true, false, true},
        OfferRow{"rtfOnly", {"text/rtf"}, true, false, true},
        OfferRow{"pdfOnly", {"application/pdf"}, true, false, true},
        // Another encoding is another type: its bytes are not UTF-8.
        OfferRow{"utf16Text", {"text/plain;charset=utf-16"}, false, false, false},
        OfferRow{"privateModelData", {"application/x-qabstractitemmodeldatalist"}, false, false, false},
        OfferRow{"nothing", {}, false, false, false}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(PasteboardTypes, FindsTheSpellingOnOffer) {
    EXPECT_EQ(PasteboardTypes::find({"a/b", "Text/Plain; Charset=UTF-8"}, "text/plain;charset=utf-8"),
              QStringLiteral("Text/Plain; Charset=UTF-8"));
    EXPECT_FALSE(PasteboardTypes::find({"text/plain"}, "text/plain;charset=utf-8"));
}

struct RtfRow {
    const char* name;
    const char* rtf;
    const char16_t* text;
};

class RtfText : public ::testing::TestWithParam<RtfRow> {};

TEST_P(RtfText, KeepsTheWordsAndDropsTheRest) {
    EXPECT_EQ(RichText::fromRtf(GetParam().rtf), QString::fromUtf16(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, RtfText,
    ::testing::Values(
        RtfRow{"paragraphs", R"({\rtf1\ansi Hello\par World})", u"Hello\nWorld"},
        RtfRow{
            "tablesAndInfoSkipped",
            R"({\rtf1{\fonttbl{\f0\fswiss Helvetica;}}{\colortbl;\red0\green0\blue0;}{\info{\title T}}\f0 Body})",
            u"Body"},
        RtfRow{"ignorableDestination", R"({\rtf1{\*\generator Writer 7;}Text})", u"Text"},
        RtfRow{"windowsBytes", R"({\rtf1\ansi caf\'e9 \'93quoted\'94 \'80})", u"café “quoted” €"},
        RtfRow{"unicodeWithFallback", R"({\rtf1\uc1 snow\u9731?man\u-3913?})", u"snow☃man\uF0B7"},
        RtfRow{"escapes", R"({\rtf1 a\\b\{c\}\tab d})", u"a\\b{c}\td"},
        RtfRow{"notRtfAtAll", "plain words", u"plain words"},
        RtfRow{"truncated", R"({\rtf1 cut \'e)", u"cut \u000e"}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace mosswick

// The names given to the files ingestion writes or asks drag sources for.
#include <gtest/gtest.h>

#include <QDateTime>
#include <QStringDecoder>

#include "ingest/DroppedFileNames.h"

namespace mosswick {
namespace {

struct NameCase {
    const char* what;
    QString input;
    QString expected;
};

void PrintTo(const NameCase& row, std::ostream* out) { *out << row.what; }

class LinkNames : public ::testing::TestWithParam<NameCase> {};

TEST_P(LinkNames, FollowTheNamingRule) {
    EXPECT_EQ(DroppedFileNames::forLink(GetParam().input), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Titles, LinkNames,
    ::testing::Values(
        NameCase{"slashes and colons become dashes", QStringLiteral("a/b: c"),
                 QStringLiteral("a-b- c.desktop")},
        NameCase{"blanks around are trimmed", QStringLiteral("  Docs \n"), QStringLiteral("Docs.desktop")},
        NameCase{"spaces only", QStringLiteral("   "), QStringLiteral("Untitled.desktop")},
        NameCase{"a NUL never reaches the file system", QStringLiteral("a") + QChar(0) + QStringLiteral("b"),
                 QStringLiteral("a-b.desktop")},
        NameCase{"dots stay a name", QStringLiteral(".."), QStringLiteral("...desktop")}));

class TextNames : public ::testing::TestWithParam<NameCase> {};

TEST_P(TextNames, ComeFromTheFirstLine) {
    EXPECT_EQ(DroppedFileNames::forText(GetParam().input), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, TextNames,
    ::testing::Values(
        NameCase{"first line, cleaned", QStringLiteral("Hello/World: x\nsecond line"),
                 QStringLiteral("Hello-World- x.txt")},
        NameCase{"empty lines are skipped", QStringLiteral("\r\n\r\nAgenda\r\nitems"),
                 QStringLiteral("Agenda.txt")},
        NameCase{"a first line of blanks is still the first line", QStringLiteral("\n   \nHello"),
                 QStringLiteral("Untitled.txt")},
        NameCase{"Unicode line separators end the line",
                 QStringLiteral("One") + QChar(0x2028) + QStringLiteral("Two"), QStringLiteral("One.txt")},
        NameCase{"next-line ends it too", QStringLiteral("Uno") + QChar(0x85) + QStringLiteral("Dos"),
                 QStringLiteral("Uno.txt")},
        NameCase{"cut to 40 characters before trimming",
                 QString(36, QLatin1Char('a')) + QStringLiteral("    bbbbbbbbbbbbbbbbbbbb"),
                 QString(36, QLatin1Char('a')) + QStringLiteral(".txt")},
        NameCase{"nothing but line breaks", QStringLiteral("\n\n"), QStringLiteral("Text.txt")}));

TEST(TextNames, CountCharactersAsTheUserSeesThem) {
    // 39 letters, then a family emoji made of seven UTF-16 units, then more.
    const QString family =
        QString::fromUtf8("\xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x91\xA7");
    const QString line = QString(39, QLatin1Char('x')) + family + QStringLiteral("tail");
    EXPECT_EQ(DroppedFileNames::forText(line),
              QString(39, QLatin1Char('x')) + family + QStringLiteral(".txt"));
}

TEST(ImageNames, CarryTheMomentWithDotsBetweenTheTimeParts) {
    EXPECT_EQ(DroppedFileNames::forImage(QDateTime(QDate(2024, 5, 1), QTime(13, 7, 9))),
              QStringLiteral("Image 2024-05-01 at 13.07.09.png"));
}

struct PromiseCase {
    const char* what;
    QByteArray proposed;
    const char* type;
    QByteArray expected;
};

void PrintTo(const PromiseCase& row, std::ostream* out) { *out << row.what; }

class PromisedNames : public ::testing::TestWithParam<PromiseCase> {};

TEST_P(PromisedNames, StayInsideTheItemsFolder) {
    const QByteArray name =
        DroppedFileNames::forPromise(GetParam().proposed, QString::fromLatin1(GetParam().type));
    EXPECT_EQ(name, GetParam().expected);
    EXPECT_FALSE(name.contains('/'));
    EXPECT_FALSE(name.contains('\0'));
}

INSTANTIATE_TEST_SUITE_P(
    Proposals, PromisedNames,
    ::testing::Values(PromiseCase{"a plain name", "Report.pdf", "application/pdf", "Report.pdf"},
                      PromiseCase{"climbing out", "../../.bashrc", "text/plain", "..-..-.bashrc"},
                      PromiseCase{"a path", "/etc/passwd", "text/plain", "-etc-passwd"},
                      PromiseCase{"parent folder", "..", "application/pdf", "Incoming.pdf"},
                      PromiseCase{"this folder", ".", "application/octet-stream", "Incoming"},
                      PromiseCase{"a NUL", QByteArray("evil\0.txt", 9), "text/plain", "evil-.txt"},
                      PromiseCase{"blanks around", "  photo.jpg\r\n", "image/jpeg", "photo.jpg"},
                      PromiseCase{"nothing, PDF", "", "application/pdf", "Incoming.pdf"},
                      PromiseCase{"nothing, the generic type", "", "application/octet-stream", "Incoming"},
                      PromiseCase{"nothing, a type without an extension", "", "inode/directory", "Incoming"},
                      PromiseCase{"bytes that are not UTF-8 stay", "caf\xE9.txt", "text/plain",
                                  "caf\xE9.txt"}));

TEST(PromisedNames, LongNamesKeepTheirExtensionAndWholeCharacters) {
    QByteArray longName;
    for (int i = 0; i < 150; ++i) longName += "\xC3\xA9";  // é, two bytes each
    const QByteArray name = DroppedFileNames::forPromise(longName + ".jpeg", QStringLiteral("image/jpeg"));
    EXPECT_LE(name.size(), DroppedFileNames::kMaxNameBytes);
    EXPECT_TRUE(name.endsWith(".jpeg"));
    QStringDecoder utf8(QStringDecoder::Utf8);
    utf8.decode(name);
    EXPECT_FALSE(utf8.hasError()) << "cut inside a character";

    const QString title(300, QLatin1Char('w'));
    EXPECT_LE(DroppedFileNames::forLink(title).toUtf8().size(), DroppedFileNames::kMaxNameBytes);
    EXPECT_TRUE(DroppedFileNames::forLink(title).endsWith(QLatin1String(".desktop")));
}

}  // namespace
}  // namespace mosswick

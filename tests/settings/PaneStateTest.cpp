#include <gtest/gtest.h>

#include "settings/ApplicationCatalog.h"
#include "settings/PaneState.h"

using namespace mosswick;

namespace {

TEST(PaneStateTest, TheAlternateDataSentenceSpeaksOfDataOnlyWithoutAnAlternate) {
    for (const auto& c : EnumCases<AlternateDragData>::all) {
        const QString sentence =
            QStringLiteral("%1 %2 %3")
                .arg(AlternateDataSentence::lead(), title(c.value), AlternateDataSentence::ending(c.value));
        const char* expected[] = {"Also provide no alternate data when dragging out",
                                  "Also provide the file path as text when dragging out",
                                  "Also provide the file name as text when dragging out",
                                  "Also provide the text contents as text when dragging out"};
        EXPECT_EQ(sentence, QString::fromUtf8(expected[static_cast<int>(c.value)]));
    }
}

TEST(PaneStateTest, TheItemLimitStepsInFivesBetweenFiveAndFiveHundred) {
    struct Case {
        qint64 from;
        int steps;
        qint64 to;
    };
    for (const Case& c : {Case{100, 1, 105}, Case{100, -1, 95}, Case{5, -1, 5}, Case{10, -3, 5},
                          Case{500, 1, 500}, Case{495, 2, 500}, Case{0, 1, 5}, Case{0, -1, 5},
                          Case{9999, -1, 500}, Case{7, 1, 12}, Case{100, 0, 100}}) {
        EXPECT_EQ(ItemCountStepper::stepped(c.from, c.steps), c.to) << c.from << " by " << c.steps;
    }
    EXPECT_EQ(ItemCountStepper::text(100), QStringLiteral("100 files"));

    struct Typed {
        const char* text;
        std::optional<qint64> value;
    };
    for (const Typed& t : {Typed{"120", 120}, Typed{"120 files", 120}, Typed{" 42 ", 40}, Typed{"43", 45},
                           Typed{"1", 5}, Typed{"100000", 500}, Typed{"-5", std::nullopt},
                           Typed{"files", std::nullopt}, Typed{"", std::nullopt}}) {
        EXPECT_EQ(ItemCountStepper::parse(QString::fromUtf8(t.text)), t.value) << t.text;
    }
}

TEST(PaneStateTest, IgnoredApplicationsAreShownByNameAndKeptByIdEvenOnceUninstalled) {
    const std::vector<InstalledApplication> installed = {
        {QStringLiteral("org.gnome.Nautilus"), QStringLiteral("Files"), QStringLiteral("org.gnome.Nautilus")},
        {QStringLiteral("firefox-esr"), QStringLiteral("Firefox ESR"), QStringLiteral("firefox-esr")},
        {QStringLiteral("org.kde.dolphin"), QStringLiteral("Dolphin"), QStringLiteral("system-file-manager")},
        {QStringLiteral("emacs"), QStringLiteral("Émacs"), {}},
    };
    const QStringList ignored = {QStringLiteral("org.gnome.nautilus.desktop"), QStringLiteral("gone.App")};

    const std::vector<IgnoredApplicationRow> rows = ApplicationChoices::rows(ignored, installed);
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0], (IgnoredApplicationRow{ignored[0], QStringLiteral("Files"),
                                              QStringLiteral("org.gnome.Nautilus"), true}));
    EXPECT_EQ(rows[1], (IgnoredApplicationRow{ignored[1], ignored[1], {}, false}));

    struct Filter {
        const char* text;
        QStringList ids;
    };
    for (const Filter& f :
         {Filter{"",
                 {QStringLiteral("org.kde.dolphin"), QStringLiteral("emacs"), QStringLiteral("firefox-esr")}},
          Filter{"  e ",
                 {QStringLiteral("org.kde.dolphin"), QStringLiteral("emacs"), QStringLiteral("firefox-esr")}},
          Filter{"EMAC", {QStringLiteral("emacs")}}, Filter{"kde", {QStringLiteral("org.kde.dolphin")}},
          Filter{"files", {}}, Filter{"zzz", {}}}) {
        QStringList ids;
        for (const InstalledApplication& app :
             ApplicationChoices::offered(installed, ignored, QString::fromUtf8(f.text)))
            ids << app.desktopId;
        EXPECT_EQ(ids, f.ids) << f.text;
    }

    EXPECT_EQ(ApplicationChoices::adding(ignored, {QStringLiteral("org.gnome.Nautilus"),
                                                   QStringLiteral("emacs"), QStringLiteral("emacs.desktop")}),
              (QStringList{ignored[0], ignored[1], QStringLiteral("emacs")}));
}

}  // namespace

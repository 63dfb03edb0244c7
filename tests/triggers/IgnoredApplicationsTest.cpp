// Which windows belong to an ignored program: ids as the window names them, window classes, and
// the installed entries that tie a class to a desktop-file id.
#include <gtest/gtest.h>

#include "triggers/IgnoredApplications.h"

using mosswick::FrontmostApplication;
using mosswick::IgnoredApplications;
using mosswick::InstalledApplications;
using mosswick::WindowClassEntry;

namespace {

class ListedApplications final : public InstalledApplications {
public:
    explicit ListedApplications(std::vector<WindowClassEntry> entries) : entries_(std::move(entries)) {}
    std::vector<WindowClassEntry> windowClassEntries() override { return entries_; }

private:
    std::vector<WindowClassEntry> entries_;
};

struct Case {
    const char* name;
    const char* applicationId;
    const char* windowClass;
    QStringList ignored;
    std::vector<WindowClassEntry> installed;
    bool isIgnored;
};

const std::vector<WindowClassEntry> kChromeAndCode{
    {QStringLiteral("google-chrome"), QStringLiteral("Google-chrome")},
    {QStringLiteral("code"), QStringLiteral("Code")},
};

const Case kCases[] = {
    {"SameIdAsStored", "org.gnome.Nautilus", "", {"org.gnome.Nautilus"}, {}, true},
    {"IdInOtherCapitals", "org.gnome.nautilus", "", {"org.gnome.Nautilus"}, {}, true},
    {"StoredWithDesktopSuffix", "org.gnome.Nautilus", "", {"org.gnome.Nautilus.desktop"}, {}, true},
    {"OtherProgram", "org.gnome.Nautilus", "Org.gnome.Nautilus", {"org.kde.dolphin"}, {}, false},
    {"PrefixIsNotTheSameId", "org.gnome.Nautilus", "", {"org.gnome.Naut"}, {}, false},
    {"SuffixAloneIsNoId", ".desktop", "", {""}, {}, false},
    {"NothingKnownOfTheWindow", "", "", {"firefox-esr"}, {}, false},
    {"ClassIsTheIdInOtherCapitals", "", "Firefox-esr", {"firefox-esr"}, {}, true},
    {"ClassTiedByStartupWMClass", "", "Google-chrome", {"google-chrome"}, kChromeAndCode, true},
    {"TiedIdComparedLoosely", "", "Code", {"CODE.desktop"}, kChromeAndCode, true},
    {"StartupWMClassOtherCapitals",
     "",
     "CODE",
     {"code-insiders"},
     {{QStringLiteral("code-insiders"), QStringLiteral("Code")}},
     false},
    {"ClassTiedToAnotherProgram", "", "Google-chrome", {"code"}, kChromeAndCode, false},
    {"ClassTiedWhileTheIdSaysOtherwise",
     "org.chromium.Chromium",
     "Google-chrome",
     {"google-chrome"},
     kChromeAndCode,
     true},
};

class IgnoredApplicationsTable : public ::testing::TestWithParam<Case> {};

TEST_P(IgnoredApplicationsTable, DecidesAsTheRowSays) {
    const Case& row = GetParam();
    ListedApplications installed(row.installed);
    const FrontmostApplication frontmost{QString::fromUtf8(row.applicationId),
                                         QString::fromUtf8(row.windowClass)};
    EXPECT_EQ(IgnoredApplications::includes(row.ignored, frontmost, installed), row.isIgnored);
}

INSTANTIATE_TEST_SUITE_P(Rows, IgnoredApplicationsTable, ::testing::ValuesIn(kCases),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace

// The installed desktop entries' window classes, read from XDG folders of the test's own.
#include <gtest/gtest.h>

#include <QDir>
#include <QLocale>

#include "platform/freedesktop/DesktopEntries.h"
#include "support/EventWaiting.h"
#include "support/TestFolders.h"

using mosswick::DesktopEntries;
using mosswick::WindowClassEntry;
using mosswick::testing::freshFolder;
using mosswick::testing::waitUntil;
using mosswick::testing::writeFile;

namespace {

std::string entry(const std::string& keys) { return "[Desktop Entry]\nName=Some Program\n" + keys; }

class DesktopEntriesTest : public ::testing::Test {
protected:
    void SetUp() override {
        const auto root = freshFolder("xdg-data");
        home = root / "home";
        system = root / "system";
        local = root / "local";
        qputenv("XDG_DATA_HOME", QByteArray::fromStdString(home.string()));
        qputenv("XDG_DATA_DIRS", QByteArray::fromStdString(local.string() + ":" + system.string()));
    }

    std::filesystem::path home, system, local;
};

TEST_F(DesktopEntriesTest, ReadsWindowClassesWithTheirIdsAndPrecedence) {
    writeFile(system / "applications/google-chrome.desktop",
              entry("Type=Application\nStartupWMClass=Google-chrome\n"));
    writeFile(system / "applications/kde/org.kde.kate.desktop",
              entry("Type=Application\nStartupWMClass=kate\n"));
    // A user's copy overrides the system's, and a hidden one removes it.
    writeFile(system / "applications/code.desktop", entry("Type=Application\nStartupWMClass=Code\n"));
    writeFile(home / "applications/code.desktop", entry("Type=Application\nStartupWMClass=Code - OSS\n"));
    writeFile(system / "applications/gimp.desktop", entry("Type=Application\nStartupWMClass=Gimp-2.10\n"));
    writeFile(local / "applications/gimp.desktop", entry("Type=Application\nHidden=true\n"));
    // Not applications, no class, or the key outside the main group.
    writeFile(system / "applications/site.desktop", entry("Type=Link\nURL=https://example.org\n"));
    writeFile(system / "applications/plain.desktop", entry("Type=Application\nExec=plain\n"));
    writeFile(system / "applications/grouped.desktop",
              entry("Type=Application\n\n[Desktop Action new]\nStartupWMClass=Wrong\n"));
    writeFile(system / "applications/notes.txt", "StartupWMClass=Notes\n");

    std::vector<WindowClassEntry> read = DesktopEntries::read(DesktopEntries::defaultFolders());
    std::sort(read.begin(), read.end(),
              [](const auto& a, const auto& b) { return a.desktopId < b.desktopId; });
    const std::vector<WindowClassEntry> expected{
        {QStringLiteral("code"), QStringLiteral("Code - OSS")},
        {QStringLiteral("google-chrome"), QStringLiteral("Google-chrome")},
        {QStringLiteral("kde-org.kde.kate"), QStringLiteral("kate")},
    };
    EXPECT_EQ(read, expected);
}

TEST_F(DesktopEntriesTest, OffersTheApplicationsOfTheMenusByNameAndIcon) {
    QLocale::setDefault(QLocale(QStringLiteral("de_AT")));
    writeFile(system / "applications/org.gnome.Nautilus.desktop",
              "[Desktop Entry]\nType=Application\nName=Files\nName[de]=Dateien\nIcon=org.gnome.Nautilus\n");
    writeFile(system / "applications/kde/org.kde.kate.desktop",
              "[Desktop Entry]\nType=Application\nName=Kate\nName[de_AT]=Kate (AT)\nName[de]=Kate (DE)\n");
    // The user's copy wins; one hidden or kept out of menus is not offered; a nameless one goes
    // by its id.
    writeFile(system / "applications/code.desktop", "[Desktop Entry]\nType=Application\nName=Code\n");
    writeFile(home / "applications/code.desktop",
              "[Desktop Entry]\nType=Application\nName=Code - OSS\nIcon=/opt/code.png\n");
    writeFile(system / "applications/helper.desktop",
              "[Desktop Entry]\nType=Application\nName=H\nNoDisplay=true\n");
    writeFile(local / "applications/gone.desktop",
              "[Desktop Entry]\nType=Application\nName=G\nHidden=true\n");
    writeFile(system / "applications/site.desktop", "[Desktop Entry]\nType=Link\nName=Site\n");
    writeFile(system / "applications/bare.desktop", "[Desktop Entry]\nType=Application\n");

    std::vector<mosswick::InstalledApplication> read =
        DesktopEntries::applications(DesktopEntries::defaultFolders());
    QLocale::setDefault(QLocale::c());
    std::sort(read.begin(), read.end(),
              [](const auto& a, const auto& b) { return a.desktopId < b.desktopId; });
    const std::vector<mosswick::InstalledApplication> expected{
        {QStringLiteral("bare"), QStringLiteral("bare"), {}},
        {QStringLiteral("code"), QStringLiteral("Code - OSS"), QStringLiteral("/opt/code.png")},
        {QStringLiteral("kde-org.kde.kate"), QStringLiteral("Kate (AT)"), {}},
        {QStringLiteral("org.gnome.Nautilus"), QStringLiteral("Dateien"),
         QStringLiteral("org.gnome.Nautilus")},
    };
    EXPECT_EQ(read, expected);
}

TEST_F(DesktopEntriesTest, ReadsWhenFirstAskedAndAgainWhenAFolderChanges) {
    writeFile(system / "applications/google-chrome.desktop",
              entry("Type=Application\nStartupWMClass=Google-chrome\n"));
    DesktopEntries entries(DesktopEntries::defaultFolders());
    EXPECT_FALSE(entries.hasRead()) << "nothing is read before it is needed";
    ASSERT_TRUE(waitUntil([&] { return entries.windowClassEntries().size() == 1 && entries.hasRead(); }));

    writeFile(system / "applications/code.desktop", entry("Type=Application\nStartupWMClass=Code\n"));
    ASSERT_TRUE(waitUntil([&] { return entries.windowClassEntries().size() == 2; }));
}

}  // namespace

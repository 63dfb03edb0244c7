#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <filesystem>

#include "settings/LoginItem.h"
#include "support/TestFolders.h"

using mosswick::LoginItemState;
using mosswick::XdgAutostartEntry;
namespace testing_ = mosswick::testing;

namespace {

QString qs(const std::filesystem::path& path) { return QString::fromStdString(path.string()); }

TEST(LoginItemTest, TheSwitchWritesAndRemovesTheAutostartEntryAndFollowsHandEdits) {
    const auto folder = testing_::freshFolder("login") / "config" / "autostart";
    XdgAutostartEntry entry(qs(folder), QStringLiteral("/opt/Mosswick/bin/mosswick"));
    EXPECT_EQ(entry.path(), qs(folder / "mosswick.desktop"));
    LoginItemState state(entry);
    EXPECT_FALSE(state.launchAtLogin());

    state.apply(true);  // the folder does not exist yet
    EXPECT_TRUE(state.launchAtLogin());
    EXPECT_TRUE(state.error().isEmpty());
    const std::string written = testing_::readFile(folder / "mosswick.desktop");
    EXPECT_TRUE(written.starts_with("[Desktop Entry]\n"));
    EXPECT_NE(written.find("\nType=Application\n"), std::string::npos);
    EXPECT_NE(written.find("\nExec=/opt/Mosswick/bin/mosswick\n"), std::string::npos);
    EXPECT_EQ(
        std::filesystem::status(folder / "mosswick.desktop").permissions() & std::filesystem::perms::all,
        std::filesystem::perms(0644));

    struct Edit {
        const char* what;
        std::string contents;  // empty: the file removed by hand
        bool on;
    };
    for (const Edit& edit :
         {Edit{"removed by hand", "", false}, Edit{"hidden", "[Desktop Entry]\nExec=x\nHidden=true\n", false},
          Edit{"switched off in GNOME", "[Desktop Entry]\nX-GNOME-Autostart-enabled=false\n", false},
          Edit{"not a desktop entry", "Exec=mosswick\n", false},
          Edit{"Hidden in another group", "[Desktop Entry]\nExec=x\n[Desktop Action a]\nHidden=true\n", true},
          Edit{"written by hand", "[Desktop Entry]\nType=Application\nExec=mosswick\n", true}}) {
        std::filesystem::remove(folder / "mosswick.desktop");
        if (!edit.contents.empty()) testing_::writeFile(folder / "mosswick.desktop", edit.contents);
        state.refresh();
        EXPECT_EQ(state.launchAtLogin(), edit.on) << edit.what;
    }

    state.apply(false);
    EXPECT_FALSE(state.launchAtLogin());
    EXPECT_FALSE(std::filesystem::exists(folder / "mosswick.desktop"));
    state.apply(false);  // already off: not an error
    EXPECT_TRUE(state.error().isEmpty());
}

TEST(LoginItemTest, AFailureSaysWhyAndTheSwitchFallsBackToTheRealState) {
    const auto root = testing_::freshFolder("login-fails");
    struct Case {
        const char* what;
        std::function<void(const std::filesystem::path& folder)> arrange;
        bool turnOn;
        bool switchAfter;
        const char* reason;
    };
    const Case cases[] = {
        {"the folder is a file", [](const auto& folder) { testing_::writeFile(folder, "x"); }, true, false,
         "Couldn't change the login item: "},
        {"the entry's name is taken by a folder",
         [](const auto& folder) { std::filesystem::create_directories(folder / "mosswick.desktop" / "x"); },
         true, false, "Couldn't change the login item: Is a directory ("},
        {"the entry cannot be removed",
         [](const auto& folder) {
             std::filesystem::create_directories(folder / "mosswick.desktop" / "x");
             testing_::writeFile(folder / "mosswick.desktop" / "x" / "y", "");
         },
         false, false, "Couldn't change the login item: "},
    };
    int n = 0;
    for (const Case& c : cases) {
        const auto folder = root / std::to_string(n++) / "autostart";
        std::filesystem::create_directories(folder.parent_path());
        c.arrange(folder);
        XdgAutostartEntry entry(qs(folder), QStringLiteral("/usr/bin/mosswick"));
        LoginItemState state(entry);
        state.apply(c.turnOn);
        EXPECT_EQ(state.launchAtLogin(), c.switchAfter) << c.what;
        EXPECT_TRUE(state.error().startsWith(QString::fromUtf8(c.reason)))
            << c.what << ": " << qPrintable(state.error());
        EXPECT_TRUE(state.error().contains(qs(folder))) << c.what << ": " << qPrintable(state.error());
    }
}

TEST(LoginItemTest, TheProgramIsQuotedOnlyWhenItMustBe) {
    struct Case {
        const char* executable;
        const char* exec;
    };
    for (const Case& c :
         {Case{"/usr/bin/mosswick", "/usr/bin/mosswick"},
          Case{"/home/ann/Apps/Mosswick-1.2.AppImage", "/home/ann/Apps/Mosswick-1.2.AppImage"},
          Case{"/home/ann/My Apps/mosswick", "\"/home/ann/My Apps/mosswick\""},
          Case{"/opt/$x/`a`/\"q\"", "\"/opt/\\\\$x/\\\\`a\\\\`/\\\\\"q\\\\\"\""},
          Case{"/opt/back\\slash", "\"/opt/back\\\\\\\\slash\""},
          Case{"/opt/100%/mosswick", "\"/opt/100%%/mosswick\""}}) {
        EXPECT_EQ(XdgAutostartEntry::execArgument(QString::fromUtf8(c.executable)), QString::fromUtf8(c.exec))
            << c.executable;
    }
}

}  // namespace

// What goes into GNOME's and KDE's keyboard settings, and when the Behavior pane offers it.
#include <gtest/gtest.h>

#include <QKeySequence>

#include "settings/DesktopShortcut.h"
#include "triggers/KeyboardLayout.h"

using mosswick::DesktopSession;
using mosswick::DesktopShortcut;
using mosswick::DesktopShortcutOffer;
using mosswick::DesktopShortcutStore;
using mosswick::KeyCombo;
namespace DesktopShortcuts = mosswick::DesktopShortcuts;

namespace {

// A German layout's few keys: A, Ä (on the apostrophe key), ß, comma and Return.
class SmallLayout final : public mosswick::KeyboardLayout {
public:
    std::optional<QString> character(quint32 evdev) const override {
        switch (evdev) {
            case 30:
                return QStringLiteral("a");
            case 40:
                return QStringLiteral("ä");
            case 12:
                return QStringLiteral("ß");
            case 51:
                return QStringLiteral(",");
            case 28:
                return QStringLiteral("\r");
        }
        return std::nullopt;
    }
    std::optional<QString> symbolName(quint32 evdev) const override {
        switch (evdev) {
            case 30:
                return QStringLiteral("a");
            case 40:
                return QStringLiteral("adiaeresis");
            case 12:
                return QStringLiteral("ssharp");
            case 51:
                return QStringLiteral("comma");
            case 28:
                return QStringLiteral("Return");
            case 63:
                return QStringLiteral("F5");
        }
        return std::nullopt;
    }
};

constexpr quint64 kCtrlAlt = KeyCombo::kControl | KeyCombo::kOption;
constexpr quint16 kA = 0, kSpace = 49, kF5 = 96, kReturn = 36;
constexpr quint16 kEvdevBase = 512;

TEST(DesktopShortcutKeys, SpellTheStoredComboTheWayEachDesktopDoes) {
    const SmallLayout layout;
    const mosswick::KeyboardLayout& noLayout = mosswick::KeyboardLayout::shared();
    struct Case {
        KeyCombo combo;
        const mosswick::KeyboardLayout* layout;
        const char* gnome;  // empty: none
        const char* kde;    // empty: none
    };
    const Case cases[] = {
        {{kSpace, kCtrlAlt}, &noLayout, "<Control><Alt>space", "Ctrl+Alt+Space"},
        {{kF5, 0}, &noLayout, "F5", "F5"},
        {{kF5, KeyCombo::kShift | KeyCombo::kCommand}, &layout, "<Shift><Super>F5", "Meta+Shift+F5"},
        {{kA, KeyCombo::kModifierMask}, &layout, "<Control><Alt><Shift><Super>a", "Meta+Ctrl+Alt+Shift+A"},
        // Keys named by the layout, not by their place on a US keyboard.
        {{kEvdevBase + 40, KeyCombo::kControl}, &layout, "<Control>adiaeresis", "Ctrl+Ä"},
        {{kEvdevBase + 12, KeyCombo::kControl}, &layout, "<Control>ssharp", "Ctrl+ß"},
        {{kEvdevBase + 51, KeyCombo::kOption}, &layout, "<Alt>comma", "Alt+,"},
        {{kReturn, KeyCombo::kControl}, &layout, "<Control>Return", "Ctrl+Return"},
        // Without a layout only keys every layout names alike can be spelled.
        {{kA, KeyCombo::kControl}, &noLayout, "", ""},
        {{kReturn, KeyCombo::kControl}, &noLayout, "", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.gnome);
        EXPECT_EQ(DesktopShortcuts::gnomeAccelerator(c.combo, *c.layout).value_or(QString()),
                  QString::fromUtf8(c.gnome));
        const auto key = DesktopShortcuts::qtKey(c.combo, *c.layout);
        EXPECT_EQ(key ? QKeySequence(*key).toString(QKeySequence::PortableText) : QString(),
                  QString::fromUtf8(c.kde));
    }
}

TEST(DesktopShortcutCommand, RunsTheInstalledProgramHoweverItsPathIsSpelled) {
    const std::pair<const char*, const char*> cases[] = {
        {"/usr/bin/mosswick", "/usr/bin/mosswick toggle"},
        {"/home/ann/my apps/mosswick", "'/home/ann/my apps/mosswick' toggle"},
        {"/opt/it's/mosswick", "'/opt/it'\\''s/mosswick' toggle"},
    };
    for (const auto& [executable, command] : cases)
        EXPECT_EQ(DesktopShortcuts::commandLine(QString::fromUtf8(executable)), QString::fromUtf8(command));
}

TEST(DesktopShortcutGVariant, ReadsWhatGsettingsPrintsAndWritesWhatItReads) {
    const QString ours =
        QStringLiteral("/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/mosswick/");
    const QString custom0 =
        QStringLiteral("/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/custom0/");
    struct Case {
        const char* printed;
        std::optional<QStringList> read;
    };
    const Case cases[] = {
        {"@as []", QStringList()},
        {"['/a/', '/b/']", QStringList{QStringLiteral("/a/"), QStringLiteral("/b/")}},
        {" [ '/a/' ,\"/it's/\" ] \n", QStringList{QStringLiteral("/a/"), QStringLiteral("/it's/")}},
        {"['a\\\\b', 'c\\'d', 'tab\\there', '\\u00e4']",
         QStringList{QStringLiteral("a\\b"), QStringLiteral("c'd"), QStringLiteral("tab\there"),
                     QStringLiteral("ä")}},
        // Anything not read whole is not read at all: the list is then never written back.
        {"", std::nullopt},
        {"['/a/' '/b/']", std::nullopt},
        {"['/a/', ]", std::nullopt},
        {"No such schema “org.gnome.settings-daemon.plugins.media-keys”", std::nullopt},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.printed);
        EXPECT_EQ(DesktopShortcuts::parseGVariantStringArray(QString::fromUtf8(c.printed)), c.read);
    }

    // What is written reads back the same, awkward characters and all.
    const QStringList awkward{custom0, QStringLiteral("it's"), QStringLiteral("back\\slash"),
                              QStringLiteral("line\nbreak"), QStringLiteral("ä ß")};
    EXPECT_EQ(DesktopShortcuts::parseGVariantStringArray(DesktopShortcuts::gvariantStringArray(awkward)),
              awkward);
    EXPECT_EQ(DesktopShortcuts::gvariantString(QStringLiteral("'/x y' toggle")),
              QStringLiteral("'\\'/x y\\' toggle'"));

    // Ours goes at the end, once; the user's entries keep their order.
    EXPECT_EQ(DesktopShortcuts::withEntry({}, ours), QStringList{ours});
    EXPECT_EQ(DesktopShortcuts::withEntry({custom0}, ours), (QStringList{custom0, ours}));
    EXPECT_EQ(DesktopShortcuts::withEntry({ours, custom0}, ours), (QStringList{ours, custom0}));
}

class NoStore final : public DesktopShortcutStore {
public:
    QString save(const DesktopShortcut&) override { return {}; }
};

TEST(DesktopShortcutOfferTest, OfferedOnlyWhereNothingElseHoldsTheKey) {
    NoStore store;
    struct Case {
        DesktopSession session;
        bool withStore;
        bool desktopHolds;
        bool offered;
    };
    const Case cases[] = {
        {DesktopSession::GnomeWayland, true, false, true},
        {DesktopSession::KdeWayland, true, false, true},
        {DesktopSession::KdeWayland, true, true, false},  // the portal bound it
        {DesktopSession::X11, true, false, false},        // the grab works
        {DesktopSession::WlrootsWayland, true, false, false},
        {DesktopSession::GnomeWayland, false, false, false},
    };
    for (const Case& c : cases) {
        const DesktopShortcutOffer offer(
            c.session, c.withStore ? &store : nullptr, [&c] { return c.desktopHolds; },
            QStringLiteral("/usr/bin/mosswick"));
        EXPECT_EQ(offer.isOffered(), c.offered)
            << static_cast<int>(c.session) << c.withStore << c.desktopHolds;
    }
}

}  // namespace

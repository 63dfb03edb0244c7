// The X11 shortcut against a private X server, with keys typed by xdotool.
#include <gtest/gtest.h>

#include <QStringList>
#include <cstdlib>
#include <memory>

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11HotKeyService.h"
#include "platform/x11/XkbKeyboardLayout.h"
#include "triggers/EvdevKeyCodes.h"
#include "support/EventWaiting.h"
#include "support/XvfbServer.h"

#include <xcb/xcb.h>

using mosswick::HotKeyService;
using mosswick::KeyCombo;
using mosswick::X11Connection;
using mosswick::X11HotKeyService;
using mosswick::testing::keepRunning;
using mosswick::testing::waitUntil;
using mosswick::testing::XvfbServer;

namespace {

constexpr unsigned kF5Keycode = 71;  // evdev 63 + 8
constexpr uint16_t kLock = XCB_MOD_MASK_LOCK;
constexpr uint16_t kNumLock = XCB_MOD_MASK_2;

// Another program on the same server, holding keys of its own.
class OtherClient {
public:
    explicit OtherClient(const QByteArray& display) : connection_(xcb_connect(display.constData(), nullptr)) {
        root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    }
    ~OtherClient() { xcb_disconnect(connection_); }

    // The X error code, 0 when granted.
    int grab(unsigned keycode, uint16_t modifiers) {
        const auto cookie =
            xcb_grab_key_checked(connection_, 0, root_, modifiers, static_cast<xcb_keycode_t>(keycode),
                                 XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        xcb_generic_error_t* error = xcb_request_check(connection_, cookie);
        const int code = error ? error->error_code : 0;
        std::free(error);
        return code;
    }

private:
    xcb_connection_t* connection_;
    xcb_window_t root_ = 0;
};

class X11HotKeyServiceTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!server.isRunning()) GTEST_SKIP() << server.problem().toStdString();
        connection = X11Connection::open(server.displayName());
        ASSERT_TRUE(connection);
        service = std::make_unique<X11HotKeyService>(*connection);
        service->installHandler(
            [this](HotKeyService::Event event) {
                events << (event == HotKeyService::Event::pressed ? QStringLiteral("pressed")
                                                                  : QStringLiteral("released"));
            },
            {});
    }

    bool type(const QStringList& arguments) { return server.xdotool(arguments); }

    XvfbServer server;
    std::unique_ptr<X11Connection> connection;
    std::unique_ptr<X11HotKeyService> service;
    QStringList events;
};

const QStringList kPressAndRelease{QStringLiteral("pressed"), QStringLiteral("released")};

TEST_F(X11HotKeyServiceTest, HeldKeyIsOnePressAndOneRelease) {
    ASSERT_TRUE(service->registerHotKey(KeyCombo{96, 0}).handle);
    ASSERT_TRUE(type({QStringLiteral("keydown"), QStringLiteral("F5")}));
    // Past the server's auto-repeat delay (660 ms), into several repeats.
    keepRunning(1000);
    ASSERT_TRUE(type({QStringLiteral("keyup"), QStringLiteral("F5")}));
    EXPECT_TRUE(waitUntil([&] { return events.size() >= 2; }));
    keepRunning(50);
    EXPECT_EQ(events, kPressAndRelease);
}

TEST_F(X11HotKeyServiceTest, ModifiersMustMatchAndLocksDoNotMatter) {
    ASSERT_TRUE(service->registerHotKey(KeyCombo{49, KeyCombo::kControl | KeyCombo::kOption}).handle);
    ASSERT_TRUE(type({QStringLiteral("key"), QStringLiteral("space")}));
    ASSERT_TRUE(type({QStringLiteral("key"), QStringLiteral("ctrl+space")}));
    keepRunning(100);
    EXPECT_TRUE(events.isEmpty());

    ASSERT_TRUE(type({QStringLiteral("key"), QStringLiteral("Num_Lock"), QStringLiteral("Caps_Lock")}));
    ASSERT_TRUE(type({QStringLiteral("key"), QStringLiteral("ctrl+alt+space")}));
    EXPECT_TRUE(waitUntil([&] { return events.size() >= 2; }));
    type({QStringLiteral("key"), QStringLiteral("Num_Lock"), QStringLiteral("Caps_Lock")});
    EXPECT_EQ(events, kPressAndRelease);
}

TEST_F(X11HotKeyServiceTest, KeyHeldElsewhereIsRefusedAndWhatWasGrabbedIsGivenBack) {
    OtherClient other(server.displayName());
    // The other program holds only the Caps Lock variant: the rest were granted to us, then undone.
    ASSERT_EQ(other.grab(kF5Keycode, kLock), 0);
    const HotKeyService::Registration refused = service->registerHotKey(KeyCombo{96, 0});
    EXPECT_FALSE(refused.handle);
    EXPECT_EQ(refused.status, 10);  // BadAccess
    connection->sync();
    EXPECT_EQ(other.grab(kF5Keycode, 0), 0);
    EXPECT_EQ(other.grab(kF5Keycode, kNumLock), 0);
    EXPECT_EQ(other.grab(kF5Keycode, kLock | kNumLock), 0);
}

TEST_F(X11HotKeyServiceTest, UnregisteringLetsOthersHaveTheKey) {
    const auto registration = service->registerHotKey(KeyCombo{96, 0});
    ASSERT_TRUE(registration.handle);
    OtherClient other(server.displayName());
    EXPECT_EQ(other.grab(kF5Keycode, kNumLock), 10);
    service->unregisterHotKey(*registration.handle);
    connection->sync();
    EXPECT_EQ(other.grab(kF5Keycode, 0), 0);
    EXPECT_EQ(other.grab(kF5Keycode, kNumLock), 0);
}

TEST_F(X11HotKeyServiceTest, KeyTheKeyboardLacksIsUnavailable) {
    const auto registration = service->registerHotKey(KeyCombo{mosswick::EvdevKeyCodes::kEvdevBase + 700, 0});
    EXPECT_FALSE(registration.handle);
    EXPECT_EQ(registration.status, HotKeyService::kKeyUnavailable);
}

TEST_F(X11HotKeyServiceTest, KeyNamesComeFromTheServersLayout) {
    const mosswick::XkbKeyboardLayout layout(*connection);
    EXPECT_EQ(layout.character(30), QStringLiteral("a"));
    EXPECT_EQ(layout.character(63), std::nullopt);  // F5
    EXPECT_EQ(layout.symbolName(63), QStringLiteral("F5"));
    EXPECT_EQ(layout.symbolName(57), QStringLiteral("space"));
    mosswick::KeyboardLayout::setShared(&layout);
    EXPECT_EQ(KeyCombo({10, 0}).displayString(), QStringLiteral("<"));  // the ISO key left of Z
    mosswick::KeyboardLayout::setShared(nullptr);
}

}  // namespace

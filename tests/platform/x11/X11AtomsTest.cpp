// The atom table against a private X server.
#include <gtest/gtest.h>

#include "platform/x11/X11Atoms.h"
#include "support/XvfbServer.h"

#include <X11/Xlib.h>

namespace mosswick {
namespace {

TEST(X11Atoms, NumbersHoldOnEveryConnectionAndNamesComeBack) {
    testing::XvfbServer server;
    if (!server.isRunning()) GTEST_SKIP() << server.problem().toStdString();
    Display* mine = XOpenDisplay(server.displayName().constData());
    Display* other = XOpenDisplay(server.displayName().constData());
    ASSERT_TRUE(mine && other);
    {
        X11Atoms atoms(mine);
        atoms.intern({"MOSSWICK_TEST_ONE", "MOSSWICK_TEST_TWO", "text/uri-list"});
        const quint32 one = atoms["MOSSWICK_TEST_ONE"];
        ASSERT_NE(one, 0u);
        // What the main thread's table interned serves requests on Qt's connection too.
        EXPECT_EQ(one, XInternAtom(other, "MOSSWICK_TEST_ONE", True));
        EXPECT_EQ(atoms["text/uri-list"], XInternAtom(other, "text/uri-list", True));

        const quint32 three = static_cast<quint32>(XInternAtom(other, "MOSSWICK_TEST_THREE", False));
        EXPECT_EQ(atoms.names({three, one, 0xFFFFFFu}),
                  QList<QByteArray>({"MOSSWICK_TEST_THREE", "MOSSWICK_TEST_ONE", {}}));
        // A number learnt that way is known by name too.
        EXPECT_EQ(atoms["MOSSWICK_TEST_THREE"], three);
    }
    XCloseDisplay(other);
    XCloseDisplay(mine);
}

}  // namespace
}  // namespace mosswick

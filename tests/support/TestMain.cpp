// Every unit test binary starts here: all of the user's folders point into a fresh temporary
// folder (the real home is never touched), and Qt runs without a display.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QTemporaryDir>
#ifdef MOSSWICK_TEST_WIDGETS
#include <QApplication>
#endif
#include <cstdlib>

#include "support/TestFolders.h"

int main(int argc, char** argv) {
    QTemporaryDir sandbox(QDir::tempPath() + QStringLiteral("/mosswick-test-XXXXXX"));
    if (!sandbox.isValid()) return 2;
    mosswick::testing::pointUserFoldersAt(sandbox.path().toStdString());
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");

#ifdef MOSSWICK_TEST_WIDGETS
    QApplication app(argc, argv);  // tests of views build widgets
#else
    QGuiApplication app(argc, argv);
#endif
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

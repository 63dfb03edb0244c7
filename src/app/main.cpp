#include <QApplication>
#include <QLabel>
#include <QTimer>
#include <cstdio>

// Until the shelf window exists, Mosswick starts a placeholder window that says so.
int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Mosswick"));
    QApplication::setDesktopFileName(QStringLiteral("mosswick"));

    QLabel placeholder(QStringLiteral("Mosswick is starting up: the shelf window is not built yet."));
    placeholder.setWindowTitle(QStringLiteral("Mosswick"));
    placeholder.setMargin(24);
    placeholder.show();
    std::fprintf(stderr, "Mosswick: placeholder window shown; the shelf is not built yet.\n");

    if (qEnvironmentVariableIsSet("MOSSWICK_QUIT_AFTER_MS"))
        QTimer::singleShot(qEnvironmentVariableIntValue("MOSSWICK_QUIT_AFTER_MS"), &app, &QApplication::quit);
    return app.exec();
}

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include "platform/qt/QtScheduler.h"

using mosswick::QtScheduler;

TEST(QtScheduler, DeliversTimersAndBackgroundResultsOnTheMainThread) {
    QtScheduler scheduler;
    bool timerRan = false;
    bool doneOnMain = false;
    auto task = scheduler.after(0.01, [&] { timerRan = true; });
    scheduler.background([] {}, [&] { doneOnMain = QThread::currentThread() == qApp->thread(); });
    QElapsedTimer waited;
    waited.start();
    while ((!timerRan || !doneOnMain) && waited.elapsed() < 5000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    EXPECT_TRUE(timerRan);
    EXPECT_TRUE(doneOnMain);
}

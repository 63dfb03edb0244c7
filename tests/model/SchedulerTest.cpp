#include <gtest/gtest.h>

#include <vector>

#include "support/ManualScheduler.h"

using mosswick::ScheduledTask;
using mosswick::testing::ManualScheduler;

TEST(ManualScheduler, RunsTimersInDueOrderIncludingOnesScheduledOnTheWay) {
    ManualScheduler clock;
    std::vector<int> ran;
    ScheduledTask chained;
    auto late = clock.after(0.5, [&] { ran.push_back(3); });
    auto early = clock.after(0.1, [&] {
        ran.push_back(1);
        chained = clock.after(0.1, [&] { ran.push_back(2); });
    });
    clock.advance(0.15);
    EXPECT_EQ(ran, (std::vector<int>{1}));
    clock.advance(1);
    EXPECT_EQ(ran, (std::vector<int>{1, 2, 3}));
    EXPECT_DOUBLE_EQ(clock.now(), 1.15);
}

TEST(ManualScheduler, CancelledOrDroppedTasksNeverRun) {
    ManualScheduler clock;
    int ran = 0;
    auto cancelled = clock.after(0.1, [&] { ++ran; });
    cancelled.cancel();
    {
        auto dropped = clock.after(0.1, [&] { ++ran; });
    }
    auto replaced = clock.after(0.1, [&] { ++ran; });
    replaced = clock.after(0.2, [&] { ran += 10; });
    EXPECT_TRUE(replaced.isPending());
    clock.advance(1);
    EXPECT_EQ(ran, 10);
    EXPECT_FALSE(replaced.isPending());
    EXPECT_EQ(clock.pendingTimers(), 0u);
}

#include "core/SharedTimer.h"
#include "core/UpdateTimer.h"

#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <thread>

namespace
{
using Orv::Events::SharedTimer;
using Orv::Events::UpdateTimer;

void tick() { SharedTimer::get().tick(); }

TEST (UpdateTimer, RaisedTwiceBetweenTicksCallsOnce)
{
    int calls = 0;
    UpdateTimer timer ([&] { ++calls; });

    tick();
    EXPECT_EQ (calls, 0);

    timer.trigger();
    timer.trigger();
    tick();
    tick();
    EXPECT_EQ (calls, 1);

    timer.trigger();
    tick();
    EXPECT_EQ (calls, 2);
}

TEST (UpdateTimer, StartsFromItsInitialValueAndCallsAtOnceWhenAsked)
{
    int calls = 0;
    UpdateTimer quiet ([&] { ++calls; }, 41);
    EXPECT_EQ (quiet.getCounter(), 41);
    tick();
    EXPECT_EQ (calls, 0);

    UpdateTimer eager ([&] { ++calls; }, 0, true);
    EXPECT_EQ (calls, 1);
    tick();
    EXPECT_EQ (calls, 1);
}

TEST (UpdateTimer, ARaiseFromAnotherThreadIsReportedOnTheMessageThread)
{
    const auto messageThread = std::this_thread::get_id();
    bool calledOnMessageThread = false;
    UpdateTimer timer ([&] { calledOnMessageThread = std::this_thread::get_id() == messageThread; });

    std::thread ([&] {
        Orv::Testing::AllocationCounter counter;
        timer.trigger();
        EXPECT_EQ (counter.getCount(), 0);
    }).join();

    tick();
    EXPECT_TRUE (calledOnMessageThread);
}
} // namespace

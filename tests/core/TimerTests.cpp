#include "core/AtomicFlagListener.h"
#include "core/AtomicListener.h"
#include "core/SharedTimer.h"
#include "core/TimerCallback.h"
#include "core/UpdateTimer.h"

#include "support/AllocationCounter.h"
#include "support/MessagePump.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

namespace
{
using namespace Orv::Events;
using Orv::Testing::pumpMessagesUntil;

void tick() { SharedTimer::get().tick(); }

TEST (SharedTimer, TicksByItselfWhileTheMessageLoopRuns)
{
    int ticks = 0;
    Listener l ([&] { ++ticks; });
    SharedTimer::attach (l);
    EXPECT_TRUE (pumpMessagesUntil ([&] { return ticks >= 2; }));
}

TEST (TimerCallback, CallsItsFunctionPeriodicallyUntilDestroyed)
{
    constexpr int periodMs = 10;
    int calls = 0;
    {
        TimerCallback timer ([&] { ++calls; }, periodMs);
        EXPECT_TRUE (pumpMessagesUntil ([&] { return calls >= 2; }));
    }

    const auto callsAtEnd = calls;
    Orv::Testing::pumpMessagesFor (5 * periodMs);
    EXPECT_EQ (calls, callsAtEnd);
}

//==============================================================================
TEST (UpdateTimer, RaisedTwiceBetweenTicksCallsOnceAndItsInitialValueCountsAsSeen)
{
    int calls = 0;
    UpdateTimer timer ([&] { ++calls; }, 41);
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

    UpdateTimer eager ([&] { ++calls; }, 0, true);
    EXPECT_EQ (calls, 3);
    tick();
    EXPECT_EQ (calls, 3);
}

TEST (UpdateTimer, ARaiseFromAnotherThreadAllocatesNothingAndIsReportedOnTheMessageThread)
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

//==============================================================================
/** Stands for the audio thread's record of a note: compared as a whole. */
struct NoteLike
{
    int32_t note = -1;
    float velocity = 0.0f;

    bool operator== (const NoteLike& other) const { return note == other.note && velocity == other.velocity; }
};

/** A change is reported once, on the next tick; one undone within a tick is not. */
template <typename T>
void checkReportsChanges (T initial, T changed)
{
    std::atomic<T> value { initial };
    int calls = 0;
    AtomicListener<T> listener (value, [&] { ++calls; });
    tick();
    EXPECT_EQ (calls, 0);

    value = changed;
    tick();
    tick();
    EXPECT_EQ (calls, 1);
    EXPECT_TRUE (listener.getLastSeen() == changed);

    value = initial;
    value = changed;
    tick();
    EXPECT_EQ (calls, 1);
}

TEST (AtomicListener, ReportsEachChangeOnceForEveryValueType)
{
    checkReportsChanges<int32_t> (1, 2);
    checkReportsChanges<double> (0.5, 0.5000001);
    checkReportsChanges<NoteLike> ({ 60, 1.0f }, { 60, 0.5f });
}

TEST (AtomicListener, WatchesAnOrvAtomicAndCallsAtOnceWhenAsked)
{
    Orv::Atomic<int32_t> value (3);
    int calls = 0;
    AtomicListener<int32_t> listener (value, [&] { ++calls; }, true);
    EXPECT_EQ (calls, 1);

    value.set (4);
    tick();
    EXPECT_EQ (calls, 2);
}

TEST (AtomicListener, FlagListenerReportsBothEdgesAndMixedTypesEndThroughTheirBase)
{
    std::atomic<int32_t> number { 0 };
    std::atomic<bool> flag { false };
    int calls = 0;
    std::vector<std::unique_ptr<ValueListenerDetails::Base>> listeners;
    listeners.push_back (std::make_unique<AtomicFlagListener> (flag, [&] { ++calls; }));
    listeners.push_back (std::make_unique<AtomicListener<int32_t>> (number, [&] { ++calls; }));

    flag = true;
    tick();
    flag = false;
    tick();
    EXPECT_EQ (calls, 2);

    listeners.clear();
    number = 1;
    flag = true;
    tick();
    EXPECT_EQ (calls, 2);
}
} // namespace

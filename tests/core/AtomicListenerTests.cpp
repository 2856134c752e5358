#include "core/AtomicFlagListener.h"
#include "core/AtomicListener.h"
#include "core/SharedTimer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace
{
using Orv::Events::AtomicFlagListener;
using Orv::Events::AtomicListener;
using Orv::Events::SharedTimer;

void tick() { SharedTimer::get().tick(); }

/** Stands for the audio thread's record of a note: compared as a whole. */
struct NoteLike
{
    int32_t note = -1;
    float velocity = 0.0f;

    bool operator== (const NoteLike& other) const { return note == other.note && velocity == other.velocity; }
};

/** The same checks for each value type: a change is reported once, on the
    next tick; a change undone within one tick goes unreported. */
template <typename T>
void checkReportsChanges (T initial, T changed)
{
    std::atomic<T> value { initial };
    int calls = 0;
    AtomicListener<T> listener (value, [&] { ++calls; });

    tick();
    EXPECT_EQ (calls, 0);

    value = changed;
    EXPECT_EQ (calls, 0);
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

TEST (AtomicFlagListener, ReportsSettingAndClearing)
{
    std::atomic<bool> flag { false };
    int calls = 0;
    AtomicFlagListener listener (flag, [&] { ++calls; });

    flag = true;
    tick();
    flag = false;
    tick();
    EXPECT_EQ (calls, 2);
}

TEST (AtomicListener, ListenersOfMixedTypesEndThroughTheirCommonBase)
{
    std::atomic<int32_t> number { 0 };
    std::atomic<bool> flag { false };
    int calls = 0;

    std::vector<std::unique_ptr<Orv::Events::ValueListenerDetails::Base>> listeners;
    listeners.push_back (std::make_unique<AtomicListener<int32_t>> (number, [&] { ++calls; }));
    listeners.push_back (std::make_unique<AtomicFlagListener> (flag, [&] { ++calls; }));
    listeners.clear();

    number = 1;
    flag = true;
    tick();
    EXPECT_EQ (calls, 0);
}
} // namespace

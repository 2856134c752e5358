#include "core/GarbageCollector.h"
#include "core/Threads.h"

#include "support/MessagePump.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

namespace
{
using Orv::Events::GarbageCollector;

/** Makes an object that records whether, and on which thread, it died. */
struct Probe
{
    std::atomic<bool> died { false }, diedOnMessageThread { false };

    std::shared_ptr<int> make()
    {
        return std::shared_ptr<int> (new int(), [this] (int* p) {
            diedOnMessageThread = Orv::Threads::isMessageThread();
            died = true;
            delete p;
        });
    }
};

TEST (GarbageCollector, KeepsWhatOthersHoldAndFreesTheRestOnTheMessageThread)
{
    GarbageCollector gc;
    Probe used, unused;
    auto user = used.make();
    gc.add (user);
    ASSERT_EQ (user.use_count(), 2);
    gc.add (unused.make());

    gc.collect();
    EXPECT_FALSE (used.died.load());
    EXPECT_TRUE (unused.died.load());
    EXPECT_EQ (gc.getNumHeld(), 1);

    // The last other holder lets go on another thread, as the audio thread would.
    std::thread ([held = std::move (user)]() mutable { held.reset(); }).join();
    EXPECT_FALSE (used.died.load());
    gc.collect();
    EXPECT_TRUE (used.died.load());
    EXPECT_TRUE (used.diedOnMessageThread.load());
    EXPECT_EQ (gc.getNumHeld(), 0);
}

TEST (GarbageCollector, ItsTimerCollectsByItself)
{
    Probe probe;
    GarbageCollector::get().add (probe.make());

    EXPECT_TRUE (Orv::Testing::pumpMessagesUntil ([&] { return probe.died.load(); }, 3 * GarbageCollector::collectPeriodMs));
    EXPECT_TRUE (probe.diedOnMessageThread.load());
}
} // namespace

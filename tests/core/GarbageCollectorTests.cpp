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

/** Records whether, and on which thread, it died. */
struct Tracked
{
    Tracked (std::atomic<bool>& d, std::atomic<bool>& m) : died (d), diedOnMessageThread (m) {}

    std::atomic<bool>& died;
    std::atomic<bool>& diedOnMessageThread;

    ~Tracked()
    {
        diedOnMessageThread = Orv::Threads::isMessageThread();
        died = true;
    }
};

struct Probe
{
    std::atomic<bool> died { false }, diedOnMessageThread { false };

    std::shared_ptr<Tracked> make() { return std::make_shared<Tracked> (died, diedOnMessageThread); }
};

TEST (GarbageCollector, KeepsAnObjectSomeoneElseHoldsAndFreesOneOnlyItHolds)
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

    user.reset();
    EXPECT_FALSE (used.died.load());
    gc.collect();
    EXPECT_TRUE (used.died.load());
    EXPECT_EQ (gc.getNumHeld(), 0);
}

TEST (GarbageCollector, AnObjectReleasedLastByAnotherThreadDiesOnTheMessageThread)
{
    GarbageCollector gc;
    Probe probe;

    auto object = probe.make();
    gc.add (object);

    std::thread audio ([held = std::move (object)]() mutable { held.reset(); });
    audio.join();

    EXPECT_FALSE (probe.died.load());
    gc.collect();
    EXPECT_TRUE (probe.died.load());
    EXPECT_TRUE (probe.diedOnMessageThread.load());
}

TEST (GarbageCollector, ItsTimerCollectsByItself)
{
    Probe probe;
    GarbageCollector::get().add (probe.make());

    const auto limitMs = 3 * GarbageCollector::collectPeriodMs;
    EXPECT_TRUE (Orv::Testing::pumpMessagesUntil ([&] { return probe.died.load(); }, limitMs));
    EXPECT_TRUE (probe.diedOnMessageThread.load());
}
} // namespace

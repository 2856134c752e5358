#include "core/PoolJobMap.h"
#include "core/Threads.h"

#include "support/MessagePump.h"

#include <gtest/gtest.h>
#include <juce_events/juce_events.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace
{
using Orv::Testing::pumpMessagesUntil;
using Orv::Threads::PoolJobMap;

constexpr int waitLimitMs = 5000;

TEST (Threads, OnlyTheMessageManagersThreadIsTheMessageThread)
{
    EXPECT_TRUE (Orv::Threads::isMessageThread());
    bool onWorker = true;
    std::thread ([&] { onWorker = Orv::Threads::isMessageThread(); }).join();
    EXPECT_FALSE (onWorker);
}

TEST (Threads, CallAndBlockRunsInlineOnTheMessageThread)
{
    // No message loop runs here: a posted call would never happen.
    bool ran = false;
    Orv::Threads::callOnMessageThreadAndBlock ([&] { ran = true; });
    EXPECT_TRUE (ran);
}

TEST (Threads, CallAndBlockFromAWorkerReturnsOnlyAfterTheCallRanOnTheMessageThread)
{
    const auto messageThread = std::this_thread::get_id();
    std::atomic<bool> workerDone { false };
    bool ranOnMessageThread = false;
    int valueSeenByWorker = 0;

    std::thread worker ([&] {
        int value = 0;
        Orv::Threads::callOnMessageThreadAndBlock ([&] {
            ranOnMessageThread = std::this_thread::get_id() == messageThread;
            std::this_thread::sleep_for (std::chrono::milliseconds (20));
            value = 42;
        });
        valueSeenByWorker = value;
        workerDone = true;
    });

    const auto finished = pumpMessagesUntil ([&] { return workerDone.load(); });
    worker.join();
    ASSERT_TRUE (finished);
    EXPECT_TRUE (ranOnMessageThread);
    EXPECT_EQ (valueSeenByWorker, 42);
}

TEST (Threads, AsyncCallbackRunsInlineOnTheMessageThreadAndIsPostedFromOthers)
{
    const auto messageThread = std::this_thread::get_id();
    std::atomic<int> calls { 0 };
    std::atomic<bool> ranElsewhere { false };
    auto callback = Orv::Threads::getAsyncCallback ([&] {
        ranElsewhere = ranElsewhere || std::this_thread::get_id() != messageThread;
        ++calls;
    });

    callback();
    EXPECT_EQ (calls.load(), 1);
    std::thread (callback).join();
    EXPECT_EQ (calls.load(), 1); // posted, not yet run
    EXPECT_TRUE (pumpMessagesUntil ([&] { return calls.load() == 2; }));
    EXPECT_FALSE (ranElsewhere.load());
}

TEST (Threads, TheSharedPoolRunsJobsOnThreadsNamedPool)
{
    juce::WaitableEvent ran;
    juce::String name;
    Orv::Threads::getThreadPool().addJob ([&] {
        name = juce::Thread::getCurrentThread()->getThreadName();
        ran.signal();
    });
    ASSERT_TRUE (ran.wait (waitLimitMs));
    EXPECT_EQ (name, "Pool");
}

//==============================================================================
struct PoolJobMapTest : ::testing::Test
{
    /** Starts a job that holds the pool's one thread until release is signalled. */
    void holdThePool()
    {
        juce::WaitableEvent started;
        pool.addJob ([this, &started] {
            started.signal();
            release.wait (waitLimitMs);
        });
        started.wait (waitLimitMs);
    }

    void drain()
    {
        release.signal();
        for (int waited = 0; pool.getNumJobs() > 0 && waited < waitLimitMs; ++waited)
            juce::Thread::sleep (1);
    }

    juce::ThreadPool pool { 1 };
    juce::WaitableEvent release;
    PoolJobMap map;
    int owner = 0, otherOwner = 0;
};

TEST_F (PoolJobMapTest, RemoveWaitsForTheOwnersRunningJobButNotForAnothers)
{
    std::atomic<bool> finished { false };
    juce::WaitableEvent started;
    map.add (&owner, [&] {
        started.signal();
        release.wait (waitLimitMs);
        std::this_thread::sleep_for (std::chrono::milliseconds (100));
        finished = true;
    }, pool);
    ASSERT_TRUE (started.wait (waitLimitMs));

    const auto before = juce::Time::getMillisecondCounter();
    map.remove (&otherOwner);
    EXPECT_LT (juce::Time::getMillisecondCounter() - before, (juce::uint32) waitLimitMs / 2);

    release.signal();
    map.remove (&owner);
    EXPECT_TRUE (finished.load());
}

TEST_F (PoolJobMapTest, QueuedJobsOfARemovedOwnerOrADestroyedMapNeverRunButOthersDo)
{
    std::atomic<int> cancelledRuns { 0 }, keptRuns { 0 };
    holdThePool();
    map.add (&owner, [&] { ++cancelledRuns; }, pool);
    map.add (&otherOwner, [&] { ++keptRuns; }, pool);
    map.add (&owner, [&] { ++cancelledRuns; }, pool);
    {
        PoolJobMap destroyed;
        destroyed.add (&otherOwner, [&] { ++cancelledRuns; }, pool);
    }
    EXPECT_EQ (map.getNumJobs (&owner), 2);

    map.remove (&owner);
    EXPECT_EQ (map.getNumJobs (&owner), 0);
    drain();

    EXPECT_EQ (cancelledRuns.load(), 0);
    EXPECT_EQ (keptRuns.load(), 1);
    EXPECT_EQ (map.getNumJobs (&otherOwner), 0) << "a finished job no longer counts";
}
} // namespace

#include "core/PoolJobMap.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace
{
using Orv::Threads::PoolJobMap;

constexpr int waitLimitMs = 5000;

/** A pool of one thread, which a blocker job can keep busy. */
struct OneThreadPool
{
    juce::ThreadPool pool { 1 };
    juce::WaitableEvent release;

    void block()
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
};

TEST (PoolJobMap, RemoveWaitsForTheRunningJob)
{
    juce::ThreadPool pool (1);
    PoolJobMap map;
    juce::WaitableEvent started;
    std::atomic<bool> finished { false };
    int owner = 0;

    map.add (&owner, [&] {
        started.signal();
        std::this_thread::sleep_for (std::chrono::milliseconds (100));
        finished = true;
    }, pool);

    ASSERT_TRUE (started.wait (waitLimitMs));
    map.remove (&owner);
    EXPECT_TRUE (finished.load());
}

TEST (PoolJobMap, NoQueuedJobOfARemovedOwnerRunsButOthersDo)
{
    OneThreadPool p;
    PoolJobMap map;
    std::atomic<int> removedRuns { 0 }, keptRuns { 0 };
    int removedOwner = 0, keptOwner = 0;

    p.block();
    map.add (&removedOwner, [&] { ++removedRuns; }, p.pool);
    map.add (&keptOwner, [&] { ++keptRuns; }, p.pool);
    map.add (&removedOwner, [&] { ++removedRuns; }, p.pool);
    EXPECT_EQ (map.getNumJobs (&removedOwner), 2);

    map.remove (&removedOwner);
    EXPECT_EQ (map.getNumJobs (&removedOwner), 0);
    p.drain();

    EXPECT_EQ (removedRuns.load(), 0);
    EXPECT_EQ (keptRuns.load(), 1);
}

TEST (PoolJobMap, RemovingOneOwnerDoesNotWaitForAnothersRunningJob)
{
    juce::ThreadPool pool (1);
    PoolJobMap map;
    juce::WaitableEvent started, release;
    int busyOwner = 0, idleOwner = 0;

    map.add (&busyOwner, [&] {
        started.signal();
        release.wait (waitLimitMs);
    }, pool);
    ASSERT_TRUE (started.wait (waitLimitMs));

    const auto before = juce::Time::getMillisecondCounter();
    map.remove (&idleOwner);
    const auto tookMs = juce::Time::getMillisecondCounter() - before;

    release.signal();
    EXPECT_LT (tookMs, (juce::uint32) waitLimitMs / 2);
}

TEST (PoolJobMap, AJobNoLongerCountsOnceThePoolIsDoneWithIt)
{
    juce::ThreadPool pool (1);
    PoolJobMap map;
    int owner = 0;

    map.add (&owner, {}, pool);
    for (int waited = 0; map.getNumJobs (&owner) > 0 && waited < waitLimitMs; ++waited)
        juce::Thread::sleep (1);

    EXPECT_EQ (map.getNumJobs (&owner), 0);
}

TEST (PoolJobMap, DestroyingTheMapCancelsQueuedJobs)
{
    OneThreadPool p;
    std::atomic<int> runs { 0 };
    int owner = 0;

    p.block();
    {
        PoolJobMap map;
        map.add (&owner, [&] { ++runs; }, p.pool);
    }
    p.drain();

    EXPECT_EQ (runs.load(), 0);
}
} // namespace

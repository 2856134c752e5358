#include "core/ShutdownDeleter.h"
#include "core/Singleton.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace
{
using Orv::ShutdownDeleter;
using Orv::Singleton;

struct SlowToMake
{
    static inline std::atomic<int> made { 0 };

    SlowToMake()
    {
        ++made;
        // Widens the window in which a second thread could slip past the lock.
        std::this_thread::sleep_for (std::chrono::milliseconds (20));
    }
};

TEST (Singleton, IsMadeOnceEvenWhenManyThreadsAskAtOnce)
{
    constexpr int numThreads = 6;
    std::atomic<bool> go { false };
    std::vector<SlowToMake*> seen ((size_t) numThreads);
    std::vector<std::thread> threads;

    for (int t = 0; t < numThreads; ++t)
        threads.emplace_back ([&, t] {
            while (! go.load())
                std::this_thread::yield();
            seen[(size_t) t] = Singleton<SlowToMake>::get();
        });

    go = true;
    for (auto& t : threads)
        t.join();

    EXPECT_EQ (SlowToMake::made.load(), 1);
    for (auto* p : seen)
        EXPECT_EQ (p, seen.front());
}

//==============================================================================
std::string endings;
bool olderAliveWhileNewerEnds = false;

struct Oldest
{
    ~Oldest() { endings += "oldest "; }
};

struct Middle
{
    ~Middle() { endings += "middle "; }
};

struct Newest
{
    ~Newest()
    {
        endings += "newest ";
        olderAliveWhileNewerEnds = Singleton<Oldest>::getIfExists() != nullptr
                                   && Singleton<Middle>::getIfExists() != nullptr;
    }
};

TEST (ShutdownDeleter, ReleasesSingletonsNewestFirstWhileOlderOnesStillExist)
{
    Singleton<Oldest>::get();
    Singleton<Middle>::get();
    Singleton<Newest>::get();

    endings.clear();
    ShutdownDeleter::releaseAll();

    EXPECT_EQ (endings, "newest middle oldest ");
    EXPECT_TRUE (olderAliveWhileNewerEnds);
    EXPECT_EQ (Singleton<Oldest>::getIfExists(), nullptr);
    EXPECT_EQ (Singleton<Newest>::getIfExists(), nullptr);
}

struct Remade
{
    static inline int made = 0;
    static inline int ended = 0;
    Remade() { ++made; }
    ~Remade() { ++ended; }
};

TEST (ShutdownDeleter, ASingletonAskedForAfterReleaseIsMadeAnew)
{
    Singleton<Remade>::get();
    ShutdownDeleter::releaseAll();
    EXPECT_EQ (Remade::ended, 1);

    EXPECT_NE (Singleton<Remade>::get(), nullptr);
    EXPECT_EQ (Remade::made, 2);

    ShutdownDeleter::releaseAll();
    EXPECT_EQ (Remade::ended, 2);
}

struct HeldByInstances
{
};

TEST (ShutdownDeleter, TheLastPluginInstanceToEndReleasesTheSingletons)
{
    {
        ShutdownDeleter::InstanceCounter first;
        {
            ShutdownDeleter::InstanceCounter second;
            ASSERT_EQ (ShutdownDeleter::InstanceCounter::getNumInstances(), 2);
            Singleton<HeldByInstances>::get();
        }
        EXPECT_NE (Singleton<HeldByInstances>::getIfExists(), nullptr);
    }
    EXPECT_EQ (Singleton<HeldByInstances>::getIfExists(), nullptr);
}
} // namespace

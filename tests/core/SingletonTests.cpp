#include "core/ShutdownDeleter.h"
#include "core/Singleton.h"

#include <gtest/gtest.h>

#include <algorithm>
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
    EXPECT_EQ (std::count (seen.begin(), seen.end(), seen.front()), numThreads);
}

//==============================================================================
std::string endings;
bool olderAliveWhileNewestEnds = false;

template <int order>
struct Ending
{
    ~Ending()
    {
        endings += std::to_string (order);
        if (order == 3)
            olderAliveWhileNewestEnds = Singleton<Ending<1>>::getIfExists() != nullptr && Singleton<Ending<2>>::getIfExists() != nullptr;
    }
};

TEST (ShutdownDeleter, ReleasesSingletonsNewestFirstWhileOlderOnesStillExist)
{
    Singleton<Ending<1>>::get();
    Singleton<Ending<2>>::get();
    Singleton<Ending<3>>::get();

    endings.clear();
    ShutdownDeleter::releaseAll();

    EXPECT_EQ (endings, "321");
    EXPECT_TRUE (olderAliveWhileNewestEnds);
    EXPECT_EQ (Singleton<Ending<1>>::getIfExists(), nullptr);
}

struct Remade
{
    static inline int made = 0, ended = 0;
    Remade() { ++made; }
    ~Remade() { ++ended; }
};

TEST (ShutdownDeleter, TheLastPluginInstanceToEndReleasesAndALaterAskMakesAnew)
{
    {
        ShutdownDeleter::InstanceCounter first;
        {
            ShutdownDeleter::InstanceCounter second;
            Singleton<Remade>::get();
        }
        EXPECT_EQ (Remade::ended, 0);
    }
    EXPECT_EQ (Remade::ended, 1);
    EXPECT_EQ (Singleton<Remade>::getIfExists(), nullptr);

    Singleton<Remade>::get();
    EXPECT_EQ (Remade::made, 2);
    ShutdownDeleter::releaseAll();
    EXPECT_EQ (Remade::ended, 2);
}
} // namespace

#include "core/Atomic.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <thread>
#include <type_traits>
#include <vector>

namespace
{
static_assert (! std::is_copy_constructible_v<Orv::Atomic<int>>);
static_assert (std::is_copy_constructible_v<Orv::CopyableAtomic<int>>);

struct Settings
{
    Orv::CopyableAtomic<int> steps { 16 };
    Orv::CopyableAtomic<double> rate { 0.25 };
};

TEST (Atomic, ExchangeReturnsTheReplacedValue)
{
    Orv::Atomic<int> a (3);
    EXPECT_EQ (a.exchange (4), 3);
    EXPECT_EQ (a.get(), 4);

    a.set (9);
    EXPECT_EQ (a.exchange (1), 9);
}

TEST (Atomic, ConcurrentExchangesHandEachValueOnExactlyOnce)
{
    constexpr int numThreads = 4;
    constexpr int perThread = 20000;

    // Every value put in is taken out exactly once, by a later exchange or as
    // the final value; a get-then-set would lose some and duplicate others.
    Orv::Atomic<int> slot (-1);
    std::vector<std::vector<int>> taken (numThreads);
    std::vector<std::thread> threads;

    for (int t = 0; t < numThreads; ++t)
        threads.emplace_back ([&, t] {
            for (int i = 0; i < perThread; ++i)
                taken[(size_t) t].push_back (slot.exchange (t * perThread + i));
        });

    for (auto& t : threads)
        t.join();

    std::vector<int> all { slot.get() };
    for (auto& v : taken)
        all.insert (all.end(), v.begin(), v.end());
    std::sort (all.begin(), all.end());

    std::vector<int> expected ((size_t) (numThreads * perThread + 1));
    std::iota (expected.begin(), expected.end(), -1);
    EXPECT_EQ (all, expected);
}

TEST (CopyableAtomic, RecordsCopyTheirValuesAndStayIndependent)
{
    Settings a;
    a.steps.set (7);
    a.rate.set (0.5);

    Settings b (a);
    EXPECT_EQ (b.steps.get(), 7);
    EXPECT_EQ (b.rate.get(), 0.5);

    b.steps.set (8);
    EXPECT_EQ (a.steps.get(), 7);

    Settings c;
    c = b;
    EXPECT_EQ (c.steps.get(), 8);
    EXPECT_EQ (c.rate.get(), 0.5);
}
} // namespace

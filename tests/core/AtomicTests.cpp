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

TEST (CopyableAtomic, CopiesAndAssignmentsTakeTheValueAndStayIndependent)
{
    Orv::CopyableAtomic<double> a (0.5);
    Orv::CopyableAtomic<double> b (a), c;
    c = a;
    b.set (0.75);

    EXPECT_EQ (a.get(), 0.5);
    EXPECT_EQ (b.get(), 0.75);
    EXPECT_EQ (c.get(), 0.5);
}
} // namespace

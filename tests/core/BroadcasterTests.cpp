#include "core/Broadcaster.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <thread>

namespace
{
using Orv::Events::Broadcaster;
using Orv::Events::Listener;

TEST (Broadcaster, CallsEachAttachedListenerOnce)
{
    Broadcaster b;
    int first = 0, second = 0;
    Listener l1 (b, [&] { ++first; });
    Listener l2 (b, [&] { ++second; });

    b.call();
    EXPECT_EQ (first, 1);
    EXPECT_EQ (second, 1);
    EXPECT_EQ (b.getNumListeners(), 2);
}

TEST (Broadcaster, AListenerWithoutAFunctionIsHarmless)
{
    Broadcaster b;
    Listener l (b, {});
    EXPECT_NO_THROW (b.call());
}

TEST (Broadcaster, AListenerDestroyedDuringACallIsNotCalledAfterwards)
{
    Broadcaster b;
    int victimCalls = 0;
    // In an optional, the dead listener's memory stays readable, so that a
    // wrongful call after its destructor shows up as a count, not as a crash.
    std::optional<Listener> victim;
    Listener killer (b, [&] { victim.reset(); });
    victim.emplace (b, [&] { ++victimCalls; });

    b.call();
    b.call();
    EXPECT_EQ (victimCalls, 0);
    EXPECT_EQ (b.getNumListeners(), 1);
}

TEST (Broadcaster, AListenerMayDestroyItselfFromItsOwnCallback)
{
    Broadcaster b;
    int calls = 0, othersCalls = 0;
    std::unique_ptr<Listener> self;
    self = std::make_unique<Listener> (b, [&] {
        ++calls;
        self.reset();
    });
    Listener other (b, [&] { ++othersCalls; });

    b.call();
    b.call();
    EXPECT_EQ (calls, 1);
    EXPECT_EQ (othersCalls, 2);
}

TEST (Broadcaster, AListenerAddedDuringACallIsFirstCalledOnTheNext)
{
    Broadcaster b;
    int addedCalls = 0;
    std::unique_ptr<Listener> added;
    Listener adder (b, [&] {
        if (added == nullptr)
            added = std::make_unique<Listener> (b, [&] { ++addedCalls; });
    });

    b.call();
    EXPECT_EQ (addedCalls, 0);
    EXPECT_TRUE (added->isAttached());

    b.call();
    EXPECT_EQ (addedCalls, 1);
}

TEST (Broadcaster, AddingToAnotherBroadcasterMovesTheListener)
{
    Broadcaster first, second;
    int calls = 0;
    Listener l (first, [&] { ++calls; });
    second.add (l);

    first.call();
    EXPECT_EQ (calls, 0);
    second.call();
    EXPECT_EQ (calls, 1);
    EXPECT_EQ (first.getNumListeners(), 0);
}

TEST (Broadcaster, AListenerOutlivingItsBroadcasterIsDetached)
{
    auto b = std::make_unique<Broadcaster>();
    Listener l (*b, {});
    b.reset();
    EXPECT_FALSE (l.isAttached());
}

TEST (Broadcaster, AListenerDestroyedOnAnotherThreadIsNeverCalledAfterItsDestructor)
{
    constexpr int numCalls = 2000;
    constexpr int destroyAfterCalls = 20;
    constexpr auto callbackDuration = std::chrono::microseconds (200);

    Broadcaster b;
    std::atomic<int> callsDone { 0 }, callsAfterDestruction { 0 };
    std::atomic<bool> destroyed { false };

    // A slow callback that checks at its end: the destructor must neither
    // return while the callback runs nor let a later call through.
    std::optional<Listener> victim;
    victim.emplace (b, [&] {
        std::this_thread::sleep_for (callbackDuration);
        if (destroyed.load())
            ++callsAfterDestruction;
    });
    Listener counter (b, [&] { ++callsDone; });

    std::thread caller ([&] {
        for (int i = 0; i < numCalls; ++i)
            b.call();
    });

    while (callsDone.load() < destroyAfterCalls)
        std::this_thread::yield();
    victim.reset();
    destroyed = true;

    caller.join();
    EXPECT_EQ (callsAfterDestruction.load(), 0);
}
} // namespace

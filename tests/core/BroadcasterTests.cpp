#include "core/Broadcaster.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <thread>

namespace
{
using Orv::Events::Broadcaster;
using Orv::Events::Listener;

TEST (CallbackFunc, AnEmptyOneDoesNothingAndAChainRunsTheFirstThenTheSecond)
{
    std::string log;
    Orv::chainFunctions ([&] { log += "a"; }, [&] { log += "b"; }) ();
    Orv::chainFunctions ({}, {}) ();
    EXPECT_EQ (log, "ab");
}

TEST (Broadcaster, CallbacksMayDetachOthersOrThemselvesAndAddListenersMidBroadcast)
{
    Broadcaster b;
    int victimCalls = 0, selfCalls = 0, laterCalls = 0, addedCalls = 0;
    // In an optional, the dead listener's memory stays readable, so that a
    // wrongful call after its destructor shows up as a count, not as a crash.
    std::optional<Listener> victim;
    std::unique_ptr<Listener> self, added;
    Listener killer (b, [&] {
        victim.reset();
        if (added == nullptr)
            added = std::make_unique<Listener> (b, [&] { ++addedCalls; });
    });
    victim.emplace (b, [&] { ++victimCalls; });
    self = std::make_unique<Listener> (b, [&] { ++selfCalls; self.reset(); });
    Listener later (b, [&] { ++laterCalls; });
    Listener empty (b, {});

    b.call();
    EXPECT_EQ (laterCalls, 1) << "a detach must not make the broadcast skip the next listener";
    EXPECT_EQ (addedCalls, 0) << "a listener added mid-broadcast waits for the next";

    b.call();
    EXPECT_EQ (victimCalls, 0);
    EXPECT_EQ (selfCalls, 1);
    EXPECT_EQ (laterCalls, 2);
    EXPECT_EQ (addedCalls, 1);
    EXPECT_EQ (b.getNumListeners(), 4);
}

TEST (Broadcaster, AListenerBelongsToOneBroadcasterAtATimeAndMayOutliveIt)
{
    Broadcaster first;
    auto second = std::make_unique<Broadcaster>();
    int calls = 0;
    Listener l (first, [&] { ++calls; });
    second->add (l);

    first.call();
    second->call();
    EXPECT_EQ (calls, 1);
    EXPECT_EQ (first.getNumListeners(), 0);

    second.reset();
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

#include "core/Threads.h"

#include "support/MessagePump.h"

#include <gtest/gtest.h>
#include <juce_events/juce_events.h>

#include <atomic>
#include <thread>

namespace
{
using Orv::Testing::pumpMessagesUntil;

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
        if (std::this_thread::get_id() != messageThread)
            ranElsewhere = true;
        ++calls;
    });

    callback();
    EXPECT_EQ (calls.load(), 1);

    std::thread (callback).join();
    EXPECT_EQ (calls.load(), 1); // posted, not yet run

    EXPECT_TRUE (pumpMessagesUntil ([&] { return calls.load() == 2; }));
    EXPECT_FALSE (ranElsewhere.load());
}

TEST (Threads, ThreadPoolIsOneSharedPoolOfThreadsNamedPool)
{
    auto& pool = Orv::Threads::getThreadPool();
    EXPECT_EQ (&pool, &Orv::Threads::getThreadPool());
    EXPECT_GE (pool.getNumThreads(), 1);

    juce::WaitableEvent ran;
    juce::String name;
    pool.addJob ([&] {
        name = juce::Thread::getCurrentThread()->getThreadName();
        ran.signal();
    });

    ASSERT_TRUE (ran.wait (waitLimitMs));
    EXPECT_EQ (name, "Pool");
}
} // namespace

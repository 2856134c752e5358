#include "core/GUIToRealTime.h"

#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <thread>
#include <vector>

namespace
{
using Ring = Orv::GUIToRealTime<int>;
constexpr int ringSize = 5;

TEST (GUIToRealTime, AnyNumberOfPushesDeliversTheLastAndLeavesTheHeldValueAlone)
{
    // Some of these counts lap the ring and make the writer skip the held
    // entry; after ringSize - 1 the newest value sits in the ring's last entry.
    for (int numPushes = 1; numPushes <= 3 * ringSize; ++numPushes)
    {
        Ring ring;
        const auto& held = ring.acquire();
        for (int i = 1; i <= numPushes; ++i)
            ring.push (i);

        EXPECT_EQ (held, 0) << numPushes << " pushes";
        EXPECT_EQ (ring.current(), 0);
        EXPECT_EQ (ring.acquire(), numPushes);
        EXPECT_EQ (ring.current(), numPushes);
    }
}

TEST (GUIToRealTime, WriterAboutToWriteTheHeldEntrySkipsToTheNext)
{
    Ring ring;
    ring.push (7);
    ring.acquire();
    const auto held = ring.getReadIndex();

    for (int i = 0; i < ringSize && ring.getWriteIndex() != held; ++i)
        ring.push (0);
    ASSERT_EQ (ring.getWriteIndex(), held);

    ring.push (8);
    EXPECT_EQ (ring.current(), 7);
    EXPECT_EQ (ring.getWriteIndex(), (held + 2) % ringSize);
    EXPECT_EQ (ring.acquire(), 8);
    EXPECT_EQ (ring.getReadIndex(), (held + 1) % ringSize);
}

TEST (GUIToRealTime, PushFuncPushesTheCopyItWasGivenWhenCalled)
{
    Ring ring;
    int value = 5;
    auto push = ring.getPushFunc (value);
    value = 6;

    EXPECT_EQ (ring.acquire(), 0);
    push();
    EXPECT_EQ (ring.acquire(), 5);
}

TEST (GUIToRealTime, ReaderSideAllocatesNothing)
{
    Orv::GUIToRealTime<std::vector<float>> ring;
    ring.push (std::vector<float> (1000, 1.0f));

    Orv::Testing::AllocationCounter counter;
    const auto size = ring.acquire().size() + ring.current().size();
    EXPECT_EQ (counter.getCount(), 0);
    EXPECT_EQ (size, 2000u);
}

//==============================================================================
/** Written field by field, so a half-written one has fields that differ. */
struct Snapshot
{
    std::array<int, 64> fields {};

    bool isWhole() const { return std::all_of (fields.begin(), fields.end(), [this] (int f) { return f == fields[0]; }); }
};

TEST (GUIToRealTime, ConcurrentReaderNeverSeesAHalfWrittenOrChangingValue)
{
    constexpr int numReads = 3000;
    constexpr int minPushesWhileHolding = ringSize + 1; // enough to lap the ring
    constexpr int maxSpinsWhileHolding = 100000;

    Orv::GUIToRealTime<Snapshot> ring;
    std::atomic<bool> readerAcquiring { false }, done { false };
    std::atomic<int> pushes { 0 };

    // The gate keeps the writer out of the reader's two-step acquire (a real
    // message thread is far too slow to lap the ring in there), while letting
    // it lap the ring freely while the reader holds an entry.
    std::thread writer ([&] {
        Snapshot s;
        for (int seq = 1; ! done.load(); ++seq)
        {
            if (readerAcquiring.load())
            {
                std::this_thread::yield();
                continue;
            }
            s.fields.fill (seq);
            ring.push (s);
            ++pushes;
        }
    });

    int torn = 0, changedWhileHeld = 0, wentBackwards = 0, lastSeq = 0;

    for (int i = 0; i < numReads; ++i)
    {
        readerAcquiring = true;
        const auto& held = ring.acquire();
        readerAcquiring = false;

        const auto copy = held;
        torn += copy.isWhole() ? 0 : 1;
        wentBackwards += copy.fields[0] < lastSeq ? 1 : 0;
        lastSeq = copy.fields[0];

        const auto pushesBefore = pushes.load();
        for (int spin = 0; spin < maxSpinsWhileHolding && pushes.load() - pushesBefore < minPushesWhileHolding; ++spin)
            std::this_thread::yield();

        torn += held.isWhole() ? 0 : 1;
        changedWhileHeld += held.fields == copy.fields ? 0 : 1;
    }

    done = true;
    writer.join();

    EXPECT_EQ (torn + changedWhileHeld + wentBackwards, 0) << torn << " torn, " << changedWhileHeld << " changed, " << wentBackwards << " backwards";
    EXPECT_GE (pushes.load(), numReads);
}
} // namespace

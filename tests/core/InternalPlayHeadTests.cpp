#include "core/InternalPlayHead.h"

#include "support/AllocationCounter.h"
#include "support/FakeHostPlayHead.h"

#include <gtest/gtest.h>

namespace
{
using Orv::Audio::InternalPlayHead;
using Orv::Testing::FakeHostPlayHead;

constexpr double rate = 48000.0;
constexpr int blockSize = 512;

/** 60 bpm at 64 Hz is 1/64 quarter note per sample, exact in binary, so
    positions can be compared for equality where a loop end must be hit. */
constexpr double exactTempo = 60.0;
constexpr double exactRate = 64.0;
constexpr double exactStep = 1.0 / 64.0;

struct InternalPlayHeadTest : ::testing::Test
{
    InternalPlayHeadTest() { clock.prepare (rate, blockSize); }

    /** Runs one host block that starts exactly where the last one led to. */
    void playOneBlock()
    {
        host.playingAt (clock.getExpectedTime(), clock.getBlockEndPpq());
        clock.update (&host, blockSize);
    }

    InternalPlayHead clock;
    FakeHostPlayHead host;
};

//==============================================================================
TEST_F (InternalPlayHeadTest, HostAdvancingByTheBlockSizeIsNoJump)
{
    host.playingAt (0, 0.0);
    clock.update (&host, blockSize);
    EXPECT_FALSE (clock.hasJumped());

    for (int block = 0; block < 4; ++block)
    {
        host.playingAt ((block + 1) * blockSize, clock.getBlockEndPpq());
        clock.update (&host, blockSize);
        EXPECT_FALSE (clock.hasJumped()) << "block " << block;
        EXPECT_EQ (clock.getExpectedTime(), (block + 2) * blockSize);
    }
}

TEST_F (InternalPlayHeadTest, PlayingHostMayBeOffBy29SamplesEitherWayAndBy30Behind)
{
    struct Case
    {
        int offset;
        bool jump;
    };

    const Case cases[] = { { 29, false }, { -29, false }, { 30, true },
                           { -30, false }, { -31, true }, { 0, false } };

    for (const auto& c : cases)
    {
        SCOPED_TRACE (c.offset);

        InternalPlayHead fresh;
        fresh.prepare (rate, blockSize);
        host.playingAt (1000, 0.0);
        fresh.update (&host, blockSize);
        ASSERT_EQ (fresh.getExpectedTime(), 1000 + blockSize);

        host.playingAt (1000 + blockSize + c.offset, fresh.getBlockEndPpq());
        fresh.update (&host, blockSize);
        EXPECT_EQ (fresh.hasJumped(), c.jump);
    }
}

TEST_F (InternalPlayHeadTest, StoppedHostCountsAnyMoveAsJump)
{
    host.stoppedAt (1000, 2.0);
    clock.update (&host, blockSize);
    EXPECT_TRUE (clock.hasJumped()); // a stopped clock starts at 0

    // A stopped clock stays where it is, so the same position again is no jump.
    clock.update (&host, blockSize);
    EXPECT_FALSE (clock.hasJumped());
    EXPECT_EQ (clock.getExpectedTime(), 1000);

    host.stoppedAt (1001, 2.0);
    clock.update (&host, blockSize);
    EXPECT_TRUE (clock.hasJumped());

    host.stoppedAt (1000, 2.0);
    clock.update (&host, blockSize);
    EXPECT_TRUE (clock.hasJumped());
}

TEST_F (InternalPlayHeadTest, RequestedJumpIsReportedOnceThenCleared)
{
    playOneBlock();
    playOneBlock();
    ASSERT_FALSE (clock.hasJumped());

    clock.requestJump();
    playOneBlock();
    EXPECT_TRUE (clock.hasJumped());

    playOneBlock();
    EXPECT_FALSE (clock.hasJumped());
}

TEST_F (InternalPlayHeadTest, JumpToMovesAClockWithoutHostAndReportsItOnce)
{
    clock.getInfo().setIsPlaying (true);
    clock.getInfo().setPpqPosition (0.0);
    clock.update (nullptr, blockSize);
    ASSERT_EQ (clock.getInfo().getTimeInSamples().orFallback (-1), blockSize);

    clock.jumpTo (96000);
    clock.update (nullptr, blockSize);
    EXPECT_TRUE (clock.hasJumped());
    EXPECT_EQ (clock.getInfo().getTimeInSamples().orFallback (-1), 96000 + blockSize);

    clock.update (nullptr, blockSize);
    EXPECT_FALSE (clock.hasJumped());
}

TEST_F (InternalPlayHeadTest, PlayStateChangeIsReportedOnTheBlockItHappens)
{
    host.stoppedAt (0, 0.0);
    clock.update (&host, blockSize);
    EXPECT_FALSE (clock.hasPlayStateChanged());
    EXPECT_FALSE (clock.isPlaying());

    host.playingAt (0, 0.0);
    clock.update (&host, blockSize);
    EXPECT_TRUE (clock.hasPlayStateChanged());
    EXPECT_TRUE (clock.isPlaying());

    playOneBlock();
    EXPECT_FALSE (clock.hasPlayStateChanged());

    host.stoppedAt (clock.getExpectedTime(), clock.getBlockEndPpq());
    clock.update (&host, blockSize);
    EXPECT_TRUE (clock.hasPlayStateChanged());
    EXPECT_FALSE (clock.isPlaying());

    clock.update (&host, blockSize);
    EXPECT_FALSE (clock.hasPlayStateChanged());
}

//==============================================================================
TEST_F (InternalPlayHeadTest, PlayingPositionsRampByTempoOverRateAndRunAhead)
{
    constexpr double tempo = 120.0;
    constexpr double startPpq = 3.0;
    const double step = tempo / (rate * 60.0);

    host.playingAt (2048, startPpq, tempo);
    clock.update (&host, blockSize);

    ASSERT_EQ (clock.getPositions().size(), (size_t) blockSize);
    EXPECT_DOUBLE_EQ (clock.getPpqPerSample(), step);
    for (int i : { 0, 1, 100, blockSize - 1 })
        EXPECT_DOUBLE_EQ (clock.getPositions()[(size_t) i], startPpq + i * step) << "sample " << i;

    EXPECT_DOUBLE_EQ (clock.getBlockStartPpq(), startPpq);
    EXPECT_DOUBLE_EQ (clock.getBlockEndPpq(), startPpq + blockSize * step);

    // The record already describes the next block's start.
    EXPECT_DOUBLE_EQ (clock.getInfo().getPpqPosition().orFallback (-1.0), clock.getBlockEndPpq());
    EXPECT_EQ (clock.getInfo().getTimeInSamples().orFallback (-1), 2048 + blockSize);
    EXPECT_EQ (clock.getExpectedTime(), 2048 + blockSize);
}

TEST_F (InternalPlayHeadTest, StoppedPositionsHoldStill)
{
    host.stoppedAt (2048, 5.25);
    clock.update (&host, blockSize);

    ASSERT_EQ (clock.getPositions().size(), (size_t) blockSize);
    for (double p : clock.getPositions())
        ASSERT_EQ (p, 5.25);

    EXPECT_EQ (clock.getBlockStartPpq(), 5.25);
    EXPECT_EQ (clock.getBlockEndPpq(), 5.25);
    EXPECT_EQ (clock.getInfo().getPpqPosition().orFallback (-1.0), 5.25);
    EXPECT_EQ (clock.getInfo().getTimeInSamples().orFallback (-1), 2048);
}

TEST_F (InternalPlayHeadTest, MissingPositionAndTimeCountAsZero)
{
    juce::AudioPlayHead::PositionInfo bare;
    bare.setIsPlaying (true);
    host.position = bare;
    clock.update (&host, blockSize);

    EXPECT_FALSE (clock.hasJumped());
    EXPECT_EQ (clock.getPositions().front(), 0.0);
    EXPECT_EQ (clock.getExpectedTime(), blockSize);
}

TEST_F (InternalPlayHeadTest, NoTempoFromHostMeansTheDefaultTempo)
{
    EXPECT_EQ (clock.getInfo().getBpm().orFallback (0.0), InternalPlayHead::defaultTempo);

    auto position = FakeHostPlayHead::playing (0, 0.0);
    position.setBpm (juce::nullopt);
    host.position = position;
    clock.update (&host, blockSize);

    const double step = 100.0 / (rate * 60.0);
    EXPECT_DOUBLE_EQ (clock.getPpqPerSample(), step);
    EXPECT_DOUBLE_EQ (clock.getPositions()[10], 10 * step);
}

//==============================================================================
struct InternalPlayHeadLoopTest : InternalPlayHeadTest
{
    InternalPlayHeadLoopTest() { clock.prepare (exactRate, blockSize); }

    void playLooped (double ppq, double loopStart, double loopEnd, bool looping = true, int numSamples = 64)
    {
        auto position = FakeHostPlayHead::playing (0, ppq, exactTempo);
        position.setLoopPoints (juce::AudioPlayHead::LoopPoints { loopStart, loopEnd });
        position.setIsLooping (looping);
        host.position = position;
        clock.update (&host, numSamples);
    }
};

TEST_F (InternalPlayHeadLoopTest, PositionExactlyAtTheLoopEndFoldsToItsStart)
{
    playLooped (8.0, 4.0, 8.0);
    EXPECT_EQ (clock.getPositions()[0], 4.0);
}

TEST_F (InternalPlayHeadLoopTest, RampFoldsWhereItReachesTheLoopEnd)
{
    playLooped (7.5, 4.0, 8.0);
    const auto& p = clock.getPositions();

    EXPECT_EQ (p[0], 7.5);
    EXPECT_EQ (p[31], 8.0 - exactStep);
    EXPECT_EQ (p[32], 4.0);
    // Past the end the host's next block brings the position back.
    EXPECT_EQ (p[33], 8.0 + exactStep);
}

TEST_F (InternalPlayHeadLoopTest, BlockEndingAtTheLoopEndContinuesFromTheLoopStart)
{
    playLooped (7.0, 4.0, 8.0);
    EXPECT_EQ (clock.getBlockStartPpq(), 7.0);
    EXPECT_EQ (clock.getBlockEndPpq(), 4.0);
    EXPECT_EQ (clock.getInfo().getPpqPosition().orFallback (-1.0), 4.0);
}

TEST_F (InternalPlayHeadLoopTest, LoopWithoutLengthIsIgnored)
{
    playLooped (8.0, 8.0, 8.0);
    EXPECT_EQ (clock.getPositions()[0], 8.0);
    EXPECT_EQ (clock.getBlockEndPpq(), 9.0);
}

TEST_F (InternalPlayHeadLoopTest, LoopPointsWithoutLoopingFlagAreIgnored)
{
    playLooped (8.0, 4.0, 8.0, false);
    EXPECT_EQ (clock.getPositions()[0], 8.0);
    EXPECT_EQ (clock.getBlockEndPpq(), 9.0);
}

//==============================================================================
TEST_F (InternalPlayHeadTest, HostWithoutPositionLeavesTheLastOneInForce)
{
    host.playingAt (0, 1.0, 120.0);
    clock.update (&host, blockSize);
    const auto lastEnd = clock.getBlockEndPpq();

    host.position = juce::nullopt;
    clock.update (&host, blockSize);

    EXPECT_TRUE (clock.isPlaying());
    EXPECT_FALSE (clock.hasPlayStateChanged());
    EXPECT_FALSE (clock.hasJumped());
    EXPECT_EQ (clock.getInfo().getBpm().orFallback (0.0), 120.0);
    EXPECT_DOUBLE_EQ (clock.getPositions().front(), lastEnd);
    EXPECT_EQ (clock.getExpectedTime(), 2 * blockSize);
}

TEST_F (InternalPlayHeadTest, WithoutHostTheSampleTimeContinuesFromTheExpectedTime)
{
    host.playingAt (5000, 0.0);
    clock.update (&host, blockSize);

    // Whatever the caller leaves in the sample time, the clock continues.
    clock.getInfo().setTimeInSamples (123);
    clock.update (nullptr, blockSize);

    EXPECT_FALSE (clock.hasJumped());
    EXPECT_EQ (clock.getInfo().getTimeInSamples().orFallback (-1), 5000 + 2 * blockSize);
}

TEST_F (InternalPlayHeadTest, TempoFilledInByTheCallerTakesEffectAtOnce)
{
    clock.getInfo().setIsPlaying (true);
    clock.getInfo().setPpqPosition (0.0);
    clock.getInfo().setBpm (240.0);
    clock.update (nullptr, blockSize);

    EXPECT_DOUBLE_EQ (clock.getPositions()[100], 100 * 240.0 / (rate * 60.0));
}

TEST_F (InternalPlayHeadTest, GetPositionAlwaysHasAValue)
{
    const auto before = clock.getPosition();
    ASSERT_TRUE (before.hasValue());
    EXPECT_EQ (before->getBpm().orFallback (0.0), 100.0);

    host.playingAt (0, 2.0, 90.0);
    clock.update (&host, blockSize);
    const auto after = clock.getPosition();
    ASSERT_TRUE (after.hasValue());
    EXPECT_EQ (*after, clock.getInfo());
}

//==============================================================================
TEST_F (InternalPlayHeadTest, SteadyStateUpdateAllocatesNothing)
{
    auto position = FakeHostPlayHead::playing (0, 0.0, 120.0);
    position.setLoopPoints (juce::AudioPlayHead::LoopPoints { 0.0, 4.0 });
    position.setIsLooping (true);
    host.position = position;

    // Counting from the first block also catches positions not reserved in
    // prepare.
    Orv::Testing::AllocationCounter counter;
    clock.update (&host, blockSize);

    for (int block = 0; block < 16; ++block)
    {
        position.setTimeInSamples (clock.getExpectedTime());
        position.setPpqPosition (clock.getBlockEndPpq());
        host.position = position;
        clock.update (&host, block % 2 == 0 ? blockSize : blockSize / 3);
        clock.update (nullptr, blockSize);
        [[maybe_unused]] const auto p = clock.getPosition();
    }
    EXPECT_EQ (counter.getCount(), 0);
}

TEST_F (InternalPlayHeadTest, BlockLargerThanPreparedStillWorks)
{
    constexpr int largeBlock = blockSize * 4;
    host.playingAt (0, 0.0, 120.0);
    clock.update (&host, largeBlock);

    ASSERT_EQ (clock.getPositions().size(), (size_t) largeBlock);
    EXPECT_DOUBLE_EQ (clock.getPositions().back(), (largeBlock - 1) * 120.0 / (rate * 60.0));
    EXPECT_EQ (clock.getExpectedTime(), largeBlock);
}
} // namespace

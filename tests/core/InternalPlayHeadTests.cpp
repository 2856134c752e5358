#include "core/InternalPlayHead.h"
#include "core/PlayHeadTransportView.h"

#include "support/AllocationCounter.h"
#include "support/FakeHostPlayHead.h"

#include <gtest/gtest.h>

namespace
{
using Orv::Audio::InternalPlayHead;
using Orv::Audio::PlayHeadTransportView;
using Orv::Testing::FakeHostPlayHead;
using PositionInfo = juce::AudioPlayHead::PositionInfo;

constexpr double rate = 48000.0;
constexpr int blockSize = 512;

double stepAt (double tempo) { return tempo / (rate * 60.0); }

struct InternalPlayHeadTest : ::testing::Test
{
    InternalPlayHeadTest() { clock.prepare (rate, blockSize); }

    /** Runs one host block that starts exactly where the last one led to. */
    void playOneBlock()
    {
        host.playingAt (clock.getExpectedTime(), clock.getBlockEndPpq());
        clock.update (&host, blockSize);
    }

    void updateWith (juce::Optional<PositionInfo> position, int numSamples = blockSize)
    {
        host.position = position;
        clock.update (&host, numSamples);
    }

    int64_t sampleTime() const { return clock.getInfo().getTimeInSamples().orFallback (-1); }

    InternalPlayHead clock;
    FakeHostPlayHead host;
};

//==============================================================================
TEST_F (InternalPlayHeadTest, PlayingHostMayBeOffBy29SamplesEitherWayAndBy30Behind)
{
    const struct
    {
        int offset;
        bool jump;
    } cases[] = { { 0, false }, { 29, false }, { -29, false }, { 30, true }, { -30, false }, { -31, true } };

    for (const auto& c : cases)
    {
        InternalPlayHead fresh;
        fresh.prepare (rate, blockSize);
        host.playingAt (1000, 0.0);
        fresh.update (&host, blockSize);
        ASSERT_EQ (fresh.getExpectedTime(), 1000 + blockSize);

        host.playingAt (1000 + blockSize + c.offset, fresh.getBlockEndPpq());
        fresh.update (&host, blockSize);
        EXPECT_EQ (fresh.hasJumped(), c.jump) << "offset " << c.offset;
    }
}

TEST_F (InternalPlayHeadTest, StoppedHostHoldsStillAndCountsAnyMoveAsJump)
{
    host.stoppedAt (1000, 5.25);
    clock.update (&host, blockSize);
    EXPECT_TRUE (clock.hasJumped()); // a stopped clock starts at 0

    ASSERT_EQ (clock.getPositions().size(), (size_t) blockSize);
    for (double p : clock.getPositions())
        ASSERT_EQ (p, 5.25);
    EXPECT_EQ (clock.getBlockStartPpq(), 5.25);
    EXPECT_EQ (clock.getBlockEndPpq(), 5.25);
    EXPECT_EQ (clock.getInfo().getPpqPosition().orFallback (-1.0), 5.25);
    EXPECT_EQ (sampleTime(), 1000);

    // A stopped clock stays where it is, so the same position again is no jump.
    clock.update (&host, blockSize);
    EXPECT_FALSE (clock.hasJumped());
    EXPECT_EQ (clock.getExpectedTime(), 1000);

    for (int time : { 1001, 1000 })
    {
        host.stoppedAt (time, 5.25);
        clock.update (&host, blockSize);
        EXPECT_TRUE (clock.hasJumped()) << time;
    }
}

TEST_F (InternalPlayHeadTest, RequestedJumpsAreReportedOnceThenCleared)
{
    playOneBlock();
    playOneBlock();
    ASSERT_FALSE (clock.hasJumped());

    clock.requestJump();
    playOneBlock();
    EXPECT_TRUE (clock.hasJumped());
    playOneBlock();
    EXPECT_FALSE (clock.hasJumped());

    // Without a host, jumpTo also moves the clock.
    clock.jumpTo (96000);
    clock.update (nullptr, blockSize);
    EXPECT_TRUE (clock.hasJumped());
    EXPECT_EQ (sampleTime(), 96000 + blockSize);
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
TEST_F (InternalPlayHeadTest, PlayingPositionsRampByTempoOverRateAndRunAheadEvenPastThePreparedSize)
{
    constexpr double startPpq = 3.0;
    constexpr int largeBlock = blockSize * 4;
    const double step = stepAt (120.0);
    host.playingAt (2048, startPpq, 120.0);
    clock.update (&host, largeBlock);

    ASSERT_EQ (clock.getPositions().size(), (size_t) largeBlock);
    EXPECT_DOUBLE_EQ (clock.getPpqPerSample(), step);
    for (int i : { 0, 1, 100, largeBlock - 1 })
        EXPECT_DOUBLE_EQ (clock.getPositions()[(size_t) i], startPpq + i * step) << "sample " << i;

    EXPECT_DOUBLE_EQ (clock.getBlockStartPpq(), startPpq);
    EXPECT_DOUBLE_EQ (clock.getBlockEndPpq(), startPpq + largeBlock * step);
    // The record already describes the next block's start.
    EXPECT_DOUBLE_EQ (clock.getInfo().getPpqPosition().orFallback (-1.0), clock.getBlockEndPpq());
    EXPECT_EQ (sampleTime(), 2048 + largeBlock);
    EXPECT_EQ (clock.getExpectedTime(), 2048 + largeBlock);
}

TEST_F (InternalPlayHeadTest, MissingPositionTimeAndTempoMeanZeroZeroAndTheDefaultTempo)
{
    ASSERT_TRUE (clock.getPosition().hasValue()) << "even before the first block";

    PositionInfo bare;
    bare.setIsPlaying (true);
    updateWith (bare);

    EXPECT_FALSE (clock.hasJumped());
    EXPECT_EQ (clock.getPositions().front(), 0.0);
    EXPECT_DOUBLE_EQ (clock.getPositions()[10], 10 * stepAt (InternalPlayHead::defaultTempo));
    EXPECT_EQ (clock.getExpectedTime(), blockSize);
}

TEST_F (InternalPlayHeadTest, HostWithoutPositionLeavesTheLastOneInForce)
{
    host.playingAt (0, 1.0, 120.0);
    clock.update (&host, blockSize);
    const auto lastEnd = clock.getBlockEndPpq();

    updateWith (juce::nullopt);

    EXPECT_TRUE (clock.isPlaying());
    EXPECT_FALSE (clock.hasPlayStateChanged());
    EXPECT_FALSE (clock.hasJumped());
    EXPECT_EQ (clock.getInfo().getBpm().orFallback (0.0), 120.0);
    EXPECT_DOUBLE_EQ (clock.getPositions().front(), lastEnd);
    EXPECT_EQ (clock.getExpectedTime(), 2 * blockSize);
}

TEST_F (InternalPlayHeadTest, WithoutHostTheSampleTimeContinuesAndACallersTempoTakesEffectAtOnce)
{
    host.playingAt (5000, 0.0);
    clock.update (&host, blockSize);

    // Whatever the caller leaves in the sample time, the clock continues.
    clock.getInfo().setTimeInSamples (123);
    clock.getInfo().setBpm (240.0);
    clock.update (nullptr, blockSize);

    EXPECT_FALSE (clock.hasJumped());
    EXPECT_EQ (sampleTime(), 5000 + 2 * blockSize);
    EXPECT_DOUBLE_EQ (clock.getPositions()[100] - clock.getPositions()[0], 100 * stepAt (240.0));
}

TEST_F (InternalPlayHeadTest, SteadyStateUpdateAllocatesNothing)
{
    auto position = FakeHostPlayHead::playing (0, 0.0, 120.0);
    position.setLoopPoints (juce::AudioPlayHead::LoopPoints { 0.0, 4.0 });
    position.setIsLooping (true);

    // Counting from the first block also catches positions not reserved in prepare.
    Orv::Testing::AllocationCounter counter;
    updateWith (position);

    for (int block = 0; block < 16; ++block)
    {
        position.setTimeInSamples (clock.getExpectedTime());
        position.setPpqPosition (clock.getBlockEndPpq());
        updateWith (position, block % 2 == 0 ? blockSize : blockSize / 3);
        clock.update (nullptr, blockSize);
        [[maybe_unused]] const auto p = clock.getPosition();
    }
    EXPECT_EQ (counter.getCount(), 0);
}

//==============================================================================
TEST_F (InternalPlayHeadTest, TheRampFoldsOnlyAtTheEndOfALoopThatIsOnAndHasALength)
{
    // 60 bpm at 64 Hz is 1/64 quarter note per sample, exact in binary, so
    // positions can be compared for equality where a loop end must be hit.
    constexpr double exactStep = 1.0 / 64.0;
    constexpr int numSamples = 64;
    clock.prepare (64.0, blockSize);

    auto playLooped = [&] (double ppq, double loopStart, double loopEnd, bool looping) {
        auto position = FakeHostPlayHead::playing (0, ppq, 60.0);
        position.setLoopPoints (juce::AudioPlayHead::LoopPoints { loopStart, loopEnd });
        position.setIsLooping (looping);
        updateWith (position, numSamples);
    };

    const struct
    {
        const char* what;
        double ppq, loopStart, loopEnd;
        bool looping;
        double first, blockEnd;
    } cases[] = {
        { "the loop's end reads as its start, and the block runs on from there", 8.0, 4.0, 8.0, true, 4.0, 5.0 },
        { "a block that starts beyond the loop plays on unfolded", 8.5, 4.0, 8.0, true, 8.5, 9.5 },
        { "so does a block ending there", 7.0, 4.0, 8.0, true, 7.0, 4.0 },
        { "a loop without length is none", 8.0, 8.0, 8.0, true, 8.0, 9.0 },
        { "loop points without the looping flag are none", 8.0, 4.0, 8.0, false, 8.0, 9.0 },
    };

    for (const auto& c : cases)
    {
        playLooped (c.ppq, c.loopStart, c.loopEnd, c.looping);
        EXPECT_EQ (clock.getPositions()[0], c.first) << c.what;
        EXPECT_EQ (clock.getBlockEndPpq(), c.blockEnd) << c.what;
        EXPECT_EQ (clock.getInfo().getPpqPosition().orFallback (-1.0), c.blockEnd) << c.what;
    }

    playLooped (7.5, 4.0, 8.0, true);
    const auto& p = clock.getPositions();
    EXPECT_EQ (p[31], 8.0 - exactStep);
    EXPECT_EQ (p[32], 4.0);
    EXPECT_EQ (p[33], 4.0 + exactStep) << "a block that runs past the loop's end wraps with it";
    EXPECT_EQ (clock.getBlockEndPpq(), 4.5);
}

//==============================================================================
struct PlayHeadTransportViewTest : InternalPlayHeadTest
{
    /** A first playing block far from 0: it both jumps and starts playing. */
    void startPlaying (PositionInfo position = FakeHostPlayHead::playing (10000, 2.0, 90.0))
    {
        updateWith (position);
        ASSERT_TRUE (clock.hasJumped() && clock.hasPlayStateChanged());
    }

    static double ppqOf (const PlayHeadTransportView& view) { return view.getPosition()->getPpqPosition().orFallback (-1.0); }
};

TEST_F (PlayHeadTransportViewTest, SpanIsTheBlockSeenFromItsFirstSample)
{
    auto hostPosition = FakeHostPlayHead::playing (10000, 2.0, 90.0);
    hostPosition.setTimeInSeconds (12.5);
    hostPosition.setPpqPositionOfLastBarStart (0.0);
    hostPosition.setTimeSignature (juce::AudioPlayHead::TimeSignature { 3, 4 });
    hostPosition.setLoopPoints (juce::AudioPlayHead::LoopPoints { 0.0, 16.0 });
    hostPosition.setIsRecording (true);
    startPlaying (hostPosition);
    const PlayHeadTransportView view (clock, 100, 50);

    auto expected = clock.getInfo();
    expected.setPpqPosition (clock.getPositions()[100]);
    expected.setTimeInSamples (sampleTime() + 100);
    EXPECT_EQ (*view.getPosition(), expected);
    EXPECT_EQ (view.getPpqAt (7), clock.getPositions()[107]);

    EXPECT_EQ (ppqOf (PlayHeadTransportView (clock, blockSize, 0)), clock.getBlockEndPpq()) << "an empty span at the block's end";
}

TEST_F (PlayHeadTransportViewTest, JumpAndPlayStateChangeBelongToTheBlockStartOnly)
{
    startPlaying();
    const PlayHeadTransportView whole (clock, 0, blockSize);
    const auto tail = whole.subView (16, blockSize - 16);
    EXPECT_EQ (tail.getStart(), 16);
    EXPECT_EQ (tail.getCount(), blockSize - 16);
    EXPECT_EQ (ppqOf (tail), clock.getPositions()[16]);

    for (const auto& [view, atStart] : { std::pair { whole, true }, { whole.subView (0, 16), true },
                                         { PlayHeadTransportView (clock, 1, blockSize - 1), false }, { tail, false } })
    {
        EXPECT_EQ (view.hasJumped(), atStart) << view.getStart();
        EXPECT_EQ (view.hasPlayStateChanged(), atStart) << view.getStart();
    }
}

TEST_F (PlayHeadTransportViewTest, MissingTempoAndTimeAreReportedAsPresent)
{
    PositionInfo bare;
    bare.setIsPlaying (true);
    bare.setPpqPosition (1.0);
    updateWith (bare);
    ASSERT_FALSE (clock.getInfo().getBpm().hasValue());

    // Stopping keeps the sample time absent, so the view must supply one.
    bare.setIsPlaying (false);
    updateWith (bare);
    ASSERT_FALSE (clock.getInfo().getTimeInSamples().hasValue());

    const auto position = PlayHeadTransportView (clock, 8, 8).getPosition();
    EXPECT_EQ (position->getBpm(), juce::makeOptional (InternalPlayHead::defaultTempo));
    EXPECT_EQ (position->getTimeInSamples(), juce::makeOptional<int64_t> (8));
    EXPECT_TRUE (position->getPpqPosition().hasValue());
}

TEST_F (PlayHeadTransportViewTest, MakingAndAskingViewsAllocatesNothing)
{
    startPlaying();

    Orv::Testing::AllocationCounter counter;
    double sum = 0.0;
    for (int start = 0; start < blockSize; start += 16)
    {
        const PlayHeadTransportView view (clock, start, 16);
        sum += ppqOf (view) + view.subView (4, 8).getPpqAt (0);
    }
    EXPECT_EQ (counter.getCount(), 0);
    EXPECT_GT (sum, 0.0);
}
} // namespace

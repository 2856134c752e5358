#include "core/PlayHeadTransportView.h"

#include "support/AllocationCounter.h"
#include "support/FakeHostPlayHead.h"

#include <gtest/gtest.h>

namespace
{
using Orv::Audio::InternalPlayHead;
using Orv::Audio::PlayHeadTransportView;
using Orv::Testing::FakeHostPlayHead;

constexpr double rate = 48000.0;
constexpr int blockSize = 256;

struct PlayHeadTransportViewTest : ::testing::Test
{
    PlayHeadTransportViewTest() { clock.prepare (rate, blockSize); }

    /** A first playing block far from 0: it both jumps and starts playing. */
    void startPlaying (juce::AudioPlayHead::PositionInfo position = FakeHostPlayHead::playing (10000, 2.0, 90.0))
    {
        host.position = position;
        clock.update (&host, blockSize);
        ASSERT_TRUE (clock.hasJumped());
        ASSERT_TRUE (clock.hasPlayStateChanged());
    }

    InternalPlayHead clock;
    FakeHostPlayHead host;
};

TEST_F (PlayHeadTransportViewTest, SpanReportsThePositionOfItsFirstSample)
{
    startPlaying();
    const PlayHeadTransportView view (clock, 100, 50);

    const auto position = view.getPosition();
    ASSERT_TRUE (position.hasValue());
    EXPECT_EQ (position->getPpqPosition().orFallback (-1.0), clock.getPositions()[100]);
    EXPECT_NE (position->getPpqPosition().orFallback (-1.0), clock.getInfo().getPpqPosition().orFallback (-1.0));
    EXPECT_EQ (position->getTimeInSamples().orFallback (-1),
               clock.getInfo().getTimeInSamples().orFallback (0) + 100);
    EXPECT_EQ (position->getBpm().orFallback (0.0), 90.0);
    EXPECT_TRUE (position->getIsPlaying());

    EXPECT_EQ (view.getPpqAt (7), clock.getPositions()[107]);
}

TEST_F (PlayHeadTransportViewTest, JumpAndPlayStateChangeBelongToTheBlockStartOnly)
{
    startPlaying();

    const PlayHeadTransportView whole (clock, 0, blockSize);
    EXPECT_TRUE (whole.hasJumped());
    EXPECT_TRUE (whole.hasPlayStateChanged());

    const PlayHeadTransportView later (clock, 1, blockSize - 1);
    EXPECT_FALSE (later.hasJumped());
    EXPECT_FALSE (later.hasPlayStateChanged());

    const auto head = whole.subView (0, 16);
    EXPECT_TRUE (head.hasJumped());
    EXPECT_TRUE (head.hasPlayStateChanged());

    const auto tail = whole.subView (16, blockSize - 16);
    EXPECT_EQ (tail.getStart(), 16);
    EXPECT_EQ (tail.getCount(), blockSize - 16);
    EXPECT_FALSE (tail.hasJumped());
    EXPECT_FALSE (tail.hasPlayStateChanged());
    EXPECT_EQ (tail.getPosition()->getPpqPosition().orFallback (-1.0), clock.getPositions()[16]);
}

TEST_F (PlayHeadTransportViewTest, MissingTempoAndTimeAreReportedAsPresent)
{
    juce::AudioPlayHead::PositionInfo bare;
    bare.setIsPlaying (true);
    bare.setPpqPosition (1.0);
    host.position = bare;
    clock.update (&host, blockSize);
    ASSERT_FALSE (clock.getInfo().getBpm().hasValue());

    // Stopping keeps the sample time absent, so the view must supply one.
    bare.setIsPlaying (false);
    host.position = bare;
    clock.update (&host, blockSize);
    ASSERT_FALSE (clock.getInfo().getTimeInSamples().hasValue());

    const auto position = PlayHeadTransportView (clock, 8, 8).getPosition();
    ASSERT_TRUE (position->getBpm().hasValue());
    EXPECT_EQ (*position->getBpm(), InternalPlayHead::defaultTempo);
    ASSERT_TRUE (position->getTimeInSamples().hasValue());
    EXPECT_EQ (*position->getTimeInSamples(), 8);
    EXPECT_TRUE (position->getPpqPosition().hasValue());
}

TEST_F (PlayHeadTransportViewTest, EverythingElseIsTheBlocks)
{
    auto hostPosition = FakeHostPlayHead::playing (10000, 2.0, 90.0);
    hostPosition.setTimeInSeconds (12.5);
    hostPosition.setPpqPositionOfLastBarStart (0.0);
    hostPosition.setTimeSignature (juce::AudioPlayHead::TimeSignature { 3, 4 });
    hostPosition.setLoopPoints (juce::AudioPlayHead::LoopPoints { 0.0, 16.0 });
    hostPosition.setIsRecording (true);
    startPlaying (hostPosition);

    const auto position = PlayHeadTransportView (clock, 32, 32).getPosition();
    EXPECT_EQ (position->getTimeInSeconds().orFallback (-1.0), 12.5);
    EXPECT_EQ (position->getPpqPositionOfLastBarStart().orFallback (-1.0), 0.0);
    EXPECT_EQ (position->getTimeSignature().orFallback (juce::AudioPlayHead::TimeSignature {}).numerator, 3);
    EXPECT_EQ (position->getLoopPoints().orFallback (juce::AudioPlayHead::LoopPoints {}).ppqEnd, 16.0);
    EXPECT_TRUE (position->getIsRecording());
}

TEST_F (PlayHeadTransportViewTest, EmptySpanAtTheBlockEndStartsWhereTheBlockEnds)
{
    startPlaying();
    const PlayHeadTransportView end (clock, blockSize, 0);
    EXPECT_EQ (end.getPosition()->getPpqPosition().orFallback (-1.0), clock.getBlockEndPpq());
}

TEST_F (PlayHeadTransportViewTest, MakingAndAskingViewsAllocatesNothing)
{
    startPlaying();

    Orv::Testing::AllocationCounter counter;
    double sum = 0.0;
    for (int start = 0; start < blockSize; start += 16)
    {
        const PlayHeadTransportView view (clock, start, 16);
        const auto sub = view.subView (4, 8);
        sum += view.getPosition()->getPpqPosition().orFallback (0.0) + sub.getPpqAt (0);
    }
    EXPECT_EQ (counter.getCount(), 0);
    EXPECT_GT (sum, 0.0);
}
} // namespace

#include "sequencer/PatternRunner.h"

#include "sequencer/NoteTestHelpers.h"
#include "sequencer/PulseRecord.h"
#include "sequencer/SequencerTestHelpers.h"

#include <gtest/gtest.h>

namespace
{
using Orv::Sequencer::PatternData;
using Orv::Sequencer::PatternRunner;
using Orv::Sequencer::PulseRecord;
using Orv::Sequencer::RunnerSlot;
using Orv::Testing::eventsOf;
using Orv::Testing::makeStep;
using Words = std::vector<std::string>;

// At 48 kHz and 120 BPM a quarter note lasts 24000 samples.
constexpr int samplesPerQuarter = 24000;

struct PatternRunnerTest : ::testing::Test
{
    PatternRunnerTest() { runner.prepare (Orv::Testing::TestClock::capacity); }

    Words run (double ppq, int numSamples, bool playing = true, bool jump = false)
    {
        runner.run (clock.block (ppq, numSamples, playing, jump), slot);
        return eventsOf (runner.getOutput());
    }

    void loop (double length)
    {
        slot.looping = true;
        slot.length = length;
    }

    Orv::Testing::TestClock clock;
    PatternRunner runner;
    PatternData data;
    RunnerSlot slot { &data, true, false, 0.0 };
};

//==============================================================================
TEST_F (PatternRunnerTest, LoopingSlotRestartsAtEachWrapOnTheExactSample)
{
    loop (0.25);
    data.notes = { makeStep (0.0, 0.125) };

    EXPECT_EQ (run (0.0, 10000), Words ({ "+1:64@0", "-1:64@3000", "+1:64@6000", "-1:64@9000" }));
}

TEST_F (PatternRunnerTest, WrapEndsWhatSoundsButTheTopNoteHoldsThroughIt)
{
    // A loop that doesn't end on a sample boundary: the first time after the
    // wrap lies past the steps' start, so they are caught up rather than
    // started again. The wrap falls at 6003, in the second block.
    constexpr double length = 0.2501;
    constexpr int firstBlock = 5000;
    constexpr int wrapInSecondBlock = 1003;
    loop (length);
    data.notes = { makeStep (0.0, length, 60), makeStep (0.0, length, 127) };

    EXPECT_EQ (run (0.0, firstBlock), Words ({ "+1:60@0", "+1:127@0" }));

    const auto at = "@" + std::to_string (wrapInSecondBlock);
    EXPECT_EQ (run ((double) firstBlock / samplesPerQuarter, 2000), Words ({ "-1:60" + at, "+1:60" + at }));
}

TEST_F (PatternRunnerTest, StopEndsAllNotesInTheFirstPieceAndNothingAfter)
{
    data.notes = { makeStep (0.0, 4.0, 60), makeStep (0.5, 4.0, 62) };
    EXPECT_EQ (run (1.0, 512), Words ({ "+1:60@0", "+1:62@0" }));

    EXPECT_EQ (run (1.0, 512, false), Words ({ "-1:60@0", "-1:62@0" }));
    EXPECT_EQ (run (1.0, 512, false), Words());

    // A slot that is switched off does the same.
    EXPECT_EQ (run (1.0, 512), Words ({ "+1:60@0", "+1:62@0" }));
    slot.playing = false;
    EXPECT_EQ (run (1.0 + 512.0 / samplesPerQuarter, 512), Words ({ "-1:60@0", "-1:62@0" }));
}

TEST_F (PatternRunnerTest, RestartTakesTheNewOriginAndAJumpPutsItBackToZero)
{
    loop (4.0);
    data.notes = { makeStep (0.25, 0.25) };

    runner.restartAt (2.0);
    EXPECT_EQ (run (2.0, 7000), Words ({ "+1:64@6000" }));
    EXPECT_EQ (runner.getOrigin(), 2.0);
    EXPECT_EQ (runner.getPhase(), PatternRunner::Phase::running);

    // With origin 2 this would be pattern time 0 again and play at 6000.
    EXPECT_EQ (run (6.0, 7000, true, true), Words ({ "-1:64@0" }));
    EXPECT_EQ (runner.getOrigin(), 0.0);
}

TEST_F (PatternRunnerTest, PulsesBecomeTriggersAtTheirSampleSortedAndFireOnce)
{
    loop (1.0);

    const auto pulseAt = [this] (double start, int slotNumber)
    {
        auto pulse = PulseRecord::create();
        pulse->slot = slotNumber;
        pulse->fired = false;
        data.extra.push_back ({ { start, 1.0 }, pulse, true });
        return pulse;
    };

    // Listed out of order; the one at 0 fires after the wrap.
    const auto atZero = pulseAt (0.0, 3);
    pulseAt (0.875, 5);
    pulseAt (0.8125, 6);

    run (0.75, 8192);
    const auto& triggers = runner.getTriggers();
    ASSERT_EQ (triggers.size(), 3u);
    EXPECT_EQ (triggers[0].slot, 6);
    EXPECT_EQ (triggers[0].sampleOffset, samplesPerQuarter / 16);
    EXPECT_EQ (triggers[1].slot, 5);
    EXPECT_EQ (triggers[1].sampleOffset, samplesPerQuarter / 8);
    EXPECT_EQ (triggers[2].slot, 3);
    EXPECT_EQ (triggers[2].sampleOffset, samplesPerQuarter / 4);
    EXPECT_EQ (triggers[2].time, 0.0);
    EXPECT_TRUE (atZero->fired);

    run (0.75 + 8192.0 / samplesPerQuarter, 8192);
    EXPECT_TRUE (runner.getTriggers().empty());

    // Stopped, nothing fires even when armed.
    atZero->fired = false;
    run (0.0, 512, false);
    EXPECT_TRUE (runner.getTriggers().empty());
    EXPECT_FALSE (atZero->fired);
}
} // namespace

#include "sequencer/NoteScheduler.h"

#include "sequencer/NoteTestHelpers.h"
#include "sequencer/SequencerTestHelpers.h"

#include <gtest/gtest.h>

namespace
{
using Orv::Sequencer::NoteScheduler;
using Orv::Sequencer::NoteState;
using Orv::Sequencer::PatternData;
using Orv::Sequencer::PlayHead;
using Orv::Sequencer::TriggerRecord;
using Orv::Testing::eventsOf;
using Orv::Testing::makeStep;
using Words = std::vector<std::string>;

// 16 samples to the quarter note, so that every time below is exact.
constexpr double perSample = 1.0 / 16.0;
constexpr int fixedSeed = 12345;

struct NoteSchedulerTest : ::testing::Test
{
    NoteSchedulerTest() { scheduler.setSeed (fixedSeed); }

    Words runFrom (double from, int numSamples = 16, bool playing = true)
    {
        scheduler.run (clock.linear (from, perSample, numSamples, playing), data, triggers);
        return eventsOf (scheduler.getOutput());
    }

    Orv::Testing::TestClock clock;
    NoteScheduler scheduler;
    PatternData data;
    std::vector<TriggerRecord> triggers;
};

//==============================================================================
TEST_F (NoteSchedulerTest, CatchesUpAStepThatBeganBeforeThePieceAndEndsItWhereItEnds)
{
    data.notes = { makeStep (0.0, 2.0) };

    EXPECT_EQ (runFrom (1.0), Words ({ "+1:64@0" }));
    EXPECT_EQ (runFrom (2.0), Words ({ "-1:64@0" })); // the end fell between the pieces
    EXPECT_EQ (runFrom (3.0), Words());

    data.notes = { makeStep (4.25, 0.5) };
    EXPECT_EQ (runFrom (4.0), Words ({ "+1:64@4", "-1:64@12" }));
}

TEST_F (NoteSchedulerTest, ANewStepOnTheSameRowCutsTheOld)
{
    data.notes = { makeStep (0.0, 2.0), makeStep (1.0, 2.0) };
    EXPECT_EQ (runFrom (0.0, 32), Words ({ "+1:64@0", "-1:64@16", "+1:64@16" }));
}

TEST_F (NoteSchedulerTest, OverlappingStepsOnOneRowComeOutInTimeOrderAndTheStopEndsWhatSounds)
{
    // In list order the step that ends inside the piece comes last, after a
    // later start on its row: heard in time order the row is on at the end
    // of the piece, and the scheduler must know it.
    data.notes = { makeStep (0.0, 4.0), makeStep (1.5, 2.5), makeStep (0.0, 1.25) };
    runFrom (0.0);
    EXPECT_EQ (runFrom (1.0), Words ({ "-1:64@4", "+1:64@8" }));
    EXPECT_NE (scheduler.getNoteState (1, 64), NoteScheduler::off);

    data.notes.clear();
    EXPECT_EQ (runFrom (2.0, 16, false), Words ({ "-1:64@0" }));
}

TEST_F (NoteSchedulerTest, AStepOfLengthZeroStartsAndEndsAtOneSampleAndLeavesNothingHanging)
{
    data.notes = { makeStep (0.5, 0.0) };
    EXPECT_EQ (runFrom (0.0), Words ({ "+1:64@8", "-1:64@8" }));
    EXPECT_EQ (scheduler.getNoteState (1, 64), NoteScheduler::off);
    EXPECT_EQ (runFrom (1.0), Words());
}

TEST_F (NoteSchedulerTest, StepsThatVanishAreEndedByTheSweepAtTheNextPiece)
{
    data.notes = { makeStep (0.0, 4.0, 60), makeStep (0.0, 4.0, 62) };
    EXPECT_EQ (runFrom (0.0), Words ({ "+1:60@0", "+1:62@0" }));

    data.notes.pop_back();
    EXPECT_EQ (runFrom (1.0), Words ({ "-1:62@0" }));

    // A stopped clock still runs pieces; with no data every note ends.
    data.notes.clear();
    EXPECT_EQ (runFrom (2.0, 16, false), Words ({ "-1:60@0" }));
}

TEST_F (NoteSchedulerTest, TimeGoingBackRestrikesEveryNoteButTheTopOne)
{
    data.notes = { makeStep (0.0, 4.0, 60), makeStep (0.0, 4.0, 127) };
    EXPECT_EQ (runFrom (2.0), Words ({ "+1:60@0", "+1:127@0" }));

    // Both steps still cover the new place; only the lower note is cut and
    // caught up again.
    EXPECT_EQ (runFrom (1.0), Words ({ "-1:60@0", "+1:60@0" }));
    EXPECT_EQ (scheduler.getNoteState (1, 127), NoteScheduler::onNotYetSeen);

    // Going back to where neither step lies: the sweep ends the top note in
    // the same piece.
    data.notes.clear();
    EXPECT_EQ (runFrom (0.5), Words ({ "-1:60@0", "-1:127@0" }));
}

//==============================================================================
TEST_F (NoteSchedulerTest, GainIsTheChanceThatAStepPlays)
{
    constexpr int numSteps = 100;

    const struct
    {
        float gain;
        int minOns;
        int maxOns;
    } cases[] = { { 0.0f, 0, 0 }, { 0.5f, 35, 65 }, { 1.0f, numSteps, numSteps } };

    for (const auto& c : cases)
    {
        NoteScheduler fresh;
        fresh.setSeed (fixedSeed);

        data.notes.clear();
        for (int i = 0; i < numSteps; ++i)
        {
            data.notes.push_back (makeStep (i * 0.25, 0.125));
            data.notes.back().event.gain = c.gain;
        }

        fresh.run (clock.linear (0.0, perSample, numSteps * 4), data, triggers);
        const auto ons = Orv::Testing::countNoteOns (fresh.getOutput());
        EXPECT_GE (ons, c.minOns) << "gain " << c.gain;
        EXPECT_LE (ons, c.maxOns) << "gain " << c.gain;
    }
}

TEST_F (NoteSchedulerTest, GeneratorIsTheFortyEightBitOneKeptBelowOne)
{
    scheduler.setSeed (1);
    // 25214903917 + 11, shifted down by 16.
    EXPECT_FLOAT_EQ (scheduler.nextRandom(), 384748.0f * 2.3283064e-10f);

    // This seed's next state has all 32 drawn bits set.
    scheduler.setSeed (6120242490025);
    EXPECT_EQ (scheduler.nextRandom(), 0.9999999f);
}

TEST (NoteSchedulerVelocity, FollowsTheVelocityRule)
{
    const struct
    {
        float velocity;
        int midi;
    } cases[] = { { -1.0f, 1 }, { 0.0f, 1 }, { 0.009f, 1 }, { 0.01f, 1 }, { 0.02f, 3 },
                  { 0.5f, 64 }, { 0.8f, 102 }, { 1.0f, 127 }, { 2.0f, 127 } };

    for (const auto& c : cases)
        EXPECT_EQ (NoteScheduler::midiVelocity (c.velocity), c.midi) << "velocity " << c.velocity;
}

TEST_F (NoteSchedulerTest, ChannelIsLimitedAndUsedAsTheNibbleAndTheRowIsMaskedToSevenBits)
{
    const struct
    {
        int channel;
        int noteNum;
        const char* word;
    } cases[] = { { 1, 64, "+1:64@0" }, { 0, 64, "+0:64@0" }, { 20, 64, "+15:64@0" },
                  { -3, 64, "+0:64@0" }, { 1, 200, "+1:72@0" }, { 1, -1, "+1:127@0" } };

    for (const auto& c : cases)
    {
        NoteScheduler fresh;
        data.notes = { makeStep (0.0, 1.0, c.noteNum) };
        data.notes[0].event.channel = c.channel;
        fresh.run (clock.linear (0.0, perSample, 4), data, triggers);
        EXPECT_EQ (eventsOf (fresh.getOutput()), Words ({ c.word })) << c.channel << " " << c.noteNum;
    }
}

//==============================================================================
TEST_F (NoteSchedulerTest, PlayHeadsShowProgressWhilePlayedAndStopWhenLeft)
{
    const auto head = PlayHead::create();
    data.heads = { { { 0.0, 2.0 }, head, true } };

    runFrom (0.5);
    EXPECT_EQ (head->getState(), NoteState::playing);
    EXPECT_DOUBLE_EQ (head->getProgress(), (0.5 + 15 * perSample) / 2.0);

    runFrom (2.0);
    EXPECT_EQ (head->getState(), NoteState::notPlaying);

    runFrom (1.0);
    EXPECT_EQ (head->getState(), NoteState::playing);

    // Stopped where the head still lies: stopping alone ends its display.
    data.heads.clear();
    runFrom (1.0, 16, false);
    EXPECT_EQ (head->getState(), NoteState::notPlaying);
}

TEST (NoteSchedulerSampleOf, FindsTheIntervalHoldingTheTime)
{
    const double rising[] = { 0.0, 1.0, 2.0, 3.0 };
    const double still[] = { 5.0, 5.0, 5.0 };

    const struct
    {
        const double* q;
        int m;
        double t;
        int sample;
    } cases[] = { { rising, 4, 0.0, 0 }, { rising, 4, 0.5, 0 }, { rising, 4, 1.0, 1 }, { rising, 4, 2.99, 2 },
                  { rising, 4, 3.0, 3 }, { rising, 4, 9.0, 3 }, { rising, 4, -1.0, 3 }, { still, 3, 5.0, 0 },
                  { still, 3, 4.0, 2 }, { rising, 1, 0.0, 0 } };

    for (const auto& c : cases)
        EXPECT_EQ (NoteScheduler::sampleOf (c.t, c.q, c.m), c.sample) << "t " << c.t;
}
} // namespace

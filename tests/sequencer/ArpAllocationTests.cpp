#include "sequencer/ChordMap.h"
#include "sequencer/NoteGate.h"
#include "sequencer/PatternRunner.h"
#include "sequencer/PulseRecord.h"

#include "sequencer/NoteTestHelpers.h"
#include "sequencer/SequencerTestHelpers.h"
#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

namespace
{
using namespace Orv::Sequencer;
using Orv::Audio::Plugins::Halvane::ChordMap;

TEST (ArpAllocation, RunnerMapAndGateAllocateNothingOnceBuilt)
{
    constexpr int blockSize = 512;
    constexpr int numBlocks = 400;
    constexpr int stepsPerQuarter = 4;

    PatternData data;
    for (int i = 0; i < stepsPerQuarter; ++i)
        data.notes.push_back (Orv::Testing::makeStep (i * 0.25, 0.2, 64 + i % 3));
    data.heads.push_back ({ { 0.0, 1.0 }, PlayHead::create(), true });
    const auto pulse = PulseRecord::create();
    data.extra.push_back ({ { 0.0, 1.0 }, pulse, true });

    const RunnerSlot slot { &data, true, true, 1.0 };
    Orv::Testing::TestClock clock;
    PatternRunner runner;
    ChordMap map;
    NoteGate gate;
    juce::MidiBuffer out;
    out.ensureSize (Orv::Midi::NoteMessage::bufferBytes);

    int notesOut = 0;
    int triggers = 0;
    double ppq = 0.0;
    const auto ppqPerBlock = blockSize * 120.0 / (clock.rate * 60.0);

    const Orv::Testing::AllocationCounter counter;

    for (int block = 0; block < numBlocks; ++block)
    {
        // Now and then the chord changes, the transport stops, or the song jumps.
        if (block % 50 == 0)
        {
            map.release (60 + (block / 50) % 2);
            map.hold (60 + (block / 50 + 1) % 2);
            map.hold (67);
            map.rebuild();
        }

        const bool playing = block % 100 < 90;
        pulse->fired = false;
        runner.run (clock.block (ppq, blockSize, playing, block % 130 == 0), slot);
        triggers += (int) runner.getTriggers().size();

        out.clear();
        map.translate (runner.getOutput(), out);
        gate.process (out, block % 200 < 190, false);
        notesOut += out.getNumEvents();

        if (playing)
            ppq += ppqPerBlock;
    }

    EXPECT_EQ (counter.getCount(), 0);
    EXPECT_GT (notesOut, 4 * stepsPerQuarter * 2) << "the loop must really play";
    EXPECT_GT (triggers, 0);
}
} // namespace

#include "midi/Keyswitches.h"

#include "sequencer/ArpSoak.h"
#include "sequencer/SequencerTestHelpers.h"
#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
using namespace Orv::Audio::Plugins::Halvane;
using Orv::Testing::ArpRig;
using Played = ArpRig::Played;

constexpr int samplesPerQuarter = ArpRig::samplesPerQuarter;
constexpr int samplesPerSixteenth = ArpRig::samplesPerSixteenth;
constexpr int stepsPerBar = ArpRig::stepsPerBar;

juce::MidiMessage on (int note) { return juce::MidiMessage::noteOn (1, note, (uint8_t) 100); }
juce::MidiMessage off (int note) { return juce::MidiMessage::noteOff (1, note); }

std::string word (char kind, int note, int64_t at) { return kind + std::to_string (note) + "@" + std::to_string (at); }

const std::vector<Played> chordCEG { { on (60), 0 }, { on (64), 0 }, { on (67), 0 } };
} // namespace

//==============================================================================
TEST (ArpPlayback, SixteenthStepsOverAHeldChordPlayItsNotesAtTheirSamples)
{
    ArpRig rig;
    std::vector<int> rows;
    for (int i = 0; i < stepsPerBar; ++i)
        rows.push_back (64 + i % 3);
    rig.setPattern (0, rows);

    // Blocks that don't divide a sixteenth: each note lands inside a block.
    rig.block (512, chordCEG);
    rig.playUntil (4 * samplesPerQuarter + 512, 512);

    const int chord[] = { 60, 64, 67 };
    std::vector<std::string> expected;
    for (int i = 0; i <= stepsPerBar; ++i) // the bar, and the first step of the next
    {
        const auto note = chord[i % stepsPerBar % 3];
        const auto start = (int64_t) i * samplesPerSixteenth;
        expected.push_back (word ('+', note, start));
        if (i < stepsPerBar)
            expected.push_back (word ('-', note, start + samplesPerSixteenth / 2));
    }
    EXPECT_EQ (rig.words, expected);

    // The display's copy of the table: the chord by rows, and below it an
    // octave down.
    const auto& map = rig.state().pitchMap.read();
    EXPECT_EQ (std::vector<int> (map.sortedNotes.begin(), map.sortedNotes.end()), (std::vector<int> { 60, 64, 67 }));
    for (const auto& [row, note] : { std::pair { 63, 55 }, { 64, 60 }, { 66, 67 }, { 67, 72 } })
    {
        ASSERT_EQ (map.table[(size_t) row].count, 1) << row;
        EXPECT_EQ (map.table[(size_t) row].notes[0], note) << row;
    }
}

TEST (ArpPlayback, WithTheArpOffPlayedNotesPassTheChain)
{
    ArpRig rig;
    rig.setPattern (0, { 64, 65, 66, 64 });
    auto& arp = rig.state().arp;
    *arp.arpActive = ArpSettings::arpOff;
    *arp.transpose = 2;
    *arp.octave = 1;

    rig.block (512, { { on (60), 100 }, { on (67), 150 }, { off (60), 300 } });
    rig.block (512, { { off (67), 20 } });

    EXPECT_EQ (rig.words, (std::vector<std::string> { "+74@100", "+81@150", "-74@300", "-81@532" }))
        << "transposed by 2 and an octave, and no note of the pattern";
}

TEST (ArpPlayback, KeyswitchSwitchesAtTheNextBoundaryWhilePlayingAndAtOnceWhileStopped)
{
    constexpr int keyswitchForSlot1 = Keyswitches::notes[1];
    constexpr int block = 500; // divides a sixteenth: boundaries fall on block starts

    ArpRig rig;
    rig.followHostStops();
    rig.setPattern (0, std::vector<int> (stepsPerBar, 64), 1.0);
    rig.setPattern (1, std::vector<int> (stepsPerBar, 65), 1.0);
    *rig.state().arp.quantize = 2; // a quarter note

    rig.block (block, { { on (60), 0 }, { on (64), 0 } });
    rig.playUntil (samplesPerQuarter + 5000, block);

    // Pressed in the second beat: it waits for the third.
    rig.block (block, { { on (keyswitchForSlot1), 123 }, { off (keyswitchForSlot1), 200 } });
    EXPECT_EQ (rig.live().queued.load(), 1);
    EXPECT_EQ (rig.live().active.load(), 0);

    rig.words.clear();
    rig.playUntil (2 * samplesPerQuarter + samplesPerSixteenth + block, block);
    EXPECT_EQ (rig.live().active.load(), 1);
    EXPECT_EQ (rig.live().queued.load(), -1);

    // Each sixteenth ends the note of the one before; the boundary ends row
    // 64's note, and row 65 starts from the new pattern's beginning.
    const auto boundary = (int64_t) 2 * samplesPerQuarter;
    std::vector<std::string> expected;
    const auto firstAfterPress = (int64_t) 5 * samplesPerSixteenth;
    for (auto t = firstAfterPress; t < rig.time; t += samplesPerSixteenth)
    {
        expected.push_back (word ('-', t <= boundary ? 60 : 64, t));
        expected.push_back (word ('+', t < boundary ? 60 : 64, t));
    }
    EXPECT_EQ (rig.words, expected);

    // Stopped, a press takes effect in the same block.
    rig.playing = false;
    rig.block (block);
    rig.block (block, { { on (Keyswitches::notes[0]), 10 } });
    EXPECT_EQ (rig.live().active.load(), 0);
    EXPECT_EQ (rig.live().queued.load(), -1);
}

TEST (ArpPlayback, ATransportStopEndsEveryNoteAtOnce)
{
    ArpRig rig;
    rig.followHostStops();
    rig.setPattern (0, { 64, 65, 66 }, 16.0); // three steps that each last the bar

    rig.block (512, chordCEG);
    rig.playUntil (15000, 512);
    rig.playing = false;
    const auto stoppedAt = rig.time;
    rig.block (512);
    rig.block (512);

    EXPECT_EQ (rig.words, (std::vector<std::string> { "+60@0", "+64@6000", "+67@12000", word ('-', 60, stoppedAt),
                                                      word ('-', 64, stoppedAt), word ('-', 67, stoppedAt) }));
}

TEST (ArpPlayback, SteadyBlocksOfAPlayingArpAllocateNothing)
{
    constexpr int block = 512;
    constexpr int numBlocks = 400; // some 34 sixteenths
    ArpRig rig (block);
    for (int slot = 0; slot < 2; ++slot)
        rig.setPattern (slot, { 64, 65, 66, 67, 63, 64, 65, 66, 64, 68, 62, 64, 65, 66, 69, 60 });
    *rig.state().arp.quantize = 4; // boundaries every sixteenth

    // Chord changes and keyswitches in the counted blocks too.
    const std::vector<std::vector<Played>> cycle {
        chordCEG,
        { { off (64), 40 }, { on (63), 41 } },
        { { on (Keyswitches::notes[1]), 7 }, { off (Keyswitches::notes[1]), 9 } },
        { { off (63), 0 }, { on (64), 0 } },
        { { on (Keyswitches::notes[0]), 100 }, { on (72), 101 } },
        { { off (72), 3 } },
    };

    for (int i = 0; i < 60; ++i)
        rig.block (block, cycle[(size_t) i % cycle.size()]);
    const auto before = rig.words.size();

    int64_t allocations = 0;
    for (int i = 0; i < numBlocks; ++i)
    {
        // The test's own record of the output is not the block's.
        rig.words.reserve (rig.words.size() + 64);
        Orv::Testing::AllocationCounter counter;
        rig.block (block, cycle[(size_t) i % cycle.size()]);
        allocations += counter.getCount();
    }

    EXPECT_EQ (allocations, 0);
    EXPECT_GT (rig.words.size(), before + 50) << "the arp must really play";
}

//==============================================================================
// Random play against a model of what a receiver sees (see playArpSoak).
// Set HALVANE_ARP_SEEDS for more seeds, or HALVANE_ARP_SEED to replay one;
// the soak benchmark runs the same play over many more.
TEST (ArpPlayback, RandomPlayNeverStrikesASoundingNoteAndAStopEndsThemAll)
{
    constexpr int defaultSeeds = 256;
    const auto seeds = Orv::Testing::ArpSoakSeeds::fromEnvironment (defaultSeeds);

    for (int seed = seeds.first; seed < seeds.first + seeds.count; ++seed)
    {
        const auto result = Orv::Testing::playArpSoak (seed);
        ASSERT_TRUE (result.holds()) << result.describe (seed);
    }
}

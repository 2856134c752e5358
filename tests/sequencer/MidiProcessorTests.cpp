#include "core/Processor.h"
#include "midi/Keyswitches.h"

#include "sequencer/SequencerTestHelpers.h"
#include "support/AllocationCounter.h"
#include "support/FakeHostPlayHead.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace
{
using namespace Orv::Audio::Plugins::Halvane;
using Orv::Testing::FakeHostPlayHead;

constexpr double sampleRate = 48000.0;
constexpr double tempo = 120.0;
constexpr int samplesPerQuarter = 24000; // at that tempo and rate
constexpr int samplesPerSixteenth = samplesPerQuarter / 4;
constexpr int stepsPerBar = 16;
constexpr int maxBlock = 4096;

/** A note event at a time counted from the first block. */
struct Played
{
    juce::MidiMessage message;
    int sample;
};

juce::MidiMessage on (int note) { return juce::MidiMessage::noteOn (1, note, (uint8_t) 100); }
juce::MidiMessage off (int note) { return juce::MidiMessage::noteOff (1, note); }

/** The whole instance, on a host clock of the test's at 120 BPM, with the
    output kept as words in song time: "+60@6000" a note-on of 60 at sample
    6000, "-60@9000" its note-off. */
struct ArpRig
{
    explicit ArpRig (int preparedBlock = 512)
    {
        processor.setPlayHead (&host);
        processor.prepareToPlay (sampleRate, preparedBlock);
        audio.setSize (2, maxBlock);
    }

    State& state() { return processor.getState(); }
    Orv::Sequencer::LiveControl& live() { return *state().sequencer.liveSlots.live; }

    /** Pattern `index` as a bar of steps, one per sixteenth, on the given
        rows, each `gate` of its sixteenth long. */
    void setPattern (int index, const std::vector<int>& rows, double gate = 0.5)
    {
        auto& sequencer = state().sequencer;
        auto& steps = sequencer.patterns[(size_t) index]->sequence.steps;
        steps.clear();
        for (size_t i = 0; i < rows.size(); ++i)
            steps.push_back (Orv::Testing::makeStep ((double) i / stepsPerBar, gate / stepsPerBar, rows[i]));
        sequencer.rebuild();
    }

    /** A stopped host is followed only while the file player is on: otherwise
        the arp runs on the internal clock. The player's own play button is
        off, so that the keys still feed the arp. */
    void followHostStops()
    {
        state().midiPlayer.playing.store (false);
        state().filePlayerActive.store (true);
    }

    /** Runs one block of `n` samples with `events` at block positions; a
        playing host moves on by the block. */
    void block (int n, const std::vector<Played>& events = {})
    {
        const auto ppq = (double) time / samplesPerQuarter;
        host.position = playing ? FakeHostPlayHead::playing (time, ppq, tempo) : FakeHostPlayHead::stopped (time, ppq, tempo);

        midi.clear();
        for (const auto& e : events)
            midi.addEvent (e.message, e.sample);

        audio.setSize (2, n, false, false, true);
        processor.processBlock (audio, midi);

        for (const auto event : midi)
        {
            const auto message = event.getMessage();
            if (message.isNoteOnOrOff())
                words.push_back ((message.isNoteOn() ? "+" : "-") + std::to_string (message.getNoteNumber()) + "@"
                                 + std::to_string (time + event.samplePosition));
        }

        if (playing)
            time += n;
    }

    /** Blocks of `n` until the song has reached `until`. */
    void playUntil (int64_t until, int n)
    {
        while (time < until)
            block (n);
    }

    FakeHostPlayHead host;
    Processor processor;
    juce::AudioBuffer<float> audio;
    juce::MidiBuffer midi;
    int64_t time = 0;
    bool playing = true;
    std::vector<std::string> words;
};

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
namespace
{
/** Reads an optional count or seed from the environment, for longer runs or
    the replay of one seed. */
int fromEnvironment (const char* name, int fallback)
{
    const auto* text = std::getenv (name);
    return text != nullptr ? std::atoi (text) : fallback;
}

/** Fills the eight patterns with random steps on the rows a pattern may hold. */
void randomPatterns (ArpRig& rig, std::mt19937& random)
{
    auto& sequencer = rig.state().sequencer;
    for (auto& pattern : sequencer.patterns)
    {
        auto& steps = pattern->sequence.steps;
        steps.clear();
        const auto count = std::uniform_int_distribution<int> (4, 16) (random);
        for (int i = 0; i < count; ++i)
        {
            const auto start = std::uniform_int_distribution<int> (0, stepsPerBar - 1) (random);
            const auto length = std::uniform_int_distribution<int> (1, 8) (random);
            const auto row = std::uniform_int_distribution<int> (Pattern::lowestLoadedRow, Pattern::highestLoadedRow) (random);
            steps.push_back (Orv::Testing::makeStep ((double) start / stepsPerBar, (double) length / (2 * stepsPerBar), row));
        }
    }
    sequencer.rebuild();
}
} // namespace

// A model of what a receiver sees: no note may be struck while it sounds,
// and once the transport has stopped none may be left sounding, whatever the
// chords, keyswitches, stops, jumps and block sizes before. Set
// HALVANE_ARP_SEEDS for more seeds, or HALVANE_ARP_SEED to replay one.
TEST (ArpPlayback, RandomPlayNeverStrikesASoundingNoteAndAStopEndsThemAll)
{
    constexpr std::array<int, 4> blockSizes { 1, 7, 64, 4096 };
    constexpr int blocksPerSeed = 300;
    const auto firstSeed = fromEnvironment ("HALVANE_ARP_SEED", 1);
    const auto numSeeds = std::getenv ("HALVANE_ARP_SEED") != nullptr ? 1 : fromEnvironment ("HALVANE_ARP_SEEDS", 256);

    for (int seed = firstSeed; seed < firstSeed + numSeeds; ++seed)
    {
        std::mt19937 random ((unsigned) seed);
        auto chance = [&random] (double p) { return std::uniform_real_distribution<double> (0.0, 1.0) (random) < p; };
        auto pick = [&random] (int low, int high) { return std::uniform_int_distribution<int> (low, high) (random); };

        ArpRig rig (64);
        randomPatterns (rig, random);
        if (chance (0.5))
            rig.followHostStops();
        *rig.state().arp.quantize = pick (0, 5);
        *rig.state().arp.retrigger = chance (0.3);

        std::array<bool, 128> sounding {};
        std::vector<int> held;
        auto check = [&] (size_t from) {
            for (auto i = from; i < rig.words.size(); ++i)
            {
                const auto& w = rig.words[i];
                const auto note = std::stoi (w.substr (1, w.find ('@') - 1));
                if (w[0] == '+')
                {
                    ASSERT_FALSE (sounding[(size_t) note]) << "seed " << seed << ": struck while on, " << w;
                    sounding[(size_t) note] = true;
                }
                else
                {
                    sounding[(size_t) note] = false;
                }
            }
        };

        for (int b = 0; b < blocksPerSeed && ! testing::Test::HasFatalFailure(); ++b)
        {
            const auto n = blockSizes[(size_t) pick (0, (int) blockSizes.size() - 1)];
            std::vector<Played> events;

            if (chance (0.4))
            {
                const auto note = pick (48, 72);
                const auto at = pick (0, n - 1);
                const auto isHeld = std::find (held.begin(), held.end(), note) != held.end();
                events.push_back ({ isHeld ? off (note) : on (note), at });
                if (isHeld)
                    held.erase (std::find (held.begin(), held.end(), note));
                else
                    held.push_back (note);
            }
            if (chance (0.05))
                events.push_back ({ on (Keyswitches::notes[(size_t) pick (0, Keyswitches::numSlots - 1)]), pick (0, n - 1) });
            if (chance (0.03))
                rig.playing = ! rig.playing;
            if (chance (0.02))
                rig.time = pick (0, 40) * samplesPerSixteenth + pick (0, 100);
            if (chance (0.02))
                randomPatterns (rig, random);

            std::sort (events.begin(), events.end(), [] (const Played& a, const Played& b) { return a.sample < b.sample; });
            const auto from = rig.words.size();
            rig.block (n, events);
            check (from);
        }

        rig.followHostStops();
        rig.playing = false;
        const auto from = rig.words.size();
        rig.block (64);
        rig.block (64);
        check (from);

        for (int note = 0; note < 128; ++note)
            EXPECT_FALSE (sounding[(size_t) note]) << "seed " << seed << ": note " << note << " left on";

        if (testing::Test::HasFailure())
            break;
    }
}

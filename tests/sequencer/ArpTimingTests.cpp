#include "core/Processor.h"
#include "midi/Keyswitches.h"

#include "sequencer/SequencerTestHelpers.h"
#include "support/FakeHostPlayHead.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <ostream>
#include <vector>

// The whole instance driven as a host drives it: a play head, MIDI in, blocks
// of a size the host picks. Every expected sample position is worked out here
// from tempo, rate and the drawn steps, never copied from a run.
namespace
{
using namespace Orv::Audio::Plugins::Halvane;
using Orv::Testing::FakeHostPlayHead;

constexpr double sampleRate = 48000.0;
constexpr double secondsPerMinute = 60.0;
constexpr double hostTempo = 120.0;
/** A fresh pattern is one bar of 4/4, drawn here in sixteenths. */
constexpr double patternQuarters = 4.0;
constexpr int stepsPerPattern = 16;
constexpr double stepQuarters = patternQuarters / stepsPerPattern;
constexpr int maxVelocity = 127;
constexpr float quietestVelocity = 0.01f;

double samplesPerQuarterAt (double bpm) { return sampleRate * secondsPerMinute / bpm; }

const double samplesPerQuarter = samplesPerQuarterAt (hostTempo);
const auto samplesPerPattern = (int64_t) (patternQuarters * samplesPerQuarter);

/** One sixteenth of a test pattern. */
struct DrawnStep
{
    int row = ChordMap::centreRow;
    /** Length as a share of the sixteenth. */
    double gate = 0.5;
    float velocity = Orv::Sequencer::NoteEvent::defaultVelocity;
    int channel = Orv::Sequencer::NoteEvent::defaultChannel;
};

std::vector<DrawnStep> stepsOnRows (const std::vector<int>& rows)
{
    std::vector<DrawnStep> steps;
    for (const auto row : rows)
        steps.push_back ({ row });
    return steps;
}

/** Rows 64, 65, 66, 64, ... for a whole pattern. */
std::vector<DrawnStep> cyclingThreeRows()
{
    std::vector<int> rows;
    for (int i = 0; i < stepsPerPattern; ++i)
        rows.push_back (ChordMap::centreRow + i % 3);
    return stepsOnRows (rows);
}

/** A note as the receiver hears it; a note-off's velocity is not compared. */
struct Heard
{
    bool on = false;
    int note = 0;
    int velocity = 0;
    int channel = 0;
    int64_t sample = 0;
};

std::ostream& operator<< (std::ostream& os, const Heard& h)
{
    return os << (h.on ? "+" : "-") << h.note << " v" << h.velocity << " ch" << h.channel << " @" << h.sample;
}

//==============================================================================
// The oracle: what a drawn pattern must sound over a chord.

/** The note a row stands for: row 64 the lowest held note, each row above the
    next held note and past the chord the same an octave up, rows below the
    chord an octave down; folded by octaves into the default range, whose top
    note is excluded. */
int noteForRow (std::vector<int> chord, int row)
{
    std::sort (chord.begin(), chord.end());
    const auto n = (int) chord.size();
    const auto j = row - ChordMap::centreRow;
    const auto octaves = (int) std::floor ((double) j / n);
    auto note = chord[(size_t) (j - octaves * n)] + ChordMap::octave * octaves;

    const auto low = ArpSettings::notesPerOctave * ArpSettings::defaultLowOctave;
    const auto high = ArpSettings::notesPerOctave * ArpSettings::defaultHighOctave;
    while (note < low)
        note += ChordMap::octave;
    while (note > high - 1)
        note -= ChordMap::octave;
    return note;
}

int velocityFor (float velocity)
{
    if (velocity < quietestVelocity)
        return 1;
    return juce::jlimit (1, maxVelocity, juce::roundToInt (std::min (1.0f, velocity) * maxVelocity));
}

using Bend = std::function<double (double)>;
double unbent (double quarters) { return quarters; }

/** One pass of the pattern from sample `first`, for `windowQuarters` of
    pattern time before that time steps back and cuts whatever still sounds.
    Step times are bent first (swing). Sample of a time: the last sample that
    is not after it. */
std::vector<Heard> pass (const std::vector<DrawnStep>& steps,
                         const std::vector<int>& chord,
                         int64_t first,
                         double windowQuarters = patternQuarters,
                         double perQuarter = samplesPerQuarter,
                         const Bend& bend = unbent)
{
    constexpr double roundingSlack = 1e-6;
    auto sampleOf = [&] (double quarters) { return first + (int64_t) std::floor (quarters * perQuarter + roundingSlack); };

    std::vector<Heard> heard;
    for (size_t i = 0; i < steps.size(); ++i)
    {
        const auto& step = steps[i];
        const auto start = bend ((double) i * stepQuarters);
        if (start >= windowQuarters)
            continue;
        const auto end = std::min (windowQuarters, bend (((double) i + step.gate) * stepQuarters));
        const auto note = noteForRow (chord, step.row);
        heard.push_back ({ true, note, velocityFor (step.velocity), 1, sampleOf (start) });
        heard.push_back ({ false, note, 0, 1, sampleOf (end) });
    }

    std::stable_sort (heard.begin(), heard.end(), [] (const Heard& a, const Heard& b) { return a.sample < b.sample; });
    return heard;
}

/** Passes laid end to end, cut at `until`. */
std::vector<Heard> joined (std::initializer_list<std::vector<Heard>> passes, int64_t until)
{
    std::vector<Heard> all;
    for (const auto& p : passes)
        for (const auto& h : p)
            if (h.sample < until)
                all.push_back (h);
    return all;
}

/** The whole stream must match; samples to within `tolerance`, for times
    that fall between samples. */
void expectStream (const std::vector<Heard>& heard, const std::vector<Heard>& expected, int64_t tolerance = 0)
{
    ASSERT_EQ (heard.size(), expected.size()) << "heard " << testing::PrintToString (heard) << "\nexpected "
                                              << testing::PrintToString (expected);
    for (size_t i = 0; i < heard.size(); ++i)
    {
        const auto& h = heard[i];
        const auto& e = expected[i];
        const auto sameVelocity = ! e.on || h.velocity == e.velocity;
        EXPECT_TRUE (h.on == e.on && h.note == e.note && h.channel == e.channel && sameVelocity
                     && std::abs (h.sample - e.sample) <= tolerance)
            << "event " << i << ": heard " << h << ", expected " << e;
    }
}

//==============================================================================
juce::MidiMessage on (int note, int channel = 1) { return juce::MidiMessage::noteOn (channel, note, (uint8_t) 100); }
juce::MidiMessage off (int note) { return juce::MidiMessage::noteOff (1, note); }

using Events = std::vector<std::pair<juce::MidiMessage, int>>;

Events held (const std::vector<int>& chord)
{
    Events events;
    for (const auto note : chord)
        events.push_back ({ on (note), 0 });
    return events;
}

/** A Processor under a host of the test's: a timeline in samples that runs
    while playing, may loop, jump and leave out tempo or position. What comes
    out is kept against the samples processed so far. */
struct HostRig
{
    explicit HostRig (int blockToUse) : blockSize (blockToUse)
    {
        processor.setPlayHead (&host);
        processor.prepareToPlay (sampleRate, blockSize);
        audio.setSize (2, blockSize);
    }

    State& state() { return processor.getState(); }
    Orv::Sequencer::LiveControl& live() { return *state().sequencer.liveSlots.live; }

    void setPattern (int index, const std::vector<DrawnStep>& steps)
    {
        auto& sequencer = state().sequencer;
        auto& list = sequencer.patterns[(size_t) index]->sequence.steps;
        list.clear();
        for (size_t i = 0; i < steps.size(); ++i)
        {
            auto step = Orv::Testing::makeStep ((double) i / stepsPerPattern, steps[i].gate / stepsPerPattern, steps[i].row);
            step.event.velocity = steps[i].velocity;
            step.event.channel = steps[i].channel;
            list.push_back (step);
        }
        sequencer.rebuild();
    }

    void block (const Events& events = {})
    {
        const auto perQuarter = samplesPerQuarterAt (bpm);
        const auto looped = loopEnd > 0 ? song % loopEnd : song;
        const auto hostTime = timeStepsBack ? looped : song;
        const auto ppq = (double) looped / perQuarter;

        host.position = {};
        if (givesPosition)
        {
            auto info = playing ? FakeHostPlayHead::playing (hostTime, ppq, bpm) : FakeHostPlayHead::stopped (hostTime, ppq, bpm);
            if (! givesTempo)
                info.setBpm ({});
            if (loopEnd > 0)
            {
                info.setLoopPoints (juce::AudioPlayHead::LoopPoints { 0.0, (double) loopEnd / perQuarter });
                info.setIsLooping (true);
            }
            host.position = info;
        }

        midi.clear();
        for (const auto& [message, at] : events)
            midi.addEvent (message, at);

        processor.processBlock (audio, midi);

        for (const auto event : midi)
            if (const auto m = event.getMessage(); m.isNoteOnOrOff())
                heard.push_back ({ m.isNoteOn(), m.getNoteNumber(), m.isNoteOn() ? (int) m.getVelocity() : 0,
                                   m.getChannel(), elapsed + event.samplePosition });

        elapsed += blockSize;
        if (playing)
            song += blockSize;
    }

    /** Blocks until the host's timeline has reached `until`. */
    void playUntil (int64_t until)
    {
        while (song < until)
            block();
    }

    /** Blocks until `until` samples have been processed in all. */
    void runUntil (int64_t until)
    {
        while (elapsed < until)
            block();
    }

    FakeHostPlayHead host;
    Processor processor;
    juce::AudioBuffer<float> audio;
    juce::MidiBuffer midi;
    const int blockSize;

    double bpm = hostTempo;
    bool playing = true;
    bool givesPosition = true;
    bool givesTempo = true;
    /** The host's timeline, in samples. */
    int64_t song = 0;
    /** A host loop from 0 to here, in samples, with its loop points told;
        0 for none. */
    int64_t loopEnd = 0;
    /** Whether the host's sample time steps back with its looped position. */
    bool timeStepsBack = true;

    int64_t elapsed = 0;
    std::vector<Heard> heard;
};

const std::vector<int> chordCEG { 60, 64, 67 };
} // namespace

//==============================================================================
TEST (ArpTiming, ChordsOfOneToFiveNotesPlayEachRowAsItsNoteWithTheStepsVelocityOnChannelOne)
{
    // Velocities and channels cycle through the steps; the channel a step is
    // drawn on never reaches the output.
    constexpr float velocities[] = { 0.8f, 0.5f, 1.0f, 0.0f, 0.3f };
    constexpr int channels[] = { 1, 5, 16 };

    struct Case
    {
        std::vector<int> chord;
        std::vector<int> rows;
        int blockSize;
    };
    const Case cases[] = {
        { { 60 }, { 64, 65, 63, 62, 66, 69, 61, 64 }, 512 }, // row 69 folds from 120 down to 84
        { { 64, 60 }, { 64, 65, 66, 63, 62, 61, 60, 67 }, 100 },
        { { 55, 48, 52 }, { 58, 59, 60, 61, 62, 63, 64, 65, 66, 67, 68, 69 }, 7 },
        { { 60, 62, 65, 69 }, { 69, 68, 67, 66, 65, 64, 63, 62, 61, 60, 59, 58 }, 4096 },
        { { 60, 62, 64, 67, 69 }, { 58, 59, 60, 61, 62, 63, 64, 65, 66, 67, 68, 69, 64, 64, 63, 58 }, 512 },
    };

    for (const auto& c : cases)
    {
        SCOPED_TRACE (testing::Message() << c.chord.size() << " held, blocks of " << c.blockSize);

        auto steps = stepsOnRows (c.rows);
        for (size_t i = 0; i < steps.size(); ++i)
        {
            steps[i].velocity = velocities[i % std::size (velocities)];
            steps[i].channel = channels[i % std::size (channels)];
        }

        HostRig rig (c.blockSize);
        rig.setPattern (0, steps);
        rig.block (held (c.chord));
        rig.playUntil (samplesPerPattern + 2 * (int64_t) (stepQuarters * samplesPerQuarter));

        // A step time on a block's last sample may read one sample late: the
        // position there is summed from the block's start and can fall just
        // short of the step.
        expectStream (rig.heard,
                      joined ({ pass (steps, c.chord, 0), pass (steps, c.chord, samplesPerPattern) }, rig.elapsed),
                      1);
    }
}

TEST (ArpTiming, RetriggerRestartsThePatternAtTheNextBoundaryAfterANoteOn)
{
    constexpr int blockSize = 500; // divides a quarter: the boundary opens a block
    const auto quantizeSamples = (int64_t) (ArpSettings::quantizeLengthFor (ArpSettings::defaultQuantize) * samplesPerQuarter);
    const auto pressedAt = 3 * quantizeSamples / 2 + 123;
    const auto boundary = 2 * quantizeSamples;
    const auto steps = cyclingThreeRows();
    const std::vector<int> chord { 48, 52, 55 };

    for (const auto retrigger : { false, true })
    {
        SCOPED_TRACE (retrigger ? "retrigger on" : "retrigger off");
        HostRig rig (blockSize);
        *rig.state().arp.retrigger = retrigger;
        rig.setPattern (0, steps);

        rig.block (held (chord));
        rig.playUntil (pressedAt - pressedAt % blockSize);
        // A note above the chord: the rows the pattern uses keep their notes.
        rig.block ({ { on (67), (int) (pressedAt % blockSize) } });
        rig.playUntil (boundary + samplesPerPattern + 3 * quantizeSamples);

        const auto firstOrigin = retrigger ? boundary : samplesPerPattern;
        expectStream (rig.heard,
                      joined ({ joined ({ pass (steps, chord, 0) }, firstOrigin), pass (steps, chord, firstOrigin),
                                pass (steps, chord, firstOrigin + samplesPerPattern) },
                              rig.elapsed));
    }
}

TEST (ArpTiming, SwingMovesTheOffBeatsOfItsReferenceAndLeavesItsBeats)
{
    // 50% is 0.625 of the control: half a period lands at 0.625 of it.
    constexpr double swingMiddle = (50.0 + 200.0) / 400.0;
    const auto exponent = std::log (swingMiddle) / std::log (0.5);

    struct Case
    {
        const char* reference;
        double periodQuarters;
    };
    const Case cases[] = { { "1/8", 0.5 }, { "1/4", 1.0 }, { "1/2", 2.0 } };
    const auto steps = cyclingThreeRows();

    for (const auto& c : cases)
    {
        SCOPED_TRACE (c.reference);
        HostRig rig (512);
        auto& transport = rig.state().transport;
        juce::AudioProcessorParameter& swing = *transport.swing;
        juce::AudioProcessorParameter& swingRef = *transport.swingRef;
        swing.setValue (swing.getValueForText ("50%"));
        swingRef.setValue (swingRef.getValueForText (c.reference));
        rig.setPattern (0, steps);

        rig.block (held (chordCEG));
        rig.playUntil (samplesPerPattern + samplesPerPattern / 2);

        const auto p = c.periodQuarters;
        const Bend bend = [p, exponent] (double t) {
            const auto start = std::floor (t / p) * p;
            return start + p * std::pow ((t - start) / p, exponent);
        };
        expectStream (rig.heard,
                      joined ({ pass (steps, chordCEG, 0, patternQuarters, samplesPerQuarter, bend),
                                pass (steps, chordCEG, samplesPerPattern, patternQuarters, samplesPerQuarter, bend) },
                              rig.elapsed),
                      1);
    }
}

TEST (ArpTiming, AHostLoopEndsAllNotesAtTheWrapAndThePatternPlaysOnFromThere)
{
    // The loop is half the pattern; step 7 would last past its end.
    constexpr double loopQuarters = patternQuarters / 2;
    constexpr int stepAcrossTheWrap = 7;
    const auto loopSamples = (int64_t) (loopQuarters * samplesPerQuarter);

    // The host's sample time runs on (no jump seen) or steps back with the
    // position (a jump). With 600-sample blocks a block starts exactly at the
    // loop's start; with 512 the loop's end falls inside a block, which the
    // host does not split.
    struct Case
    {
        const char* host;
        bool timeStepsBack;
        int blockSize;
    };
    const Case cases[] = { { "time runs on", false, 600 }, { "time steps back", true, 600 },
                           { "time runs on, wrap inside a block", false, 512 },
                           { "time steps back, wrap inside a block", true, 512 } };

    auto steps = cyclingThreeRows();
    steps[stepAcrossTheWrap].gate = 2.0;

    for (const auto& c : cases)
    {
        SCOPED_TRACE (c.host);
        HostRig rig (c.blockSize);
        rig.loopEnd = loopSamples;
        rig.timeStepsBack = c.timeStepsBack;
        rig.setPattern (0, steps);

        rig.block (held (chordCEG));
        rig.runUntil (2 * loopSamples + loopSamples / 2);

        expectStream (rig.heard,
                      joined ({ pass (steps, chordCEG, 0, loopQuarters), pass (steps, chordCEG, loopSamples, loopQuarters),
                                pass (steps, chordCEG, 2 * loopSamples, loopQuarters) },
                              rig.elapsed));
    }
}

TEST (ArpTiming, AForwardJumpRealignsThePatternToTheSongAndCancelsAQueuedSwitch)
{
    constexpr int blockSize = 500;
    const auto quarter = (int64_t) samplesPerQuarter;
    const auto sixteenth = quarter / 4;
    const auto steps = cyclingThreeRows();

    HostRig rig (blockSize);
    rig.setPattern (0, stepsOnRows (std::vector<int> (stepsPerPattern, 64)));
    rig.setPattern (1, steps);
    rig.setPattern (2, stepsOnRows (std::vector<int> (stepsPerPattern, 66)));

    // Slot 1 from the first beat on: its pattern now counts from there.
    rig.block (held (chordCEG));
    rig.playUntil (quarter / 2);
    rig.block ({ { on (Keyswitches::notes[1]), 10 }, { off (Keyswitches::notes[1]), 20 } });
    rig.playUntil (quarter + blockSize);
    ASSERT_EQ (rig.live().active.load(), 1);

    // Slot 2 asked for in the second beat, between two notes.
    rig.playUntil (6 * sixteenth + 4000);
    rig.block ({ { on (Keyswitches::notes[2]), 0 } });
    ASSERT_EQ (rig.live().queued.load(), 2);
    ASSERT_TRUE (rig.heard.back().on == false) << "nothing may sound at the jump";

    // The host jumps to a thousand samples into the third sixteenth of a
    // pattern's second half, 10.5 quarters in.
    const auto target = 10 * quarter + 2 * sixteenth + 1000;
    rig.song = target;
    const auto jumpedAt = rig.elapsed;
    rig.heard.clear();
    rig.block();
    EXPECT_EQ (rig.live().queued.load(), -1);
    rig.playUntil (target + 2 * quarter);
    EXPECT_EQ (rig.live().active.load(), 1) << "the queued switch must not come at the next boundary";

    // Pattern time is the song's again, modulo the pattern: step 10 is caught
    // up at the jump, then the rest follow on the song's grid.
    const auto patternStart = 8 * quarter;
    auto expected = pass (steps, chordCEG, patternStart);
    expected.erase (expected.begin(), std::find_if (expected.begin(), expected.end(), [&] (const Heard& h) {
                        return h.on && h.sample >= target - 1000;
                    }));
    expected.front().sample = target;
    const auto next = pass (steps, chordCEG, patternStart + samplesPerPattern);
    expected.insert (expected.end(), next.begin(), next.end());

    for (auto& h : expected)
        h.sample += jumpedAt - target;
    expectStream (rig.heard, joined ({ expected }, rig.elapsed));
}

TEST (ArpTiming, WithoutATempoFromTheHostStepsAreSpacedAtOneHundredBeatsPerMinute)
{
    constexpr double fallbackTempo = 100.0;
    const auto perQuarter = samplesPerQuarterAt (fallbackTempo);

    enum class Host { none, noPosition, noTempo };
    struct Case
    {
        const char* name;
        Host host;
    };
    const Case cases[] = {
        { "no play head", Host::none },
        { "a play head without a position", Host::noPosition },
        { "a playing host without a tempo", Host::noTempo },
    };
    const auto steps = cyclingThreeRows();

    for (const auto& c : cases)
    {
        SCOPED_TRACE (c.name);
        HostRig rig (512);
        if (c.host == Host::none)
            rig.processor.setPlayHead (nullptr);
        rig.givesPosition = c.host == Host::noTempo;
        rig.givesTempo = false;
        rig.bpm = fallbackTempo; // how the host's own positions move
        rig.setPattern (0, steps);

        rig.block (held (chordCEG));
        const auto patternSamples = (int64_t) (patternQuarters * perQuarter);
        rig.runUntil (patternSamples + patternSamples / 4);

        expectStream (rig.heard,
                      joined ({ pass (steps, chordCEG, 0, patternQuarters, perQuarter),
                                pass (steps, chordCEG, patternSamples, patternQuarters, perQuarter) },
                              rig.elapsed),
                      1);
    }
}

#include "synth/SampleList.h"
#include "synth/Synth.h"
#include "synth/WavetableParams.h"

#include "support/AllocationCounter.h"
#include "synth/SynthTestHelpers.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{
using namespace Orv::Audio::WavetableSynth;
using Orv::Testing::amplitudeAt;
using Orv::Testing::measureFrequency;

constexpr double rate = 48000.0;
constexpr int blockSize = 128;
constexpr int fullBend = 16383;

/** A volume's linear gain, through JUCE's assignment, which the volume
    class hides. */
void setGain (Orv::Audio::VolumeParameter& volume, float gain) { static_cast<juce::AudioParameterFloat&> (volume) = gain; }

double semitones (double ratio) { return 12.0 * std::log2 (ratio); }
double frequencyOf (double note) { return 440.0 * std::pow (2.0, (note - 69.0) / 12.0); }

int waveIndex (const char* name)
{
    const auto index = SampleList::getWaveNames().indexOf (name);
    EXPECT_GE (index, 0) << name;
    return index;
}

/** A synth and a sound as the processor would hold them: one oscillator on
    the sine, the sub silent, default filter and envelope. */
struct Rig
{
    explicit Rig (int numVoices = 4) : synth (numVoices)
    {
        synth.prepare (2, rate, blockSize);
        osc (0).type->setValueNotifyingHost (osc (0).type->convertTo0to1 ((float) waveIndex ("Sine")));
        *osc (0).enable = true;
        setGain (*params.sub.subVolume, 0.0f);
    }

    OSCParams& osc (int index) { return params.oscillators.osc[(size_t) index]; }

    /** Plays blocks until numSamples are done; midi's events are placed on
        the whole span. */
    juce::AudioBuffer<float> play (const juce::MidiBuffer& midi, int numSamples)
    {
        juce::AudioBuffer<float> out (2, numSamples);
        juce::AudioBuffer<float> block (2, blockSize);
        for (int start = 0; start < numSamples; start += blockSize)
        {
            juce::MidiBuffer slice;
            slice.addEvents (midi, start, blockSize, -start);
            synth.beginBlock (params);
            synth.renderNextBlock (block, slice);
            for (int c = 0; c < 2; ++c)
                out.copyFrom (c, start, block, c, 0, juce::jmin (blockSize, numSamples - start));
        }
        return out;
    }

    juce::AudioBuffer<float> play (std::initializer_list<juce::MidiMessage> atZero, int numSamples)
    {
        juce::MidiBuffer midi;
        for (const auto& m : atZero)
            midi.addEvent (m, 0);
        return play (midi, numSamples);
    }

    Params params;
    Synth synth;
};

juce::MidiMessage on (int note) { return juce::MidiMessage::noteOn (1, note, (juce::uint8) 127); }

/** Frequency of a channel, leaving out the first block's onset. */
double frequencyOf (const juce::AudioBuffer<float>& out, int channel = 0)
{
    return measureFrequency (out.getReadPointer (channel) + blockSize, out.getNumSamples() - blockSize, rate);
}

//==============================================================================
TEST (WavetableSynth, PitchFollowsTheNoteTuneOctaveAndPitchBend)
{
    const struct
    {
        int note;
        int octave;
        int tune;
        double expectedHz;
    } cases[] = {
        { 69, 0, 0, 440.0 },
        { 81, 0, 0, 880.0 },
        { 69, 0, 7, frequencyOf (76.0) },
        { 69, -1, 0, 220.0 },
        { 33, 3, 24, frequencyOf (93.0) }, // 60 semitones up
    };

    for (const auto& c : cases)
    {
        Rig rig;
        *rig.osc (0).octave = c.octave;
        *rig.osc (0).tune = c.tune;
        const auto out = rig.play ({ on (c.note) }, (int) rate / 2);
        EXPECT_NEAR (semitones (frequencyOf (out) / c.expectedHz), 0.0, 1.0e-3) << c.note << " " << c.octave << " " << c.tune;
        EXPECT_NEAR (semitones (frequencyOf (out, 1) / c.expectedHz), 0.0, 1.0e-3);
    }

    // A full bend lifts every sounding voice by the two semitones of the range.
    Rig rig;
    rig.play ({ on (69), on (57) }, blockSize);
    const auto bent = rig.play ({ juce::MidiMessage::pitchWheel (1, fullBend) }, (int) rate / 2);
    EXPECT_NEAR (semitones (frequencyOf (bent) / 440.0), 2.0, 2.0e-3) << "both notes together read near the upper one's period";
    for (int i = 0; i < 2; ++i)
    {
        const auto& voice = rig.synth.getVoice (i);
        EXPECT_NEAR (semitones (voice.frequency / frequencyOf ((double) voice.getCurrentlyPlayingNote().initialNote)), 2.0, 1.0e-4);
    }
}

TEST (WavetableSynth, UnisonSpreadDetunesAndPansThePairApart)
{
    Rig rig;
    *rig.osc (0).unison->unison = 2;
    *rig.osc (0).unison->unisonSpread = 1.0f;
    const auto out = rig.play ({ on (69) }, (int) rate / 2);

    EXPECT_NEAR (semitones (frequencyOf (out, 0) / 440.0), -0.1, 2.0e-3);
    EXPECT_NEAR (semitones (frequencyOf (out, 1) / 440.0), 0.1, 2.0e-3);
}

TEST (WavetableSynth, WithEveryOscillatorOffOnlyTheSubSoundsOnBothChannels)
{
    for (const int subOctave : { -2, -1, 0 })
    {
        Rig rig;
        *rig.osc (0).enable = false;
        setGain (*rig.params.sub.subVolume, 1.0f);
        *rig.params.sub.subOctave = subOctave;
        const auto out = rig.play ({ on (69) }, (int) rate / 2);

        const auto hz = 440.0 * std::pow (2.0, subOctave);
        EXPECT_NEAR (semitones (frequencyOf (out) / hz), 0.0, 1.0e-3) << subOctave;
        // 20 dB below the oscillators at 0 dB, full velocity, under an open filter.
        EXPECT_NEAR (amplitudeAt (out.getReadPointer (0) + blockSize, (int) rate / 4, hz, rate), 0.1, 2.0e-3) << subOctave;
        for (int i = 0; i < out.getNumSamples(); ++i)
            ASSERT_EQ (out.getSample (0, i), out.getSample (1, i)) << i;
    }
}

TEST (WavetableSynth, CutoffAtItsTopLeavesTheFilterOutJustBelowItKeyTracks)
{
    const auto render = [] (float normalisedCutoff, float keyTracking) {
        Rig rig;
        rig.osc (0).type->setValueNotifyingHost (rig.osc (0).type->convertTo0to1 ((float) waveIndex ("Saw")));
        rig.params.filter.cutoff->setValueNotifyingHost (normalisedCutoff);
        *rig.params.filter.keyTracking = keyTracking;
        return rig.play ({ on (100) }, 16 * blockSize);
    };
    const auto sameSound = [] (const juce::AudioBuffer<float>& a, const juce::AudioBuffer<float>& b) {
        for (int c = 0; c < 2; ++c)
            for (int i = 0; i < a.getNumSamples(); ++i)
                if (a.getSample (c, i) != b.getSample (c, i))
                    return false;
        return true;
    };

    EXPECT_TRUE (sameSound (render (1.0f, 0.0f), render (1.0f, 1.0f)));
    EXPECT_FALSE (sameSound (render (0.998f, 0.0f), render (0.998f, 1.0f)));

    Rig open;
    open.osc (0).type->setValueNotifyingHost (open.osc (0).type->convertTo0to1 ((float) waveIndex ("Saw")));
    *open.params.filter.enable = false;
    EXPECT_TRUE (sameSound (render (1.0f, 1.0f), open.play ({ on (100) }, 16 * blockSize)));
}

//==============================================================================
/** A minute of busy playing on a full synth: chords past the voice count,
    releases and retakes, and pitch bends. */
juce::MidiBuffer busyPlaying (int numBlocks)
{
    juce::MidiBuffer midi;
    juce::Random random (7);
    for (int b = 0; b < numBlocks; ++b)
    {
        const auto at = b * blockSize;
        if (b % 4 == 0)
            for (int n = 0; n < 9; ++n)
                midi.addEvent (on (24 + random.nextInt (80)), at + random.nextInt (blockSize));
        if (b % 4 == 2)
            for (int n = 24; n < 104; n += 1 + random.nextInt (3))
                midi.addEvent (juce::MidiMessage::noteOff (1, n), at + random.nextInt (blockSize));
        if (b % 3 == 0)
            midi.addEvent (juce::MidiMessage::pitchWheel (1, random.nextInt (fullBend + 1)), at + random.nextInt (blockSize));
    }
    return midi;
}

TEST (WavetableSynth, AFullSynthAllocatesNothingWhileNotesComeAndGo)
{
    constexpr int numBlocks = 400;
    Rig rig (Synth::defaultNumVoices);
    for (int k = 0; k < 4; ++k)
    {
        *rig.osc (k).enable = true;
        *rig.osc (k).unison->unison = 2;
    }
    setGain (*rig.params.sub.subVolume, 1.0f);
    *rig.params.adsr.release = 0.5f;

    const auto midi = busyPlaying (numBlocks);
    juce::AudioBuffer<float> block (2, blockSize);
    std::vector<juce::MidiBuffer> slices ((size_t) numBlocks);
    for (int b = 0; b < numBlocks; ++b)
        slices[(size_t) b].addEvents (midi, b * blockSize, blockSize, -b * blockSize);

    int64_t ours = 0;
    {
        Orv::Testing::AllocationCounter counter;
        for (const auto& slice : slices)
        {
            rig.synth.beginBlock (rig.params);
            rig.synth.renderNextBlock (block, slice);
        }
        ours = counter.getCount();
    }
    ASSERT_TRUE (rig.synth.isAnyVoiceActive());
    // Notes coming and going, bends and stealing included: the note
    // tracking keeps its notes in fixed storage, so nothing at all.
    EXPECT_EQ (ours, 0);

    // Sounding with no events at all: nothing.
    Orv::Testing::AllocationCounter counter;
    for (int b = 0; b < 50; ++b)
    {
        rig.synth.beginBlock (rig.params);
        rig.synth.renderNextBlock (block, {});
    }
    EXPECT_EQ (counter.getCount(), 0);

    for (int c = 0; c < 2; ++c)
        EXPECT_TRUE (std::isfinite (block.getMagnitude (c, 0, blockSize)));
}
} // namespace

#include "synth/DefaultVoiceStealer.h"
#include "synth/MPESynth.h"
#include "synth/MPEVoiceWithADSR.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{
constexpr double rate = 48000.0;
constexpr int blockSize = 128;
constexpr float velocity = 1.0f;

/** A voice whose sound is a constant 1, so that its output is its envelope. */
class LevelVoice : public Orv::Audio::MPEVoiceWithADSR
{
public:
    void renderVoice (juce::AudioBuffer<float>& block) override
    {
        for (int c = 0; c < block.getNumChannels(); ++c)
            juce::FloatVectorOperations::fill (block.getWritePointer (c), 1.0f, block.getNumSamples());
    }
};

struct Envelope
{
    float attack = 0.0f;
    float decay = 0.0f;
    float sustain = 1.0f;
    float release = 1.0f;
};

/** The synth with the processor's part played by the test: the envelope's
    times are written into every voice at each block. */
class LevelSynth : public Orv::Audio::MPESynth<LevelVoice, Orv::Audio::DefaultVoiceStealer>
{
public:
    explicit LevelSynth (int numberOfVoices, Envelope e = {}) : MPESynth (numberOfVoices), envelope (e)
    {
        prepare (1, rate, blockSize);
    }

    /** Renders blocks of blockSize until numSamples are done, the events of
        midi placed on the whole span, and returns the mono output. */
    std::vector<float> play (const juce::MidiBuffer& midi, int numSamples)
    {
        std::vector<float> out;
        juce::AudioBuffer<float> buffer (1, blockSize);
        for (int start = 0; start < numSamples; start += blockSize)
        {
            juce::MidiBuffer slice;
            for (const auto m : midi)
                if (m.samplePosition >= start && m.samplePosition < start + blockSize)
                    slice.addEvent (m.getMessage(), m.samplePosition - start);

            for (int i = 0; i < numVoices; ++i)
                voices[i].setEnvelope (envelope.attack, envelope.decay, envelope.sustain, envelope.release);
            renderNextBlock (buffer, slice);
            out.insert (out.end(), buffer.getReadPointer (0), buffer.getReadPointer (0) + blockSize);
        }
        return out;
    }

    std::vector<float> play (std::initializer_list<juce::MidiMessage> atZero, int numSamples)
    {
        juce::MidiBuffer midi;
        for (const auto& m : atZero)
            midi.addEvent (m, 0);
        return play (midi, numSamples);
    }

    /** The index of the voice playing a note, or -1. */
    int voiceOf (int note) const
    {
        for (int i = 0; i < numVoices; ++i)
            if (voices[i].isActive() && voices[i].getCurrentlyPlayingNote().initialNote == note)
                return i;
        return -1;
    }

    Envelope envelope;
};

juce::MidiMessage on (int note) { return juce::MidiMessage::noteOn (1, note, velocity); }
juce::MidiMessage off (int note) { return juce::MidiMessage::noteOff (1, note); }

int seconds (double s) { return (int) (s * rate); }

//==============================================================================
TEST (Envelope, AttackReachesFullLevelAtItsTimeAndHoldsAtSustainOne)
{
    LevelSynth synth (1, { 0.005f, 1.0f, 1.0f, 0.01f });
    const auto out = synth.play ({ on (60) }, seconds (0.5));

    constexpr int attackSamples = 240; // 0.005 s
    EXPECT_NEAR (out[0], 1.0f / attackSamples, 1.0e-6f);
    EXPECT_NEAR (out[attackSamples / 2 - 1], 0.5f, 1.0e-5f);
    EXPECT_LT (out[attackSamples - 3], 1.0f);
    for (size_t i = attackSamples; i < out.size(); ++i)
        ASSERT_EQ (out[i], 1.0f) << i;
}

TEST (Envelope, ReleaseFromSustainFallsToSilenceInTheReleaseTime)
{
    LevelSynth synth (1, { 0.005f, 0.005f, 0.5f, 1.0f });
    juce::MidiBuffer midi;
    midi.addEvent (on (60), 0);
    const auto noteOff = seconds (0.1);
    midi.addEvent (off (60), noteOff);
    const auto out = synth.play (midi, seconds (1.2));

    EXPECT_EQ (out[(size_t) noteOff - 1], 0.5f);
    EXPECT_NEAR (out[(size_t) (noteOff + seconds (0.5))], 0.25f, 1.0e-3f);
    // A millisecond of slack for the float steps adding up.
    EXPECT_GT (out[(size_t) (noteOff + seconds (0.999))], 0.0f);
    EXPECT_EQ (out[(size_t) (noteOff + seconds (1.0) + 1)], 0.0f);
    EXPECT_FALSE (synth.isAnyVoiceActive()) << "a voice whose envelope ended is free";
}

TEST (Envelope, AReleaseFallsAtTheSustainRateFromTheBlockAfterTheNoteOff)
{
    // Released at about 0.1 while attacking: after the block of the note
    // off, the level falls at sustain / release per second, so the last 0.1
    // takes about 0.2 s rather than the 1 s of the release time.
    LevelSynth synth (1, { 1.0f, 1.0f, 0.5f, 1.0f });
    juce::MidiBuffer midi;
    midi.addEvent (on (60), 0);
    const auto noteOff = seconds (0.1);
    midi.addEvent (off (60), noteOff);
    const auto out = synth.play (midi, seconds (0.5));

    EXPECT_NEAR (out[(size_t) noteOff - 1], 0.1f, 1.0e-3f);
    EXPECT_GT (out[(size_t) (noteOff + seconds (0.19))], 0.0f);
    EXPECT_EQ (out[(size_t) (noteOff + seconds (0.21))], 0.0f);
}

//==============================================================================
TEST (MPESynth, NoteStartsFallOnTheirSampleExceptWithin32SamplesOfTheLastSplit)
{
    const struct
    {
        std::vector<int> positions;
        std::vector<int> starts;
    } cases[] = {
        { { 10, 20, 50 }, { 10, 10, 50 } },
        { { 0, 31, 33 }, { 0, 31, 31 } }, // the first split of a block may be short
        { { 5, 36, 37 }, { 5, 5, 37 } },
    };

    for (const auto& c : cases)
    {
        LevelSynth synth (4);
        juce::MidiBuffer midi;
        for (size_t i = 0; i < c.positions.size(); ++i)
            midi.addEvent (on (60 + (int) i), c.positions[i]);
        const auto out = synth.play (midi, blockSize);

        // With instant envelopes the output counts the sounding voices.
        for (size_t i = 0; i < c.starts.size(); ++i)
        {
            const auto start = (size_t) c.starts[i];
            const auto before = (float) std::count_if (c.starts.begin(), c.starts.end(), [&] (int s) { return (size_t) s < start; });
            const auto from = (float) std::count_if (c.starts.begin(), c.starts.end(), [&] (int s) { return (size_t) s <= start; });
            if (start > 0)
            {
                EXPECT_EQ (out[start - 1], before) << "event at " << c.positions[i];
            }
            EXPECT_EQ (out[start], from) << "event at " << c.positions[i];
        }
    }
}

TEST (MPESynth, ANoteWithNoFreeVoiceTakesTheOldestThatIsNeitherLowestNorHighest)
{
    constexpr int numVoices = 64;
    const Envelope longRelease { 0.0f, 0.0f, 1.0f, 10.0f };

    // The two oldest notes are the lowest and highest; the third is the victim.
    std::vector<int> notes { 30, 100, 50 };
    for (int n = 31; notes.size() < numVoices; ++n)
        if (n != 50)
            notes.push_back (n);

    {
        LevelSynth synth (numVoices, longRelease);
        juce::MidiBuffer midi;
        for (size_t i = 0; i < notes.size(); ++i)
            midi.addEvent (on (notes[i]), (int) i);
        synth.play (midi, blockSize);

        const auto victim = synth.voiceOf (50);
        synth.play ({ on (120) }, blockSize);
        EXPECT_EQ (synth.voiceOf (120), victim);
        EXPECT_EQ (synth.voiceOf (50), -1);
        EXPECT_NE (synth.voiceOf (30), -1);
        EXPECT_NE (synth.voiceOf (100), -1);
    }
    {
        // A released tail goes before any held key, however new it is.
        LevelSynth synth (numVoices, longRelease);
        juce::MidiBuffer midi;
        for (size_t i = 0; i < notes.size(); ++i)
            midi.addEvent (on (notes[i]), (int) i);
        midi.addEvent (off (notes.back()), blockSize);
        synth.play (midi, 2 * blockSize);

        const auto tail = synth.voiceOf (notes.back());
        ASSERT_NE (tail, -1) << "the released note still sounds";
        synth.play ({ on (120) }, blockSize);
        EXPECT_EQ (synth.voiceOf (120), tail);
        EXPECT_NE (synth.voiceOf (50), -1);
    }
}

TEST (MPESynth, ARepeatedNoteRetakesItsReleasedVoiceRisingFromItsLevel)
{
    // 62 is the older tail, so only the rule for a repeated note takes 64's
    // own voice.
    LevelSynth synth (4, { 1.0f, 0.0f, 1.0f, 1.0f });
    synth.play ({ on (60), on (62), on (64), on (67) }, seconds (0.1));
    const auto voice = synth.voiceOf (64);
    synth.play ({ off (62) }, blockSize);
    synth.play ({ off (64) }, seconds (0.05));

    const auto levelBefore = synth.getVoice (voice).value;
    ASSERT_GT (levelBefore, 0.01f);

    synth.play ({ on (64) }, blockSize);
    EXPECT_EQ (synth.voiceOf (64), voice);
    EXPECT_NE (synth.voiceOf (62), -1);
    EXPECT_GT (synth.getVoice (voice).value, levelBefore) << "rises from where it was, not from 0";
    EXPECT_LT (synth.getVoice (voice).value, levelBefore + 0.01f);
}

TEST (MPESynth, TheDesktopFileSetsTheNumberOfVoices)
{
    using Synth = Orv::Audio::MPESynth<LevelVoice, Orv::Audio::DefaultVoiceStealer>;
    const auto desktop = juce::File::getSpecialLocation (juce::File::userDesktopDirectory);
    const auto file = desktop.getChildFile ("Voices.txt");

    const struct
    {
        const char* text;
        int expected;
    } cases[] = { { "8", 8 }, { "0", 0 }, { "-3", 0 }, { nullptr, Synth::defaultNumVoices } };

    for (const auto& c : cases)
    {
        file.deleteRecursively();
        if (c.text != nullptr)
        {
            ASSERT_TRUE (desktop.createDirectory() && file.replaceWithText (c.text));
        }

        Synth synth;
        EXPECT_EQ (synth.getNumVoices(), c.expected) << (c.text != nullptr ? c.text : "no file");

        // No voices is silence, not a failure.
        synth.prepare (2, rate, blockSize);
        juce::AudioBuffer<float> buffer (2, blockSize);
        juce::MidiBuffer midi;
        midi.addEvent (on (60), 0);
        synth.renderNextBlock (buffer, midi);
        EXPECT_EQ (synth.isAnyVoiceActive(), c.expected > 0);
    }

    file.createDirectory();
    EXPECT_EQ (Synth::readNumVoicesOverride(), Synth::defaultNumVoices) << "a folder of that name is not the file";
    file.deleteRecursively();
}
} // namespace

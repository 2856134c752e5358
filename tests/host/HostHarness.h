#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <memory>
#include <vector>

namespace Orv::Testing
{
/** A host's play head whose answer the test sets. No value means the host
    gives no position at all. */
class FakePlayHead : public juce::AudioPlayHead
{
public:
    juce::Optional<PositionInfo> getPosition() const override { return position; }

    /** A playing transport at `ppq`, `bpm` and `sampleTime`, 4/4. */
    void setPlaying (double ppq, double bpm, int64_t sampleTime, bool playing = true);
    /** The host stops answering. */
    void clear() { position = {}; }

    /** Moves a playing transport on by a block. The position is worked out
        from where play started, as hosts do, not summed block by block, so
        that steps on whole quarters land on their exact samples. */
    void advance (int numSamples, double sampleRate);

    juce::Optional<PositionInfo> position;

private:
    double startPpq = 0.0;
    int64_t startSample = 0;
};

/** One MIDI event as the host received it, in samples from the first block. */
struct TimedEvent
{
    juce::MidiMessage message;
    int64_t time = 0;
};

/** Loads the built Halvane VST3 bundle the way a DAW does, through JUCE's own
    VST3 hosting, and plays it block by block. Message thread only. */
class HostedHalvane
{
public:
    static constexpr double defaultSampleRate = 48000.0;
    static constexpr int defaultBlockSize = 256;

    HostedHalvane (double sampleRate = defaultSampleRate, int blockSize = defaultBlockSize);
    ~HostedHalvane();

    juce::AudioPluginInstance& plugin() { return *instance; }
    FakePlayHead& playHead() { return hostPlayHead; }

    /** Runs one block of `numSamples` with `midiIn` (positions within the
        block), advances the play head if it plays, and returns the block's
        MIDI output. */
    juce::MidiBuffer processBlock (const juce::MidiBuffer& midiIn, int numSamples);
    juce::MidiBuffer processBlock (int numSamples) { return processBlock ({}, numSamples); }

    /** Runs blocks until `totalSamples` have passed, feeding `events` (absolute
        sample times) into the blocks they fall in; collects all output. */
    std::vector<TimedEvent> play (const std::vector<TimedEvent>& events, int64_t totalSamples, int blockSize);

    juce::AudioBuffer<float>& lastAudio() { return audio; }
    int64_t getSamplesPlayed() const { return samplesPlayed; }

    /** Path of the bundle under test. */
    static juce::File getBundle();

private:
    juce::AudioPluginFormatManager formats;
    std::unique_ptr<juce::AudioPluginInstance> instance;
    FakePlayHead hostPlayHead;
    juce::AudioBuffer<float> audio;
    double sampleRate;
    int64_t samplesPlayed = 0;
};
} // namespace Orv::Testing

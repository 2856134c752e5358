#pragma once

#include "synth/Smoother.h"
#include "synth/UnisonRecord.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <array>
#include <vector>

namespace Orv::Audio::WavetableSynth
{
/** One of a voice's four wavetable oscillators: a unison pair of phases that
    read the same table, each panned with equal power and a short pan ramp.
    Owned by its voice; audio thread after prepare, allocates only there. */
class Oscillator
{
public:
    static constexpr double volumeRampSeconds = 0.1;
    static constexpr double panRampSeconds = 0.05;
    static constexpr int maxUnison = 2;

    struct UnisonVoice
    {
        Smoother panSmoother { panRampSeconds };
        /** 0 to 1 through one period of the table. */
        double phase = 0.0;
        double inverseRate = 1.0 / defaultSampleRate;
        std::vector<double> phases;
        double lastPhase = 0.0;
    };

    /** Owner's thread with the audio stopped: sizes the buffers for blocks of
        up to maxBlockSize samples. */
    void prepare (int numChannels, double sampleRate, int maxBlockSize);

    /** Audio thread, at note start: phases to 0, pans and volume jump to
        their values so that a note never sweeps in from the last one. */
    void start (const UnisonRecords& records, float volume) noexcept;

    /** Audio thread. Adds count unison voices of the table into every channel
        of mix (up to the prepared channels), at most maxBlockSize samples.
        Table channels repeat across output channels, so a mono table sounds
        on both sides. */
    void render (const juce::AudioBuffer<float>& table, const UnisonRecords& records, int count,
                 juce::AudioBuffer<float>& mix) noexcept;

    /** Audio thread. Moves the volume ramp over numSamples and applies it to
        the oscillator's own buffer, which has been mixed already: the level
        that is heard is the block's plain Volume, in steps at block edges. */
    void applyVolume (float volume, int numSamples) noexcept;

    juce::AudioBuffer<float> buffer;
    Smoother volumeSmoother { volumeRampSeconds };
    std::array<UnisonVoice, maxUnison> unison;

private:
    static constexpr double defaultSampleRate = 44100.0;

    void readTable (const juce::AudioBuffer<float>& table, const double* phases, int numChannels, int numSamples) noexcept;
    void pan (UnisonVoice& voice, float target, int numSamples) noexcept;
};
} // namespace Orv::Audio::WavetableSynth

#pragma once

#include "synth/DelayFilter.h"
#include "synth/FilteredDelay.h"
#include "synth/Smoother.h"

#include <juce_audio_basics/juce_audio_basics.h>

namespace Orv::Audio::AnalogDelay
{
struct Params;
}

namespace Orv::Audio::Plugins::Halvane
{
/** What follows the synth in the block: the analog delay, the equal-power
    dry/wet mix, the master gain and the meter's level.

    The delay keeps running at Mix 0 so that its line is full when the mix
    is raised. Every gain glides over a tenth of a second; prepare lands the
    glides on their last targets, so the first block after a prepare fades
    in from wherever the previous one left them.

    prepare on the message thread with the audio stopped, process on the
    audio thread. */
class OutputChain
{
public:
    /** The line and the tone filter are stereo. */
    static constexpr int maxChannels = AnalogDelay::DelayFilter::maxChannels;
    static constexpr double rampSeconds = 0.1;
    /** The tempo a synced time assumes when the host gives none. */
    static constexpr double fallbackBpm = 100.0;

    /** Message thread, audio stopped: all the chain's allocation (the dry
        copy, the delay's line), the line cleared and every glide landed.
        Channels beyond maxChannels are not processed. */
    void prepare (int numChannels, double sampleRate, int maxBlockSize);

    /** Audio thread; never blocks, never allocates. Runs the synth's output
        in buffer through delay, mix and master gain in place, reading the
        delay's parameters once for the block. bpm is the host's tempo, or 0
        (or less) when it gives none. A block longer than prepared is run in
        pieces. Channels beyond those prepared are cleared; before any
        prepare the buffer is left alone.

        Returns the level for the meter when measureLevel is set (0
        otherwise): the RMS of the first channel over the block. */
    float process (juce::AudioBuffer<float>& buffer, const AnalogDelay::Params& params, float masterGain,
                   double bpmOrZeroWhenNone, bool measureLevel) noexcept;

    /** Any thread that owns the chain: Analog's cutoff of the loop filter in
        Hz, from 20 kHz at 0 to 100 Hz at 1, 1 kHz in the middle. process
        keeps it below half the sample rate, where the filter stays stable. */
    static float toneCutoffFor (float analog) noexcept;

    /** Any thread that owns the chain: the delay in seconds that the
        parameters ask for at a tempo (0 or less for none). */
    static float delaySecondsFor (const AnalogDelay::Params& params, double bpmOrZeroWhenNone) noexcept;

private:
    void setTargets (const AnalogDelay::Params& params, float masterGain, double bpmOrZeroWhenNone) noexcept;
    void processPiece (float* const* channels, int numChannels, int numSamples) noexcept;

    Filters::FilteredDelay<AnalogDelay::DelayFilter> delay;
    juce::AudioBuffer<float> dryBuffer;
    Smoother drySmoother { rampSeconds };
    Smoother wetSmoother { rampSeconds };
    Smoother masterSmoother { rampSeconds };
    int numPreparedChannels = 0;
    int maxPieceSize = 0;
};
} // namespace Orv::Audio::Plugins::Halvane

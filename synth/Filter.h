#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <array>

namespace Orv::Audio
{
/** A state-variable filter in topology-preserving form: cascaded 12 dB
    stages that share one set of coefficients. A voice runs two low-pass stages
    behind its oscillators, the delay one in its feedback path.

    The coefficients are kept between blocks and recomputed only when cutoff
    or resonance change, since tan() is the costly part and a key-tracked
    cutoff changes once per note. Arithmetic is single precision throughout, in
    a fixed order, so that a render is the same on every build.

    Owned by one voice or the delay; audio thread after prepare, never
    allocates. */
class Filter
{
public:
    enum Type
    {
        lowPass = 0,
        bandPass,
        highPass
    };

    static constexpr int maxChannels = 2;
    static constexpr int maxStages = 2;

    /** Any thread, before use: the stage count and the values the
        coefficients start from, at 44100 Hz until prepared. */
    Filter (int numStages, float initialCutoff, float initialResonance) noexcept;

    /** Audio thread. Cutoff in Hz, resonance as Q (0.7071 is Butterworth);
        the coefficients follow only if either value really changed. A
        cutoff at or past half the sample rate acts as one just below it. */
    void setParameters (float newCutoff, float newResonance) noexcept;

    /** Owner's thread with the audio stopped: clears the state and recomputes
        the coefficients for the rate. */
    void prepare (double newSampleRate) noexcept;

    /** Audio thread. Clears the state; the coefficients stay. */
    void reset() noexcept;

    /** Audio thread. Runs one sample through one stage of one channel. */
    float processSample (int channel, int stage, float input) noexcept;

    /** Audio thread. Filters the first maxChannels channels in place,
        through every stage. */
    void processBlock (juce::AudioBuffer<float>& block) noexcept;

    struct StageState
    {
        float s1 = 0.0f;
        float s2 = 0.0f;
    };

    double sampleRate = defaultSampleRate;
    float g = 0.0f;
    float h = 0.0f;
    float R2 = 0.0f;
    int stages;
    int type = lowPass;
    float cutoff;
    float resonance;
    std::array<std::array<StageState, maxStages>, maxChannels> state {};

private:
    static constexpr double defaultSampleRate = 44100.0;
    /** The highest cutoff, as a fraction of the sample rate, that keeps the
        filter stable. */
    static constexpr float maxCutoffRatio = 0.49f;

    void updateCoefficients() noexcept;
    float tick (StageState& s, float input) const noexcept;
};
} // namespace Orv::Audio

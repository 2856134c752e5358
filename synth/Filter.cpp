#include "synth/Filter.h"

#include <cmath>

namespace Orv::Audio
{
namespace
{
    constexpr float pi = 3.1415927f;
}

Filter::Filter (int numStages, float initialCutoff, float initialResonance) noexcept
    : stages (juce::jlimit (1, maxStages, numStages)),
      cutoff (initialCutoff),
      resonance (initialResonance)
{
    updateCoefficients();
}

void Filter::setParameters (float newCutoff, float newResonance) noexcept
{
    if (newCutoff == cutoff && newResonance == resonance)
        return;

    cutoff = newCutoff;
    resonance = newResonance;
    updateCoefficients();
}

void Filter::prepare (double newSampleRate) noexcept
{
    reset();
    sampleRate = newSampleRate;
    updateCoefficients();
}

void Filter::reset() noexcept
{
    for (auto& channel : state)
        channel.fill ({});
}

void Filter::updateCoefficients() noexcept
{
    // Past half the sample rate tan() turns negative and the filter blows up
    // to NaN, which would then live on in the voice and the delay line: a
    // key-tracked cutoff on a high note, or the delay's bright setting at
    // 32 kHz, would silence the instrument for good. Below the limit the
    // coefficients are exactly the textbook ones.
    const auto limit = maxCutoffRatio * (float) sampleRate;
    const auto effectiveCutoff = juce::jlimit (0.0f, limit, cutoff);
    g = std::tan (effectiveCutoff * pi / (float) sampleRate);
    R2 = 1.0f / resonance;
    h = 1.0f / ((R2 + g) * g + 1.0f);
}

float Filter::tick (StageState& s, float input) const noexcept
{
    const auto drive = input - (R2 + g) * s.s1 - s.s2;

    if (type == lowPass)
    {
        // g * yHP is taken as (g * h) * drive: one multiply fewer on the path
        // every voice takes, and renders compared bit for bit rely on this
        // rounding.
        const auto gTimesHP = (g * h) * drive;
        const auto yBP = s.s1 + gTimesHP;
        s.s1 = yBP + gTimesHP;
        const auto gTimesBP = g * yBP;
        const auto yLP = s.s2 + gTimesBP;
        s.s2 = yLP + gTimesBP;
        return yLP;
    }

    const auto yHP = h * drive;
    const auto yBP = s.s1 + g * yHP;
    s.s1 = yBP + g * yHP;
    const auto yLP = s.s2 + g * yBP;
    s.s2 = yLP + g * yBP;
    return type == bandPass ? yBP : yHP;
}

float Filter::processSample (int channel, int stage, float input) noexcept
{
    return tick (state[(size_t) channel][(size_t) stage], input);
}

void Filter::processBlock (juce::AudioBuffer<float>& block) noexcept
{
    const auto numChannels = juce::jmin (block.getNumChannels(), maxChannels);
    const auto numSamples = block.getNumSamples();
    auto* const* samples = block.getArrayOfWritePointers();

    // Each stage of each channel is its own recursion, so the result is the
    // same in any interleaving; running a stereo pair side by side lets the
    // two chains overlap, and keeping the state in locals keeps it out of
    // memory.
    for (int stage = 0; stage < stages; ++stage)
    {
        if (numChannels == maxChannels)
        {
            auto a = state[0][(size_t) stage];
            auto b = state[1][(size_t) stage];
            auto* x = samples[0];
            auto* y = samples[1];
            for (int i = 0; i < numSamples; ++i)
            {
                x[i] = tick (a, x[i]);
                y[i] = tick (b, y[i]);
            }
            state[0][(size_t) stage] = a;
            state[1][(size_t) stage] = b;
        }
        else
        {
            for (int c = 0; c < numChannels; ++c)
            {
                auto s = state[(size_t) c][(size_t) stage];
                auto* x = samples[c];
                for (int i = 0; i < numSamples; ++i)
                    x[i] = tick (s, x[i]);
                state[(size_t) c][(size_t) stage] = s;
            }
        }
    }
}
} // namespace Orv::Audio

#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <cmath>
#include <vector>

namespace Orv::Testing
{
/** Frequency in Hz from the rising zero crossings of a signal, with each
    crossing placed by linear interpolation; 0 when there are fewer than two. */
inline double measureFrequency (const float* samples, int numSamples, double sampleRate)
{
    double first = -1.0, last = -1.0;
    int crossings = 0;

    for (int i = 1; i < numSamples; ++i)
    {
        if (samples[i - 1] < 0.0f && samples[i] >= 0.0f)
        {
            const auto t = (double) (i - 1) + (double) samples[i - 1] / (double) (samples[i - 1] - samples[i]);
            if (crossings == 0)
                first = t;
            last = t;
            ++crossings;
        }
    }

    return crossings < 2 ? 0.0 : (double) (crossings - 1) * sampleRate / (last - first);
}

/** The amplitude of the component at frequency hz, by correlation with a sine
    and a cosine over the whole signal. */
inline double amplitudeAt (const float* samples, int numSamples, double hz, double sampleRate)
{
    double s = 0.0, c = 0.0;
    for (int i = 0; i < numSamples; ++i)
    {
        const auto phase = juce::MathConstants<double>::twoPi * hz * i / sampleRate;
        s += samples[i] * std::sin (phase);
        c += samples[i] * std::cos (phase);
    }
    return 2.0 * std::sqrt (s * s + c * c) / numSamples;
}

inline float peakOf (const float* samples, int numSamples)
{
    float peak = 0.0f;
    for (int i = 0; i < numSamples; ++i)
        peak = std::max (peak, std::abs (samples[i]));
    return peak;
}

/** One period of a sine whose last sample closes the period, as the reader
    spans a table's length minus one with one period. */
inline juce::AudioBuffer<float> makeSineTable (int length, int numChannels = 1)
{
    juce::AudioBuffer<float> table (numChannels, length);
    for (int c = 0; c < numChannels; ++c)
        for (int i = 0; i < length; ++i)
            table.setSample (c, i, (float) std::sin (juce::MathConstants<double>::twoPi * i / (length - 1)));
    return table;
}
} // namespace Orv::Testing

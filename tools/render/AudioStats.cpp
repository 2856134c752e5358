#include "tools/render/AudioStats.h"

#include <cmath>
#include <limits>

namespace Orv::Tools::Render
{
AudioStats::AudioStats (juce::int64 total, int numColumns)
    : totalSamples (juce::jmax<juce::int64> (1, total)), columns ((size_t) juce::jmax (1, numColumns), 0.0f)
{
}

void AudioStats::add (const juce::AudioBuffer<float>& buffer, int numSamples, juce::int64 start)
{
    if (buffer.getNumChannels() == 0)
        return;

    for (int c = 0; c < numChannels; ++c)
    {
        const auto* samples = buffer.getReadPointer (juce::jmin (c, buffer.getNumChannels() - 1));
        for (int i = 0; i < numSamples; ++i)
        {
            const auto magnitude = std::abs (samples[i]);
            peak = std::max (peak, magnitude);
            sumOfSquares += (double) samples[i] * samples[i];

            const auto column = (size_t) ((start + i) * (juce::int64) columns.size() / totalSamples);
            if (column < columns.size())
                columns[column] = std::max (columns[column], magnitude);
        }
    }
    samplesCounted += (juce::int64) numSamples * numChannels;
}

double AudioStats::getRms() const
{
    return samplesCounted > 0 ? std::sqrt (sumOfSquares / (double) samplesCounted) : 0.0;
}

double AudioStats::toDecibels (double gain)
{
    return gain > 0.0 ? 20.0 * std::log10 (gain) : -std::numeric_limits<double>::infinity();
}
} // namespace Orv::Tools::Render

#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <vector>

namespace Orv::Tools::Render
{
/** What the summary and the picture need of the audio, gathered block by
    block so that a long render never holds its whole output: the peak, the
    mean square, and the largest magnitude in each of a fixed number of
    columns across the render. */
class AudioStats
{
public:
    static constexpr int numChannels = 2;

    AudioStats (juce::int64 totalSamples, int numColumns);

    /** The first two channels of a block that starts at `start`; a mono
        block counts twice. */
    void add (const juce::AudioBuffer<float>& buffer, int numSamples, juce::int64 start);

    float getPeak() const noexcept { return peak; }
    double getRms() const;
    /** Level in decibels relative to full scale; -inf for silence. */
    static double toDecibels (double gain);

    /** The largest magnitude within each column, in time order. */
    const std::vector<float>& getColumns() const noexcept { return columns; }

private:
    juce::int64 totalSamples;
    std::vector<float> columns;
    float peak = 0.0f;
    double sumOfSquares = 0.0;
    juce::int64 samplesCounted = 0;
};
} // namespace Orv::Tools::Render

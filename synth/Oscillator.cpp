#include "synth/Oscillator.h"

#include "synth/TableReader.h"

#include <cmath>

namespace Orv::Audio::WavetableSynth
{
namespace
{
    constexpr float halfPi = 1.5707964f;
    constexpr int left = 0;
    constexpr int right = 1;
} // namespace

void Oscillator::prepare (int numChannels, double sampleRate, int maxBlockSize)
{
    buffer.setSize (numChannels, maxBlockSize);
    volumeSmoother.reset (sampleRate);

    for (auto& voice : unison)
    {
        voice.phases.assign ((size_t) maxBlockSize, 0.0);
        voice.panSmoother.reset (sampleRate);
        voice.inverseRate = 1.0 / sampleRate;
    }
}

void Oscillator::start (const UnisonRecords& records, float volume) noexcept
{
    for (size_t u = 0; u < unison.size(); ++u)
    {
        unison[u].phase = 0.0;
        unison[u].panSmoother.setCurrentAndTarget (records[u].pan);
    }
    volumeSmoother.setCurrentAndTarget (volume);
}

void Oscillator::render (const juce::AudioBuffer<float>& table, const UnisonRecords& records, int count,
                         juce::AudioBuffer<float>& mix) noexcept
{
    const auto numSamples = juce::jmin (mix.getNumSamples(), buffer.getNumSamples());
    const auto numChannels = juce::jmin (mix.getNumChannels(), buffer.getNumChannels());
    const auto numTableChannels = table.getNumChannels();

    if (numSamples < 1)
        return;

    for (int u = 0; u < juce::jmin (count, maxUnison); ++u)
    {
        auto& voice = unison[(size_t) u];
        const auto& record = records[(size_t) u];

        buffer.clear (0, numSamples);
        TableReader::runPhases (voice.phases.data(), numSamples, voice.phase, (double) record.frequency * voice.inverseRate);

        if (numTableChannels > 0)
            readTable (table, voice.phases.data(), numChannels, numSamples);

        voice.lastPhase = voice.phases[(size_t) numSamples - 1];

        if (numChannels > right)
            pan (voice, record.pan, numSamples);

        if (record.gain > 0.0f)
            for (int c = 0; c < numChannels; ++c)
                mix.addFrom (c, 0, buffer, c, 0, numSamples, record.gain);
    }
}

void Oscillator::readTable (const juce::AudioBuffer<float>& table, const double* phases, int numChannels,
                            int numSamples) noexcept
{
    const auto numTableChannels = table.getNumChannels();
    const auto length = table.getNumSamples();

    // Table channel c % channels for output c, in pairs where that helps:
    // a pair of table channels shares the work of locating each phase, and
    // a mono table is read once and copied.
    int c = 0;
    if (numChannels > right)
    {
        if (numTableChannels > right)
        {
            TableReader::read (table.getReadPointer (left), table.getReadPointer (right), length, phases,
                               buffer.getWritePointer (left), buffer.getWritePointer (right), numSamples);
        }
        else
        {
            TableReader::read (table.getReadPointer (left), length, phases, buffer.getWritePointer (left), numSamples);
            buffer.copyFrom (right, 0, buffer, left, 0, numSamples);
        }
        c = right + 1;
    }

    for (; c < numChannels; ++c)
        TableReader::read (table.getReadPointer (c % numTableChannels), length, phases, buffer.getWritePointer (c),
                           numSamples);
}

void Oscillator::pan (UnisonVoice& voice, float target, int numSamples) noexcept
{
    auto& smoother = voice.panSmoother;
    smoother.setTarget (target);

    auto* l = buffer.getWritePointer (left);
    auto* r = buffer.getWritePointer (right);

    int i = 0;
    for (; i < numSamples && smoother.isSmoothing(); ++i)
    {
        const auto p = smoother.getNextValue() * halfPi;
        l[i] *= std::cos (p);
        r[i] *= std::sin (p);
    }

    if (i < numSamples)
    {
        const auto p = smoother.getTargetValue() * halfPi;
        juce::FloatVectorOperations::multiply (l + i, std::cos (p), numSamples - i);
        juce::FloatVectorOperations::multiply (r + i, std::sin (p), numSamples - i);
    }
}

void Oscillator::applyVolume (float volume, int numSamples) noexcept
{
    volumeSmoother.setTarget (volume);
    volumeSmoother.applyGain (buffer, juce::jmin (numSamples, buffer.getNumSamples()));
}
} // namespace Orv::Audio::WavetableSynth

#include "synth/OutputChain.h"

#include "synth/DelayParams.h"
#include "synth/TimeMap.h"

#include <cmath>

namespace Orv::Audio::Plugins::Halvane
{
namespace
{
    constexpr float halfPi = 1.5707964f;
    constexpr double secondsPerMinute = 60.0;

    // The skew puts 1 kHz in the middle of the knob's travel.
    constexpr float lowestToneHz = 100.0f;
    constexpr float highestToneHz = 20000.0f;
    constexpr float toneInterval = 0.0001f;
    constexpr float toneSkew = 0.22387893497943878f;
    constexpr float toneResonance = 1.0f;

    // Past half the rate tan() turns negative and the loop filter runs away,
    // which at 32 kHz the 20 kHz top of the range would reach. From 40.8 kHz
    // up the range stays below this and is untouched.
    constexpr float highestToneShareOfRate = 0.49f;
} // namespace

void OutputChain::prepare (int numChannels, double sampleRate, int maxBlockSize)
{
    numPreparedChannels = juce::jlimit (0, maxChannels, numChannels);
    maxPieceSize = juce::jmax (1, maxBlockSize);

    dryBuffer.setSize (numPreparedChannels, maxPieceSize);
    delay.prepare ({ sampleRate, numPreparedChannels });

    drySmoother.reset (sampleRate);
    wetSmoother.reset (sampleRate);
    masterSmoother.reset (sampleRate);
}

float OutputChain::toneCutoffFor (float analog) noexcept
{
    const juce::NormalisableRange<float> range (lowestToneHz, highestToneHz, toneInterval, toneSkew);
    return range.convertFrom0to1 (juce::jlimit (0.0f, 1.0f, 1.0f - analog));
}

float OutputChain::delaySecondsFor (const AnalogDelay::Params& params, double bpmOrZeroWhenNone) noexcept
{
    if (params.mode->getIndex() != AnalogDelay::Params::syncMode)
        return params.time->get();

    const auto& notes = AnalogDelay::TimeMap::get();
    const auto index = juce::jlimit (0, (int) notes.size() - 1, params.timeSync->getIndex());
    const auto bpm = bpmOrZeroWhenNone > 0.0 ? bpmOrZeroWhenNone : fallbackBpm;
    return (float) (notes[(size_t) index].quarters * secondsPerMinute / bpm);
}

void OutputChain::setTargets (const AnalogDelay::Params& params, float masterGain, double bpmOrZeroWhenNone) noexcept
{
    // The filter recomputes its tan() only when the cutoff really changed.
    const auto cutoff = juce::jmin (toneCutoffFor (params.analog->get()), highestToneShareOfRate * delay.sampleRate);
    delay.filter.setParameters (cutoff, toneResonance);
    delay.setParameters (delaySecondsFor (params, bpmOrZeroWhenNone), params.feedback->get());

    const auto m = params.mix->get() * halfPi;
    drySmoother.setTarget (std::cos (m));
    wetSmoother.setTarget (std::sin (m));
    masterSmoother.setTarget (masterGain);
}

float OutputChain::process (juce::AudioBuffer<float>& buffer, const AnalogDelay::Params& params, float masterGain,
                            double bpmOrZeroWhenNone, bool measureLevel) noexcept
{
    const auto numSamples = buffer.getNumSamples();
    if (numPreparedChannels == 0 || numSamples <= 0)
        return 0.0f;

    const auto numChannels = juce::jmin (buffer.getNumChannels(), numPreparedChannels);
    for (int c = numChannels; c < buffer.getNumChannels(); ++c)
        buffer.clear (c, 0, numSamples);

    setTargets (params, masterGain, bpmOrZeroWhenNone);

    // Asking for write pointers also drops the buffer's is-clear flag: after
    // a silent synth block the echoes written here must not be mistaken for
    // silence by whoever reads the buffer next.
    auto* const* channels = buffer.getArrayOfWritePointers();

    // Every stage runs sample by sample in order and the targets are set once
    // above, so pieces give the same output as one long run.
    float* pieceChannels[maxChannels] = {};
    for (int start = 0; start < numSamples; start += maxPieceSize)
    {
        for (int c = 0; c < numChannels; ++c)
            pieceChannels[c] = channels[c] + start;

        processPiece (pieceChannels, numChannels, juce::jmin (maxPieceSize, numSamples - start));
    }

    if (! measureLevel || numChannels == 0)
        return 0.0f;

    // The meter shows the first channel alone: its RMS is the level, however
    // many channels there are.
    return buffer.getRMSLevel (0, 0, numSamples);
}

void OutputChain::processPiece (float* const* channels, int numChannels, int numSamples) noexcept
{
    juce::AudioBuffer<float> wet (channels, numChannels, numSamples);
    juce::AudioBuffer<float> dry (dryBuffer.getArrayOfWritePointers(), numChannels, numSamples);

    for (int c = 0; c < numChannels; ++c)
        juce::FloatVectorOperations::copy (dry.getWritePointer (c), wet.getReadPointer (c), numSamples);

    delay.process (wet);

    drySmoother.applyGain (dry, numSamples);
    wetSmoother.applyGain (wet, numSamples);
    for (int c = 0; c < numChannels; ++c)
        juce::FloatVectorOperations::add (wet.getWritePointer (c), dry.getReadPointer (c), numSamples);

    masterSmoother.applyGain (wet, numSamples);
}
} // namespace Orv::Audio::Plugins::Halvane

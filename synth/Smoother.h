#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Orv::Audio
{
/** A linear ramp toward a target, with the ramp's length given in seconds so
    that it keeps its duration across sample rates. It moves only when asked
    for the next value, so a voice that is not rendered keeps its ramp where
    it stood.

    Owned by one voice; audio thread after prepare, never allocates. */
class Smoother
{
public:
    /** Any thread, before use. */
    explicit Smoother (double rampLengthSeconds) noexcept : rampSeconds (rampLengthSeconds) {}

    /** Owner's thread (prepare). Sets the ramp's length in samples and lands on
        the target. Rates too small to mean anything are ignored, so that a
        host's placeholder rate cannot turn every ramp into a jump. */
    void reset (double newSampleRate) noexcept
    {
        if (newSampleRate <= minimumSampleRate)
            return;

        sampleRate = newSampleRate;
        stepsToTarget = (int) std::floor (rampSeconds * sampleRate);
        current = target;
        countdown = 0;
    }

    /** Audio thread. Starts a ramp from the current value; a target equal to
        the present one within float precision leaves a running ramp alone, so
        that a value read again each block does not restart it. Before a rate
        is known the value jumps. */
    void setTarget (float newTarget) noexcept
    {
        if (approximatelyEqual (newTarget, target))
            return;

        if (stepsToTarget > 0)
        {
            target = newTarget;
            countdown = stepsToTarget;
            step = (target - current) / (float) countdown;
        }
        else
        {
            current = target = newTarget;
            countdown = 0;
        }
    }

    /** Audio thread. Jumps to a value with no ramp. */
    void setCurrentAndTarget (float value) noexcept
    {
        current = target = value;
        countdown = 0;
    }

    /** Audio thread. Advances one sample and returns the value there. */
    float getNextValue() noexcept
    {
        if (countdown <= 0)
            return target;

        --countdown;
        current = countdown > 0 ? current + step : target;
        return current;
    }

    /** Audio thread. Multiplies every channel of the first numSamples by the
        ramp, advancing it once per sample. */
    void applyGain (juce::AudioBuffer<float>& buffer, int numSamples) noexcept
    {
        const auto numChannels = buffer.getNumChannels();

        if (! isSmoothing())
        {
            for (int c = 0; c < numChannels; ++c)
                juce::FloatVectorOperations::multiply (buffer.getWritePointer (c), target, numSamples);
            return;
        }

        for (int i = 0; i < numSamples; ++i)
        {
            const auto gain = getNextValue();
            for (int c = 0; c < numChannels; ++c)
                buffer.getWritePointer (c)[i] *= gain;
        }
    }

    /** Any thread that owns the smoother. */
    bool isSmoothing() const noexcept { return countdown > 0; }
    float getCurrentValue() const noexcept { return current; }
    float getTargetValue() const noexcept { return target; }

    /** Equality up to float resolution: within the smallest normal float, or
        within one epsilon of the larger magnitude. Infinities and NaN compare
        as plain floats. */
    static bool approximatelyEqual (float a, float b) noexcept
    {
        if (! (std::isfinite (a) && std::isfinite (b)))
            return a == b;

        const auto difference = std::abs (a - b);
        return difference <= std::numeric_limits<float>::min()
            || difference <= std::numeric_limits<float>::epsilon() * std::max (std::abs (a), std::abs (b));
    }

    double sampleRate = 0.0;
    double rampSeconds;
    float current = 0.0f;
    float target = 0.0f;
    int countdown = 0;
    float step = 0.0f;
    int stepsToTarget = 0;

private:
    static constexpr double minimumSampleRate = 0.01;
};
} // namespace Orv::Audio

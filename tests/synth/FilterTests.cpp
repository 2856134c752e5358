#include "synth/Filter.h"

#include "synth/SynthTestHelpers.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{
using Orv::Audio::Filter;

constexpr int voiceStages = 2;

/** The response of the two-stage low-pass that the bilinear transform with
    prewarping at the cutoff gives: each stage is the analog 1 / (s^2 + s/Q + 1)
    at the warped frequency tan(pi f / fs) / tan(pi fc / fs). */
double expectedMagnitude (double hz, double cutoff, double q, double sampleRate)
{
    const auto w = std::tan (juce::MathConstants<double>::pi * hz / sampleRate)
                 / std::tan (juce::MathConstants<double>::pi * cutoff / sampleRate);
    const auto stage = 1.0 / std::sqrt ((1.0 - w * w) * (1.0 - w * w) + (w / q) * (w / q));
    return stage * stage;
}

/** Steady-state gain of the filter for a sine, measured after it settles. */
double measuredMagnitude (Filter& filter, double hz, double sampleRate)
{
    const auto settle = (int) sampleRate / 2;
    const auto measure = (int) sampleRate;
    juce::AudioBuffer<float> block (1, settle + measure);
    for (int i = 0; i < block.getNumSamples(); ++i)
        block.setSample (0, i, (float) std::sin (juce::MathConstants<double>::twoPi * hz * i / sampleRate));

    filter.processBlock (block);
    return Orv::Testing::amplitudeAt (block.getReadPointer (0) + settle, measure, hz, sampleRate);
}

TEST (Filter, LowPassMagnitudeAtCutoffAndAnOctaveAboveMatchesTwoCascadedStages)
{
    const struct
    {
        double sampleRate;
        float cutoff;
        float q;
    } cases[] = {
        { 48000.0, 1000.0f, 0.7071f },
        { 48000.0, 1000.0f, 3.0f },
        { 44100.0, 250.0f, 0.1f },
        { 44100.0, 8000.0f, 1.0f }, // far enough up that the warp shows
    };

    for (const auto& c : cases)
    {
        for (const auto hz : { (double) c.cutoff, 2.0 * c.cutoff })
        {
            Filter filter (voiceStages, 1000.0f, 0.1f);
            filter.prepare (c.sampleRate);
            filter.setParameters (c.cutoff, c.q);

            const auto expected = expectedMagnitude (hz, c.cutoff, c.q, c.sampleRate);
            EXPECT_NEAR (measuredMagnitude (filter, hz, c.sampleRate) / expected, 1.0, 0.01)
                << c.cutoff << " Hz, Q " << c.q << ", at " << hz << " Hz, " << c.sampleRate;
        }
    }
}

TEST (Filter, EachChannelPassesBothStagesWithItsOwnState)
{
    // One channel silent, the other loud: any state shared between channels
    // or stages would leak the loud one into the silent one.
    Filter filter (voiceStages, 1000.0f, 0.1f);
    filter.prepare (48000.0);
    filter.setParameters (500.0f, 2.0f);

    juce::AudioBuffer<float> block (2, 4800);
    block.clear();
    for (int i = 0; i < block.getNumSamples(); ++i)
        block.setSample (1, i, (float) std::sin (juce::MathConstants<double>::twoPi * 500.0 * i / 48000.0));

    filter.processBlock (block);
    EXPECT_EQ (Orv::Testing::peakOf (block.getReadPointer (0), block.getNumSamples()), 0.0f);

    // Q squared at the cutoff shows that both stages ran.
    EXPECT_NEAR (Orv::Testing::amplitudeAt (block.getReadPointer (1) + 2400, 2400, 500.0, 48000.0), 4.0, 0.1);
}

TEST (Filter, StaysFiniteForZerosHugeAndRandomInputAcrossItsRange)
{
    constexpr float huge = 100000.0f;
    constexpr int length = 4096;
    juce::Random random (42);

    // A key-tracked cutoff can pass half the sample rate; the delay's bright
    // end does so at 32 kHz.
    for (const auto sampleRate : { 32000.0, 44100.0, 48000.0, 96000.0 })
        for (const auto cutoff : { 10.0f, 1000.0f, 12000.0f, 20000.0f, 30000.0f })
            for (const auto q : { 0.1f, 0.7071f, 3.0f })
                for (int kind = 0; kind < 4; ++kind)
                {
                    Filter filter (voiceStages, 1000.0f, 0.1f);
                    filter.prepare (sampleRate);
                    filter.setParameters (cutoff, q);

                    juce::AudioBuffer<float> block (2, length);
                    for (int c = 0; c < 2; ++c)
                        for (int i = 0; i < length; ++i)
                        {
                            const float inputs[] = { 0.0f, huge, (i & 1) ? huge : -huge, random.nextFloat() * 2.0f - 1.0f };
                            block.setSample (c, i, inputs[kind]);
                        }

                    filter.processBlock (block);

                    for (int c = 0; c < 2; ++c)
                    {
                        const auto peak = Orv::Testing::peakOf (block.getReadPointer (c), length);
                        ASSERT_TRUE (std::isfinite (peak)) << sampleRate << " " << cutoff << " " << q << " kind " << kind;
                        if (kind == 0)
                        {
                            EXPECT_EQ (peak, 0.0f);
                        }
                    }
                }
}
} // namespace

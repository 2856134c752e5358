#include "synth/DelayParams.h"
#include "synth/Filter.h"
#include "synth/OutputChain.h"
#include "synth/TimeMap.h"

#include "support/AllocationCounter.h"
#include "synth/SynthTestHelpers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

namespace
{
using Orv::Audio::AnalogDelay::Params;
using Orv::Audio::Plugins::Halvane::OutputChain;

constexpr double sampleRate = 48000.0;
constexpr int blockSize = 512;
constexpr int numChannels = 2;
constexpr double noTempo = 0.0;
constexpr int quarterIndex = 2; // "1/4"
constexpr int eighthIndex = 4;  // "1/8"
constexpr float halfPi = 1.5707964f;

template <typename Holder, typename Value>
void set (Holder& holder, Value value)
{
    holder->setValueNotifyingHost (holder->convertTo0to1 ((float) value));
}

/** A chain, its delay parameters and what the processor would pass beside
    them. */
struct Rig
{
    Rig (float mix, float feedback, float analog, float seconds)
    {
        set (params.mix, mix);
        set (params.feedback, feedback);
        set (params.analog, analog);
        set (params.time, seconds);
    }

    /** One block gives every glide its target; preparing again lands them
        there and clears the line, so a test starts from the settled chain. */
    void prepareSettled (double rate = sampleRate, int maxBlock = blockSize)
    {
        chain.prepare (numChannels, rate, maxBlock);
        juce::AudioBuffer<float> scratch (numChannels, maxBlock);
        scratch.clear();
        chain.process (scratch, params, master, bpm, false);
        chain.prepare (numChannels, rate, maxBlock);
    }

    /** Processes samples [from, to) of audio in place, in blocks. */
    void run (juce::AudioBuffer<float>& audio, int from, int to, int block = blockSize)
    {
        for (int start = from; start < to; start += block)
        {
            juce::AudioBuffer<float> view (audio.getArrayOfWritePointers(), audio.getNumChannels(), start,
                                           juce::jmin (block, to - start));
            chain.process (view, params, master, bpm, false);
        }
    }

    void run (juce::AudioBuffer<float>& audio) { run (audio, 0, audio.getNumSamples()); }

    Params params;
    OutputChain chain;
    float master = 1.0f;
    double bpm = noTempo;
};

juce::AudioBuffer<float> makeSignal (int numSamples, const std::function<float (int)>& sample)
{
    juce::AudioBuffer<float> audio (numChannels, numSamples);
    for (int c = 0; c < numChannels; ++c)
        for (int i = 0; i < numSamples; ++i)
            audio.setSample (c, i, sample (i));
    return audio;
}

juce::AudioBuffer<float> makeClick (int numSamples)
{
    return makeSignal (numSamples, [] (int i) { return i == 0 ? 1.0f : 0.0f; });
}

juce::AudioBuffer<float> makeNoise (int numSamples, int seed)
{
    juce::Random random (seed);
    return makeSignal (numSamples, [&] (int) { return random.nextFloat() * 2.0f - 1.0f; });
}

int samplesFor (double seconds, double rate = sampleRate)
{
    return (int) std::lround (seconds * rate);
}

int indexOfPeak (const float* samples, int from, int to)
{
    auto best = from;
    for (int i = from; i < to; ++i)
        if (std::abs (samples[i]) > std::abs (samples[best]))
            best = i;
    return best;
}

float largestStep (const float* samples, int from, int to)
{
    float largest = 0.0f;
    for (int i = juce::jmax (1, from); i < to; ++i)
        largest = juce::jmax (largest, std::abs (samples[i] - samples[i - 1]));
    return largest;
}

//==============================================================================
TEST (OutputChain, FirstEchoOfAClickArrivesAfterTheSetTimeWithNothingBefore)
{
    const struct
    {
        const char* name;
        int mode;
        int noteIndex;
        double bpm;
        double expectedSeconds;
    } cases[] = {
        { "Free 0.25 s", Params::freeMode, quarterIndex, noTempo, 0.25 },
        { "Sync 1/4 without host tempo", Params::syncMode, quarterIndex, noTempo, 0.6 },
        { "Sync 1/8 at 120 BPM", Params::syncMode, eighthIndex, 120.0, 0.25 },
    };

    constexpr float silence = 1.0e-6f; // the dry share at Mix 1 is cos (pi / 2) in float, -147 dB
    constexpr int ringSamples = 4;     // the bright loop filter smears the click this far

    for (const auto& c : cases)
    {
        Rig rig (1.0f, 0.0f, 0.0f, 0.25f);
        set (rig.params.mode, c.mode);
        set (rig.params.timeSync, c.noteIndex);
        rig.bpm = c.bpm;
        rig.prepareSettled();

        auto audio = makeClick (samplesFor (1.0));
        rig.run (audio);

        const auto* out = audio.getReadPointer (0);
        const auto expected = samplesFor (c.expectedSeconds);
        EXPECT_LT (Orv::Testing::peakOf (out, expected - 1), silence) << c.name;

        const auto peak = indexOfPeak (out, 0, audio.getNumSamples());
        EXPECT_GE (peak, expected) << c.name;
        EXPECT_LE (peak, expected + ringSamples) << c.name;
        EXPECT_GT (std::abs (out[peak]), 0.3f) << c.name;
    }
}

TEST (OutputChain, EchoesDecayAtMaximumFeedbackAndStayFinite)
{
    constexpr float seconds = 0.1f;
    constexpr int numEchoes = 200;
    Rig rig (1.0f, Params::maximumFeedback, 0.5f, seconds);
    rig.prepareSettled();

    const auto period = samplesFor (seconds);
    auto audio = makeClick (period * (numEchoes + 1));
    rig.run (audio);

    const auto* out = audio.getReadPointer (0);
    float previous = std::numeric_limits<float>::infinity();
    for (int k = 1; k <= numEchoes; ++k)
    {
        const auto peak = Orv::Testing::peakOf (out + k * period, period);
        ASSERT_TRUE (std::isfinite (peak)) << "echo " << k;
        ASSERT_LT (peak, previous) << "echo " << k;
        previous = peak;
    }

    // The loop gain at low frequencies is 0.8: after 200 repeats the tail is
    // far below anything audible.
    EXPECT_LT (previous, 1.0e-9f);
}

TEST (OutputChain, RepeatsDarkenAsAnalogRises)
{
    constexpr float seconds = 0.1f;
    constexpr int echo = 3;
    constexpr float splitHz = 2000.0f;
    constexpr float butterworthQ = 0.7071f;

    // The share of the third echo's energy that a steep high-pass at 2 kHz
    // lets through.
    const auto highShare = [&] (float analog)
    {
        Rig rig (1.0f, Params::maximumFeedback, analog, seconds);
        rig.prepareSettled();
        const auto period = samplesFor (seconds);
        auto audio = makeClick (period * (echo + 1));
        rig.run (audio);

        juce::AudioBuffer<float> window (1, period);
        window.copyFrom (0, 0, audio, 0, echo * period, period);
        const auto total = window.getRMSLevel (0, 0, period);

        Orv::Audio::Filter highPass (2, splitHz, butterworthQ);
        highPass.type = Orv::Audio::Filter::highPass;
        highPass.prepare (sampleRate);
        highPass.processBlock (window);
        const auto high = window.getRMSLevel (0, 0, period);
        return (high * high) / (total * total);
    };

    const auto bright = highShare (0.1f);
    const auto dark = highShare (0.9f);
    EXPECT_GT (bright, 0.05f);
    EXPECT_LT (dark, bright * 0.01f) << "bright " << bright << ", dark " << dark;
}

TEST (OutputChain, TimeChangeGlidesOverATenthOfASecondWithoutAClick)
{
    // From Free 0.25 s to Sync 1/4 at the fallback 100 BPM, 0.6 s: over the
    // glide the read point moves 3.5 samples per sample, so a sine plays
    // back reversed at 2.5 times its pitch, and then settles at its own.
    constexpr double hz = 230.0;
    constexpr float amplitude = 0.5f;
    constexpr double fromSeconds = 0.25;
    constexpr double toSeconds = 0.6;
    constexpr double glideRate = (toSeconds - fromSeconds) / OutputChain::rampSeconds - 1.0;
    const auto glide = samplesFor (OutputChain::rampSeconds);
    const auto margin = glide / 10;
    const auto change = blockSize * 100;

    Rig rig (1.0f, 0.0f, 0.0f, (float) fromSeconds);
    rig.prepareSettled();

    const auto sine = [&] (int i) { return amplitude * (float) std::sin (juce::MathConstants<double>::twoPi * hz * i / sampleRate); };
    auto audio = makeSignal (change + 2 * glide, sine);
    rig.run (audio, 0, change);
    set (rig.params.mode, Params::syncMode);
    set (rig.params.timeSync, quarterIndex);
    rig.run (audio, change, audio.getNumSamples());

    const auto* out = audio.getReadPointer (0);
    const auto sineStep = amplitude * (float) (juce::MathConstants<double>::twoPi * hz / sampleRate);
    const auto bound = 1.5f * sineStep * (float) glideRate;

    // A jump straight to the new time would step by this much: the test is
    // only worth its bound if that is well above it.
    const auto jump = std::abs (sine (change - samplesFor (fromSeconds)) - sine (change - samplesFor (toSeconds)));
    ASSERT_GT (jump, 4.0f * bound);

    EXPECT_LT (largestStep (out, change - margin, change + glide + margin), bound);

    const auto during = Orv::Testing::measureFrequency (out + change + margin, glide - 2 * margin, sampleRate);
    EXPECT_NEAR (during, hz * glideRate, hz * glideRate * 0.03);

    const auto after = Orv::Testing::measureFrequency (out + change + glide + margin, glide - margin, sampleRate);
    EXPECT_NEAR (after, hz, hz * 0.01);
}

//==============================================================================
TEST (OutputChain, DryAndWetMeetAtEqualPowerUnderTheMasterGain)
{
    constexpr float seconds = 0.1f;
    const auto echoAt = samplesFor (seconds);
    constexpr int echoLength = 64;
    constexpr float tolerance = 1.0e-6f;

    // The same click through a fully wet chain at unity gives the echo that
    // each case should scale.
    Rig wetOnly (1.0f, 0.0f, 0.0f, seconds);
    wetOnly.prepareSettled();
    auto reference = makeClick (echoAt + echoLength);
    wetOnly.run (reference);

    const struct
    {
        float mix;
        float master;
    } cases[] = { { 0.0f, 1.0f }, { 0.5f, 1.0f }, { 0.5f, 0.5f }, { 0.25f, 1.0f }, { 1.0f, 0.5f }, { 0.0f, 0.5f } };

    for (const auto& c : cases)
    {
        Rig rig (c.mix, 0.0f, 0.0f, seconds);
        rig.master = c.master;
        rig.prepareSettled();
        auto audio = makeClick (echoAt + echoLength);
        rig.run (audio);

        const auto m = c.mix * halfPi;
        EXPECT_NEAR (audio.getSample (0, 0), c.master * std::cos (m), tolerance) << c.mix << " " << c.master;
        for (int i = echoAt; i < echoAt + echoLength; ++i)
            ASSERT_NEAR (audio.getSample (1, i), c.master * std::sin (m) * reference.getSample (1, i), tolerance)
                << c.mix << " " << c.master << " at " << i;
    }
}

TEST (OutputChain, LevelIsTheFirstChannelsRmsAndOnlyWhenAsked)
{
    constexpr float quiet = 0.25f;
    constexpr float loud = 0.9f;

    const struct
    {
        float left;
        float right;
        bool asked;
    } cases[] = { { quiet, loud, true }, { 0.0f, loud, true }, { loud, 0.0f, true }, { loud, loud, false } };

    for (const auto& c : cases)
    {
        Rig rig (0.0f, 0.0f, 0.5f, 0.1f);
        rig.prepareSettled();
        auto audio = makeNoise (blockSize, 3);
        audio.applyGain (0, 0, blockSize, c.left);
        audio.applyGain (1, 0, blockSize, c.right);

        const auto level = rig.chain.process (audio, rig.params, rig.master, rig.bpm, c.asked);

        double sum = 0.0;
        for (int i = 0; i < blockSize; ++i)
            sum += (double) audio.getSample (0, i) * audio.getSample (0, i);
        const auto expected = c.asked ? (float) std::sqrt (sum / blockSize) : 0.0f;
        EXPECT_NEAR (level, expected, 1.0e-6f) << c.left << " " << c.right;
        EXPECT_EQ (level > 0.0f, c.asked && c.left > 0.0f) << c.left << " " << c.right;
    }
}

//==============================================================================
TEST (OutputChain, OutputDoesNotDependOnBlockSizeEvenPastThePreparedSize)
{
    // Changes land on a sample that both block sizes start a block at, so
    // the two runs see the same targets at the same time; the glides then
    // cut the delay into single samples in one run and not the other.
    constexpr int preparedSize = 256;
    constexpr int smallBlock = 64;
    constexpr int largeBlock = 1000;
    constexpr int change = 16000;
    const auto input = makeNoise (2 * change, 9);

    const auto render = [&] (int block)
    {
        Rig rig (0.3f, Params::maximumFeedback, 0.3f, 0.1f);
        rig.prepareSettled (sampleRate, preparedSize);
        auto audio = input;
        rig.run (audio, 0, change, block);
        set (rig.params.mode, Params::syncMode);
        set (rig.params.timeSync, eighthIndex);
        set (rig.params.mix, 0.8f);
        set (rig.params.analog, 0.8f);
        rig.master = 0.7f;
        rig.run (audio, change, audio.getNumSamples(), block);
        return audio;
    };

    const auto small = render (smallBlock);
    const auto large = render (largeBlock);
    for (int c = 0; c < numChannels; ++c)
        for (int i = 0; i < input.getNumSamples(); ++i)
            ASSERT_EQ (small.getSample (c, i), large.getSample (c, i)) << "channel " << c << " sample " << i;
}

TEST (OutputChain, StaysFiniteForZerosHugeAndRandomInput)
{
    // 32 kHz puts Analog 0's 20 kHz cutoff past half the rate, where the
    // loop filter's coefficient turns negative.
    constexpr float huge = 100000.0f;
    constexpr int squarePeriod = 37;
    constexpr float loopGainBound = 20.0f;

    for (const auto rate : { 32000.0, 48000.0, 96000.0 })
        for (const auto analog : { 0.0f, 0.5f, 1.0f })
            for (int kind = 0; kind < 3; ++kind)
            {
                Rig rig (0.5f, Params::maximumFeedback, analog, 0.05f);
                rig.prepareSettled (rate);

                juce::Random random (kind);
                auto audio = makeSignal (samplesFor (2.0, rate),
                                         [&] (int i)
                                         {
                                             const float inputs[] = { 0.0f, (i / squarePeriod) % 2 ? huge : -huge,
                                                                      random.nextFloat() * 2.0f - 1.0f };
                                             return inputs[kind];
                                         });
                rig.run (audio);

                for (int c = 0; c < numChannels; ++c)
                {
                    const auto peak = Orv::Testing::peakOf (audio.getReadPointer (c), audio.getNumSamples());
                    ASSERT_TRUE (std::isfinite (peak)) << rate << " analog " << analog << " kind " << kind;
                    EXPECT_LT (peak, huge * loopGainBound) << rate << " analog " << analog << " kind " << kind;
                    if (kind == 0)
                    {
                        EXPECT_EQ (peak, 0.0f);
                    }
                }
            }
}

TEST (OutputChain, AllocatesNothingAfterPrepare)
{
    constexpr int numBlocks = 400;
    constexpr int changeEvery = 50;
    Rig rig (0.5f, Params::maximumFeedback, 0.5f, 0.1f);
    rig.prepareSettled();
    rig.bpm = 120.0;

    // Twice the prepared size, so that the pieces are taken as well.
    auto audio = makeNoise (2 * blockSize, 1);
    int64_t allocations = 0;
    for (int b = 0; b < numBlocks; ++b)
    {
        if (b % changeEvery == 0)
        {
            set (rig.params.mode, (b / changeEvery) % 2);
            set (rig.params.time, 0.1f + 0.01f * (float) (b / changeEvery));
            set (rig.params.mix, (float) (b % 3) * 0.4f);
        }

        Orv::Testing::AllocationCounter counter;
        rig.chain.process (audio, rig.params, rig.master, rig.bpm, true);
        allocations += counter.getCount();
    }

    EXPECT_EQ (allocations, 0);
}
} // namespace

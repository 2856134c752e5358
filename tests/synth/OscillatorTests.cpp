#include "synth/Oscillator.h"
#include "synth/TableReader.h"
#include "synth/UnisonRecord.h"

#include "synth/SynthTestHelpers.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{
using namespace Orv::Audio::WavetableSynth;
using Orv::Testing::measureFrequency;

constexpr double sampleRate = 48000.0;
constexpr int blockSize = 128;
constexpr int tableLength = 4097;
constexpr float equalPowerCentre = 0.70710677f;

double semitones (double ratio) { return 12.0 * std::log2 (ratio); }

/** Runs an oscillator for numBlocks blocks of blockSize from note start and
    returns what it added, stereo. */
juce::AudioBuffer<float> render (const juce::AudioBuffer<float>& table, const UnisonRecords& records, int count,
                                 int numBlocks, const UnisonRecords* changeTo = nullptr)
{
    Oscillator osc;
    osc.prepare (2, sampleRate, blockSize);
    osc.start (records, 1.0f);

    juce::AudioBuffer<float> out (2, numBlocks * blockSize);
    juce::AudioBuffer<float> mix (2, blockSize);
    for (int b = 0; b < numBlocks; ++b)
    {
        mix.clear();
        osc.render (table, changeTo != nullptr ? *changeTo : records, count, mix);
        for (int c = 0; c < 2; ++c)
            out.copyFrom (c, b * blockSize, mix, c, 0, blockSize);
    }
    return out;
}

//==============================================================================
TEST (TableReader, CubicReadIsExactOnAQuadraticAndGuardsPhasesAtAndPastTheEnd)
{
    // Catmull-Rom reproduces any quadratic between its end samples, so a
    // wrong coefficient anywhere shows as an error here.
    constexpr int length = 11;
    float table[length];
    for (int i = 0; i < length; ++i)
        table[i] = 0.5f * (float) (i * i) - 3.0f * (float) i + 2.0f;

    for (const double position : { 1.0, 1.25, 4.5, 7.875, 8.999 })
    {
        const auto expected = 0.5 * position * position - 3.0 * position + 2.0;
        EXPECT_NEAR (TableReader::interpolate (table, length, position / (length - 1)), expected, 1.0e-5) << position;
    }

    EXPECT_EQ (TableReader::interpolate (table, length, 0.0), table[0]);
    EXPECT_EQ (TableReader::interpolate (table, length, 1.0), table[length - 1]);
    EXPECT_EQ (TableReader::interpolate (table, length, 1.5), table[length - 1]);
    EXPECT_EQ (TableReader::interpolate (table, length, 1.5000001), 0.0f);
    EXPECT_EQ (TableReader::interpolate (table, 0, 0.5), 0.0f) << "an empty table is silence";
}

TEST (TableReader, BlockReadsGiveTheSampleBySampleValuesToTheBit)
{
    constexpr int length = 1000;
    constexpr int numSamples = 300;
    juce::Random random (11);
    std::vector<float> a (length), b (length);
    for (int i = 0; i < length; ++i)
    {
        a[(size_t) i] = random.nextFloat() * 2.0f - 1.0f;
        b[(size_t) i] = random.nextFloat() * 2.0f - 1.0f;
    }

    // A stray phase in one stretch sends that stretch the plain way.
    std::vector<double> phases (numSamples);
    for (auto& x : phases)
        x = random.nextDouble();
    phases[200] = 1.2;
    phases[201] = 1.7;

    std::vector<float> outA (numSamples), outB (numSamples), mono (numSamples);
    TableReader::read (a.data(), b.data(), length, phases.data(), outA.data(), outB.data(), numSamples);
    TableReader::read (b.data(), length, phases.data(), mono.data(), numSamples);

    for (size_t i = 0; i < (size_t) numSamples; ++i)
    {
        ASSERT_EQ (outA[i], TableReader::interpolate (a.data(), length, phases[i])) << i;
        ASSERT_EQ (outB[i], TableReader::interpolate (b.data(), length, phases[i])) << i;
        ASSERT_EQ (mono[i], outB[i]) << i;
    }
}

TEST (TableReader, PhasesWrapBelowOneAndCarryOverToTheNextCall)
{
    double phases[4];
    double phase = 0.5;
    TableReader::runPhases (phases, 4, phase, 0.25);
    EXPECT_EQ (phases[0], 0.5);
    EXPECT_EQ (phases[2], 0.0);
    EXPECT_EQ (phases[3], 0.25);
    EXPECT_EQ (phase, 0.5);

    // However the step is taken, the phases are those of fmod, to the bit.
    juce::Random random (3);
    for (const auto increment : { 0.0, 0.999999, 1.0, 2.25, (double) random.nextFloat(), random.nextDouble() * 0.01 })
    {
        double run[64];
        double actual = 0.3, expected = 0.3;
        TableReader::runPhases (run, 64, actual, increment);
        for (int i = 0; i < 64; ++i)
        {
            ASSERT_EQ (run[i], expected) << increment << " at " << i;
            expected = std::fmod (expected + increment, 1.0);
        }
    }
}

//==============================================================================
TEST (UnisonRecords, APairStandsEitherSideByTheSpreadAndPansApart)
{
    for (const auto spread : { 0.0f, 0.25f, 1.0f })
    {
        const auto records = getUnisonRecords (0, 0, 2, spread, 440.0f);
        const auto detune = 0.01 + 0.09 * spread;

        EXPECT_NEAR (semitones (records[0].frequency / 440.0), -detune, 1.0e-3) << spread;
        EXPECT_NEAR (semitones (records[1].frequency / 440.0), detune, 1.0e-3) << spread;
        EXPECT_FLOAT_EQ (records[0].pan, 0.5f - 0.5f * spread);
        EXPECT_FLOAT_EQ (records[1].pan, 0.5f + 0.5f * spread);
        EXPECT_EQ (records[0].gain, 0.5f);
        EXPECT_EQ (records[1].gain, 0.5f);
    }
}

//==============================================================================
TEST (Oscillator, PlaysItsRecordsFrequencyAcrossBlocksCentredWithEqualPower)
{
    const auto table = Orv::Testing::makeSineTable (tableLength);

    for (const auto hz : { 110.0f, 440.0f, 3520.0f })
    {
        const auto records = getUnisonRecords (0, 0, 1, 0.0f, hz);
        const auto out = render (table, records, 1, (int) sampleRate / blockSize);

        for (int c = 0; c < 2; ++c)
        {
            EXPECT_NEAR (measureFrequency (out.getReadPointer (c), out.getNumSamples(), sampleRate) / hz, 1.0, 1.0e-4) << hz;
            EXPECT_NEAR (Orv::Testing::amplitudeAt (out.getReadPointer (c), out.getNumSamples(), records[0].frequency, sampleRate),
                         equalPowerCentre, 1.0e-4);
        }
    }
}

TEST (Oscillator, AFullySpreadPairPutsItsLowerVoiceLeftAndItsUpperVoiceRight)
{
    const auto table = Orv::Testing::makeSineTable (tableLength);
    const auto records = getUnisonRecords (0, 0, 2, 1.0f, 440.0f);
    const auto out = render (table, records, 2, (int) sampleRate / blockSize);

    const auto left = measureFrequency (out.getReadPointer (0), out.getNumSamples(), sampleRate);
    const auto right = measureFrequency (out.getReadPointer (1), out.getNumSamples(), sampleRate);
    EXPECT_NEAR (semitones (left / 440.0), -0.1, 2.0e-3);
    EXPECT_NEAR (semitones (right / 440.0), 0.1, 2.0e-3);
    EXPECT_NEAR (Orv::Testing::peakOf (out.getReadPointer (0), out.getNumSamples()), 0.5f, 1.0e-4) << "half gain, hard left";

    const auto single = render (table, records, 1, (int) sampleRate / blockSize);
    EXPECT_EQ (Orv::Testing::peakOf (single.getReadPointer (1), single.getNumSamples()), 0.0f) << "a count of one plays the first voice only";
    EXPECT_EQ (render (table, records, 0, 4).getMagnitude (0, 4 * blockSize), 0.0f);
}

TEST (Oscillator, TableChannelsRepeatAcrossOutputChannels)
{
    auto stereo = Orv::Testing::makeSineTable (tableLength, 2);
    stereo.applyGain (1, 0, tableLength, 0.5f);
    const auto mono = Orv::Testing::makeSineTable (tableLength, 1);
    const auto records = getUnisonRecords (0, 0, 1, 0.0f, 440.0f);

    const auto fromMono = render (mono, records, 1, 8);
    const auto fromStereo = render (stereo, records, 1, 8);
    for (int i = 0; i < fromMono.getNumSamples(); ++i)
    {
        ASSERT_EQ (fromMono.getSample (0, i), fromMono.getSample (1, i)) << i;
        ASSERT_EQ (fromStereo.getSample (0, i) * 0.5f, fromStereo.getSample (1, i)) << i;
    }
    EXPECT_GT (fromMono.getMagnitude (0, 0, fromMono.getNumSamples()), 0.7f);
}

TEST (Oscillator, PanMovesOverFiftyMillisecondsAndThenHolds)
{
    juce::AudioBuffer<float> dc (1, tableLength);
    juce::FloatVectorOperations::fill (dc.getWritePointer (0), 1.0f, tableLength);
    const auto centred = getUnisonRecords (0, 0, 1, 0.0f, 440.0f);
    auto left = centred;
    left[0].pan = 0.0f;

    constexpr int rampSamples = 2400; // 0.05 s at 48 kHz
    const auto out = render (dc, centred, 1, 24, &left);

    // On a constant table the output is the pan law itself.
    const auto rightGainAt = [&] (int i) { return out.getSample (1, i); };
    const auto expectedRight = [&] (int i) {
        const auto p = 0.5f - 0.5f * (float) (i + 1) / rampSamples;
        return std::sin (p * 1.5707964f);
    };

    for (const int i : { 0, 1, 600, 1200, 2000 })
        EXPECT_NEAR (rightGainAt (i), expectedRight (i), 1.0e-4) << i;
    for (const int i : { rampSamples - 1, rampSamples, 24 * blockSize - 1 })
        EXPECT_EQ (rightGainAt (i), 0.0f) << i;
    EXPECT_EQ (out.getSample (0, 24 * blockSize - 1), 1.0f);
}
} // namespace

#include "parameters/VolumeParameter.h"

#include <gtest/gtest.h>

using Orv::Audio::VolumeParameter;

namespace
{
/** The synth's two volume shapes: a master-like one whose middle is unity,
    and an oscillator-like one whose middle is well below it. */
VolumeParameter makeMasterLike() { return { "Master", "Master", -100.0f, 3.0f, 0.0f, 0.0f }; }
VolumeParameter makeOscLike() { return { "Volume", "Volume", -100.0f, 6.0f, -15.0f, 0.0f }; }

juce::AudioProcessorParameter& base (VolumeParameter& p) { return p; }
} // namespace

TEST (VolumeParameter, ShowsGainsInDecibelsWithTheFloorForSilence)
{
    const struct
    {
        float gain;
        const char* text;
    } cases[] = {
        { 0.0f, "-100.00 dB" },
        { 1.0e-7f, "-100.00 dB" }, // -140 dB is shown at the floor
        { 1.0f, "0.00 dB" },
        { 0.5f, "-6.02 dB" },
        { VolumeParameter::gainFor (3.0f), "3.00 dB" },
    };

    for (const auto& c : cases)
        EXPECT_EQ (VolumeParameter::textFor (c.gain), c.text) << c.gain;
}

TEST (VolumeParameter, ReadsTextsAsDecibelsAndEverythingAtTheFloorAsSilence)
{
    const struct
    {
        const char* text;
        float gain;
    } cases[] = {
        { "-100 dB", 0.0f },
        { "-200 dB", 0.0f },
        { "-100.00 dB", 0.0f },
        { "0.00 dB", 1.0f },
        { "-6.0206", 0.5f },
    };

    for (const auto& c : cases)
        EXPECT_NEAR (VolumeParameter::gainForText (c.text), c.gain, 1.0e-6f) << c.text;

    // Single precision of 2^(3 * log2(10) / 20), exactly as a file's "3.00 dB" loads everywhere.
    EXPECT_EQ (VolumeParameter::gainForText ("3.00 dB"), VolumeParameter::gainFor (3.0f));
    EXPECT_NEAR (VolumeParameter::gainForText ("3.00 dB"), 1.41254f, 1.0e-5f);
}

TEST (VolumeParameter, RangeRunsFromSilenceWithTheMiddleDecibelAtTheKnobsCentre)
{
    auto master = makeMasterLike();
    auto osc = makeOscLike();

    EXPECT_FLOAT_EQ (master.getNormalisableRange().start, 0.0f);
    EXPECT_FLOAT_EQ (master.getNormalisableRange().end, VolumeParameter::gainFor (3.0f));
    EXPECT_NEAR (master.convertFrom0to1 (0.5f), 1.0f, 1.0e-5f);
    EXPECT_NEAR (osc.convertFrom0to1 (0.5f), VolumeParameter::gainFor (-15.0f), 1.0e-5f);
    EXPECT_FLOAT_EQ (osc.getNormalisableRange().end, VolumeParameter::gainFor (6.0f));
}

TEST (VolumeParameter, AsAHostParameterDefaultsToUnityAndRoundTripsItsTexts)
{
    auto osc = makeOscLike();
    auto& p = base (osc);

    EXPECT_FLOAT_EQ (osc.get(), 1.0f);
    EXPECT_EQ (p.getText (p.getDefaultValue(), 1024), "0.00 dB");
    EXPECT_EQ (p.getText (0.0f, 1024), "-100.00 dB");
    EXPECT_FLOAT_EQ (p.getValueForText ("-200 dB"), 0.0f);

    for (const auto* text : { "-100.00 dB", "-15.00 dB", "3.00 dB", "6.00 dB" })
        EXPECT_EQ (p.getText (p.getValueForText (text), 1024), text);

    // Above the range is clipped by the range, not by the text parser.
    EXPECT_FLOAT_EQ (p.getValueForText ("20 dB"), 1.0f);
}

#include "sequencer/ArpSettings.h"

#include <gtest/gtest.h>

using Orv::Audio::Plugins::Halvane::ArpSettings;

TEST (ArpSettings, TheOctaveRangeReadsBackAsOneWordWithTheHighNeverBelowTheLow)
{
    const struct
    {
        int low, high, readLow, readHigh;
    } cases[] = {
        { 1, 8, 1, 8 },
        { 6, 3, 6, 6 },
        { -2, 4, -2, 4 },
        { -3, -5, -3, -3 },
    };

    ArpSettings settings;
    EXPECT_EQ (settings.getOctaves().low, 1);
    EXPECT_EQ (settings.getOctaves().high, 8);

    for (const auto& c : cases)
    {
        settings.setOctaves (c.low, c.high);
        EXPECT_EQ (settings.getOctaves().low, c.readLow) << c.low << " " << c.high;
        EXPECT_EQ (settings.getOctaves().high, c.readHigh) << c.low << " " << c.high;
    }
}

TEST (ArpSettings, QuantizeIndicesGiveQuarterNotesAndAStrayIndexOne)
{
    const double expected[] = { 4.0, 2.0, 1.0, 0.5, 0.25, 0.125 };
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ (ArpSettings::quantizeLengthFor (i), expected[i]);
    EXPECT_EQ (ArpSettings::quantizeLengthFor (-1), 1.0);
    EXPECT_EQ (ArpSettings::quantizeLengthFor (6), 1.0);
    EXPECT_EQ (ArpSettings::quantizeLengthFor (ArpSettings().getQuantize()), 1.0);
}

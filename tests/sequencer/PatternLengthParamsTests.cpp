#include "sequencer/PatternDenumParam.h"
#include "sequencer/PatternNumParam.h"

#include "SequencerTestHelpers.h"

#include <gtest/gtest.h>

using namespace Orv::Audio::Plugins::Halvane;
using Orv::Sequencer::Modifiers::MusicalTime;
using Orv::Testing::BroadcastLog;

namespace
{
using Log = std::vector<std::string>;

/** A pattern's time with its first bar, and a log of whom an edit tells. */
struct LengthFixture
{
    LengthFixture()
    {
        num.onUpdate = [this] { log.push_back ("update"); };
        denum.onUpdate = [this] { log.push_back ("update"); };
    }

    MusicalTime time;
    Log log;
    BroadcastLog bars { time.barsBroadcaster, "bars", log };
    BroadcastLog values { time.valueBroadcaster, "value", log };
    NumParam num { time, time.bars[0] };
    DenumParam denum { time, time.bars[0] };
};
} // namespace

TEST (PatternLengthParams, DenumIndexTableBothWays)
{
    const int table[] = { 2, 4, 8, 16, 32, 64, 128, 256 };

    for (int i = 0; i < DenumParam::numChoices; ++i)
    {
        EXPECT_EQ (DenumParam::denumForIndex (i), table[i]);
        EXPECT_EQ (DenumParam::indexForDenum (table[i]), i);
        EXPECT_EQ (DenumParam::getAllChoices()[(size_t) i], juce::String (table[i]));
    }

    EXPECT_EQ (DenumParam::denumForIndex (8), 4);
    EXPECT_EQ (DenumParam::denumForIndex (100), 4);
    EXPECT_EQ (DenumParam::indexForDenum (12), 1);
    EXPECT_EQ (DenumParam::indexForDenum (0), 1);
}

TEST (PatternLengthParams, DenumSetsByIndexOrPositionAndReadsBack)
{
    LengthFixture f;

    f.denum.setInt (3);
    EXPECT_EQ (f.time.bars[0].denum, 16);
    EXPECT_EQ (f.denum.getInt(), 3);
    EXPECT_EQ (f.denum.getText(), "16");

    f.denum.setNormalised (1.0f);
    EXPECT_EQ (f.time.bars[0].denum, 256);

    for (int i = 0; i < DenumParam::numChoices; ++i)
    {
        f.denum.setInt (i);
        const auto position = f.denum.getNormalised();
        f.denum.setInt ((i + 1) % DenumParam::numChoices);
        f.denum.setNormalised (position);
        EXPECT_EQ (f.denum.getInt(), i) << "position " << position;
    }
}

TEST (PatternLengthParams, AChangeTellsValueThenBarsThenUpdatesAndNoChangeTellsNobody)
{
    LengthFixture f;

    f.num.setInt (4);
    f.denum.setInt (1); // 4 already
    EXPECT_TRUE (f.log.empty());

    f.num.setInt (7);
    f.denum.setInt (2);
    EXPECT_EQ (f.log, (Log { "value", "bars", "update", "value", "bars", "update" }));
    EXPECT_EQ (f.time.bars[0].num, 7);
    EXPECT_EQ (f.time.bars[0].denum, 8);

    f.log.clear();
    f.num.setInt (129);
    EXPECT_EQ (f.time.bars[0].num, 1) << "wraps past the top";
    EXPECT_EQ (f.log.size(), 3u);
}

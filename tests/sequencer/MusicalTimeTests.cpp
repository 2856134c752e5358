#include "sequencer/modifiers/BarParams.h"
#include "sequencer/modifiers/Duration.h"

#include "SequencerTestHelpers.h"

#include <gtest/gtest.h>

#include <tuple>

using namespace Orv::Sequencer::Modifiers;
using Orv::Testing::barsOf;
using Orv::Testing::BroadcastLog;

using Log = std::vector<std::string>;

TEST (MusicalTime, LengthIsTheSumOfTheBarsInQuarterNotes)
{
    const struct
    {
        std::vector<Bar> bars;
        double length;
    } cases[] = {
        { { { 1, 16 } }, 0.25 },
        { { { 12, 8 } }, 6.0 },
        { { { 4, 128 } }, 0.125 },
        { { { 4, 4 } }, 4.0 },
        { { { 3, 4 }, { 7, 8 }, { 1, 2 } }, 3.0 + 3.5 + 2.0 },
        { {}, 0.0 },
    };

    for (const auto& c : cases)
        EXPECT_EQ (barsOf (c.bars).getLength(), c.length) << c.bars.size() << " bars";

    EXPECT_EQ (MusicalTime().getLength(), 4.0);
}

TEST (MusicalTime, ACopyTakesBarsAndCallbackButNoListeners)
{
    auto original = barsOf ({ { 3, 4 }, { 5, 8 } });
    int callbackCalls = 0;
    original.onBarChange = [&] (std::int32_t, const Bar&, const Bar&) { ++callbackCalls; };
    Orv::Events::Listener barsListener (original.barsBroadcaster, {}), valueListener (original.valueBroadcaster, {});

    MusicalTime copy (original);
    MusicalTime assigned;
    assigned = original;

    for (auto* t : { &copy, &assigned })
    {
        EXPECT_EQ (t->bars, original.bars);
        EXPECT_EQ (t->barsBroadcaster.getNumListeners(), 0);
        EXPECT_EQ (t->valueBroadcaster.getNumListeners(), 0);
        t->onBarChange (0, {}, {});
    }

    EXPECT_EQ (callbackCalls, 2);
    EXPECT_EQ (original.barsBroadcaster.getNumListeners(), 1);
}

TEST (Duration, ModeZeroFollowsTheBarsAnyOtherModeIsTheExplicitLength)
{
    Duration d;
    d.duration = 2.5;
    d.time.bars = { { 12, 8 } };

    EXPECT_EQ (d.getLength(), 2.5) << "a new Duration is explicit";
    d.mode = 7;
    EXPECT_EQ (d.getLength(), 2.5);
    d.mode = Duration::barsMode;
    EXPECT_EQ (d.getLength(), 6.0);
    d.time.bars.clear();
    EXPECT_EQ (d.getLength(), 0.0);
}

//==============================================================================
TEST (BarParams, AnEditTellsValueThenBarsThenTheCallbackWithIndexAndBothBarsAndNoEditTellsNobody)
{
    auto time = barsOf ({ { 4, 4 }, { 3, 4 }, { 4, 4 } });
    Log log;
    BroadcastLog bars (time.barsBroadcaster, "bars", log);
    BroadcastLog values (time.valueBroadcaster, "value", log);
    std::vector<std::tuple<std::int32_t, Bar, Bar>> changes;
    time.onBarChange = [&] (std::int32_t index, const Bar& before, const Bar& now) {
        log.push_back ("callback");
        changes.emplace_back (index, before, now);
    };

    BarParams params (time, time.bars[1]);
    params.getNumParam().setInt (3);
    params.getNumParam().setFloat (3.9f);
    params.getDenumParam().setNormalised (0.75f); // index 2, which is 4 as well
    EXPECT_TRUE (log.empty());

    params.getNumParam().setInt (5);
    params.getDenumParam().setNormalised (0.0f);
    EXPECT_EQ (log, (Log { "value", "bars", "callback", "value", "bars", "callback" }));

    Bar removed { 4, 4 }; // equal in value to bar 0, but not the same bar
    BarParams (time, removed).getNumParam().setInt (7);

    ASSERT_EQ (changes.size(), 3u);
    EXPECT_EQ (changes[0], std::make_tuple (1, Bar { 3, 4 }, Bar { 5, 4 }));
    EXPECT_EQ (changes[1], std::make_tuple (1, Bar { 5, 4 }, Bar { 5, 16 }));
    EXPECT_EQ (std::get<0> (changes[2]), -1) << "a bar that is not in the list";
}

TEST (NumParam, NormalisedPositionsRoundTripOverTheWholeRange)
{
    Bar bar;
    NumParam param (bar, {});

    EXPECT_FLOAT_EQ (param.getDefaultNormalised(), 3.0f / 31.0f);

    for (int num = 1; num <= 32; ++num)
    {
        Bar probe { num, 4 };
        const auto position = NumParam (probe, {}).getNormalised();
        param.setNormalised (position);
        EXPECT_EQ (bar.num, num) << "position " << position;
    }

    EXPECT_EQ (param.getText(), "32");
}

TEST (DenumParam, ReadsAndWritesThroughSeparateTables)
{
    Bar bar;
    DenumParam param (bar, {});

    const struct
    {
        std::int32_t denum;
        float read;
    } rows[] = { { 16, 0.0f }, { 8, 1.0f / 3.0f }, { 4, 2.0f / 3.0f }, { 2, 1.0f }, { 32, 0.0f }, { 3, 0.0f } };

    for (const auto& row : rows)
    {
        bar.denum = row.denum;
        EXPECT_FLOAT_EQ (param.getNormalised(), row.read) << row.denum;
        EXPECT_EQ (param.getFloat(), static_cast<float> (row.denum));
        EXPECT_EQ (param.getText(), juce::String (row.denum));
    }

    const struct
    {
        float written;
        std::int32_t denum;
    } writes[] = { { 0.0f, 16 }, { 0.3f, 16 }, { 1.0f / 3.0f, 8 }, { 2.0f / 3.0f, 4 }, { 0.75f, 4 }, { 0.99f, 4 }, { 1.0f, 2 }, { 5.0f, 2 }, { -1.0f, 16 } };

    for (const auto& w : writes)
    {
        bar.denum = 64;
        param.setNormalised (w.written);
        EXPECT_EQ (bar.denum, w.denum) << w.written;
    }

    EXPECT_EQ (param.getDefaultNormalised(), 0.75f);
    bar.denum = -8;
    EXPECT_EQ (param.getText(), "-8");
}

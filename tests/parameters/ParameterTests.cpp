#include "ParameterTestDoubles.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Orv;
using Orv::Testing::CallLog;
using Orv::Testing::ChainSpy;

namespace
{
/** Serves only the float link of the chain. */
class FloatOnly : public Parameters::DefaultGesture
{
public:
    float getNormalised() const override { return normalised; }
    void setNormalisedNotifying (float v) override { normalised = v; }
    void setFloat (float v) override { received = v; }
    float getFloat() const override { return floatValue; }

    float normalised = 0.0f;
    float received = -1.0f;
    float floatValue = 0.0f;
};

/** A discrete parameter whose text for a normalised value shows the value
    it was asked about. */
class FourSteps : public Parameters::DefaultGesture
{
public:
    float getNormalised() const override { return normalised; }
    void setNormalisedNotifying (float v) override { normalised = v; }
    juce::String getTextFor (float v) const override { return juce::String (v); }
    bool isDiscrete() const override { return true; }
    int getNumChoices() const override { return 4; }
    int getInt() const override { return (int) std::lround (normalised * 4.0f); }
    void setInt (int i) override { normalised = (float) i / 4.0f; }

    float normalised = 0.0f;
};
} // namespace

//==============================================================================
TEST (ParameterDefaults, SetIntTravelsTheWholeChainToTheNotifyingSetter)
{
    CallLog log;
    ChainSpy p (log);

    p.setInt (1);

    EXPECT_EQ (log, (CallLog { "setInt", "setFloat", "setNormalised", "setNormalisedNotifying" }));
    EXPECT_FLOAT_EQ (p.value, 1.0f);
}

TEST (ParameterDefaults, SetBoolSkipsSetNormalisedAndGoesStraightToTheNotifyingSetter)
{
    CallLog log;
    ChainSpy p (log);

    p.setBool (true);
    EXPECT_EQ (log, (CallLog { "setBool", "setNormalisedNotifying" }));
    EXPECT_FLOAT_EQ (p.value, 1.0f);

    p.setBool (false);
    EXPECT_FLOAT_EQ (p.value, 0.0f);
}

TEST (ParameterDefaults, SubclassServingOnlySetFloatReceivesSetIntAndText)
{
    FloatOnly p;

    p.setInt (3);
    EXPECT_FLOAT_EQ (p.received, 3.0f);

    p.setFromText ("2.5");
    EXPECT_FLOAT_EQ (p.received, 2.5f);
    EXPECT_FLOAT_EQ (p.normalised, 0.0f);
}

TEST (ParameterDefaults, GarbledTextGivesZero)
{
    CallLog log;
    ChainSpy p (log);
    p.value = 0.7f;

    p.setFromText ("not a number");

    EXPECT_FLOAT_EQ (p.value, 0.0f);
}

TEST (ParameterDefaults, GetIntTruncatesGetFloatTowardZero)
{
    FloatOnly p;

    p.floatValue = 2.9f;
    EXPECT_EQ (p.getInt(), 2);

    p.floatValue = -2.9f;
    EXPECT_EQ (p.getInt(), -2);
}

TEST (ParameterDefaults, GetBoolIsFalseAtExactlyOneHalf)
{
    CallLog log;
    ChainSpy p (log);

    p.value = 0.5f;
    EXPECT_FALSE (p.getBool());

    p.value = std::nextafter (0.5f, 1.0f);
    EXPECT_TRUE (p.getBool());
}

TEST (ParameterDefaults, TextShowsTheFloatValueAndTextForShowsThePresentValueNotTheArgument)
{
    FloatOnly p;
    p.floatValue = 12.25f;
    p.normalised = 0.75f;

    EXPECT_EQ (p.getText(), "12.25");
    EXPECT_EQ (p.getTextFor (0.1f), "0.75");
}

TEST (ParameterDefaults, TextForIntIsEmptyUnlessDiscrete)
{
    FloatOnly continuous;
    EXPECT_EQ (continuous.getTextForInt (1), "");

    FourSteps discrete;
    EXPECT_EQ (discrete.getTextForInt (1), juce::String (0.25f));
    EXPECT_EQ (discrete.getTextForInt (3), juce::String (0.75f));
}

TEST (ParameterDefaults, DiscreteMenuEntrySetsItsIndexInsideAGestureAndTicksTheCurrentOne)
{
    FourSteps p;
    const auto menu = p.getMenuChoices();

    EXPECT_EQ (menu.type, MenuItems::Item::subMenuRoot);
    ASSERT_EQ (menu.subItems.size(), 4u);
    EXPECT_EQ (menu.subItems[2].type, MenuItems::Item::plainEntry);
    EXPECT_EQ (menu.subItems[2].name, juce::String (0.5f));
    EXPECT_FALSE (menu.subItems[2].isSelected());

    menu.subItems[2].func();

    EXPECT_EQ (p.getInt(), 2);
    EXPECT_TRUE (menu.subItems[2].isSelected());
    EXPECT_FALSE (menu.subItems[0].isSelected());
    EXPECT_FALSE (p.isInGesture());
}

TEST (ParameterDefaults, MenuEntryOpensAndClosesAGestureAroundTheSetter)
{
    CallLog log;

    struct DiscreteSpy : ChainSpy
    {
        using ChainSpy::ChainSpy;
        bool isDiscrete() const override { return true; }
        int getNumChoices() const override { return 2; }
    } p (log);

    p.getMenuChoices().subItems[1].func();

    ASSERT_GE (log.size(), 3u);
    EXPECT_EQ (log.front(), "beginGesture");
    EXPECT_EQ (log[1], "setInt");
    EXPECT_EQ (log.back(), "endGesture");
}

//==============================================================================
TEST (ParameterReflect, SavesTheDisplayTextUnderValue)
{
    FloatOnly p;
    p.floatValue = 4.5f;
    Testing::FakeReflector saver (false);

    p.reflect (saver);

    ASSERT_EQ (saver.values.count ("value"), 1u);
    EXPECT_EQ (saver.values["value"], ReflectedValue ("4.5"));
}

TEST (ParameterReflect, LoadsThroughSetFromText)
{
    FloatOnly p;
    Testing::FakeReflector loader (true);
    loader.values["value"] = ReflectedValue ("7.25");

    p.reflect (loader);

    EXPECT_FLOAT_EQ (p.received, 7.25f);
}

TEST (ParameterReflect, LoadsANumberStoredAsNumber)
{
    FloatOnly p;
    Testing::FakeReflector loader (true);
    loader.values["value"] = ReflectedValue (3);

    p.reflect (loader);

    EXPECT_FLOAT_EQ (p.received, 3.0f);
}

TEST (ParameterReflect, MissingKeyLeavesTheValueUntouched)
{
    CallLog log;
    ChainSpy p (log);
    p.value = 0.7f;
    Testing::FakeReflector loader (true);

    p.reflect (loader);

    EXPECT_FLOAT_EQ (p.value, 0.7f);
    EXPECT_TRUE (log.empty());
}

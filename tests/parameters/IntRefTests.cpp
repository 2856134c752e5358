#include "parameters/IntRef.h"

#include <gtest/gtest.h>

using Orv::Parameters::IntRef;

TEST (IntRefParameter, SettingPastTheUpperBoundWrapsToTheLower)
{
    int value = 7;
    IntRef<int> p (value, 0.0f, 7.0f);

    p.setInt (8);

    EXPECT_EQ (value, 0);
}

TEST (IntRefParameter, SettingBelowTheLowerBoundWrapsToTheUpper)
{
    int value = 0;
    IntRef<int> p (value, 0.0f, 7.0f);

    p.setInt (-1);

    EXPECT_EQ (value, 7);
}

TEST (IntRefParameter, FarOutOfRangeWrapsOnlyOnceNotModulo)
{
    int value = 3;
    IntRef<int> p (value, 2.0f, 5.0f);

    p.setInt (100);
    EXPECT_EQ (value, 2);

    p.setInt (-100);
    EXPECT_EQ (value, 5);
}

TEST (IntRefParameter, NumChoicesIsTheLengthOfTheRangeWithoutPlusOne)
{
    int value = 1;
    IntRef<int> p (value, 1.0f, 128.0f);

    EXPECT_EQ (p.getNumChoices(), 127);
}

TEST (IntRefParameter, DefaultMenuListsIndicesFromZeroWhateverTheBounds)
{
    int value = 1;
    IntRef<int> p (value, 1.0f, 128.0f);

    const auto menu = p.getMenuChoices();

    ASSERT_EQ (menu.subItems.size(), 127u);
    EXPECT_EQ (menu.subItems.front().name, "0");
    EXPECT_EQ (menu.subItems[1].name, "1");
    EXPECT_EQ (menu.subItems.back().name, "126");
    EXPECT_TRUE (menu.subItems[1].isSelected());
}

TEST (IntRefParameter, MenuEntryStoresItsIndexThroughTheWrappingSetter)
{
    int value = 5;
    IntRef<int> p (value, 1.0f, 128.0f);
    const auto menu = p.getMenuChoices();

    menu.subItems[3].func();
    EXPECT_EQ (value, 3);
    EXPECT_FALSE (p.isInGesture());

    // Index 0 lies below the lower bound and wraps to the top.
    menu.subItems[0].func();
    EXPECT_EQ (value, 128);
}

TEST (IntRefParameter, AllChoicesRunFromTheLowerBoundUpToButWithoutTheUpper)
{
    int value = 1;
    IntRef<int> p (value, 1.0f, 4.0f);

    EXPECT_EQ (p.getAllChoices(), (std::vector<juce::String> { "1", "2", "3" }));

    IntRef<int> negative (value, -2.0f, 1.0f);
    EXPECT_EQ (negative.getAllChoices(), (std::vector<juce::String> { "-2", "-1", "0" }));
}

TEST (IntRefParameter, EqualBoundsGiveNoChoices)
{
    int value = 4;
    IntRef<int> p (value, 4.0f, 4.0f);

    EXPECT_TRUE (p.getAllChoices().empty());
    EXPECT_EQ (p.getNumChoices(), 0);
    EXPECT_TRUE (p.getMenuChoices().subItems.empty());
}

TEST (IntRefParameter, NormalisedFollowsTheRangeAndClampsAStoredValueOutsideIt)
{
    int value = 2;
    IntRef<int> p (value, 0.0f, 8.0f);
    EXPECT_FLOAT_EQ (p.getNormalised(), 0.25f);

    value = 20;
    EXPECT_FLOAT_EQ (p.getNormalised(), 1.0f);

    value = -3;
    EXPECT_FLOAT_EQ (p.getNormalised(), 0.0f);
}

TEST (IntRefParameter, NormalisedSettersTruncateTheRangeValue)
{
    int value = 0;
    IntRef<int> p (value, 0.0f, 7.0f);

    p.setNormalisedNotifying (0.5f); // 3.5
    EXPECT_EQ (value, 3);

    p.setNormalised (0.99f); // 6.93
    EXPECT_EQ (value, 6);

    p.setBool (true);
    EXPECT_EQ (value, 7);
}

TEST (IntRefParameter, FloatAndTextSettersTruncate)
{
    int value = 0;
    IntRef<int> p (value, 0.0f, 7.0f);

    p.setFloat (4.9f);
    EXPECT_EQ (value, 4);

    p.setFromText ("5.7");
    EXPECT_EQ (value, 5);
}

TEST (IntRefParameter, GarbledTextGivesZeroAndTheWrapRuleStillApplies)
{
    int value = 5;
    IntRef<int> within (value, 0.0f, 7.0f);
    within.setFromText ("five");
    EXPECT_EQ (value, 0);

    int grid = 16;
    IntRef<int> above (grid, 1.0f, 128.0f);
    above.setFromText ("??");
    EXPECT_EQ (grid, 128);
}

TEST (IntRefParameter, TextsAreDecimal)
{
    int value = -3;
    IntRef<int> p (value, -8.0f, 8.0f);

    EXPECT_EQ (p.getText(), "-3");
    EXPECT_EQ (p.getTextForInt (-12), "-12");
    EXPECT_EQ (p.getTextFor (0.75f), "4");
    EXPECT_FLOAT_EQ (p.getFloat(), -3.0f);
    EXPECT_EQ (p.getInt(), -3);
}

TEST (IntRefParameter, SubclassRangeDrivesNormalisationAndText)
{
    struct Doubled : IntRef<int>
    {
        using IntRef::IntRef;
        juce::NormalisableRange<float> getRange() const override { return { 0.0f, 16.0f, 0.0f, 1.0f }; }
    };

    int value = 4;
    Doubled p (value, 0.0f, 8.0f);

    EXPECT_FLOAT_EQ (p.getNormalised(), 0.25f);
    EXPECT_EQ (p.getTextFor (0.5f), "8");
}

#include "parameters/IntRef.h"

#include <gtest/gtest.h>

#include <functional>

using Orv::Parameters::IntRef;

TEST (IntRefParameter, EverySetterTruncatesThenWrapsPastOneBoundToTheOther)
{
    using Set = std::function<void (IntRef<int>&)>;
    const struct
    {
        const char* what;
        float lower, upper;
        Set set;
        int stored;
    } cases[] = {
        { "8 in 0..7 wraps to 0", 0, 7, [] (auto& p) { p.setInt (8); }, 0 },
        { "-1 in 0..7 wraps to 7", 0, 7, [] (auto& p) { p.setInt (-1); }, 7 },
        { "far above wraps once, not modulo", 2, 5, [] (auto& p) { p.setInt (100); }, 2 },
        { "far below wraps once, not modulo", 2, 5, [] (auto& p) { p.setInt (-100); }, 5 },
        { "normalised 0.5 is 3.5", 0, 7, [] (auto& p) { p.setNormalisedNotifying (0.5f); }, 3 },
        { "normalised 0.99 is 6.93", 0, 7, [] (auto& p) { p.setNormalised (0.99f); }, 6 },
        { "on is the top", 0, 7, [] (auto& p) { p.setBool (true); }, 7 },
        { "float", 0, 7, [] (auto& p) { p.setFloat (4.9f); }, 4 },
        { "text", 0, 7, [] (auto& p) { p.setFromText ("5.7"); }, 5 },
        { "garbled text is 0", 0, 7, [] (auto& p) { p.setFromText ("five"); }, 0 },
        { "garbled text is 0, which wraps", 1, 128, [] (auto& p) { p.setFromText ("??"); }, 128 },
    };

    for (const auto& c : cases)
    {
        int value = 3;
        IntRef<int> p (value, c.lower, c.upper);
        c.set (p);
        EXPECT_EQ (value, c.stored) << c.what;
    }
}

TEST (IntRefParameter, OneTo128CountsTheRangeAndListsIndicesFromZeroThroughTheWrappingSetter)
{
    int value = 1;
    IntRef<int> p (value, 1.0f, 128.0f);
    EXPECT_EQ (p.getNumChoices(), 127);

    const auto menu = p.getMenuChoices();
    ASSERT_EQ (menu.subItems.size(), 127u);
    EXPECT_EQ (menu.subItems.front().name, "0");
    EXPECT_EQ (menu.subItems[1].name, "1");
    EXPECT_EQ (menu.subItems.back().name, "126");
    EXPECT_TRUE (menu.subItems[1].isSelected());

    menu.subItems[3].func();
    EXPECT_EQ (value, 3);
    EXPECT_FALSE (p.isInGesture());
    menu.subItems[0].func();
    EXPECT_EQ (value, 128) << "index 0 lies below the lower bound";
}

TEST (IntRefParameter, AllChoicesRunFromTheLowerBoundUpToButWithoutTheUpper)
{
    int value = 4;
    EXPECT_EQ (IntRef<int> (value, 1.0f, 4.0f).getAllChoices(), (std::vector<juce::String> { "1", "2", "3" }));
    EXPECT_EQ (IntRef<int> (value, -2.0f, 1.0f).getAllChoices(), (std::vector<juce::String> { "-2", "-1", "0" }));

    IntRef<int> none (value, 4.0f, 4.0f);
    EXPECT_TRUE (none.getAllChoices().empty());
    EXPECT_EQ (none.getNumChoices(), 0);
    EXPECT_TRUE (none.getMenuChoices().subItems.empty());
}

TEST (IntRefParameter, NormalisedAndTextsFollowTheRangeWhichASubclassMayChange)
{
    int value = 2;
    IntRef<int> p (value, 0.0f, 8.0f);
    EXPECT_FLOAT_EQ (p.getNormalised(), 0.25f);
    value = 20;
    EXPECT_FLOAT_EQ (p.getNormalised(), 1.0f) << "a stored value outside the range is clamped";
    value = -3;
    EXPECT_FLOAT_EQ (p.getNormalised(), 0.0f);
    EXPECT_EQ (p.getText(), "-3");
    EXPECT_EQ (p.getTextForInt (-12), "-12");
    EXPECT_EQ (p.getTextFor (0.75f), "6");
    EXPECT_EQ (p.getInt(), -3);

    struct Doubled : IntRef<int>
    {
        using IntRef::IntRef;
        juce::NormalisableRange<float> getRange() const override { return { 0.0f, 16.0f, 0.0f, 1.0f }; }
    } doubled (value, 0.0f, 8.0f);
    value = 4;
    EXPECT_FLOAT_EQ (doubled.getNormalised(), 0.25f);
    EXPECT_EQ (doubled.getTextFor (0.5f), "8");
}

#include "parameters/BoolRef.h"

#include <gtest/gtest.h>

using Orv::Parameters::BoolRef;

TEST (BoolRefParameter, TextForIntIsOffBelowOneAndOnFromOneUp)
{
    bool value = false;
    BoolRef p (value);

    EXPECT_EQ (p.getTextForInt (0), "Off");
    EXPECT_EQ (p.getTextForInt (-3), "Off");
    EXPECT_EQ (p.getTextForInt (1), "On");
    EXPECT_EQ (p.getTextForInt (5), "On");
}

TEST (BoolRefParameter, OneHalfStoresFalse)
{
    bool value = true;
    BoolRef p (value);

    p.setNormalisedNotifying (0.5f);
    EXPECT_FALSE (value);

    p.setNormalisedNotifying (0.9f);
    EXPECT_TRUE (value);
}

TEST (BoolRefParameter, SubclassTextsReachMenuAndDisplay)
{
    struct Named : BoolRef
    {
        using BoolRef::BoolRef;
        juce::String getOnText() const override { return "Sync"; }
        juce::String getOffText() const override { return "Free"; }
    };

    bool value = true;
    Named p (value);

    EXPECT_EQ (p.getText(), "Sync");
    const auto menu = p.getMenuChoices();
    ASSERT_EQ (menu.subItems.size(), 2u);
    EXPECT_EQ (menu.subItems[0].name, "Free");
    EXPECT_EQ (menu.subItems[1].name, "Sync");
}

TEST (BoolRefParameter, MenuOfferingOffAndOnSetsTheField)
{
    bool value = false;
    BoolRef p (value);
    const auto menu = p.getMenuChoices();

    ASSERT_EQ (menu.subItems.size(), 2u);
    EXPECT_TRUE (menu.subItems[0].isSelected());

    menu.subItems[1].func();
    EXPECT_TRUE (value);
    EXPECT_TRUE (menu.subItems[1].isSelected());
    EXPECT_FALSE (menu.subItems[0].isSelected());

    menu.subItems[0].func();
    EXPECT_FALSE (value);
}

TEST (BoolRefParameter, GarbledTextSwitchesOffAndNumericTextSwitchesOn)
{
    bool value = true;
    BoolRef p (value);

    p.setFromText ("garbled");
    EXPECT_FALSE (value);

    p.setFromText ("1");
    EXPECT_TRUE (value);
}

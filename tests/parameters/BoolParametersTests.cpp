#include "parameters/AtomicBool.h"
#include "parameters/BoolRef.h"

#include <gtest/gtest.h>

#include <functional>

using Orv::Parameters::AtomicBool;
using Orv::Parameters::BoolRef;
using Orv::Parameters::Parameter;

TEST (BoolParameters, OneHalfIsOffAndEveryInheritedSetterReachesTheField)
{
    bool field = true;
    std::atomic<std::uint8_t> byte { 1 };
    BoolRef boolRef (field);
    AtomicBool atomicBool (byte);

    const std::pair<Parameter*, std::function<bool()>> parameters[] = {
        { &boolRef, [&] { return field; } },
        { &atomicBool, [&] { return byte.load() == 1; } },
    };

    for (const auto& [p, isOn] : parameters)
    {
        p->setNormalisedNotifying (0.5f);
        EXPECT_FALSE (isOn());
        p->setNormalisedNotifying (0.51f);
        EXPECT_TRUE (isOn());
        p->setInt (0);
        EXPECT_FALSE (isOn());
        p->setFromText ("1");
        EXPECT_TRUE (isOn());
        p->setNormalised (0.0f);
        EXPECT_FALSE (isOn());
        p->setBool (true);
        EXPECT_TRUE (isOn());
        p->setFromText ("garbled");
        EXPECT_FALSE (isOn());
    }
}

TEST (BoolParameters, AtomicBoolReadsOnlyBitZeroOfTheByte)
{
    std::atomic<std::uint8_t> byte { 2 };
    AtomicBool p (byte);
    EXPECT_FALSE (p.getBool());
    byte = 3;
    EXPECT_FLOAT_EQ (p.getNormalised(), 1.0f);
}

TEST (BoolParameters, BoolRefMenuAndTextsUseTheSubclasssNames)
{
    struct Named : BoolRef
    {
        using BoolRef::BoolRef;
        juce::String getOnText() const override { return "Sync"; }
        juce::String getOffText() const override { return "Free"; }
    };

    bool value = false;
    Named p (value);
    EXPECT_EQ (p.getText(), "Free");
    EXPECT_EQ (p.getTextForInt (-3), "Free");
    EXPECT_EQ (p.getTextForInt (1), "Sync");
    EXPECT_EQ (p.getTextForInt (5), "Sync");
    EXPECT_EQ (BoolRef (value).getTextForInt (1), "On");

    const auto menu = p.getMenuChoices();
    ASSERT_EQ (menu.subItems.size(), 2u);
    EXPECT_EQ (menu.subItems[0].name, "Free");
    EXPECT_EQ (menu.subItems[1].name, "Sync");
    EXPECT_TRUE (menu.subItems[0].isSelected());

    menu.subItems[1].func();
    EXPECT_TRUE (value);
    EXPECT_EQ (p.getText(), "Sync");
    EXPECT_TRUE (menu.subItems[1].isSelected());
    EXPECT_FALSE (menu.subItems[0].isSelected());
    menu.subItems[0].func();
    EXPECT_FALSE (value);
}

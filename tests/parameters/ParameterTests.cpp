#include "ParameterTestDoubles.h"
#include "parameters/MenuItems.h"

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

/** A discrete spy whose text for a normalised value shows the value asked about. */
struct FourSteps : ChainSpy
{
    using ChainSpy::ChainSpy;
    juce::String getTextFor (float v) const override { return juce::String (v); }
    bool isDiscrete() const override { return true; }
    int getNumChoices() const override { return 4; }
};

MenuItems::Item makeEntry (const char* name, CallLog& log)
{
    MenuItems::Item item;
    item.name = name;
    item.func = [&log, name] { log.push_back (name); };
    return item;
}
} // namespace

//==============================================================================
TEST (ParameterDefaults, SetIntTravelsTheWholeChainAndSetBoolSkipsSetNormalised)
{
    CallLog log;
    ChainSpy p (log);

    p.setInt (1);
    EXPECT_EQ (log, (CallLog { "setInt", "setFloat", "setNormalised", "setNormalisedNotifying" }));
    EXPECT_FLOAT_EQ (p.value, 1.0f);

    log.clear();
    p.setBool (false);
    EXPECT_EQ (log, (CallLog { "setBool", "setNormalisedNotifying" }));
    EXPECT_FLOAT_EQ (p.value, 0.0f);
    p.setBool (true);
    EXPECT_FLOAT_EQ (p.value, 1.0f);

    p.setFromText ("not a number");
    EXPECT_FLOAT_EQ (p.value, 0.0f) << "text that is no number gives 0";
}

TEST (ParameterDefaults, ASubclassServingOnlyTheFloatLinkGetsIntAndTextThereAndTruncatesItToZero)
{
    FloatOnly p;
    p.setInt (3);
    EXPECT_FLOAT_EQ (p.received, 3.0f);
    p.setFromText ("2.5");
    EXPECT_FLOAT_EQ (p.received, 2.5f);
    EXPECT_FLOAT_EQ (p.normalised, 0.0f);

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

TEST (ParameterDefaults, TextsShowThePresentValueNotTheArgumentAndNoIndexTextUnlessDiscrete)
{
    FloatOnly p;
    p.floatValue = 12.25f;
    p.normalised = 0.75f;
    EXPECT_EQ (p.getText(), "12.25");
    EXPECT_EQ (p.getTextFor (0.1f), "0.75");
    EXPECT_EQ (p.getTextForInt (1), "");
}

TEST (ParameterDefaults, DiscreteMenuListsEachIndexAndSetsItInsideAGesture)
{
    CallLog log;
    FourSteps p (log);
    const auto menu = p.getMenuChoices();

    EXPECT_EQ (menu.type, MenuItems::Item::subMenuRoot);
    ASSERT_EQ (menu.subItems.size(), 4u);
    EXPECT_EQ (menu.subItems[2].type, MenuItems::Item::plainEntry);
    EXPECT_EQ (menu.subItems[2].name, juce::String (0.5f));
    EXPECT_FALSE (menu.subItems[2].isSelected());

    menu.subItems[2].func();
    EXPECT_EQ (log, (CallLog { "beginGesture", "setInt", "setFloat", "setNormalised", "setNormalisedNotifying", "endGesture" }));
    EXPECT_EQ (p.getInt(), 2);
    EXPECT_TRUE (menu.subItems[2].isSelected());
    EXPECT_FALSE (menu.subItems[0].isSelected());
    EXPECT_FALSE (p.isInGesture());
}

TEST (ParameterReflect, SavesTheTextUnderValueAndLoadsTextOrNumberThroughSetFromText)
{
    FloatOnly p;
    p.floatValue = 4.5f;
    EXPECT_EQ (Testing::save (p), nlohmann::json::parse (R"({"value":"4.5"})"));

    Testing::load (R"({"value":"7.25"})", p);
    EXPECT_FLOAT_EQ (p.received, 7.25f);
    Testing::load (R"({"value":3})", p);
    EXPECT_FLOAT_EQ (p.received, 3.0f);

    CallLog log;
    ChainSpy untouched (log);
    untouched.value = 0.7f;
    Testing::load ("{}", untouched);
    EXPECT_FLOAT_EQ (untouched.value, 0.7f);
    EXPECT_TRUE (log.empty()) << "a load without the key leaves the value alone";
}

TEST (MenuItemsSetRecursiveFunc, EveryLevelRunsItsOwnActionFirstThenEachAddedOneInOrder)
{
    CallLog log;
    auto root = makeEntry ("root", log);
    auto branch = makeEntry ("branch", log);
    branch.subItems.push_back (makeEntry ("leaf", log));
    branch.subItems.emplace_back(); // without an action of its own
    root.subItems.push_back (branch);
    root.subItems.push_back (makeEntry ("sibling", log));

    Orv::Parameters::setRecursiveFunc (root, [&log] { log.push_back ("+"); });
    Orv::Parameters::setRecursiveFunc (root.subItems[1], [&log] { log.push_back ("++"); });

    for (const auto* item : { &root, &root.subItems[0], &root.subItems[0].subItems[0], &root.subItems[0].subItems[1], &root.subItems[1] })
        item->func();

    EXPECT_EQ (log, (CallLog { "root", "+", "branch", "+", "leaf", "+", "+", "sibling", "+", "++" }));
}

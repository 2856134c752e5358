#include "ParameterTestDoubles.h"
#include "parameters/ConnectedState.h"
#include "parameters/Connector.h"
#include "parameters/IntRef.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

using namespace Orv;
using Orv::Parameters::ConnectedState;
using Orv::Parameters::Connector;
using Orv::Testing::CallLog;
using Orv::Testing::ChainSpy;

namespace
{
/** Answers every question with a value that no default would give. */
class Distinctive : public Parameters::Parameter
{
public:
    float getNormalised() const override { return 0.2f; }
    void setNormalisedNotifying (float v) override { log.add ("setNormalisedNotifying " + juce::String (v)); }
    void setNormalised (float v) override { log.add ("setNormalised " + juce::String (v)); }
    void setInt (int i) override { log.add ("setInt " + juce::String (i)); }
    void setBool (bool b) override { log.add ("setBool " + juce::String ((int) b)); }
    void setFloat (float v) override { log.add ("setFloat " + juce::String (v)); }
    void setFromText (const juce::String& t) override { log.add ("setFromText " + t); }
    void reflect (Reflector&) override { log.add ("reflect"); }
    juce::String getName() const override { return "Name"; }
    juce::String getTextFor (float v) const override { return "for " + juce::String (v); }
    juce::String getText() const override { return "text"; }
    juce::String getTextForInt (int i) const override { return "int " + juce::String (i); }
    MenuItems::Item getMenuChoices() override { return { MenuItems::Item::plainEntry, "menu" }; }
    float getFloat() const override { return 42.5f; }
    int getInt() const override { return 7; }
    bool getBool() const override { return true; }
    bool isUndoable() const override { return true; }
    bool isDiscrete() const override { return true; }
    int getNumChoices() const override { return 5; }
    float getDefaultNormalised() const override { return 0.3f; }
    bool isInGesture() const override { return gesture; }
    void beginGesture() override { gesture = true; }
    void endGesture() override { gesture = false; }

    juce::StringArray log;
    bool gesture = false;
};
} // namespace

//==============================================================================
TEST (ConnectorForwarding, EveryOperationButReflectReachesTheTargetUnchanged)
{
    Distinctive target;
    auto c = Connector::referringTo (target);

    EXPECT_FLOAT_EQ (c.getNormalised(), 0.2f);
    EXPECT_EQ (c.getName(), "Name");
    EXPECT_EQ (c.getTextFor (0.5f), "for 0.5");
    EXPECT_EQ (c.getText(), "text");
    EXPECT_EQ (c.getTextForInt (3), "int 3");
    EXPECT_EQ (c.getMenuChoices().name, "menu");
    EXPECT_FLOAT_EQ (c.getFloat(), 42.5f);
    EXPECT_EQ (c.getInt(), 7);
    EXPECT_TRUE (c.getBool() && c.isUndoable() && c.isDiscrete());
    EXPECT_EQ (c.getNumChoices(), 5);
    EXPECT_FLOAT_EQ (c.getDefaultNormalised(), 0.3f);

    c.setNormalised (0.25f);
    c.setInt (3);
    c.setBool (true);
    c.setFloat (1.5f);
    c.setFromText ("abc");
    c.setNormalisedNotifying (0.75f);
    EXPECT_EQ (target.log.joinIntoString ("|"), "setNormalised 0.25|setInt 3|setBool 1|setFloat 1.5|setFromText abc|setNormalisedNotifying 0.75");

    c.beginGesture();
    EXPECT_TRUE (target.gesture && c.isInGesture());
    c.endGesture();
    EXPECT_FALSE (target.gesture);

    // Reflect stays the text round trip rather than the target's own reflect.
    target.log.clear();
    EXPECT_EQ (Testing::save (c), nlohmann::json::parse (R"({"value":"text"})"));
    Testing::load (R"({"value":"9"})", c);
    EXPECT_EQ (target.log, juce::StringArray ("setFromText 9"));
}

//==============================================================================
TEST (ConnectorOwnership, AnOwningConnectorAndItsCopiesKeepTheTargetAliveTogether)
{
    CallLog log;
    bool destroyed = false;
    std::optional<Connector> original;
    original.emplace (new ChainSpy (log, &destroyed));
    EXPECT_TRUE (original->ownsTarget());

    auto copy = std::make_unique<Connector> (*original);
    original.reset();
    EXPECT_FALSE (destroyed);
    EXPECT_TRUE (copy->ownsTarget());
    copy->setNormalisedNotifying (0.5f);
    EXPECT_FLOAT_EQ (copy->getNormalised(), 0.5f);

    copy.reset();
    EXPECT_TRUE (destroyed);
}

TEST (ConnectorOwnership, AReferringCopyWorksOnAfterItsSourceIsGoneButKeepsNothingAlive)
{
    CallLog log;
    bool destroyed = false;
    std::optional<Connector> owner;
    owner.emplace (new ChainSpy (log, &destroyed));
    auto& target = static_cast<ChainSpy&> (*owner->getTarget());

    std::optional<Connector> referring;
    referring.emplace (Connector::referringTo (target));
    Connector copy (*referring);
    Connector copyOfCopy (copy);
    referring.reset();

    copyOfCopy.setNormalisedNotifying (0.75f);
    EXPECT_FLOAT_EQ (target.value, 0.75f);
    EXPECT_FLOAT_EQ (copy.getNormalised(), 0.75f);
    EXPECT_FALSE (copy.ownsTarget() || copyOfCopy.ownsTarget());

    owner.reset();
    EXPECT_TRUE (destroyed);
}

TEST (ConnectorOwnership, AssignmentFollowsTheSameRuleAsCopying)
{
    CallLog log;
    bool ownedDestroyed = false;
    ChainSpy referred (log);
    Connector owning (new ChainSpy (log, &ownedDestroyed));
    auto target = Connector::referringTo (referred);

    target = owning;
    EXPECT_TRUE (target.ownsTarget());
    EXPECT_EQ (target.getTarget(), owning.getTarget());

    owning = Connector::referringTo (referred);
    EXPECT_FALSE (ownedDestroyed);
    EXPECT_FALSE (owning.ownsTarget());

    target = owning;
    EXPECT_TRUE (ownedDestroyed);
    EXPECT_EQ (target.getTarget(), &referred);
}

//==============================================================================
TEST (ConnectedState, IsOnOnlyWhileTheTargetHoldsTheOnValueAndSwitchingWritesOnOrOff)
{
    int mode = 0;
    Parameters::IntRef<int> target (mode, 0.0f, 7.0f);
    ConnectedState state (Connector::referringTo (target), 3, 1);

    for (const auto& [held, on] : { std::pair { 0, false }, { 3, true }, { 1, false }, { 5, false } })
    {
        mode = held;
        EXPECT_EQ (state.getNormalised(), on ? 1.0f : 0.0f) << held;
        EXPECT_EQ (state.getBool(), on) << held;
    }

    state.setNormalisedNotifying (0.51f);
    EXPECT_EQ (mode, 3);
    state.setNormalisedNotifying (0.5f);
    EXPECT_EQ (mode, 1);
    state.setBool (true);
    EXPECT_EQ (mode, 3);
}

TEST (ConnectedState, GesturesAndUndoAreTheTargets)
{
    struct Undoable : Testing::ChainSpy
    {
        using ChainSpy::ChainSpy;
        bool isUndoable() const override { return true; }
    };

    Testing::CallLog log;
    Undoable target (log);
    ConnectedState state (Connector::referringTo (target), 1, 0);
    EXPECT_TRUE (state.isUndoable());

    state.beginGesture();
    EXPECT_TRUE (target.isInGesture() && state.isInGesture());
    state.endGesture();
    EXPECT_FALSE (target.isInGesture() || state.isInGesture());
}

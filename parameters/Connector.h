#pragma once

#include "parameters/Parameter.h"

#include <memory>

namespace Orv::Parameters
{
/** The value that the GUI holds to reach a parameter: every operation is
    forwarded to the target, except reflect, which stays the base's text
    round trip through getText and setFromText.

    A connector either owns its target (shared with its copies) or only
    refers to it. A copy of an owning connector shares ownership; a copy of a
    referring one refers too and keeps nothing alive, so the owner of the
    target decides its lifetime.

    Same threads as the target's operations: message thread only for all the
    parameters of this folder except AtomicBool. */
class Connector : public Parameter
{
public:
    /** Takes ownership: the parameter dies with the last connector sharing it. */
    explicit Connector (Parameter* parameterToOwn);

    /** Shares ownership when the source owns its target, otherwise refers. */
    Connector (const Connector& other);

    /** The same rule as the copy constructor. */
    Connector& operator= (const Connector& other);

    /** A connector that only refers to a parameter that someone else keeps
        alive for as long as this connector or any copy of it exists. */
    static Connector referringTo (Parameter& target);

    /** The parameter that all operations go to. */
    Parameter* getTarget() const noexcept { return target; }

    /** True when this connector keeps its target alive. */
    bool ownsTarget() const noexcept { return target != nullptr && target == owner.get(); }

    //==============================================================================
    float getNormalised() const override;
    void setNormalised (float normalised) override;
    void setInt (int value) override;
    void setBool (bool value) override;
    void setFloat (float value) override;
    juce::String getName() const override;
    juce::String getTextFor (float normalised) const override;
    juce::String getText() const override;
    juce::String getTextForInt (int index) const override;
    void setFromText (const juce::String& text) override;
    void setNormalisedNotifying (float normalised) override;
    MenuItems::Item getMenuChoices() override;
    float getFloat() const override;
    int getInt() const override;
    bool getBool() const override;
    bool isUndoable() const override;
    bool isDiscrete() const override;
    int getNumChoices() const override;
    float getDefaultNormalised() const override;
    bool isInGesture() const override;
    void beginGesture() override;
    void endGesture() override;

private:
    struct ReferOnly
    {
    };

    Connector (ReferOnly, Parameter& targetToUse);

    /** What a copy of this connector may share: its owner when it owns its
        target, nothing when it only refers. */
    std::shared_ptr<Parameter> ownerForCopies() const;

    Parameter* target = nullptr;
    std::shared_ptr<Parameter> owner;
};
} // namespace Orv::Parameters

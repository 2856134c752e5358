#pragma once

#include "core/OctaveRange.h"
#include "parameters/IntLike.h"

#include <functional>

namespace Orv::Audio::Plugins::Halvane
{
/** The piano roll's brush as a parameter: Cursor, Pencil or Velocity. While
    the "z" key is held down on its own the brush reads as Velocity, so a
    musician can reach for it without leaving the tool in hand; letting go
    brings the chosen brush back. Setting stores the choice in the state.

    Message thread only. */
class BrushParam : public Parameters::IntLike
{
public:
    /** The key that springs the brush to Velocity while held. */
    static constexpr int velocityKey = 'z';
    static constexpr int numBrushes = 3;

    /** Whether the velocity key is held right now. */
    using KeyQuery = std::function<bool()>;

    /** The state's field must outlive the parameter. With no query, the
        keyboard is asked: the key held, and none of shift, control or alt. */
    explicit BrushParam (UIState& stateToUse, KeyQuery query = {});

    /** The brush in effect: Velocity while the key is held. */
    int getInt() const override;
    float getFloat() const override { return (float) getInt(); }
    float getNormalised() const override { return (float) getInt() / (float) (numBrushes - 1); }

    void setInt (int value) override;
    void setFloat (float value) override { setInt (juce::roundToInt (value)); }
    void setNormalisedNotifying (float normalised) override;

    juce::String getName() const override { return "Brush"; }
    juce::String getText() const override { return getTextForInt (getInt()); }
    juce::String getTextForInt (int index) const override;
    juce::String getTextFor (float normalised) const override;
    bool isDiscrete() const override { return true; }
    int getNumChoices() const override { return numBrushes; }

    /** The keyboard's answer: the key down with no modifier. */
    static bool isVelocityKeyHeld();

private:
    UIState& state;
    KeyQuery velocityKeyHeld;
};
} // namespace Orv::Audio::Plugins::Halvane

#pragma once

#include "parameters/DefaultGesture.h"

namespace Orv::Parameters
{
/** An on/off switch over a plain bool field of a record. Message thread only;
    when the audio thread needs the field, its owner publishes a copy. */
class BoolRef : public DefaultGesture
{
public:
    /** The field must outlive every Connector to this parameter. */
    explicit BoolRef (bool& valueToUse) : value (&valueToUse) {}

    /** Message thread only: 1 when the field is set. */
    float getNormalised() const override;

    /** Message thread only: stores the field. */
    void setBool (bool newValue) override;

    /** Message thread only: the on text above one half, else the off text. */
    juce::String getTextFor (float normalised) const override;

    /** Message thread only: the text of the stored state. */
    juce::String getText() const override;

    /** Message thread only: the off text for indices below 1, else the on text. */
    juce::String getTextForInt (int index) const override;

    /** Message thread only: stores whether the value is above one half. */
    void setNormalisedNotifying (float normalised) override;

    bool isDiscrete() const override { return true; }
    int getNumChoices() const override { return numStates; }

    /** Any thread: the text for on and for off; subclasses may name the states. */
    virtual juce::String getOnText() const { return "On"; }
    virtual juce::String getOffText() const { return "Off"; }

private:
    static constexpr int numStates = 2;

    bool* value;
};
} // namespace Orv::Parameters

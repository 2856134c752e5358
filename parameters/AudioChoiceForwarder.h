#pragma once

#include "parameters/AudioParamForwarderBase.h"

namespace Orv::Parameters
{
/** A JUCE choice as the GUI's Parameter, with its choices by index for
    menus and labels. Message thread. */
class AudioChoiceForwarder : public AudioParamForwarderBase
{
public:
    /** The choice outlives the forwarder. */
    explicit AudioChoiceForwarder (juce::AudioParameterChoice& choiceToUse);

    void setInt (int index) override;
    int getInt() const override;
    MenuItems::Item getMenuChoices() override;

    /** The text of a choice; empty at or past the end. */
    virtual juce::String getChoiceName (int index) const;

protected:
    juce::AudioParameterChoice* const choice;
};
} // namespace Orv::Parameters

#include "parameters/AudioChoiceForwarder.h"

#include "parameters/AudioParameterMenus.h"

namespace Orv::Parameters
{
AudioChoiceForwarder::AudioChoiceForwarder (juce::AudioParameterChoice& choiceToUse)
    : AudioParamForwarderBase (choiceToUse), choice (&choiceToUse)
{
}

void AudioChoiceForwarder::setInt (int index) { setChoice (*choice, index); }

int AudioChoiceForwarder::getInt() const { return choice->getIndex(); }

MenuItems::Item AudioChoiceForwarder::getMenuChoices() { return getMenuChoicesFor (*choice); }

juce::String AudioChoiceForwarder::getChoiceName (int index) const
{
    if (index < 0 || index >= choice->choices.size())
        return {};

    return choice->choices[index];
}
} // namespace Orv::Parameters

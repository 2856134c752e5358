#include "parameters/AudioParamForwarderBase.h"

#include "parameters/AudioParameterMenus.h"

namespace Orv::Parameters
{
namespace
{
    // The JUCE parameters' own bound for display texts and names.
    constexpr int maximumTextLength = 30;
} // namespace

AudioParamForwarderBase::AudioParamForwarderBase (juce::AudioProcessorParameter& parameter)
    : ForwarderBase (parameter)
{
    forwarded->addListener (this);
}

AudioParamForwarderBase::~AudioParamForwarderBase() { forwarded->removeListener (this); }

float AudioParamForwarderBase::getNormalised() const { return forwarded->getValue(); }

void AudioParamForwarderBase::setNormalised (float normalised) { forwarded->setValue (normalised); }

void AudioParamForwarderBase::setNormalisedNotifying (float normalised)
{
    forwarded->setValue (normalised);
    forwarded->sendValueChangedMessageToListeners (normalised);
}

void AudioParamForwarderBase::setFromText (const juce::String& text)
{
    const auto normalised = forwarded->getValueForText (text);
    forwarded->setValue (normalised);
    forwarded->sendValueChangedMessageToListeners (normalised);
}

juce::String AudioParamForwarderBase::getName() const { return forwarded->getName (maximumTextLength); }

juce::String AudioParamForwarderBase::getTextFor (float normalised) const
{
    return forwarded->getText (normalised, maximumTextLength);
}

juce::String AudioParamForwarderBase::getText() const { return forwarded->getCurrentValueAsText(); }
int AudioParamForwarderBase::getNumChoices() const { return forwarded->getNumSteps(); }
float AudioParamForwarderBase::getDefaultNormalised() const { return forwarded->getDefaultValue(); }
bool AudioParamForwarderBase::isUndoable() const { return true; }
bool AudioParamForwarderBase::isDiscrete() const { return false; }

void AudioParamForwarderBase::beginGesture()
{
    if (! gesture.exchange (true))
        forwarded->beginChangeGesture();
}

void AudioParamForwarderBase::endGesture()
{
    if (gesture.exchange (false))
        forwarded->endChangeGesture();
}

bool AudioParamForwarderBase::isInGesture() const { return gesture.load(); }

void AudioParamForwarderBase::setInt (int value)
{
    if (auto* integer = dynamic_cast<juce::AudioParameterInt*> (forwarded))
        setNotifying (*integer, value);
    else if (auto* choice = dynamic_cast<juce::AudioParameterChoice*> (forwarded))
        setChoice (*choice, value);
    else
        Parameter::setInt (value);
}

int AudioParamForwarderBase::getInt() const
{
    if (auto* integer = dynamic_cast<const juce::AudioParameterInt*> (forwarded))
        return juce::roundToInt (integer->convertFrom0to1 (forwarded->getValue()));

    if (auto* choice = dynamic_cast<const juce::AudioParameterChoice*> (forwarded))
        return choice->getIndex();

    return Parameter::getInt();
}

MenuItems::Item AudioParamForwarderBase::getMenuChoices()
{
    if (auto* integer = dynamic_cast<juce::AudioParameterInt*> (forwarded))
        return getMenuChoicesFor (*integer);

    if (auto* choice = dynamic_cast<juce::AudioParameterChoice*> (forwarded))
        return getMenuChoicesFor (*choice);

    return Parameter::getMenuChoices();
}

void AudioParamForwarderBase::parameterValueChanged (int, float) {}

void AudioParamForwarderBase::parameterGestureChanged (int, bool gestureIsStarting)
{
    gesture.exchange (gestureIsStarting);
}

void AudioParamForwarderBase::setChoice (juce::AudioParameterChoice& choice, int index) { setNotifying (choice, index); }
} // namespace Orv::Parameters

#include "parameters/ForwardingParameter.h"

namespace Orv::Audio
{
namespace
{
    const juce::String hiddenProcessorName = "Hidden";
}

ForwardingParameter::ForwardingParameter (const juce::String& parameterId, ParamHolderBase& targetHolder)
    : juce::AudioProcessorParameterWithID ({ parameterId, ParamHolderDetail::versionHint }, parameterId),
      id (parameterId),
      target (targetHolder.getParameter())
{
    jassert (target != nullptr);

    if (target->getParameterIndex() < 0)
    {
        hiddenProcessor = std::make_unique<ProcessorBase> (hiddenProcessorName, ProcessorBase::makeStereoBuses(),
                                                           ProcessorBase::ParameterOwnerOnly {});
        hiddenProcessor->addParameter (target);
        targetHolder.adopted = true;
    }

    target->addListener (this);
}

ForwardingParameter::~ForwardingParameter() { target->removeListener (this); }

float ForwardingParameter::getValue() const { return target->getValue(); }
void ForwardingParameter::setValue (float newValue) { target->setValue (newValue); }
float ForwardingParameter::getDefaultValue() const { return target->getDefaultValue(); }

juce::String ForwardingParameter::getName (int maximumStringLength) const
{
    if (displayName.isEmpty())
        return target->getName (maximumStringLength);

    return maximumStringLength > 0 ? displayName.substring (0, maximumStringLength) : displayName;
}

juce::String ForwardingParameter::getLabel() const { return target->getLabel(); }
int ForwardingParameter::getNumSteps() const { return target->getNumSteps(); }
bool ForwardingParameter::isDiscrete() const { return target->isDiscrete(); }
bool ForwardingParameter::isBoolean() const { return target->isBoolean(); }

juce::String ForwardingParameter::getText (float normalisedValue, int maximumStringLength) const
{
    return target->getText (normalisedValue, maximumStringLength);
}

float ForwardingParameter::getValueForText (const juce::String& text) const { return target->getValueForText (text); }
bool ForwardingParameter::isOrientationInverted() const { return target->isOrientationInverted(); }
bool ForwardingParameter::isAutomatable() const { return target->isAutomatable(); }
bool ForwardingParameter::isMetaParameter() const { return target->isMetaParameter(); }

juce::AudioProcessorParameter::Category ForwardingParameter::getCategory() const { return target->getCategory(); }

juce::String ForwardingParameter::getCurrentValueAsText() const { return target->getCurrentValueAsText(); }
juce::StringArray ForwardingParameter::getAllValueStrings() const { return target->getAllValueStrings(); }
juce::String ForwardingParameter::getParameterID() const { return id; }

void ForwardingParameter::parameterValueChanged (int, float newValue)
{
    // The host's listeners may lock, allocate or post; only the message
    // thread may reach them. A change made elsewhere is still seen by a host
    // that polls the value.
    if (juce::MessageManager::existsAndIsCurrentThread())
        sendValueChangedMessageToListeners (newValue);
}

void ForwardingParameter::parameterGestureChanged (int, bool gestureIsStarting)
{
    if (gestureIsStarting)
        beginChangeGesture();
    else
        endChangeGesture();
}
} // namespace Orv::Audio

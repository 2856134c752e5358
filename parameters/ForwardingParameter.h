#pragma once

#include "core/ProcessorBase.h"
#include "parameters/ParamHolder.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <memory>

namespace Orv::Audio
{
/** What a host sees of a parameter of the tree: a front with its own stable
    id (and, if set, its own name) that forwards everything else to the real
    parameter. Host changes go straight to the target; the target's changes
    reach the host only when they happen on the message thread, so that a
    parameter written from the audio thread never calls into the host there.

    It is a parameter "with ID" because that is how the framework's plug-in
    wrappers find the string id: any other hosted parameter is known to the
    host by its index, which would tie automation to the list's order. */
class ForwardingParameter : public juce::AudioProcessorParameterWithID,
                            private juce::AudioProcessorParameter::Listener
{
public:
    /** Message thread. A target that has no processor yet is adopted by a
        hidden one made here, since JUCE's notifications need an owner. */
    ForwardingParameter (const juce::String& parameterId, ParamHolderBase& targetHolder);
    ~ForwardingParameter() override;

    /** Any thread. */
    juce::AudioProcessorParameter& getTarget() const noexcept { return *target; }

    //==============================================================================
    /** Any thread; the forwards of everything a host can call. */
    float getValue() const override;
    void setValue (float newValue) override;
    float getDefaultValue() const override;
    juce::String getName (int maximumStringLength) const override;
    juce::String getLabel() const override;
    int getNumSteps() const override;
    bool isDiscrete() const override;
    bool isBoolean() const override;
    juce::String getText (float normalisedValue, int maximumStringLength) const override;
    float getValueForText (const juce::String& text) const override;
    bool isOrientationInverted() const override;
    bool isAutomatable() const override;
    bool isMetaParameter() const override;
    Category getCategory() const override;
    juce::String getCurrentValueAsText() const override;
    juce::StringArray getAllValueStrings() const override;
    juce::String getParameterID() const override;

    //==============================================================================
    const juce::String id;
    /** The name the host shows; empty forwards to the target's name. */
    juce::String displayName;

private:
    void parameterValueChanged (int parameterIndex, float newValue) override;
    void parameterGestureChanged (int parameterIndex, bool gestureIsStarting) override;

    juce::AudioProcessorParameter* const target;
    std::unique_ptr<ProcessorBase> hiddenProcessor;

    JUCE_DECLARE_NON_COPYABLE (ForwardingParameter)
};
} // namespace Orv::Audio

#pragma once

#include "parameters/ForwarderBase.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <atomic>

namespace Orv::Parameters
{
/** A JUCE parameter as the GUI's Parameter: values, texts and gestures go
    to the JUCE parameter, so the host sees what the GUI does. A gesture
    begun by the host also counts as one here. Message thread, apart from
    the listener callbacks, which come from whichever thread changed the
    parameter. */
class AudioParamForwarderBase : public ForwarderBase<juce::AudioProcessorParameter>,
                                public juce::AudioProcessorParameter::Listener
{
public:
    /** The parameter outlives the forwarder. */
    explicit AudioParamForwarderBase (juce::AudioProcessorParameter& parameter);
    ~AudioParamForwarderBase() override;

    //==============================================================================
    float getNormalised() const override;
    /** Sets the value without telling anyone. */
    void setNormalised (float normalised) override;
    void setNormalisedNotifying (float normalised) override;
    void setFromText (const juce::String& text) override;
    juce::String getName() const override;
    juce::String getTextFor (float normalised) const override;
    juce::String getText() const override;
    int getNumChoices() const override;
    float getDefaultNormalised() const override;
    bool isUndoable() const override;
    bool isDiscrete() const override;
    void beginGesture() override;
    void endGesture() override;
    bool isInGesture() const override;

    /** An integer sets its value, a choice its index; anything else goes
        through setFloat. */
    void setInt (int value) override;
    /** An integer's value or a choice's index, rounded to nearest; anything
        else getFloat truncated. */
    int getInt() const override;
    /** An integer's values highest first, a choice's last first; nothing
        for anything else. */
    MenuItems::Item getMenuChoices() override;

    //==============================================================================
    /** Any thread. */
    void parameterValueChanged (int parameterIndex, float newValue) override;
    /** Any thread: the host's touch marks a gesture here too. */
    void parameterGestureChanged (int parameterIndex, bool gestureIsStarting) override;

protected:
    /** Sets a choice to an index and tells its listeners. */
    static void setChoice (juce::AudioParameterChoice& choice, int index);

    std::atomic<bool> gesture { false };
};
} // namespace Orv::Parameters

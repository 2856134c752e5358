#pragma once

#include "midi/LearnHandler.h"
#include "parameters/Parameter.h"

namespace Orv::Audio::Plugin
{
/** A handler that moves a parameter to a value taken from the event. */
class ParamMidiHandler : public Orv::Midi::Learn::Handler
{
public:
    /** Message thread. The parameter must outlive every copy of the learn
        state that holds this handler. */
    explicit ParamMidiHandler (Orv::Parameters::Parameter& parameterToSet) : parameter (&parameterToSet) {}

    /** Audio thread: sets the parameter, without a gesture, and notifies its
        watchers; the parameters that are learned accept this from the audio
        thread, as a host's automation does. */
    void handle (const juce::MidiMessage& message) override { parameter->setNormalisedNotifying (getValue (message)); }

    /** Audio thread: the normalised value the event stands for. */
    virtual float getValue (const juce::MidiMessage& message) = 0;

    Orv::Parameters::Parameter* getParameter() const noexcept { return parameter; }

private:
    Orv::Parameters::Parameter* parameter;
};
} // namespace Orv::Audio::Plugin

#pragma once

#include "midi/ParamMidiHandler.h"

#include <cstdint>

namespace Orv::Audio::Plugin
{
/** A learned controller: its value, 0 to 127, moves the parameter over its
    whole range. The channel is not looked at, as the block folds all input to
    channel 1 before the handlers see it. */
class ParamMidiCCHandler : public ParamMidiHandler
{
public:
    /** Message thread. */
    ParamMidiCCHandler (Orv::Parameters::Parameter& parameterToSet, int controllerNumber)
        : ParamMidiHandler (parameterToSet), controller (controllerNumber)
    {
    }

    /** Audio thread: true for this controller. */
    bool matches (const juce::MidiMessage& message) override;

    /** Audio thread: the controller's value scaled to 0 to 1. */
    float getValue (const juce::MidiMessage& message) override;

    int getController() const noexcept { return controller; }

private:
    int32_t controller;
};
} // namespace Orv::Audio::Plugin

#include "midi/ParamMidiCCHandler.h"

#include "midi/NoteMessage.h"
#include "midi/SevenBitScale.h"

namespace Orv::Audio::Plugin
{
using namespace Orv::Midi::NoteMessage;

bool ParamMidiCCHandler::matches (const juce::MidiMessage& message)
{
    const auto* data = message.getRawData();
    return message.getRawDataSize() >= threeBytes
           && (data[0] & statusMask) == controllerStatus
           && data[numberByte] == controller;
}

float ParamMidiCCHandler::getValue (const juce::MidiMessage& message)
{
    return (float) message.getRawData()[valueByte] * Orv::Midi::sevenBitScale;
}
} // namespace Orv::Audio::Plugin

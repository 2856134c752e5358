#include "midi/ParamMidiCCHandler.h"

#include "midi/SevenBitScale.h"

namespace Orv::Audio::Plugin
{
namespace
{
    constexpr uint8_t statusMask = 0xF0;
    constexpr uint8_t controllerStatus = 0xB0;
    constexpr int controllerMessageBytes = 3;
    constexpr int numberByte = 1;
    constexpr int valueByte = 2;
} // namespace

bool ParamMidiCCHandler::matches (const juce::MidiMessage& message)
{
    const auto* data = message.getRawData();
    return message.getRawDataSize() >= controllerMessageBytes
           && (data[0] & statusMask) == controllerStatus
           && data[numberByte] == controller;
}

float ParamMidiCCHandler::getValue (const juce::MidiMessage& message)
{
    return (float) message.getRawData()[valueByte] * Orv::Midi::sevenBitScale;
}
} // namespace Orv::Audio::Plugin

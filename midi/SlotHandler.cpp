#include "midi/SlotHandler.h"

namespace Orv::Audio::Plugins::Halvane
{
namespace
{
    constexpr uint8_t noteOnOrOffMask = 0xE0;
    constexpr uint8_t noteOffStatus = 0x80;
    constexpr int noteMessageBytes = 3;
    constexpr int numberByte = 1;
} // namespace

bool SlotHandler::matches (const juce::MidiMessage& message)
{
    const auto* data = message.getRawData();
    return message.getRawDataSize() >= noteMessageBytes
           && (data[0] & noteOnOrOffMask) == noteOffStatus
           && data[numberByte] == note;
}

void SlotHandler::handle (const juce::MidiMessage& message)
{
    if (message.isNoteOn())
        onPress();
    else
        onRelease();
}

void createHandle (Orv::Midi::Learn::State& state, int note, int slot, std::function<void (int)> callback)
{
    auto onPress = [slot, callback = std::move (callback)] { callback (slot); };
    state.addHandler (std::make_shared<SlotHandler> (note, std::move (onPress), Orv::CallbackFunc {}));
}
} // namespace Orv::Audio::Plugins::Halvane

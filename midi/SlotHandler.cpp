#include "midi/SlotHandler.h"

#include "midi/NoteMessage.h"

namespace Orv::Audio::Plugins::Halvane
{
bool SlotHandler::matches (const juce::MidiMessage& message)
{
    const auto* data = message.getRawData();
    return message.getRawDataSize() >= Midi::NoteMessage::threeBytes
           && Midi::NoteMessage::isNoteOnOrOff (data)
           && data[Midi::NoteMessage::numberByte] == note;
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

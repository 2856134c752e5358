#include "midi/SustainPedalProcessor.h"

namespace Orv::Midi::SustainPedal
{
Processor::Processor (std::atomic<bool>& pedalState) : pedal (&pedalState) {}

void Processor::processEvent (const juce::MidiMessage& message, int sample)
{
    if (message.isControllerOfType (pedalController))
    {
        setPedal (message, sample);
        return;
    }

    if (message.isNoteOn())
    {
        // A key pressed again while its release is sustained stays in
        // sustainedNotes: the pedal's release ends it, even if the key is down.
        heldNotes.insert (message.getNoteNumber());
        output.addEvent (message, sample);
        return;
    }

    if (message.isNoteOff())
    {
        const auto note = message.getNoteNumber();
        heldNotes.remove (note);

        if (pedal->load())
            sustainedNotes.insert (note);
        else
            output.addEvent (message, sample);
        return;
    }

    output.addEvent (message, sample);
}

void Processor::setPedal (const juce::MidiMessage& message, int sample)
{
    const auto down = message.getControllerValue() >= pedalDownFrom;
    pedal->store (down);

    if (down)
        return;

    for (const auto note : sustainedNotes)
        output.addEvent (juce::MidiMessage::noteOff (message.getChannel(), note, releaseVelocity), sample);

    sustainedNotes.clear();
}
} // namespace Orv::Midi::SustainPedal

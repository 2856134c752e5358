#include "midi/NoteModifierProcessor.h"

#include "midi/SevenBitScale.h"

#include <algorithm>
#include <cmath>

namespace Orv::Midi::Mapper
{
namespace
{
    constexpr int lowestNote = 0;
    constexpr int highestNote = 127;
    constexpr int maxVelocity = 127;
    constexpr int firstChannel = 1;

    uint8_t toMidiVelocity (float velocity)
    {
        const auto v = (int) std::lround (velocity * (float) maxVelocity);
        return (uint8_t) juce::jlimit (0, maxVelocity, v);
    }

    int channelOf (const ActiveNote& record) { return record.channel > 0 ? record.channel : firstChannel; }

    juce::MidiMessage noteOffFor (const ActiveNote& record)
    {
        return juce::MidiMessage::noteOff (channelOf (record), record.mapped, toMidiVelocity (record.velocity));
    }

    juce::MidiMessage noteOnFor (const ActiveNote& record)
    {
        return juce::MidiMessage::noteOn (channelOf (record), record.mapped, toMidiVelocity (record.velocity));
    }
} // namespace

NoteModifierProcessor::NoteModifierProcessor()
{
    output.ensureSize (outputBytes);
    active.reserve (maxActiveNotes);
}

int NoteModifierProcessor::mapLimited (int note) { return juce::jlimit (lowestNote, highestNote, mapNote (note)); }

void NoteModifierProcessor::process (juce::MidiBuffer& buffer)
{
    // After a swap the output may be the caller's smaller buffer: grow it once.
    output.ensureSize (outputBytes);
    output.clear();

    if (changed)
    {
        changed = false;
        remapActiveNotes();
    }

    for (const auto metadata : buffer)
    {
        const auto message = metadata.getMessage();
        const auto sample = metadata.samplePosition;

        if (message.isNoteOn())
            startNote (message, sample);
        else if (message.isNoteOff())
            endNote (message.getNoteNumber(), sample);
        else
            output.addEvent (message, sample);
    }

    buffer.swapWith (output);
}

void NoteModifierProcessor::remapActiveNotes()
{
    // All offs before any on: a note whose new place is another's old place
    // must not be ended right after it was started.
    for (const auto& record : active)
        output.addEvent (noteOffFor (record), 0);

    for (auto& record : active)
    {
        record.mapped = mapLimited (record.note);
        output.addEvent (noteOnFor (record), 0);
    }
}

void NoteModifierProcessor::startNote (const juce::MidiMessage& message, int sample)
{
    const auto note = message.getNoteNumber();
    const auto mapped = mapLimited (note);

    // A second note-on without an off ends the first, so that every on that
    // leaves here has exactly one off.
    endNote (note, sample);

    const ActiveNote record { note, mapped, (float) message.getVelocity() * sevenBitScale, message.getChannel() };

    // Never grows on the audio thread: there is at most one record per note.
    if (active.size() < active.capacity())
        active.push_back (record);

    output.addEvent (noteOnFor (record), sample);
}

void NoteModifierProcessor::endNote (int note, int sample)
{
    // Equal notes on two channels count as one: only the number is compared.
    const auto isThisNote = [note] (const ActiveNote& r) { return r.note == note; };
    const auto first = std::find_if (active.begin(), active.end(), isThisNote);

    // An off without an on vanishes.
    if (first == active.end())
        return;

    output.addEvent (noteOffFor (*first), sample);
    active.erase (std::remove_if (first, active.end(), isThisNote), active.end());
}
} // namespace Orv::Midi::Mapper

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

    /** Whether the buffer's first sample ends the note before any new start of it. */
    bool endsAtFirstSample (const juce::MidiBuffer& buffer, int note)
    {
        for (const auto metadata : buffer)
        {
            if (metadata.samplePosition > 0)
                break;

            const auto message = metadata.getMessage();
            if (message.isNoteOnOrOff() && message.getNoteNumber() == note)
                return message.isNoteOff();
        }

        return false;
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
        remapActiveNotes (buffer);
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

void NoteModifierProcessor::remapActiveNotes (const juce::MidiBuffer& buffer)
{
    // A note that the span ends at its first sample stays where it is: moved,
    // it would be struck for no time at all. Its own off ends it there.
    const auto moves = [&buffer] (const ActiveNote& record) { return ! endsAtFirstSample (buffer, record.note); };

    // All offs before any on: a note whose new place is another's old place
    // must not be ended right after it was started.
    for (const auto& record : active)
        if (moves (record))
            output.addEvent (noteOffFor (record), 0);

    for (auto& record : active)
    {
        if (! moves (record))
            continue;
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

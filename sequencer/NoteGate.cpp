#include "sequencer/NoteGate.h"

namespace Orv::Sequencer
{
NoteGate::NoteGate() { midi.ensureSize (Midi::NoteMessage::bufferBytes); }

void NoteGate::process (juce::MidiBuffer& buffer, bool shouldBeActive, bool quiet)
{
    using namespace Midi::NoteMessage;

    bool releaseFirst = false;

    if (shouldBeActive != active)
    {
        active = shouldBeActive;

        if (! active || ! quiet)
            releaseFirst = true;
        else
            table.fill (0);
    }

    // After a swap this holds the caller's old storage: keep it as roomy as ours.
    midi.ensureSize (Midi::NoteMessage::bufferBytes);
    midi.clear();

    // The release comes before the buffer's own events, as an all-notes-off
    // ahead of them would: a note that starts at sample 0 with the switch is
    // not one of those released.
    if (releaseFirst)
        releaseAll (0);

    for (const auto event : buffer)
    {
        if (isNote (event))
        {
            table[index (channelOf (event), noteOf (event))] = isNoteOn (event) ? 1 : 0;
            midi.addEvent (event.data, event.numBytes, event.samplePosition);
        }
        else if (isController (event, allNotesOffController) || isController (event, allSoundOffController))
        {
            releaseAll (event.samplePosition);
        }
        else
        {
            midi.addEvent (event.data, event.numBytes, event.samplePosition);
        }
    }

    buffer.swapWith (midi);
}

void NoteGate::releaseAll (int sample)
{
    for (int channel = 0; channel < Midi::NoteMessage::numChannels; ++channel)
        for (int note = 0; note < Midi::NoteMessage::numNotes; ++note)
            if (auto& marked = table[index (channel, note)]; marked != 0)
            {
                Midi::NoteMessage::addNoteOff (midi, channel, note, 0, sample);
                marked = 0;
            }
}
} // namespace Orv::Sequencer

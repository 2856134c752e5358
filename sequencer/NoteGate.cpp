#include "sequencer/NoteGate.h"

namespace Orv::Sequencer
{
NoteGate::NoteGate() { midi.ensureSize (NoteMessage::bufferBytes); }

void NoteGate::process (juce::MidiBuffer& buffer, bool shouldBeActive, bool quiet)
{
    using namespace NoteMessage;

    if (shouldBeActive != active)
    {
        active = shouldBeActive;

        // The controller is turned into note-offs below, like one that came
        // from outside, so that both paths release in the same way.
        if (! active || ! quiet)
            addController (buffer, 0, allNotesOffController, 0, 0);
        else
            table.fill (0);
    }

    // After a swap this holds the caller's old storage: keep it as roomy as ours.
    midi.ensureSize (NoteMessage::bufferBytes);
    midi.clear();

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
    for (int channel = 0; channel < NoteMessage::numChannels; ++channel)
        for (int note = 0; note < NoteMessage::numNotes; ++note)
            if (auto& marked = table[index (channel, note)]; marked != 0)
            {
                NoteMessage::addNoteOff (midi, channel, note, 0, sample);
                marked = 0;
            }
}
} // namespace Orv::Sequencer

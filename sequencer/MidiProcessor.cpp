#include "sequencer/MidiProcessor.h"

#include "midi/NoteMessage.h"

namespace Orv::Audio::Plugins::Halvane
{
namespace NoteMessage = Midi::NoteMessage;

MidiProcessor::MidiProcessor()
{
    for (auto* buffer : { &workMidi, &arpOutMidi, &arpStageMidi })
        buffer->ensureSize (NoteMessage::bufferBytes);
}

void MidiProcessor::prepare (double, int samplesPerBlock)
{
    metaSlot.prepare (samplesPerBlock);
    midiPlayer.prepare (samplesPerBlock);
}

//==============================================================================
int MidiProcessor::processChunk (int from, int to, const ChunkContext& context)
{
    const auto count = to - from;
    if (count <= 0)
        return count;

    // Events of earlier spans are still in the input after a claimed event:
    // each runs in the span that holds it, and only there, so that a note
    // never passes the chain twice.
    copySpan (context.in, from, to);

    const auto span = context.blockView.subView (from, count);
    const auto& settings = context.state.arp;
    const auto playerActive = context.state.midiPlayer.isActive();
    const auto octaves = settings.getOctaves();

    selectSource (context, span);
    runChain (settings, octaves, playerActive);

    context.slots.live->quantize.store (ArpSettings::quantizeLengthFor (settings.getQuantize()));

    arpOutMidi.clear();
    chordMap.setOctaveRange (octaves.low, octaves.high);

    const auto notePassed = runNotes (context, span, playerActive);

    // Off, the chain's notes pass on and the arp's are dropped; a change of
    // the switch releases all that the gate has let through.
    const auto arpOn = settings.isArpOn();
    if (arpOn)
        workMidi.swapWith (arpOutMidi);

    arpGate.process (workMidi, arpOn, false);

    if (notePassed)
        context.state.pitchMap.publish (chordMap);

    context.out.addEvents (workMidi, 0, -1, from);
    return count;
}

void MidiProcessor::copySpan (const juce::MidiBuffer& in, int from, int to)
{
    workMidi.clear();

    for (const auto event : in)
        if (event.samplePosition >= from && event.samplePosition < to)
            workMidi.addEvent (event.data, event.numBytes, event.samplePosition - from);
}

bool MidiProcessor::filePlayerDrives (const ChunkContext& context, const PlayHeadTransportView& span) noexcept
{
    const auto& player = context.state.midiPlayer;
    return player.isActive() && player.isPlaying() && span.isPlaying();
}

void MidiProcessor::selectSource (const ChunkContext& context, const PlayHeadTransportView& span)
{
    if (filePlayerDrives (context, span))
    {
        // The keys are not heard while the file plays; what they held ends.
        workMidi.clear();
        inputGate.process (workMidi, false, false);

        midiPlayer.run (span);
        workMidi.addEvents (midiPlayer.getOutput(), 0, span.getCount(), 0);

        // The clip's notes go down the chain as if they had been played. The
        // gate takes over quietly: the keys' notes were released above.
        playerGate.process (workMidi, true, true);
        playerFed = true;
        return;
    }

    if (playerFed)
    {
        midiPlayer.stop (span);
        playerFed = false;
    }

    playerGate.process (workMidi, false, false);
    inputGate.process (workMidi, true, false);
}

void MidiProcessor::runChain (const ArpSettings& settings, ArpSettings::Octaves octaves, bool playerActive)
{
    sustain.process (workMidi);

    const auto semitones = playerActive ? settings.getKey() : settings.getTranspose();
    transpose.setOffset (semitones + ArpSettings::notesPerOctave * settings.getOctave());
    transpose.process (workMidi);

    noteLimit.setLimits (ArpSettings::notesPerOctave * octaves.low, ArpSettings::notesPerOctave * octaves.high);
    noteLimit.process (workMidi);
}

bool MidiProcessor::runNotes (const ChunkContext& context, const PlayHeadTransportView& span, bool playerActive)
{
    const auto& live = *context.slots.live;
    const auto retrigger = context.state.arp.isRetriggerOn();
    bool notePassed = false;
    int done = 0;

    // Anything but a note stays where it is in the working buffer.
    for (const auto event : workMidi)
    {
        if (! NoteMessage::isNote (event))
            continue;

        notePassed = true;

        // The pattern plays up to the note with the chord as it was.
        if (event.samplePosition > done)
            done += runArpStage (done, event.samplePosition, span, context.slots);

        const auto note = NoteMessage::noteOf (event);
        const auto isOn = NoteMessage::isNoteOn (event);

        if (isOn)
            chordMap.hold (note);
        else
            chordMap.release (note);

        // Releasing part of a chord keeps the table: the arp plays the whole
        // chord on until a new note comes or the last one goes. The player's
        // notes always count at once.
        if (playerActive || isOn || ! chordMap.hasHeldNotes())
            chordMap.rebuild();

        if (retrigger && isOn)
            pendingSlot = live.active.load();
    }

    runArpStage (done, span.getCount(), span, context.slots);
    return notePassed;
}

int MidiProcessor::runArpStage (int from, int to, const PlayHeadTransportView& span, const Sequencer::LiveSlots& slots)
{
    const auto count = to - from;
    if (count <= 0)
        return count;

    arpStageMidi.clear();
    const auto view = span.subView (from, count);

    if (pendingSlot >= 0)
    {
        metaSlot.requestSlot (pendingSlot, view.isPlaying(), slots);
        pendingSlot = noSlot;
    }

    metaSlot.run (view, slots, arpStageMidi);
    chordMap.translate (metaSlot.getOutput(), arpStageMidi);
    arpOutMidi.addEvents (arpStageMidi, 0, -1, from);
    return count;
}
} // namespace Orv::Audio::Plugins::Halvane

#include "sequencer/midiplayer/ClipReader.h"

#include "midi/NoteMessage.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <algorithm>
#include <cmath>

namespace Orv::Sequencer::MidiPlayer
{
namespace
{
    constexpr std::int32_t clipChannel = 1;
    constexpr float alwaysPlays = 1.0f;

    void addNotesOf (const juce::MidiMessageSequence& track, double ticksPerQuarter, Steps& notes)
    {
        for (const auto* holder : track)
        {
            const auto& message = holder->message;
            if (! message.isNoteOn())
                continue;

            // A data byte has seven bits; a file that sets the eighth is taken
            // as the receivers of the chain would take it.
            const auto velocity = message.getVelocity() & Midi::NoteMessage::dataMask;
            if (velocity == 0)
                continue;

            Step step;
            step.enabled = true;
            step.event.gain = alwaysPlays;
            step.event.noteNum = message.getNoteNumber() & Midi::NoteMessage::dataMask;
            step.event.velocity = (float) velocity * ClipReader::velocityScale;
            step.event.channel = clipChannel;

            const auto start = message.getTimeStamp() / ticksPerQuarter;
            const auto end = holder->noteOffObject != nullptr ? holder->noteOffObject->message.getTimeStamp() / ticksPerQuarter
                                                              : start;
            step.time = { start, std::max (end - start, 0.0) };
            notes.push_back (step);
        }
    }

    void setBarsReaching (double lastQuarter, Modifiers::MusicalTime& time)
    {
        time.bars.clear();
        if (! (lastQuarter > 0.0))
            return;

        const auto barLength = Modifiers::Bar().getLength();
        const auto needed = std::min (std::ceil (lastQuarter / barLength), (double) ClipReader::maxBars);
        time.bars.assign ((size_t) needed, Modifiers::Bar());
    }
} // namespace

bool ClipReader::read (const void* data, size_t size, Modifiers::NoteList& into) noexcept
{
    into.events.clear();
    into.time.bars.clear();

    if (data == nullptr || size == 0)
        return false;

    try
    {
        juce::MidiFile file;
        juce::MemoryInputStream in (data, std::min (size, maxFileBytes), false);

        // What the reader returns is not looked at: its tracks are there
        // whenever the header was, and a RIFF file may carry chunks of its own
        // behind the MIDI data, which the reader counts as a failure.
        file.readFrom (in, true);

        // Below 1 is SMPTE time, or no header at all: a new file's format is
        // a negative one.
        const auto ticksPerQuarter = (double) file.getTimeFormat();
        if (ticksPerQuarter < 1.0)
            return false;

        double lastTick = 0.0;
        for (int t = 0; t < file.getNumTracks(); ++t)
        {
            const auto& track = *file.getTrack (t);
            lastTick = std::max (lastTick, track.getEndTime());
            addNotesOf (track, ticksPerQuarter, into.events);
        }

        setBarsReaching (lastTick / ticksPerQuarter, into.time);
        return true;
    }
    catch (...)
    {
        // Out of memory for a huge file: it plays as nothing.
        into.events.clear();
        into.time.bars.clear();
        return false;
    }
}
} // namespace Orv::Sequencer::MidiPlayer

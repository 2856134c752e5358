#include "sequencer/midiplayer/ClipReader.h"

#include "midi/NoteMessage.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace Orv::Sequencer::MidiPlayer
{
namespace
{
    constexpr std::int32_t clipChannel = 1;
    constexpr float alwaysPlays = 1.0f;

    /** Notes are matched by channel and by the whole number byte, high bit
        and all, as the framework matches them. */
    constexpr size_t numNumberBytes = 256;
    constexpr size_t numMatchKeys = Midi::NoteMessage::numChannels * numNumberBytes;
    /** No note-on of that channel and number waits for its end. */
    constexpr std::int64_t nothingOpen = -1;
    /** A note-on waits whose velocity byte is 0 once masked: it is matched
        and ends another as any note-on does, but makes no note. */
    constexpr std::int64_t openWithoutNote = -2;

    Step makeNote (const juce::MidiMessage& message, int velocity, double ticksPerQuarter)
    {
        Step step;
        step.enabled = true;
        step.event.gain = alwaysPlays;
        step.event.noteNum = message.getNoteNumber() & Midi::NoteMessage::dataMask;
        step.event.velocity = (float) velocity * ClipReader::velocityScale;
        step.event.channel = clipChannel;
        step.time = { message.getTimeStamp() / ticksPerQuarter, 0.0 };
        return step;
    }

    /** Appends the track's notes. A note-on ends at the next note-off of its
        channel and number, or where the next note-on of them starts; one that
        never ends has no length. That is the framework's matching, done here
        in one pass: the framework's own looks ahead from every note-on and
        inserts the note-offs it makes into the list, which takes time that
        grows with the square of the notes, half a minute of the message
        thread for a file of 1.5 MB. */
    void addNotesOf (const juce::MidiMessageSequence& track, double ticksPerQuarter, Steps& notes)
    {
        std::vector<std::int64_t> open (numMatchKeys, nothingOpen);

        for (const auto* holder : track)
        {
            const auto& message = holder->message;
            const auto isOn = message.isNoteOn();
            if (! isOn && ! message.isNoteOff())
                continue;

            auto& waiting = open[(size_t) (message.getChannel() - 1) * numNumberBytes + (size_t) message.getNoteNumber()];
            if (waiting >= 0)
            {
                auto& note = notes[(size_t) waiting];
                note.time.length = std::max (message.getTimeStamp() / ticksPerQuarter - note.time.start, 0.0);
            }
            waiting = nothingOpen;

            if (! isOn)
                continue;

            // A data byte has seven bits; a file that sets the eighth is taken
            // as the receivers of the chain would take it.
            const auto velocity = message.getVelocity() & Midi::NoteMessage::dataMask;
            if (velocity == 0)
            {
                waiting = openWithoutNote;
                continue;
            }

            waiting = (std::int64_t) notes.size();
            notes.push_back (makeNote (message, velocity, ticksPerQuarter));
        }
    }

    /** All notes play on one channel, where a note cannot sound twice: one
        struck again from another track or channel ends the one that sounds,
        as a note-on ends its predecessor within a channel. Without this a
        player that meets both within one block strikes the note while it is
        on and then ends it twice. The notes come out ordered by start, those
        that start together in file order. */
    void endNotesStruckAgain (Steps& notes)
    {
        std::stable_sort (notes.begin(), notes.end(), [] (const Step& a, const Step& b) { return a.time.start < b.time.start; });

        std::array<Step*, Midi::NoteMessage::numNotes> sounding {};
        for (auto& note : notes)
        {
            auto*& before = sounding[(size_t) note.event.noteNum];
            if (before != nullptr && before->getEnd() > note.time.start)
                before->time.length = note.time.start - before->time.start;
            before = &note;
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
        file.readFrom (in, false);

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

        endNotesStruckAgain (into.events);
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

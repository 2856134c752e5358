// libFuzzer target: arbitrary bytes dropped on the file player as a MIDI file
// from outside, read into a clip, evaluated, and played through the player's
// runner for a loop and a bit, then stopped.
//
// What counts as a failure: any crash, hang or sanitizer report; a clip that
// breaks what the reader promises (every note on channel 1 with a velocity of
// 1 to 127 out of 127, finite times in order of start, whole bars of 4/4 and
// no more than the cap, nothing at all for data it refuses); notes that are
// not the ones the framework's own matching of note-ons and note-offs finds,
// each cut where the same note is struck again; an evaluated clip that is
// longer or shorter than its bars or holds a note outside them; and playing
// that strikes a note already sounding, ends one that is not, or leaves one
// on after the transport stops.

#include "core/GarbageCollector.h"
#include "sequencer/midiplayer/ClipReader.h"
#include "sequencer/midiplayer/Processor.h"
#include "sequencer/midiplayer/State.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace
{
using namespace Orv;
using Sequencer::Step;
using Sequencer::Steps;
using Sequencer::MidiPlayer::ClipReader;
using Sequencer::Modifiers::Bar;
using Sequencer::Modifiers::NoteList;

constexpr int clipChannel = 1;
/** The scheduler writes a step's channel into the status byte's low nibble. */
constexpr int clipChannelNibble = clipChannel;
constexpr int maxDataByte = 127;
/** Room for the last bit of a sum of quarter notes, so that a note ending on
    the last bar line is not taken for one past it. */
constexpr double timeTolerance = 1.0e-9;

/** A loop is played in this many blocks whatever its length, so that a clip
    of thousands of bars costs no more than one of a bar. */
constexpr int blocksPerLoop = 16;
constexpr int blockSize = 256;
/** Played past the loop's end, to cross the wrap. */
constexpr int blocksPastTheLoop = 4;
/** How far a clip without bars is played, in quarter notes. */
constexpr double lengthForAClipWithoutBars = 4.0;
constexpr double sampleRate = 48000.0;

[[noreturn]] void fail (const char* what)
{
    std::fprintf (stderr, "fuzz_midi_clip: %s\n", what);
    std::abort();
}

void check (bool condition, const char* what)
{
    if (! condition)
        fail (what);
}

bool isFiniteAndNotNegative (double t) { return std::isfinite (t) && t >= 0.0; }

bool endsWithin (const Step& step, double length)
{
    return step.getEnd() <= length + timeTolerance * std::max (1.0, length);
}

/** What the reader promises of any list it fills, true or false. */
void checkReadList (bool accepted, const NoteList& list)
{
    if (! accepted)
    {
        check (list.events.empty() && list.time.bars.empty(), "refused data left notes or bars behind");
        return;
    }

    check (list.time.bars.size() <= (size_t) ClipReader::maxBars, "more bars than the cap");
    for (const auto& bar : list.time.bars)
        check (bar == Bar(), "a bar that is not 4/4");

    const auto length = list.time.getLength();
    const bool capped = list.time.bars.size() == (size_t) ClipReader::maxBars;

    for (const auto& step : list.events)
    {
        const auto& e = step.event;
        check (step.enabled && e.gain == 1.0f, "a note that may not play");
        check (e.randomVelocityLow == 0.0f && e.randomVelocityHigh == 0.0f, "a note with a random velocity");
        check (e.channel == clipChannel, "a note off channel 1");
        check (e.noteNum >= 0 && e.noteNum <= maxDataByte, "a note number that is no data byte");

        const auto velocityByte = e.velocity * (float) maxDataByte;
        check (velocityByte >= 0.5f && velocityByte < (float) maxDataByte + 0.5f, "a velocity outside 1 to 127");
        check (std::abs (velocityByte - std::round (velocityByte)) < 1.0e-3f, "a velocity that is no byte out of 127");

        check (isFiniteAndNotNegative (step.time.start) && isFiniteAndNotNegative (step.time.length),
               "a note at a time that is negative or not finite");

        // Every note ends at an event of its track, and the bars reach the
        // last event, unless the cap cut them.
        if (! capped)
            check (endsWithin (step, length), "a note that ends behind the last bar");

        // No bars: the file's events all lie at its very start.
        if (list.time.bars.empty())
            check (step.time.start == 0.0 && step.time.length == 0.0, "a note in a file without length");
    }
}

/** The notes of the data as the framework's reader matches them, track by
    track, with the reader's choice of which note-ons make a note; false for
    data the reader must refuse. The framework's matching looks ahead from
    every note-on, which is slow for big files but plain for small ones. */
bool readByTheFramework (const std::uint8_t* data, std::size_t size, Steps& notes)
{
    juce::MidiFile file;
    juce::MemoryInputStream in (data, std::min (size, ClipReader::maxFileBytes), false);
    file.readFrom (in, true);

    const auto ticksPerQuarter = (double) file.getTimeFormat();
    if (ticksPerQuarter < 1.0)
        return false;

    for (int t = 0; t < file.getNumTracks(); ++t)
    {
        for (const auto* holder : *file.getTrack (t))
        {
            const auto& m = holder->message;
            const auto velocity = m.getVelocity() & maxDataByte;
            if (! m.isNoteOn() || velocity == 0)
                continue;

            Step note;
            note.event.noteNum = m.getNoteNumber() & maxDataByte;
            note.event.velocity = (float) velocity * ClipReader::velocityScale;
            note.time.start = m.getTimeStamp() / ticksPerQuarter;
            const auto end = holder->noteOffObject != nullptr ? holder->noteOffObject->message.getTimeStamp() / ticksPerQuarter
                                                              : note.time.start;
            note.time.length = std::max (end - note.time.start, 0.0);
            notes.push_back (note);
        }
    }
    return true;
}

/** Each note number's notes in order of start, those that start together in
    file order. */
Steps byNumberAndStart (Steps notes)
{
    std::stable_sort (notes.begin(), notes.end(), [] (const Step& a, const Step& b) { return a.time.start < b.time.start; });
    std::stable_sort (notes.begin(), notes.end(), [] (const Step& a, const Step& b) { return a.event.noteNum < b.event.noteNum; });
    return notes;
}

/** The reader's notes are the framework's, except that all channels and tracks
    now share one channel: a note ends at the latest where its number is
    struck again. */
void checkAgainstTheFramework (const std::uint8_t* data, std::size_t size, bool accepted, const NoteList& list)
{
    Steps reference;
    check (readByTheFramework (data, size, reference) == accepted, "the reader and the framework disagree on the data");
    check (reference.size() == list.events.size(), "other notes than the framework finds");

    const auto& events = list.events;
    for (size_t i = 1; i < events.size(); ++i)
        check (events[i - 1].time.start <= events[i].time.start, "notes out of order");

    const auto ours = byNumberAndStart (events);
    const auto theirs = byNumberAndStart (reference);
    for (size_t i = 0; i < ours.size(); ++i)
    {
        const auto& a = ours[i];
        const auto& b = theirs[i];
        check (a.event.noteNum == b.event.noteNum && a.time.start == b.time.start && a.event.velocity == b.event.velocity,
               "a note that the framework does not find");

        auto length = b.time.length;
        if (i + 1 < ours.size() && ours[i + 1].event.noteNum == a.event.noteNum)
            length = std::min (length, ours[i + 1].time.start - a.time.start);
        check (std::abs (a.time.length - length) <= timeTolerance * std::max (1.0, a.time.start),
               "a note that ends elsewhere than its note-off or the next strike of its number");
    }
}

/** What the state made of the list: the slot plays exactly the bars. */
void checkSlot (const NoteList& list, const Sequencer::PlaybackSlot& slot)
{
    const auto length = list.time.getLength();
    check (slot.length == length && slot.events.length == length && slot.events.start == 0.0,
           "the slot's length is not that of the bars");
    check (slot.playing && slot.looping, "a loaded clip that does not play in a loop");
    check (slot.events.notes.size() <= list.events.size(), "the slot has notes the file did not");

    for (const auto& step : slot.events.notes)
    {
        check (isFiniteAndNotNegative (step.time.start) && isFiniteAndNotNegative (step.time.length),
               "a slot note at a time that is negative or not finite");
        if (length > 0.0)
            check (step.time.start < length && endsWithin (step, length), "a slot note outside the clip");
    }
}

/** The player's own clock, driven here: positions are written, not counted. */
struct Clock
{
    Clock() { clock.prepare (sampleRate, blockSize); }

    Audio::PlayHeadTransportView block (double from, double perSample, bool playing)
    {
        clock.getInfo().setIsPlaying (playing);
        clock.update (nullptr, blockSize);
        for (int i = 0; i < blockSize; ++i)
            clock.getPositions()[(size_t) i] = playing ? from + i * perSample : from;
        return { clock, 0, blockSize };
    }

    Audio::InternalPlayHead clock;
};

/** Which notes a receiver of the player's output hears as on. */
struct Receiver
{
    void take (const juce::MidiBuffer& buffer)
    {
        for (const auto event : buffer)
        {
            const auto m = event.getMessage();
            check (m.isNoteOnOrOff(), "the player sent something other than a note");
            check (m.getChannel() - 1 == clipChannelNibble, "the player sent a note off the clip's channel");

            auto& on = sounding[(size_t) m.getNoteNumber()];
            if (m.isNoteOn())
            {
                check (! on, "a note struck while it sounds");
                on = true;
            }
            else
            {
                check (on, "a note-off for a note that is not on");
                on = false;
            }
        }
    }

    std::array<bool, 128> sounding {};
};

/** The player and the state it follows, made once: making a player reserves
    its runner's lists, which costs more than all the rest of a run. Every run
    ends with a stop, which leaves nothing sounding for the next input, and
    with an empty clip. */
struct Player
{
    Player()
    {
        player.prepare (blockSize);
        player.attach (state);
    }

    Sequencer::MidiPlayer::State state;
    Sequencer::MidiPlayer::Processor player;
};

/** Plays the state's clip from its start, through the wrap, then stops. */
void play (Player& rig)
{
    auto& player = rig.player;
    const auto loop = rig.state.getSlot().length;
    const auto span = loop > 0.0 ? loop : lengthForAClipWithoutBars;
    const auto perSample = span / (double) (blocksPerLoop * blockSize);

    Clock clock;
    Receiver receiver;
    double position = 0.0;
    for (int b = 0; b < blocksPerLoop + blocksPastTheLoop; ++b)
    {
        player.run (clock.block (position, perSample, true));
        receiver.take (player.getOutput());
        position += blockSize * perSample;
    }

    player.run (clock.block (position, perSample, false));
    receiver.take (player.getOutput());
    for (const auto on : receiver.sounding)
        check (! on, "a note left on after the transport stopped");

    player.run (clock.block (position, perSample, false));
    check (player.getOutput().isEmpty(), "a stopped player still sends notes");
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size)
{
    NoteList list;
    const auto accepted = ClipReader::read (data, size, list);
    checkReadList (accepted, list);
    checkAgainstTheFramework (data, size, accepted, list);

    static Player rig;
    rig.state.loadExternalData ("fuzz.mid", juce::MemoryBlock (data, size));
    check (rig.state.getNoteList().events.size() == list.events.size(), "the state read other notes than the reader");
    checkSlot (list, rig.state.getSlot());

    play (rig);

    // An input that keeps more memory than it frees costs a leak check of
    // the whole heap. So the state goes back to what every input finds, and
    // the play heads that each note list makes, which the collector keeps
    // until its timer runs, go now.
    rig.state.loadExternalData ({}, {});
    Events::GarbageCollector::get().collect();
    return 0;
}

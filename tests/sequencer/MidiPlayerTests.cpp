#include "core/Processor.h"
#include "persistence/JsonLoader.h"
#include "persistence/JsonSaver.h"
#include "sequencer/midiplayer/ChoiceParam.h"
#include "sequencer/midiplayer/ClipReader.h"
#include "sequencer/midiplayer/State.h"

#include "sequencer/SequencerTestHelpers.h"
#include "support/AllocationCounter.h"
#include "support/FakeHostPlayHead.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace
{
using namespace Orv::Audio::Plugins::Halvane;
using Orv::Sequencer::Steps;
using Orv::Sequencer::MidiPlayer::ChoiceParam;
using Orv::Sequencer::MidiPlayer::ClipReader;
using Orv::Testing::FakeHostPlayHead;
using PlayerState = Orv::Sequencer::MidiPlayer::State;

constexpr int ticksPerQuarter = 480;
constexpr double quartersPerBar = 4.0;
constexpr double sampleRate = 48000.0;
constexpr double hostTempo = 120.0;
constexpr int64_t samplesPerQuarter = 24000; // at that tempo and rate
constexpr int64_t samplesPerBar = 4 * samplesPerQuarter;
constexpr int octave = 12;

//==============================================================================
// MIDI files made here, byte for byte through the framework's writer.

struct FileEvent
{
    juce::MidiMessage message;
    double quarter;
};

juce::MidiMessage on (int note, int velocity = 100, int channel = 1)
{
    return juce::MidiMessage::noteOn (channel, note, (juce::uint8) velocity);
}
juce::MidiMessage off (int note, int channel = 1) { return juce::MidiMessage::noteOff (channel, note); }

juce::MemoryBlock midiFile (const std::vector<std::vector<FileEvent>>& tracks)
{
    juce::MidiFile file;
    file.setTicksPerQuarterNote (ticksPerQuarter);
    for (const auto& events : tracks)
    {
        juce::MidiMessageSequence track;
        for (const auto& e : events)
            track.addEvent (e.message, e.quarter * ticksPerQuarter);
        file.addTrack (track);
    }

    juce::MemoryOutputStream out;
    file.writeTo (out);
    return out.getMemoryBlock();
}

/** Held chords, one after the other, each lasting a bar. */
juce::MemoryBlock chordsFile (const std::vector<std::vector<int>>& chords)
{
    std::vector<FileEvent> events;
    for (size_t bar = 0; bar < chords.size(); ++bar)
        for (const auto note : chords[bar])
        {
            events.push_back ({ on (note), (double) bar * quartersPerBar });
            events.push_back ({ off (note), (double) (bar + 1) * quartersPerBar });
        }
    return midiFile ({ events });
}

/** A note as "60 [0, 1] v1.000 ch1"; notes must match to the written digits. */
std::vector<std::string> describe (const Steps& steps)
{
    std::vector<std::string> lines;
    for (const auto& s : steps)
    {
        lines.push_back (std::to_string (s.event.noteNum) + " [" + juce::String (s.time.start, 3).toStdString() + ", "
                         + juce::String (s.time.length, 3).toStdString() + "] v"
                         + juce::String (s.event.velocity, 3).toStdString() + " ch" + std::to_string (s.event.channel)
                         + (s.enabled ? "" : " disabled") + (s.event.gain == 1.0f ? "" : " gain"));
    }
    return lines;
}

//==============================================================================
/** The instance under a host of the test's at 120 BPM, with the file player
    attached; each block returns what came out, as "+62@0", in block
    positions. */
struct PlayerRig
{
    static constexpr int blockSize = 512;

    PlayerRig()
    {
        processor.setPlayHead (&host);
        processor.prepareToPlay (sampleRate, blockSize);
        processor.getMidiProcessor().attachPlayer (state());
        audio.setSize (2, blockSize);
    }

    State& state() { return processor.getState(); }
    PlayerState& player() { return state().midiPlayer; }

    /** Pattern 0 as a bar of sixteenths on the rows, each half a sixteenth. */
    void setPattern (const std::vector<int>& rows)
    {
        auto& sequencer = state().sequencer;
        auto& steps = sequencer.patterns[0]->sequence.steps;
        steps.clear();
        for (size_t i = 0; i < rows.size(); ++i)
            steps.push_back (Orv::Testing::makeStep ((double) i / (double) rows.size(), 0.5 / (double) rows.size(), rows[i]));
        sequencer.rebuild();
    }

    std::vector<std::string> block (const std::vector<std::pair<juce::MidiMessage, int>>& events = {})
    {
        const auto ppq = startQuarter + (double) song / (double) samplesPerQuarter;
        host.position = playing ? FakeHostPlayHead::playing (song, ppq, hostTempo) : FakeHostPlayHead::stopped (song, ppq, hostTempo);

        midi.clear();
        for (const auto& [message, at] : events)
            midi.addEvent (message, at);

        {
            const Orv::Testing::AllocationCounter counter;
            processor.processBlock (audio, midi);
            allocations += counter.getCount();
        }

        std::vector<std::string> words;
        for (const auto event : midi)
            if (const auto m = event.getMessage(); m.isNoteOnOrOff())
            {
                words.push_back ((m.isNoteOn() ? "+" : "-") + std::to_string (m.getNoteNumber()) + "@"
                                 + std::to_string (event.samplePosition));
                if (m.isNoteOn())
                    noteOns.push_back ({ m.getNoteNumber(), song + event.samplePosition });
            }

        if (playing)
            song += blockSize;
        return words;
    }

    FakeHostPlayHead host;
    Processor processor;
    juce::AudioBuffer<float> audio;
    juce::MidiBuffer midi;

    bool playing = true;
    /** The host's position at song sample 0, in quarter notes. */
    double startQuarter = 0.0;
    int64_t song = 0;
    int64_t allocations = 0;
    /** Every note-on: note and song sample. */
    std::vector<std::pair<int, int64_t>> noteOns;
};

std::set<int> pitchClasses (const std::vector<int>& notes, int offset = 0)
{
    std::set<int> classes;
    for (const auto n : notes)
        classes.insert ((n + offset) % octave);
    return classes;
}

const std::vector<int> cMajor { 60, 64, 67 };
const std::vector<int> aMinor { 57, 60, 64 };
const std::vector<int> everySixteenthOnThreeRows { 64, 65, 66, 64, 65, 66, 64, 65, 66, 64, 65, 66, 64, 65, 66, 64 };
} // namespace

//==============================================================================
TEST (MidiPlayerClip, NotesOfAllTracksLandOnChannelOneInQuartersWithWholeBarsToTheLastEvent)
{
    const auto file = midiFile ({
        {
            { on (60, 127), 0.0 },
            { on (64, 100, 5), 0.5 },
            { on (60, 64), 1.0 }, // before the first 60 ends: it cuts it there
            { off (60), 2.0 },
            { on (62, 0), 2.5 }, // velocity 0 is a note-off
            { on (67, 50), 3.0 }, // never ends
            { off (64, 5), 3.5 },
            { juce::MidiMessage::controllerEvent (1, 7, 90), 9.5 }, // the last event of any kind
        },
        { { on (48, 1, 16), 4.0 }, { off (48, 16), 8.0 } },
    });

    Orv::Sequencer::Modifiers::NoteList list;
    ASSERT_TRUE (ClipReader::read (file.getData(), file.getSize(), list));

    EXPECT_EQ (describe (list.events), (std::vector<std::string> { "60 [0.000, 1.000] v1.000 ch1",
                                                                   "64 [0.500, 3.000] v0.787 ch1",
                                                                   "60 [1.000, 1.000] v0.504 ch1",
                                                                   "67 [3.000, 0.000] v0.394 ch1",
                                                                   "48 [4.000, 4.000] v0.008 ch1" }));
    EXPECT_EQ (list.time.bars.size(), 3u) << "9.5 quarters take three bars";
    EXPECT_DOUBLE_EQ (list.time.getLength(), 12.0);
}

TEST (MidiPlayerClip, ARiffWrappedFileReadsAsItsMidiDataAndBadDataGivesAnEmptyClip)
{
    const auto good = chordsFile ({ cMajor, aMinor });

    PlayerState player;
    player.loadExternalData ("plain.mid", good);
    const auto expected = describe (player.getNoteList().events);
    ASSERT_EQ (expected.size(), 6u);

    // RIFF, size, "RMID", "data", size, the file, then a chunk of its own.
    juce::MemoryOutputStream riff;
    riff.write ("RIFF", 4);
    riff.writeInt ((int) good.getSize() + 12 + 12);
    riff.write ("RMIDdata", 8);
    riff.writeInt ((int) good.getSize());
    riff << good;
    riff.write ("INFO", 4);
    riff.writeInt (0);
    player.loadExternalData ("wrapped.rmi", riff.getMemoryBlock());
    EXPECT_EQ (describe (player.getNoteList().events), expected);
    EXPECT_DOUBLE_EQ (player.getSlot().length, 8.0);

    auto withTimeFormat = [&good] (juce::uint8 high, juce::uint8 low) {
        auto bytes = good;
        constexpr size_t timeFormatOffset = 12;
        bytes[timeFormatOffset] = (char) high;
        bytes[timeFormatOffset + 1] = (char) low;
        return bytes;
    };
    const std::map<std::string, juce::MemoryBlock> bad {
        { "no bytes", {} },
        { "text", juce::MemoryBlock ("these are no MIDI bytes at all", 30) },
        { "a header cut short", juce::MemoryBlock (good.getData(), 10) },
        { "its only track cut short", juce::MemoryBlock (good.getData(), good.getSize() - 5) },
        { "SMPTE time", withTimeFormat (0xe7, 0x28) },
        { "no ticks per quarter", withTimeFormat (0, 0) },
    };

    for (const auto& [what, bytes] : bad)
    {
        player.loadExternalData ("good.mid", good);
        player.loadExternalData ("bad.mid", bytes);
        EXPECT_TRUE (player.getNoteList().events.empty()) << what;
        EXPECT_TRUE (player.getSlot().events.notes.empty()) << what;
        EXPECT_DOUBLE_EQ (player.getSlot().length, 0.0) << what;
    }
}

TEST (MidiPlayerClip, ANoteStruckAgainFromAnotherTrackOrChannelEndsTheOneThatSoundsAndNotesComeInOrder)
{
    const auto file = midiFile ({
        {
            { on (60), 0.0 },
            { off (60), 4.0 },
            { on (64), 1.0 },
            { off (64), 3.0 },
            { on (64, 100, 2), 2.0 }, // the same track, another channel
            { off (64, 2), 5.0 },
        },
        { { on (60), 1.0 }, { off (60), 2.0 }, { on (60), 3.0 }, { off (60), 3.5 } },
    });

    Orv::Sequencer::Modifiers::NoteList list;
    ASSERT_TRUE (ClipReader::read (file.getData(), file.getSize(), list));
    EXPECT_EQ (describe (list.events), (std::vector<std::string> { "60 [0.000, 1.000] v0.787 ch1",
                                                                   "64 [1.000, 1.000] v0.787 ch1",
                                                                   "60 [1.000, 1.000] v0.787 ch1",
                                                                   "64 [2.000, 3.000] v0.787 ch1",
                                                                   "60 [3.000, 0.500] v0.787 ch1" }));

    // Doubled by a second track that comes in just before the first ends,
    // within one block: the note is struck again there and sounds on to the
    // second track's note-off. The arp is off, so that what the player sends
    // comes out.
    PlayerRig rig;
    *rig.state().arp.arpActive = ArpSettings::arpOff;
    rig.player().loadExternalData ("doubled.mid", midiFile ({ { { on (60), 0.0 }, { off (60), 1.0 } },
                                                              { { on (60), 0.99 }, { off (60), 1.5 } } }));
    rig.player().setActive (true);

    std::vector<std::string> heard;
    while (rig.song + PlayerRig::blockSize <= samplesPerBar)
        for (const auto& w : rig.block())
            heard.push_back (w);

    // 0.99 quarters is tick 475, sample 23750, in the block from 23552.
    EXPECT_EQ (heard, (std::vector<std::string> { "+60@0", "-60@198", "+60@198", "-60@160" }));
}

TEST (MidiPlayerClip, AFileOfHalfAMillionNotesEachEndingTheOneBeforeReadsInAMoment)
{
    // Matching such notes by looking ahead from each note-on, and inserting
    // the note-offs it makes, takes time that grows with the square of the
    // notes: about half a minute for this file of 1.5 MB.
    constexpr int numNotes = 500000;
    constexpr int64_t limitMs = 5000;

    // One track in running status: a note-on of 60 on every tick.
    juce::MemoryOutputStream track;
    track.write ("\x00\x90\x3c\x64", 4);
    for (int i = 1; i < numNotes; ++i)
        track.write ("\x01\x3c\x64", 3);
    track.write ("\x00\xff\x2f\x00", 4);

    juce::MemoryOutputStream file;
    file.write ("MThd", 4);
    file.writeIntBigEndian (6);
    file.writeShortBigEndian (0);
    file.writeShortBigEndian (1);
    file.writeShortBigEndian (ticksPerQuarter);
    file.write ("MTrk", 4);
    file.writeIntBigEndian ((int) track.getDataSize());
    file << track.getMemoryBlock();

    Orv::Sequencer::Modifiers::NoteList list;
    const auto start = std::chrono::steady_clock::now();
    ASSERT_TRUE (ClipReader::read (file.getData(), file.getDataSize(), list));
    const auto elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_LT (std::chrono::duration_cast<std::chrono::milliseconds> (elapsed).count(), limitMs);

    ASSERT_EQ (list.events.size(), (size_t) numNotes);
    EXPECT_DOUBLE_EQ (list.events.front().time.length, 1.0 / ticksPerQuarter);
    EXPECT_DOUBLE_EQ (list.events.back().time.length, 0.0);
}

TEST (MidiPlayerClip, EveryBuiltInClipLoadsWholeBarsUpToItsLastEventAndTheMenuHoldsThemAll)
{
    const auto& clips = ChoiceParam::getClips();
    ASSERT_EQ (clips.size(), 127u);

    PlayerState player;
    ChoiceParam choice (player);
    for (int i = 0; i < (int) clips.size(); ++i)
    {
        const auto& clip = clips[(size_t) i];
        choice.setValue (i);
        EXPECT_EQ (choice.getIndex(), i);

        // The length worked out from the file by the framework alone.
        juce::MidiFile file;
        juce::MemoryInputStream in (clip.data, clip.size, false);
        ASSERT_TRUE (file.readFrom (in)) << clip.name;
        const auto lastQuarter = file.getLastTimestamp() / file.getTimeFormat();

        const auto slot = player.getSlot();
        EXPECT_FALSE (slot.events.notes.empty()) << clip.name;
        EXPECT_DOUBLE_EQ (slot.length, quartersPerBar * std::ceil (lastQuarter / quartersPerBar)) << clip.name;
        EXPECT_GT (slot.length, 0.0) << clip.name;
        EXPECT_EQ (player.getResource().type, Orv::Resources::Type::binary);
    }

    choice.setValue (-1);
    EXPECT_EQ (choice.getIndex(), (int) clips.size() - 1) << "the arrows go round";

    // The menu: groups as the names give them, every clip once, and a leaf
    // plays its own clip and is then the only one ticked.
    const std::map<juce::String, int> groupCounts { { "Basics", 29 }, { "Chords", 12 }, { "Classical", 8 },
                                                    { "Jazzy", 24 },  { "Modern", 38 }, { "Scales", 16 } };
    auto menu = choice.getMenuChoices();
    std::vector<Orv::MenuItems::Item*> leaves;
    std::function<void (Orv::MenuItems::Item&)> collect = [&] (Orv::MenuItems::Item& item) {
        for (auto& child : item.subItems)
            child.type == Orv::MenuItems::Item::subMenuRoot ? collect (child) : leaves.push_back (&child);
    };

    std::map<juce::String, int> counted;
    for (auto& group : menu.subItems)
    {
        const auto before = leaves.size();
        collect (group);
        counted[group.name] = (int) (leaves.size() - before);
    }
    EXPECT_EQ (counted, groupCounts);

    constexpr int someClip = 40;
    leaves[someClip]->func();
    EXPECT_EQ (choice.getIndex(), someClip);
    for (size_t i = 0; i < leaves.size(); ++i)
        EXPECT_EQ (leaves[i]->isSelected(), (int) i == someClip) << i;
    EXPECT_TRUE (choice.getText().endsWith (leaves[someClip]->name));
}

TEST (MidiPlayerState, AFileFromOutsideComesBackFromTheInstanceStateWithoutTheFileOnDisk)
{
    const juce::TemporaryFile temporary (".midi");
    const auto file = temporary.getFile();
    const auto bytes = chordsFile ({ cMajor, aMinor });
    ASSERT_TRUE (file.replaceWithData (bytes.getData(), bytes.getSize()));

    PlayerState saved;
    saved.loadExternal (file.withFileExtension ("txt")); // refused: the clip stays as it was
    EXPECT_EQ (saved.getResource().type, Orv::Resources::Type::none);

    saved.loadExternal (file);
    saved.setActive (true);
    saved.setPlaying (false);
    ASSERT_TRUE (file.deleteFile());

    auto json = Orv::Json::toJson (saved, Orv::ReflectContext::forHostState());
    EXPECT_EQ (json["Resource"]["type"], "External File");

    PlayerState loaded;
    std::vector<std::string> told;
    const Orv::Testing::BroadcastLog log (loaded.getBroadcaster(), "told", told);
    Orv::Json::fromJson (json, loaded, Orv::ReflectContext::forHostState());

    EXPECT_EQ (loaded.getResource().name, file.getFileName());
    EXPECT_EQ (loaded.getResource().type, Orv::Resources::Type::externalFile);
    EXPECT_EQ (loaded.getResource().data, saved.getResource().data);
    EXPECT_EQ (describe (loaded.getNoteList().events), describe (saved.getNoteList().events));
    EXPECT_EQ (loaded.getNoteList().events.size(), 6u);
    EXPECT_DOUBLE_EQ (loaded.getSlot().length, 8.0);
    EXPECT_TRUE (loaded.isActive());
    EXPECT_FALSE (loaded.isPlaying());
    EXPECT_FALSE (told.empty()) << "whoever shows the player hears of the load";
}

//==============================================================================
TEST (MidiPlayerPlayback, TheArpFollowsTheClipsChordsBarByBarTransposedByKeyOnTheSongsGrid)
{
    struct Case
    {
        const char* what;
        double startQuarter;
        int key;
        std::vector<std::vector<int>> chordPerBar;
    };
    // The clip is two bars long and lies on the song's bars from position 0,
    // wherever the host starts.
    const Case cases[] = {
        { "from the song's start in C", 0.0, 0, { cMajor, aMinor, cMajor } },
        { "from the fourth bar in Eb", 12.0, 3, { aMinor, cMajor, aMinor } },
    };

    for (const auto& c : cases)
    {
        SCOPED_TRACE (c.what);
        PlayerRig rig;
        rig.setPattern (everySixteenthOnThreeRows);
        rig.player().loadExternalData ("two bars.mid", chordsFile ({ cMajor, aMinor }));
        rig.player().setActive (true);
        *rig.state().arp.key = c.key;
        *rig.state().arp.transpose = 7; // not heard while the player is active
        rig.startQuarter = c.startQuarter;

        const auto numBars = (int64_t) c.chordPerBar.size();
        while (rig.song < numBars * samplesPerBar)
            rig.block();

        std::vector<std::set<int>> heard ((size_t) numBars);
        for (const auto& [note, sample] : rig.noteOns)
            if (sample < numBars * samplesPerBar)
                heard[(size_t) (sample / samplesPerBar)].insert (note % octave);

        for (size_t bar = 0; bar < heard.size(); ++bar)
            EXPECT_EQ (heard[bar], pitchClasses (c.chordPerBar[bar], c.key)) << "bar " << bar;
    }
}

TEST (MidiPlayerPlayback, SwitchingTheSourceReleasesWhatTheOtherHeldAndAPauseStrikesTheChordAgain)
{
    // The arp is off, so that what reaches it is what comes out.
    PlayerRig rig;
    *rig.state().arp.arpActive = ArpSettings::arpOff;
    *rig.state().arp.key = 2;
    *rig.state().arp.transpose = 5;
    rig.player().loadExternalData ("held.mid", chordsFile ({ cMajor }));

    using Words = std::vector<std::string>;
    const Words chordOn { "+62@0", "+66@0", "+69@0" };
    const Words chordOff { "-62@0", "-66@0", "-69@0" };
    auto then = [] (Words first, const Words& second) {
        first.insert (first.end(), second.begin(), second.end());
        return first;
    };

    struct Step
    {
        const char* what;
        std::function<void (PlayerRig&)> change;
        std::vector<std::pair<juce::MidiMessage, int>> played;
        Words expected;
    };
    const Step script[] = {
        { "keys with the player off: Transpose", [] (PlayerRig&) {}, { { on (50), 10 } }, { "+55@10" } },
        { "active: the key is released, the clip comes in Key", [] (PlayerRig& r) { r.player().setActive (true); }, {},
          then ({ "-55@0" }, chordOn) },
        { "keys are not heard", [] (PlayerRig&) {}, { { on (52), 5 }, { off (52), 9 } }, {} },
        { "not playing: the clip ends, keys come in Key", [] (PlayerRig& r) { r.player().setPlaying (false); },
          { { on (50), 7 } }, then (chordOff, { "+52@7" }) },
        { "playing again: the key ends, the chord under the position is struck",
          [] (PlayerRig& r) { r.player().setPlaying (true); }, {}, then ({ "-52@0" }, chordOn) },
        { "the host stops: the chord ends", [] (PlayerRig& r) { r.playing = false; }, {}, chordOff },
        { "stopped, nothing comes", [] (PlayerRig&) {}, {}, {} },
        { "the host goes on from there: struck again", [] (PlayerRig& r) { r.playing = true; }, {}, chordOn },
        { "inactive: the clip ends, keys in Transpose", [] (PlayerRig& r) { r.player().setActive (false); },
          { { on (50), 3 } }, then (chordOff, { "+55@3" }) },
    };

    for (const auto& step : script)
    {
        step.change (rig);
        EXPECT_EQ (rig.block (step.played), step.expected) << step.what;
    }
}

TEST (MidiPlayerPlayback, ManyBlocksOfARunningPlayerAllocateNothing)
{
    constexpr int warmUpBlocks = 20;
    constexpr int numBlocks = 600; // the two-bar clip wraps once

    PlayerRig rig;
    rig.setPattern (everySixteenthOnThreeRows);
    rig.player().loadExternalData ("two bars.mid", chordsFile ({ cMajor, aMinor }));
    rig.player().setActive (true);

    for (int i = 0; i < warmUpBlocks; ++i)
        rig.block();
    rig.allocations = 0;
    rig.noteOns.reserve (rig.noteOns.size() + 2000);
    const auto before = rig.noteOns.size();

    for (int i = 0; i < numBlocks; ++i)
    {
        // The host stops and starts, and the switches move behind the
        // broadcaster's back, as a host's thread may see them.
        rig.playing = i % 100 < 95;
        rig.player().playing.store (i % 150 < 140);
        rig.player().active.store (i % 250 < 240);
        rig.block();
    }

    EXPECT_EQ (rig.allocations, 0);
    EXPECT_GT (rig.noteOns.size(), before + 40) << "the player must really play";
}

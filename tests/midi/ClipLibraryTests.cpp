// The built-in clips, read as the file player reads them: through the
// framework's MIDI file rules, from the embedded table. What each clip must be
// musically is written down here on its own, from music theory and the clip's
// name, not from the generator.

#include "core/Binaries.h"

#include <gtest/gtest.h>
#include <juce_audio_basics/juce_audio_basics.h>
#include <juce_core/juce_core.h>

#include <map>
#include <set>
#include <vector>

namespace
{
constexpr auto clipGroup = "Clips";
constexpr auto nameSeparator = " - ";
constexpr int ticksPerQuarter = 480;
constexpr double quartersPerBar = 4.0;
constexpr double secondsPerQuarterAt120 = 0.5;
constexpr int lowestNote = 48;
constexpr int highestNote = 79;
constexpr int octave = 12;
constexpr int generatorTimeoutMs = 30000;

struct Note
{
    int pitch;
    int velocity;
    double start; // quarter notes
    double end;
};

struct LoadedClip
{
    juce::String name; // without the extension
    juce::StringArray parts;
    std::vector<Note> notes;
    double length = 0.0; // the last event of any track, as the player takes it
    bool read = false;
    short timeFormat = 0;
    int noteOns = 0, noteOffs = 0, unmatchedNoteOns = 0;
    juce::MidiMessageSequence tempos, meters;
};

// The menu's levels: the name split at " - ".
juce::StringArray partsOf (const juce::String& name)
{
    juce::StringArray parts;
    auto rest = name;
    for (auto at = rest.indexOf (nameSeparator); at >= 0; at = rest.indexOf (nameSeparator))
    {
        parts.add (rest.substring (0, at));
        rest = rest.substring (at + juce::String (nameSeparator).length());
    }
    parts.add (rest);
    return parts;
}

LoadedClip loadClip (const juce::String& fileName, const void* data, size_t size)
{
    LoadedClip clip;
    clip.name = fileName.upToLastOccurrenceOf (".mid", false, false);
    clip.parts = partsOf (clip.name);

    juce::MidiFile file;
    juce::MemoryInputStream in (data, size, false);
    // Pairs are matched below, so that a note-on without its note-off shows
    // instead of being mended by the reader.
    clip.read = file.readFrom (in, false);
    clip.timeFormat = file.getTimeFormat();
    file.findAllTempoEvents (clip.tempos);
    file.findAllTimeSigEvents (clip.meters);

    for (int t = 0; t < file.getNumTracks(); ++t)
    {
        auto track = *file.getTrack (t);
        for (const auto* event : track)
            clip.noteOffs += event->message.isNoteOff() ? 1 : 0;
        track.updateMatchedPairs();

        for (const auto* event : track)
        {
            if (! event->message.isNoteOn())
                continue;
            ++clip.noteOns;
            if (event->noteOffObject == nullptr)
            {
                ++clip.unmatchedNoteOns;
                continue;
            }
            clip.notes.push_back ({ event->message.getNoteNumber(), event->message.getVelocity(),
                                    event->message.getTimeStamp() / ticksPerQuarter,
                                    event->noteOffObject->message.getTimeStamp() / ticksPerQuarter });
        }
        clip.length = std::max (clip.length, track.getEndTime() / ticksPerQuarter);
    }
    return clip;
}

const std::vector<LoadedClip>& embeddedClips()
{
    static const auto clips = [] {
        std::vector<LoadedClip> loaded;
        for (const auto& [name, resource] : Orv::Binaries::getGroup (clipGroup))
            loaded.push_back (loadClip (name, resource.data, resource.size));
        return loaded;
    }();
    return clips;
}

int pitchClassOf (const juce::String& name)
{
    static const std::map<juce::juce_wchar, int> naturals { { 'C', 0 }, { 'D', 2 }, { 'E', 4 }, { 'F', 5 },
                                                            { 'G', 7 }, { 'A', 9 }, { 'B', 11 } };
    const auto natural = naturals.find (name[0]);
    if (name.isEmpty() || name.length() > 2 || natural == naturals.end())
        return -1;
    const auto accidental = name.length() == 2 ? (name[1] == '#' ? 1 : name[1] == 'b' ? -1 : 99) : 0;
    return accidental == 99 ? -1 : (natural->second + accidental + octave) % octave;
}

std::set<int> pitchClassesOf (const std::vector<Note>& notes)
{
    std::set<int> classes;
    for (const auto& note : notes)
        classes.insert (note.pitch % octave);
    return classes;
}

std::set<int> transposedSet (const std::vector<int>& intervals, int root)
{
    std::set<int> classes;
    for (const auto interval : intervals)
        classes.insert ((root + interval) % octave);
    return classes;
}

// The notes that start together, in order of time.
std::vector<std::vector<int>> chordsOf (const LoadedClip& clip)
{
    std::map<double, std::vector<int>> byStart;
    for (const auto& note : clip.notes)
        byStart[note.start].push_back (note.pitch);
    std::vector<std::vector<int>> chords;
    for (auto& [start, pitches] : byStart)
    {
        std::sort (pitches.begin(), pitches.end());
        chords.push_back (pitches);
    }
    return chords;
}

// What keeps a clip from looping cleanly under the arp, or nothing.
juce::String loopProblem (const LoadedClip& clip)
{
    if (! clip.read || clip.timeFormat != ticksPerQuarter)
        return "not a MIDI file of 480 ticks per quarter";
    if (clip.tempos.getNumEvents() != 1 || clip.tempos.getEventTime (0) != 0.0
        || clip.tempos.getEventPointer (0)->message.getTempoSecondsPerQuarterNote() != secondsPerQuarterAt120)
        return "no single tempo of 120 BPM at the start";
    int numerator = 0, denominator = 0;
    if (clip.meters.getNumEvents() == 1)
        clip.meters.getEventPointer (0)->message.getTimeSignatureInfo (numerator, denominator);
    if (numerator != 4 || denominator != 4 || clip.meters.getEventTime (0) != 0.0)
        return "no single 4/4 at the start";
    if (clip.notes.empty() || clip.unmatchedNoteOns > 0 || clip.noteOns != clip.noteOffs)
        return "notes missing or note-ons and note-offs unmatched";

    const auto bars = clip.length / quartersPerBar;
    if (bars != 1.0 && bars != 2.0 && bars != 4.0 && bars != 8.0)
        return "lasts " + juce::String (bars) + " bars";

    std::set<double> starts;
    for (const auto& note : clip.notes)
        starts.insert (note.start);
    if (*starts.begin() != 0.0)
        return "does not start with a note";

    // Held as blocks: every note ends where the next notes begin, or at the
    // loop's end, so that the arp always has a chord and never two at once.
    for (const auto& note : clip.notes)
    {
        if (note.pitch < lowestNote || note.pitch > highestNote || note.velocity == 0)
            return "note " + juce::String (note.pitch) + " out of range or silent";
        const auto next = starts.upper_bound (note.start);
        const auto expectedEnd = next == starts.end() ? clip.length : *next;
        if (note.end != expectedEnd)
            return "note " + juce::String (note.pitch) + " at " + juce::String (note.start) + " ends at "
                 + juce::String (note.end) + ", not at " + juce::String (expectedEnd);
    }
    return {};
}

//==============================================================================
TEST (ClipLibrary, HoldsEveryGroupWithItsCountUnderWellFormedNames)
{
    const std::map<juce::String, int> expectedCounts { { "Basics", 29 }, { "Chords", 12 }, { "Classical", 8 },
                                                       { "Jazzy", 24 }, { "Modern", 38 }, { "Scales", 16 } };
    std::map<juce::String, int> counts;
    for (const auto& [name, resource] : Orv::Binaries::getGroup (clipGroup))
    {
        EXPECT_TRUE (name.endsWith (".mid")) << name;
        const auto parts = partsOf (name.upToLastOccurrenceOf (".mid", false, false));
        EXPECT_TRUE (parts.size() == 2 || parts.size() == 3) << name;
        EXPECT_FALSE (parts.contains ({})) << name;
        ++counts[parts[0]];
    }
    EXPECT_EQ (counts, expectedCounts);
}

TEST (ClipLibrary, EveryClipIsAWholeBarLoopOfBlockChordsInTheMiddleRegister)
{
    ASSERT_FALSE (embeddedClips().empty());
    for (const auto& clip : embeddedClips())
        EXPECT_EQ (loopProblem (clip), juce::String()) << clip.name;
}

TEST (ClipLibrary, ScalesWalkTheirNamedScaleOneNoteAtATimeFromTheTonic)
{
    const std::map<juce::String, std::vector<int>> scales {
        { "Major", { 0, 2, 4, 5, 7, 9, 11 } },
        { "Natural Minor", { 0, 2, 3, 5, 7, 8, 10 } },
        { "Harmonic Minor", { 0, 2, 3, 5, 7, 8, 11 } },
        { "Melodic Minor", { 0, 2, 3, 5, 7, 9, 11 } },
        { "Dorian", { 0, 2, 3, 5, 7, 9, 10 } },
        { "Phrygian", { 0, 1, 3, 5, 7, 8, 10 } },
        { "Lydian", { 0, 2, 4, 6, 7, 9, 11 } },
        { "Mixolydian", { 0, 2, 4, 5, 7, 9, 10 } },
        { "Locrian", { 0, 1, 3, 5, 6, 8, 10 } },
        { "Major Pentatonic", { 0, 2, 4, 7, 9 } },
        { "Minor Pentatonic", { 0, 3, 5, 7, 10 } },
        { "Blues", { 0, 3, 5, 6, 7, 10 } },
        { "Whole Tone", { 0, 2, 4, 6, 8, 10 } },
        { "Chromatic", { 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11 } },
        { "Phrygian Dominant", { 0, 1, 4, 5, 7, 8, 10 } },
        { "Diminished Half-Whole", { 0, 1, 3, 4, 6, 7, 9, 10 } },
    };

    for (const auto& clip : embeddedClips())
    {
        if (clip.parts[0] != "Scales")
            continue;
        const auto root = pitchClassOf (clip.parts[1].upToFirstOccurrenceOf (" ", false, false));
        const auto scale = scales.find (clip.parts[1].fromFirstOccurrenceOf (" ", false, false));
        ASSERT_NE (scale, scales.end()) << clip.name;
        ASSERT_GE (root, 0) << clip.name;
        ASSERT_FALSE (clip.notes.empty()) << clip.name;

        EXPECT_EQ (pitchClassesOf (clip.notes), transposedSet (scale->second, root)) << clip.name;
        EXPECT_EQ (chordsOf (clip).size(), clip.notes.size()) << clip.name << ": notes sound together";
        const auto first = std::min_element (clip.notes.begin(), clip.notes.end(),
                                             [] (const Note& a, const Note& b) { return a.start < b.start; });
        EXPECT_EQ (first->pitch % octave, root) << clip.name;
    }
}

TEST (ClipLibrary, JazzTwoFiveOnesVoiceEachChordWithItsThirdAndSeventh)
{
    // ii, V and I (or i) in turn: their roots above the key's tonic, and their
    // thirds above the root, in a major and in a minor key.
    const int rootsAboveTonic[] = { 2, 7, 0 };
    const int thirdsInMajor[] = { 3, 4, 4 };
    const int thirdsInMinor[] = { 3, 4, 3 };
    size_t checked = 0;

    for (const auto& clip : embeddedClips())
    {
        if (clip.parts[0] != "Jazzy" || (clip.parts[1] != "ii-V-I" && clip.parts[1] != "ii-V-i"))
            continue;
        ++checked;
        const auto key = juce::StringArray::fromTokens (clip.parts[2], false);
        const auto tonic = pitchClassOf (key[0]);
        ASSERT_GE (tonic, 0) << clip.name;
        ASSERT_TRUE (key[1] == "Major" || key[1] == "Minor") << clip.name;
        const auto* thirds = key[1] == "Major" ? thirdsInMajor : thirdsInMinor;

        const auto chords = chordsOf (clip);
        EXPECT_GE (chords.size(), 3u) << clip.name;
        for (size_t i = 0; i < chords.size(); ++i)
        {
            const auto root = (tonic + rootsAboveTonic[i % 3]) % octave;
            std::set<int> aboveRoot;
            for (const auto pitch : chords[i])
                aboveRoot.insert ((pitch - root + octave) % octave);

            EXPECT_GE (chords[i].size(), 4u) << clip.name << ", chord " << i;
            EXPECT_EQ (aboveRoot.count (thirds[i % 3]), 1u) << clip.name << ", chord " << i << ": third";
            EXPECT_EQ (aboveRoot.count (10) + aboveRoot.count (11), 1u) << clip.name << ", chord " << i << ": seventh";
        }
    }
    EXPECT_EQ (checked, 10u) << "six major keys and four minor";
}

TEST (ClipLibrary, NamedChordsSoundExactlyTheirTonesWithTheRootBelow)
{
    const std::map<juce::String, std::vector<int>> qualities {
        { "Major", { 0, 4, 7 } },
        { "Minor", { 0, 3, 7 } },
        { "Augmented", { 0, 4, 8 } },
        { "Sus2", { 0, 2, 7 } },
        { "Sus4", { 0, 5, 7 } },
        { "Add 9", { 0, 2, 4, 7 } },
        { "6-9", { 0, 2, 4, 7, 9 } },
        { "Major 7", { 0, 4, 7, 11 } },
        { "Minor 7", { 0, 3, 7, 10 } },
        { "Dominant 7", { 0, 4, 7, 10 } },
        { "Minor 7 Flat 5", { 0, 3, 6, 10 } },
        { "Diminished 7", { 0, 3, 6, 9 } },
        { "Minor 9", { 0, 2, 3, 7, 10 } },
        { "Dominant 13", { 0, 2, 4, 9, 10 } },
    };
    size_t checked = 0;

    for (const auto& clip : embeddedClips())
    {
        const auto single = clip.parts[0] == "Chords"
                         || (clip.parts[0] == "Basics" && (clip.parts[1] == "Triads" || clip.parts[1] == "Sevenths"));
        if (! single)
            continue;
        ++checked;
        const auto title = clip.parts[clip.parts.size() - 1];
        const auto root = pitchClassOf (title.upToFirstOccurrenceOf (" ", false, false));
        const auto quality = qualities.find (title.fromFirstOccurrenceOf (" ", false, false));
        ASSERT_NE (quality, qualities.end()) << clip.name;
        ASSERT_GE (root, 0) << clip.name;
        ASSERT_FALSE (clip.notes.empty()) << clip.name;

        EXPECT_EQ (pitchClassesOf (clip.notes), transposedSet (quality->second, root)) << clip.name;
        const auto lowest = std::min_element (clip.notes.begin(), clip.notes.end(),
                                              [] (const Note& a, const Note& b) { return a.pitch < b.pitch; });
        EXPECT_EQ (lowest->pitch % octave, root) << clip.name;
    }
    EXPECT_EQ (checked, 28u) << "ten triads, six sevenths and twelve chord types";
}

//==============================================================================
struct GeneratorRun
{
    juce::uint32 exitCode = 0;
    juce::String output;
};

GeneratorRun runGenerator (const juce::File& source, const juce::File& folder)
{
    juce::ChildProcess generator;
    if (! generator.start (juce::StringArray { HALVANE_CLIP_GENERATOR, source.getFullPathName(), folder.getFullPathName() }))
        return { 255, "the generator did not start" };
    auto output = generator.readAllProcessOutput();
    // The exit code reads as 0 until the process has been reaped.
    if (! generator.waitForProcessToFinish (generatorTimeoutMs))
        return { 255, "the generator did not finish" };
    return { generator.getExitCode(), output };
}

// The build made the embedded files; a second run must give the same bytes, or
// a build on another day would play different clips.
TEST (ClipLibrary, GeneratorGivesTheEmbeddedBytesAgain)
{
    const auto folder = juce::File::createTempFile ("clips");
    const auto run = runGenerator (juce::File (HALVANE_CLIP_SOURCE), folder);
    ASSERT_EQ (run.exitCode, 0u) << run.output;

    const auto& group = Orv::Binaries::getGroup (clipGroup);
    EXPECT_EQ (folder.findChildFiles (juce::File::findFiles, false, "*.mid").size(), static_cast<int> (group.size()));
    EXPECT_EQ (juce::StringArray::fromLines (folder.getChildFile ("Clips.list").loadFileAsString().trim()).size(),
               static_cast<int> (group.size()));

    for (const auto& [name, resource] : group)
    {
        juce::MemoryBlock written;
        ASSERT_TRUE (folder.getChildFile (name).loadFileAsData (written)) << name;
        EXPECT_TRUE (written.matches (resource.data, resource.size)) << name;
    }
    folder.deleteRecursively();
}

// A slip in the source must stop the build at its line, not make a clip that
// plays something else or breaks the loop.
TEST (ClipLibrary, GeneratorRefusesASourceThatWouldMakeABrokenClip)
{
    struct Case
    {
        const char* problem;
        const char* source;
        const char* line;
    };
    const Case cases[] = {
        { "a bar line inside a bar", "[Basics - X]\nC 4 | G 2 | F 2\n", "line 2" },
        { "a clip of three bars", "[Basics - X]\nC 12\n", "line 1" },
        { "an unknown chord symbol", "[Basics - X]\nCmaj8 4\n", "line 2" },
        { "a note above the register", "[Basics - X]\n(C6) 4\n", "line 2" },
        { "a hold with nothing to hold", "[Basics - X]\nrun 1 - C4 C4 C4\n", "line 2" },
        { "a name taken twice", "[Basics - X]\nC 4\n[Basics - X]\nG 4\n", "line 3" },
        { "a name with a slash", "[Basics - A/B]\nC 4\n", "line 1" },
        { "a clip without notes", "[Basics - X]\nvelocity 90\n", "line 1" },
    };

    const auto folder = juce::File::createTempFile ("clipsource");
    ASSERT_TRUE (folder.createDirectory());
    const auto source = folder.getChildFile ("Test.chords");
    const auto output = folder.getChildFile ("out");

    for (const auto& c : cases)
    {
        ASSERT_TRUE (source.replaceWithText (c.source));
        const auto run = runGenerator (source, output);
        EXPECT_NE (run.exitCode, 0u) << c.problem;
        EXPECT_TRUE (run.output.contains (c.line)) << c.problem << ": " << run.output;
    }

    // The same shapes written correctly pass, and a slash puts its bass lowest.
    ASSERT_TRUE (source.replaceWithText ("[Basics - X]\nC/E 2 G/B 2 |\nrun 1 C4 - E4 G4\n"));
    const auto run = runGenerator (source, output);
    ASSERT_EQ (run.exitCode, 0u) << run.output;
    juce::MemoryBlock data;
    ASSERT_TRUE (output.getChildFile ("Basics - X.mid").loadFileAsData (data));
    const auto clip = loadClip ("Basics - X.mid", data.getData(), data.getSize());
    EXPECT_EQ (loopProblem (clip), juce::String());
    const auto chords = chordsOf (clip);
    ASSERT_EQ (chords.size(), 5u);
    EXPECT_EQ (chords[0].front() % octave, pitchClassOf ("E"));
    EXPECT_EQ (chords[1].front() % octave, pitchClassOf ("B"));
    folder.deleteRecursively();
}
} // namespace

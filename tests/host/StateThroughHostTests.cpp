#include "host/HostHarness.h"
#include "sequencer/midiplayer/ChoiceParam.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <map>
#include <set>

// A DAW keeps the instance in its project as a blob and gives it back on
// load: these tests save, edit and restore blobs through the bundle, and
// play what a restored session holds.
namespace
{
using Orv::Testing::HostedHalvane;
using Orv::Testing::TimedEvent;
using json = nlohmann::json;

constexpr double tempo = 120.0;
constexpr int64_t quarter = 24000; // at that tempo and the harness's rate
constexpr int64_t bar = 4 * quarter;
constexpr int blockSize = 256;
constexpr int centreRow = 64;
constexpr int keyOfD = 2;

// JUCE's hosting keeps a VST3's component state base-64 encoded under
// "IComponent" of its own XML; the framework's wrapper in the bundle adds
// its private data behind the blob, which the blob's length word excludes.
constexpr const char* componentTag = "IComponent";

/** The blob the bundle gave the host. */
juce::MemoryBlock saveOf (HostedHalvane& host)
{
    juce::MemoryBlock hostData;
    host.plugin().getStateInformation (hostData);
    const auto xml = juce::AudioProcessor::getXmlFromBinary (hostData.getData(), (int) hostData.getSize());
    if (xml == nullptr || xml->getChildByName (componentTag) == nullptr)
        throw std::runtime_error ("the host kept no component state");

    juce::MemoryBlock component;
    component.fromBase64Encoding (xml->getChildByName (componentTag)->getAllSubText());
    if (component.getSize() < 9)
        return component;
    const auto length = juce::ByteOrder::littleEndianInt (component.getData()) == 0x21324356
                            ? juce::ByteOrder::littleEndianInt (static_cast<const char*> (component.getData()) + 4)
                            : 0u;
    return juce::MemoryBlock (component.getData(), juce::jmin ((size_t) length + 9, component.getSize()));
}

json jsonOf (const juce::MemoryBlock& blob)
{
    const auto* bytes = static_cast<const char*> (blob.getData());
    const auto length = juce::ByteOrder::littleEndianInt (bytes + 4);
    return json::parse (std::string (bytes + 8, length));
}

/** Written here byte by byte, not by the plug-in's own code. */
juce::MemoryBlock blobOf (const std::string& text)
{
    juce::MemoryOutputStream out;
    out.write ("VC2!", 4);
    out.writeInt ((int) text.size());
    out.write (text.data(), text.size());
    out.writeByte (0);
    return out.getMemoryBlock();
}

/** Hands the bundle a blob as a host restoring a project does. */
void restore (HostedHalvane& host, const juce::MemoryBlock& blob)
{
    juce::XmlElement state ("VST3PluginState");
    state.createNewChildElement (componentTag)->addTextElement (blob.toBase64Encoding());
    juce::MemoryBlock hostData;
    juce::AudioProcessor::copyXmlToBinary (state, hostData);
    host.plugin().setStateInformation (hostData.getData(), (int) hostData.getSize());
}

/** Steps of a pattern as its file holds them: rows with start and length as
    fractions of the pattern. */
json stepsOf (const std::vector<int>& rows, double length)
{
    auto steps = json::array();
    for (size_t i = 0; i < rows.size(); ++i)
        steps.push_back ({ { "Event", { { "channel", 1 }, { "noteNum", rows[i] }, { "velocity", 0.8 } } },
                           { "Time", { { "start", (double) i / (double) rows.size() }, { "length", length } } },
                           { "enabled", true } });
    return steps;
}

/** A saved state with pattern 0 drawn, as a DAW's project would hold it. */
json withPattern (json state, const std::vector<int>& rows, double length)
{
    state["Patterns"]["Patterns"][0]["Pattern"]["Steps"] = stepsOf (rows, length);
    return state;
}

struct Note
{
    bool on;
    int note;
    int velocity;
    int64_t sample;

    bool operator== (const Note& o) const
    {
        return on == o.on && note == o.note && sample == o.sample && (! on || velocity == o.velocity);
    }
};

std::ostream& operator<< (std::ostream& os, const Note& n)
{
    return os << (n.on ? "+" : "-") << n.note << " v" << n.velocity << " @" << n.sample;
}

std::vector<Note> notesOf (const std::vector<TimedEvent>& events)
{
    std::vector<Note> notes;
    for (const auto& e : events)
        if (e.message.isNoteOnOrOff())
        {
            EXPECT_EQ (e.message.getChannel(), 1);
            notes.push_back ({ e.message.isNoteOn(), e.message.getNoteNumber(), e.message.getVelocity(), e.time });
        }
    return notes;
}

/** Restores a session as a host loading a project does, then lets it settle
    while the host stands: the save makes sure the load has landed, and the
    stopped blocks let the loaded pattern take its slot. Returns the sample
    at which the host will start. */
int64_t loadSession (HostedHalvane& host, const json& state)
{
    restore (host, blobOf (state.dump()));
    saveOf (host);
    host.playHead().setPlaying (0.0, tempo, 0, false);
    host.play ({}, bar, blockSize);
    host.playHead().setPlaying (0.0, tempo, 0);
    return host.getSamplesPlayed();
}

/** Stops the host and runs two more blocks; returns their notes. */
std::vector<Note> stop (HostedHalvane& host)
{
    host.playHead().setPlaying (host.playHead().position->getPpqPosition().orFallback (0.0), tempo,
                                host.playHead().position->getTimeInSamples().orFallback (0), false);
    return notesOf (host.play ({}, 2 * blockSize, blockSize));
}

void expectEveryNoteEnded (const std::vector<Note>& notes)
{
    std::multiset<int> sounding;
    for (const auto& n : notes)
    {
        if (n.on)
        {
            EXPECT_EQ (sounding.count (n.note), 0u) << "struck while on: " << n;
            sounding.insert (n.note);
        }
        else if (auto found = sounding.find (n.note); found != sounding.end())
            sounding.erase (found);
    }
    EXPECT_TRUE (sounding.empty()) << sounding.size() << " notes left on";
}
} // namespace

//==============================================================================
TEST (StateThroughHost, TheBlobIsMagicLengthCompactJsonAndAZeroWithTheThirtyFourFlatValues)
{
    HostedHalvane host;
    const auto blob = saveOf (host);
    const auto* bytes = static_cast<const char*> (blob.getData());

    ASSERT_GT (blob.getSize(), 9u);
    EXPECT_EQ (std::string (bytes, 4), "VC2!");
    EXPECT_EQ ((size_t) juce::ByteOrder::littleEndianInt (bytes + 4), blob.getSize() - 9);
    EXPECT_EQ (bytes[blob.getSize() - 1], 0);

    const auto state = jsonOf (blob);
    EXPECT_EQ (state.at ("product"), "Halvane");
    const auto& flat = state.at ("FlatParams");
    EXPECT_EQ (flat.size(), 34u);
    for (const auto* id : { "Transpose", "Swing-Ref", "Synth-Volume", "OSC-2-Volume", "Delay-Mix", "Arp-Active" })
        EXPECT_TRUE (flat.contains (id)) << id;
}

TEST (StateThroughHost, AFreshInstanceTakesBackParametersPatternsTheClipAndTheOctaveRange)
{
    HostedHalvane first;
    // Parameters as automation or a generic editor would set them.
    for (auto* parameter : first.plugin().getParameters())
    {
        const auto name = parameter->getName (64);
        if (name == "Transpose")
            parameter->setValueNotifyingHost (0.75f);
        else if (name == "Delay Mix")
            parameter->setValueNotifyingHost (0.25f);
        else if (name == "Enable Synth")
            parameter->setValueNotifyingHost (0.0f);
    }
    auto state = withPattern (jsonOf (saveOf (first)), { 64, 66, 65 }, 0.1);
    state["MidiPlayer"]["Resource"] = { { "name", Orv::Sequencer::MidiPlayer::ChoiceParam::getClips().at (3).name.toStdString() },
                                        { "type", "Binary" },
                                        { "data", "" } };
    state["Octave"] = { { "Min", 0 }, { "Max", 3 } };
    restore (first, blobOf (state.dump()));

    // A restore followed at once by a save gives what was restored.
    const auto saved = saveOf (first);
    const auto reread = jsonOf (saved);
    EXPECT_EQ (reread["Patterns"]["Patterns"][0]["Pattern"]["Steps"].size(), 3u);
    EXPECT_EQ (reread["Octave"], state["Octave"]);
    EXPECT_EQ (reread["MidiPlayer"]["Resource"]["name"], state["MidiPlayer"]["Resource"]["name"]);
    EXPECT_FLOAT_EQ (reread["FlatParams"]["Transpose"].get<float>(), 0.75f);
    EXPECT_EQ (reread["FlatParams"]["Enable-Synth"].get<float>(), 0.0f);
    EXPECT_EQ (reread["Params"]["Transpose"], "6");

    HostedHalvane second;
    restore (second, saved);
    EXPECT_EQ (jsonOf (saveOf (second)), reread);

    const auto a = first.plugin().getParameters();
    const auto b = second.plugin().getParameters();
    ASSERT_EQ (a.size(), b.size());
    for (int i = 0; i < a.size(); ++i)
        EXPECT_EQ (a[i]->getValue(), b[i]->getValue()) << a[i]->getName (64);

    // Two restores in a row: the later one holds.
    restore (second, blobOf (withPattern (state, { 64 }, 0.5).dump()));
    restore (second, saved);
    EXPECT_EQ (jsonOf (saveOf (second)), reread);
}

TEST (StateThroughHost, HostileBlobsLeaveTheInstanceWorkingAndUnchanged)
{
    HostedHalvane host;
    restore (host, blobOf (withPattern (jsonOf (saveOf (host)), { 64, 65 }, 0.2).dump()));
    const auto before = saveOf (host);
    const auto text = std::string (static_cast<const char*> (before.getData()) + 8, before.getSize() - 9);

    std::vector<juce::MemoryBlock> hostile {
        blobOf ("{\"Patterns\": [1, 2,"),
        blobOf (std::string (50000, '[') + std::string (50000, ']')),
        blobOf (R"({"Patterns": {"Patterns": {"x": 1}}, "FlatParams": {"Transpose": "high"}})"),
        blobOf (text.substr (0, text.size() / 2)),
        blobOf ("[]"),
        juce::MemoryBlock (before.getData(), 8),
        juce::MemoryBlock (before.getData(), before.getSize() / 3),
    };
    juce::Random random (11);
    for (int i = 0; i < 40; ++i)
    {
        juce::MemoryBlock noise ((size_t) random.nextInt (300) + 1);
        random.fillBitsRandomly (noise.getData(), noise.getSize());
        hostile.push_back (noise);
    }

    for (const auto& blob : hostile)
    {
        restore (host, blob);
        EXPECT_EQ (saveOf (host), before);
    }

    // A blob whose length word runs past the data ends at the data.
    auto longWord = before;
    const juce::uint32 huge = 0x7FFFFFF0;
    longWord.copyFrom (&huge, 4, 4);
    restore (host, longWord);
    EXPECT_EQ (saveOf (host), before);

    host.playHead().setPlaying (0.0, tempo, 0);
    juce::MidiBuffer chord;
    chord.addEvent (juce::MidiMessage::noteOn (1, 60, (uint8_t) 100), 0);
    host.processBlock (chord, blockSize);
    EXPECT_TRUE (std::isfinite (host.lastAudio().getMagnitude (0, 0, blockSize)));
}

//==============================================================================
TEST (ArpThroughHost, APatternFromARestoredSessionPlaysItsExactStreamOverAChord)
{
    HostedHalvane host;
    // Four steps a quarter apart, each half a quarter long, the last below
    // the chord: C E G gives C, G, E and the G an octave down.
    const auto start = loadSession (host, withPattern (jsonOf (saveOf (host)), { 64, 66, 65, 63 }, 0.125));

    std::vector<TimedEvent> chord;
    for (const auto note : { 67, 60, 64 })
        chord.push_back ({ juce::MidiMessage::noteOn (4, note, (uint8_t) 100), start });

    // With the file player off a stopped host leaves the arp on its own
    // clock, so two bars are compared while the host plays.
    const auto heard = notesOf (host.play (chord, 2 * bar, blockSize));

    const std::array<int, 4> expectedNotes { 60, 67, 64, 55 };
    std::vector<Note> expected;
    for (int64_t q = 0; q < 8; ++q)
    {
        expected.push_back ({ true, expectedNotes[(size_t) (q % 4)], 102, start + q * quarter });
        expected.push_back ({ false, expectedNotes[(size_t) (q % 4)], 0, start + q * quarter + quarter / 2 });
    }
    EXPECT_EQ (heard, expected);
    EXPECT_GT (host.lastAudio().getNumSamples(), 0);
}

TEST (ArpThroughHost, TheFilePlayersClipDrivesTheArpTransposedByKeyAndAStopEndsItsNotes)
{
    const auto& clip = Orv::Sequencer::MidiPlayer::ChoiceParam::getClips().at (3);

    // The chord the clip holds at each quarter of its first two bars, where
    // it does not change within a 64th of that quarter.
    juce::MidiFile file;
    juce::MemoryInputStream in (clip.data, clip.size, false);
    ASSERT_TRUE (file.readFrom (in));
    const auto ticks = (double) file.getTimeFormat();
    std::vector<std::pair<double, double>> spans[128];
    for (int t = 0; t < file.getNumTracks(); ++t)
    {
        juce::MidiMessageSequence track (*file.getTrack (t));
        track.updateMatchedPairs();
        for (auto* e : track)
            if (e->message.isNoteOn() && e->noteOffObject != nullptr)
                spans[e->message.getNoteNumber()].push_back ({ e->message.getTimeStamp() / ticks,
                                                               e->noteOffObject->message.getTimeStamp() / ticks });
    }
    std::map<int64_t, int> lowestAt;
    for (int64_t q = 0; q < 8; ++q)
    {
        bool changes = false;
        int lowest = -1;
        for (int n = 0; n < 128 && lowest < 0; ++n)
            for (const auto& [on, off] : spans[n])
            {
                changes = changes || std::abs (on - (double) q) < 1.0 / 16 || std::abs (off - (double) q) < 1.0 / 16;
                if (on <= (double) q && (double) q < off)
                    lowest = n;
            }
        for (int n = 0; n < 128; ++n)
            for (const auto& [on, off] : spans[n])
                changes = changes || std::abs (on - (double) q) < 1.0 / 16 || std::abs (off - (double) q) < 1.0 / 16;
        if (! changes && lowest >= 0)
            lowestAt[q] = lowest + keyOfD;
    }
    ASSERT_GE (lowestAt.size(), 4u) << "the clip should hold its chords across quarters";

    HostedHalvane host;
    auto state = withPattern (jsonOf (saveOf (host)), { centreRow, centreRow, centreRow, centreRow }, 0.125);
    state["MidiPlayer"] = { { "Resource", { { "name", clip.name.toStdString() }, { "type", "Binary" }, { "data", "" } } },
                            { "active", true },
                            { "playing", true } };
    state["Params"]["Key"] = "D";
    const auto start = loadSession (host, state);
    auto heard = notesOf (host.play ({}, 2 * bar, blockSize));

    std::map<int64_t, int> struck;
    for (const auto& n : heard)
        if (n.on && (n.sample - start) % quarter == 0)
            struck[(n.sample - start) / quarter] = n.note;
    for (const auto& [q, note] : lowestAt)
        EXPECT_EQ (struck[q], note) << "quarter " << q;

    const auto afterStop = stop (host);
    heard.insert (heard.end(), afterStop.begin(), afterStop.end());
    expectEveryNoteEnded (heard);
}

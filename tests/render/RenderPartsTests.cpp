#include "tools/render/HostState.h"
#include "tools/render/MidiTimeline.h"
#include "tools/render/RenderError.h"
#include "tools/render/RenderOptions.h"

#include <gtest/gtest.h>

// The renderer's pieces where a slip would not show in a short render: the
// clip's loop and key in the picture and the count, note pairing, the MIDI
// file's ticks at rates that do not divide, and how presets merge.
namespace
{
using namespace Orv::Tools::Render;
using json = nlohmann::json;

constexpr double rate = 44100.0;
constexpr double bpm = 100.0;

juce::MemoryBlock clipOf (const std::vector<std::pair<int, std::pair<int, int>>>& notes, int ticks)
{
    juce::MidiMessageSequence track;
    for (const auto& [note, span] : notes)
    {
        track.addEvent (juce::MidiMessage::noteOn (1, note, (juce::uint8) 90), span.first);
        track.addEvent (juce::MidiMessage::noteOff (1, note), span.second);
    }
    juce::MidiFile file;
    file.setTicksPerQuarterNote (ticks);
    file.addTrack (track);
    juce::MemoryOutputStream out;
    file.writeTo (out);
    return out.getMemoryBlock();
}
} // namespace

TEST (RenderParts, AClipLoopsByWholeBarsAndIsTransposedByTheKey)
{
    // Five quarters of notes make a loop of two bars.
    constexpr int ticks = 96;
    const auto bytes = clipOf ({ { 60, { 0, 4 * ticks } }, { 64, { 4 * ticks, 5 * ticks } } }, ticks);
    const MidiTimeline timeline (bpm, rate, (juce::int64) std::llround (5 * 4 * 60.0 / bpm * rate));

    const auto spans = timeline.clipNotes (bytes.getData(), bytes.getSize(), 2);
    ASSERT_EQ (spans.size(), 5u) << "loops start at bars 1, 3 and 5; the last one holds only its first note";
    const auto barSamples = timeline.getSamplesPerBar();
    for (size_t i = 0; i < spans.size(); ++i)
    {
        const auto loop = (double) (i / 2) * 2 * barSamples;
        EXPECT_EQ (spans[i].note, i % 2 == 0 ? 62 : 66);
        EXPECT_EQ (spans[i].start, timeline.sampleOfQuarter (i % 2 == 0 ? 0.0 : 4.0) + (juce::int64) std::llround (loop));
    }
    EXPECT_EQ (spans.back().end, timeline.getTotalSamples()) << "cut at the end of the render";
    EXPECT_TRUE (timeline.clipNotes ("MThd", 4, 0).empty());
}

TEST (RenderParts, NotesPairInOrderAndWhatIsStillOnEndsWithTheRender)
{
    const MidiTimeline timeline (bpm, rate, 1000);
    const std::vector<TimedMessage> events {
        { juce::MidiMessage::noteOn (1, 60, (juce::uint8) 100), 0 },   { juce::MidiMessage::noteOn (1, 60, (juce::uint8) 50), 10 },
        { juce::MidiMessage::noteOn (2, 60, (juce::uint8) 70), 15 },   { juce::MidiMessage::noteOff (1, 60), 20 },
        { juce::MidiMessage::noteOn (1, 61, (juce::uint8) 0), 25 },    { juce::MidiMessage::noteOff (1, 60), 30 },
        { juce::MidiMessage::controllerEvent (1, 64, 127), 35 },
    };
    const auto spans = timeline.spansOf (events);
    ASSERT_EQ (spans.size(), 3u) << "a note-on of velocity 0 is a note-off";
    EXPECT_EQ (spans[0].end, 20);
    EXPECT_EQ (spans[1].end, 30);
    EXPECT_EQ (spans[2].end, 1000) << "the other channel's note was never ended";
}

TEST (RenderParts, TheMidiFileHoldsEachEventAtItsNearestTickAndTheWholeLength)
{
    const auto total = (juce::int64) std::llround (2 * 4 * 60.0 / bpm * rate);
    const MidiTimeline timeline (bpm, rate, total);
    std::vector<TimedMessage> events;
    for (juce::int64 sample = 0; sample < total; sample += 7919)
        events.push_back ({ juce::MidiMessage::noteOn (1, 60, (juce::uint8) 100), sample });

    const auto file = juce::File::createTempFile (".mid");
    timeline.write (events, file);
    juce::MidiFile midi;
    juce::FileInputStream in (file);
    ASSERT_TRUE (midi.readFrom (in));
    file.deleteFile();

    ASSERT_EQ (midi.getNumTracks(), 2);
    const auto& notes = *midi.getTrack (1);
    std::vector<double> ticks;
    for (const auto* e : notes)
        if (e->message.isNoteOn())
            ticks.push_back (e->message.getTimeStamp());
    ASSERT_EQ (ticks.size(), events.size());
    for (size_t i = 0; i < ticks.size(); ++i)
        EXPECT_EQ (ticks[i], std::round (timeline.quarterOfSample (events[i].sample) * MidiTimeline::ticksPerQuarter));
    EXPECT_EQ (midi.getLastTimestamp(), 2.0 * 4 * MidiTimeline::ticksPerQuarter);
}

TEST (RenderParts, OptionsTakeInlineValuesAndALengthThatDoesNotDivide)
{
    const auto options = RenderOptions::parse ({ "--bpm=100", "--rate", "44100", "--bars=3", "--clip", "x" }, {});
    EXPECT_EQ (options.bpm, 100.0);
    EXPECT_EQ (options.totalSamples(), 317520) << "3 bars of 2.4 s";
    EXPECT_THROW (RenderOptions::parse ({ "--help=yes" }, {}), RenderError);
    EXPECT_THROW (RenderOptions::parse ({ "--bpm=" }, {}), RenderError);
    EXPECT_THROW (RenderOptions::parse ({ "--bpm", "nan" }, {}), RenderError);
    EXPECT_THROW (RenderOptions::parse ({ "--clip", "" }, {}), RenderError);
}

TEST (RenderParts, PresetsMergeOverTheStateKeepingWhatTheyDoNotSay)
{
    json state = { { "Params", { { "Key", "D" }, { "Swing", "10%" } } },
                   { "Patterns", { { "Patterns", json::array ({ 1, 2, 3 }) }, { "active", 2 },
                                   { "Sequencer", { { "Slots", "kept" }, { "Transport", { { "BPM", 1 } } } } } } },
                   { "Synth", { { "Params", { { "Master", "0.00 dB" }, { "SynthEnable", "Off" } } }, { "name", "Old" } } } };

    HostState::applyPatternPreset (state, { { "Params", nullptr },
                                            { "Patterns", { { "Patterns", json::array ({ 9 }) },
                                                            { "Sequencer", { { "Transport", { { "BPM", 2 } } } } } } } });
    EXPECT_EQ (state["Params"]["Key"], "D") << "a preset without parameters leaves them";
    EXPECT_EQ (state["Patterns"]["Patterns"], json::array ({ 9 })) << "lists are replaced, not merged";
    EXPECT_EQ (state["Patterns"]["active"], 2);
    EXPECT_EQ (state["Patterns"]["Sequencer"]["Slots"], "kept");
    EXPECT_EQ (state["Patterns"]["Sequencer"]["Transport"]["BPM"], 2);

    HostState::applyPatternPreset (state, { { "Params", { { "Swing", "0%" } } } });
    EXPECT_EQ (state["Params"], (json { { "Key", "D" }, { "Swing", "0%" } }));

    HostState::applySound (state, { { "Params", { { "SynthEnable", "On" } } }, { "name", "New" } });
    EXPECT_EQ (state["Synth"]["Params"]["Master"], "0.00 dB") << "an older sound file without Master";
    EXPECT_EQ (state["Synth"]["Params"]["SynthEnable"], "On");
    EXPECT_EQ (state["Synth"]["name"], "New");

    // A blob is read back only when it holds this product's state.
    state["product"] = "Halvane";
    EXPECT_EQ (HostState::jsonOf (HostState::blobOf (state)), state);
    EXPECT_THROW (HostState::jsonOf (HostState::blobOf (json { { "product", "Other" } })), RenderError);
}

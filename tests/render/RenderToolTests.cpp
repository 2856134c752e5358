#include <gtest/gtest.h>
#include <juce_audio_formats/juce_audio_formats.h>
#include <juce_audio_processors/juce_audio_processors.h>
#include <juce_gui_basics/juce_gui_basics.h>
#include <nlohmann/json.hpp>

// The offline renderer, run as a user runs it: a process with arguments,
// judged by its exit code, its summary and the files it leaves.
namespace
{
using json = nlohmann::json;

constexpr const char* clip = "Basics - Progressions - I-vi-IV-V in C";
constexpr int ticksPerQuarter = 960;
constexpr int processTimeoutMs = 120000;

struct Run
{
    int exitCode = -1;
    juce::String output;
};

Run render (const juce::StringArray& args)
{
    juce::StringArray command { HALVANE_RENDER_TOOL };
    command.addArray (args);
    juce::ChildProcess process;
    if (! process.start (command))
        return {};
    Run run;
    run.output = process.readAllProcessOutput();
    process.waitForProcessToFinish (processTimeoutMs);
    run.exitCode = (int) process.getExitCode();
    return run;
}

/** The number on the summary's line that starts with the label. */
int reported (const Run& run, const juce::String& label)
{
    for (const auto& line : juce::StringArray::fromLines (run.output))
        if (line.startsWith (label))
            return line.fromFirstOccurrenceOf (label, false, false).trim().getIntValue();
    ADD_FAILURE() << "no \"" << label << "\" in:\n" << run.output;
    return -1;
}

/** A pattern preset file as the plug-in writes one: eight copies of a
    pattern of eight steps an eighth apart, walking the rows of the chord. */
json eighthsPreset()
{
    auto steps = json::array();
    const int rows[] { 64, 65, 66, 65, 64, 66, 65, 63 };
    for (int i = 0; i < 8; ++i)
        steps.push_back ({ { "Event", { { "channel", 1 }, { "noteNum", rows[i] }, { "velocity", 0.8 } } },
                           { "Time", { { "start", i / 8.0 }, { "length", 0.1 } } },
                           { "enabled", true } });
    const json bar = { { "Bars", { { { "num", 4 }, { "denum", 4 } } } } };
    const json pattern = { { "Multiply", false },
                           { "Time", bar },
                           { "Pattern",
                             { { "Duration", { { "Time", bar }, { "duration", 4.0 }, { "mode", 1 } } },
                               { "Steps", steps },
                               { "grid", 8 },
                               { "length", 1.0 },
                               { "name", "" } } } };
    return { { "version", "1.0.3" }, { "product", "Halvane" }, { "name", "Eighths" }, { "id", "1 Jan 2024 0:00:00" },
             { "dirty", false }, { "Params", nullptr }, { "Patterns", { { "Patterns", json::array ({ pattern, pattern, pattern, pattern, pattern, pattern, pattern, pattern }) } } } };
}

/** A sound with one oscillator on and the synth enabled. */
json oneOscillatorSound()
{
    return { { "version", "1.0.3" }, { "product", "Halvane Sounds" }, { "name", "One" }, { "id", "1 Jan 2024 0:00:00" },
             { "dirty", false },
             { "Params", { { "SynthEnable", "On" },
                           { "Synth", { { "Oscillators", { { "OSC 0", { { "Enable", "On" }, { "Volume", "-6.00 dB" } } } } } } } } } };
}

/** Written as the plug-in writes presets: the text, then a NUL. */
void writePreset (const juce::File& file, const json& preset)
{
    file.getParentDirectory().createDirectory();
    juce::FileOutputStream out (file);
    out.setPosition (0);
    out.truncate();
    out.writeString (preset.dump (4));
}

std::unique_ptr<juce::AudioFormatReader> readWav (const juce::File& file)
{
    juce::WavAudioFormat wav;
    return std::unique_ptr<juce::AudioFormatReader> (wav.createReaderFor (file.createInputStream().release(), true));
}

juce::MidiFile readMidi (const juce::File& file)
{
    juce::MidiFile midi;
    juce::FileInputStream in (file);
    EXPECT_TRUE (midi.readFrom (in)) << file.getFullPathName();
    return midi;
}

/** Note-ons over all tracks, by their tick. */
std::vector<double> noteOnTicks (const juce::MidiFile& midi)
{
    std::vector<double> ticks;
    for (int t = 0; t < midi.getNumTracks(); ++t)
        for (const auto* e : *midi.getTrack (t))
            if (e->message.isNoteOn())
                ticks.push_back (e->message.getTimeStamp());
    return ticks;
}

class RenderTool : public testing::Test
{
protected:
    void SetUp() override
    {
        folder = juce::File::createTempFile ("halvane-render");
        folder.createDirectory();
    }
    void TearDown() override { folder.deleteRecursively(); }

    juce::String path (const juce::String& name) const { return folder.getChildFile (name).getFullPathName(); }

    juce::File folder;
};
} // namespace

//==============================================================================
TEST_F (RenderTool, AClipThroughAPresetAndASoundWritesWhatItReports)
{
    // The presets are found by name in the user's folder, as a user's own are.
    const auto documents = juce::File::getSpecialLocation (juce::File::userDocumentsDirectory).getChildFile ("Trevalis/Halvane");
    writePreset (documents.getChildFile ("Presets/Test/Render Eighths.json"), eighthsPreset());
    writePreset (documents.getChildFile ("Sounds/Render One.json"), oneOscillatorSound());

    constexpr int bars = 2;
    constexpr double bpm = 100.0, rate = 44100.0;
    const auto run = render ({ "--clip", clip, "--preset", "render eighths", "--sound", "Render One", "--bars", juce::String (bars),
                               "--bpm", juce::String (bpm), "--rate", juce::String (rate), "--block", "128",
                               "--wav", path ("out.wav"), "--mid", path ("out.mid"), "--png", path ("out.png") });
    ASSERT_EQ (run.exitCode, 0) << run.output;

    // Eight steps a bar over a chord that never stops.
    const auto notesOut = reported (run, "Notes out");
    EXPECT_EQ (notesOut, 8 * bars) << run.output;
    EXPECT_EQ (reported (run, "Notes in"), 6) << "two bars of the clip hold two triads";

    const auto midi = readMidi (folder.getChildFile ("out.mid"));
    EXPECT_EQ (midi.getTimeFormat(), ticksPerQuarter);
    juce::MidiMessageSequence tempos;
    midi.findAllTempoEvents (tempos);
    ASSERT_EQ (tempos.getNumEvents(), 1);
    EXPECT_NEAR (tempos.getEventPointer (0)->message.getTempoSecondsPerQuarterNote(), 60.0 / bpm, 1e-6);
    const auto ticks = noteOnTicks (midi);
    ASSERT_EQ ((int) ticks.size(), notesOut);
    // On the grid of eighths, from the first sample on.
    for (size_t i = 0; i < ticks.size(); ++i)
        EXPECT_EQ (ticks[i], (double) i * ticksPerQuarter / 2) << "note " << i;

    juce::MemoryBlock header;
    folder.getChildFile ("out.mid").loadFileAsData (header);
    EXPECT_EQ (static_cast<const uint8_t*> (header.getData())[9], 1) << "a type 1 file";

    const auto wav = readWav (folder.getChildFile ("out.wav"));
    ASSERT_NE (wav, nullptr);
    EXPECT_EQ (wav->lengthInSamples, (juce::int64) (bars * 4 * 60.0 / bpm * rate));
    EXPECT_EQ (wav->numChannels, 2u);
    EXPECT_EQ (wav->bitsPerSample, 24u);
    EXPECT_EQ (wav->sampleRate, rate);
    juce::AudioBuffer<float> audio (2, (int) wav->lengthInSamples);
    wav->read (&audio, 0, audio.getNumSamples(), 0, true, true);
    EXPECT_GT (audio.getMagnitude (0, audio.getNumSamples()), 0.01f);

    const auto png = juce::ImageFileFormat::loadFrom (folder.getChildFile ("out.png"));
    EXPECT_TRUE (png.isValid());
    EXPECT_GT (png.getWidth(), png.getHeight());

    // The sound given is the sound heard: with its synth off, the same notes
    // leave the audio silent, whatever the plug-in's default sound is.
    auto off = oneOscillatorSound();
    off["Params"]["SynthEnable"] = "Off";
    writePreset (documents.getChildFile ("Sounds/Render Off.json"), off);
    const auto silent = render ({ "--clip", clip, "--preset", "Test/Render Eighths", "--sound", "Render Off", "--bars", "1",
                                  "--wav", path ("off.wav") });
    ASSERT_EQ (silent.exitCode, 0) << silent.output;
    EXPECT_EQ (reported (silent, "Notes out"), 8);
    const auto offWav = readWav (folder.getChildFile ("off.wav"));
    ASSERT_NE (offWav, nullptr);
    juce::AudioBuffer<float> offAudio (2, (int) offWav->lengthInSamples);
    offWav->read (&offAudio, 0, offAudio.getNumSamples(), 0, true, true);
    EXPECT_EQ (offAudio.getMagnitude (0, offAudio.getNumSamples()), 0.0f);
    EXPECT_TRUE (silent.output.contains ("silent")) << silent.output;
}

TEST_F (RenderTool, HostInputFromAMidiFileLandsAtItsBeatsAndRendersTheSameBytesTwice)
{
    writePreset (folder.getChildFile ("eighths.json"), eighthsPreset());
    writePreset (folder.getChildFile ("one.json"), oneOscillatorSound());

    // A chord from just after an eighth of the second bar to the bar's end,
    // at a resolution unlike the output's, so that the tool has to place it
    // by beats and within its block: a chord fed at its block's start would
    // catch the eighth before it.
    constexpr int fileTicks = 480;
    constexpr int chordStart = 4 * fileTicks + fileTicks / 2 + 10;
    juce::MidiMessageSequence chord;
    for (const auto note : { 60, 64, 67 })
    {
        chord.addEvent (juce::MidiMessage::noteOn (1, note, (juce::uint8) 100), chordStart);
        chord.addEvent (juce::MidiMessage::noteOff (1, note), 8 * fileTicks);
    }
    juce::MidiFile file;
    file.setTicksPerQuarterNote (fileTicks);
    file.addTrack (chord);
    {
        juce::FileOutputStream out (folder.getChildFile ("chord.mid"));
        ASSERT_TRUE (file.writeTo (out));
    }

    const auto renderTo = [&] (const juce::String& name, juce::StringArray extra) {
        extra.addArray ({ "--bars", "2", "--block", "4096", "--wav", path (name + ".wav"), "--mid", path (name + ".mid") });
        return render (extra);
    };
    const juce::StringArray fromFile { "--midi", path ("chord.mid"), "--preset", path ("eighths.json"),
                                       "--sound", path ("one.json"), "--save-state", path ("state.bin") };
    const auto first = renderTo ("first", fromFile);
    const auto second = renderTo ("second", fromFile);
    ASSERT_EQ (first.exitCode, 0) << first.output;
    ASSERT_EQ (second.exitCode, 0) << second.output;
    EXPECT_EQ (reported (first, "Notes in"), 3);

    const auto ticks = noteOnTicks (readMidi (folder.getChildFile ("first.mid")));
    ASSERT_FALSE (ticks.empty());
    EXPECT_GE (ticks.front(), (double) chordStart * ticksPerQuarter / fileTicks) << "nothing before the chord";
    EXPECT_LE (ticks.size(), 8u) << "at most the eighths of one bar";

    const auto same = [&] (const juce::String& a, const juce::String& b) {
        return folder.getChildFile (a).hasIdenticalContentTo (folder.getChildFile (b));
    };
    EXPECT_TRUE (same ("first.wav", "second.wav"));
    EXPECT_TRUE (same ("first.mid", "second.mid"));

    // The state saved as the render began renders the same again, alone or
    // as a host keeps it: JUCE's binary XML with the blob base-64 encoded
    // under "IComponent", and the wrapper's own bytes behind it.
    juce::MemoryBlock component;
    ASSERT_TRUE (folder.getChildFile ("state.bin").loadFileAsData (component));
    component.append ("wrapper", 7);
    juce::XmlElement hostState ("VST3PluginState");
    hostState.createNewChildElement ("IComponent")->addTextElement (component.toBase64Encoding());
    juce::MemoryBlock hostBlob;
    juce::AudioProcessor::copyXmlToBinary (hostState, hostBlob);
    ASSERT_TRUE (folder.getChildFile ("host.bin").replaceWithData (hostBlob.getData(), hostBlob.getSize()));

    for (const auto* saved : { "state.bin", "host.bin" })
    {
        const auto restored = renderTo ("restored", { "--midi", path ("chord.mid"), "--state", path (saved) });
        ASSERT_EQ (restored.exitCode, 0) << restored.output;
        EXPECT_TRUE (same ("first.wav", "restored.wav")) << saved;
        EXPECT_TRUE (same ("first.mid", "restored.mid")) << saved;
    }
}

TEST_F (RenderTool, EveryMistakeExitsWithCodeTwoAndOneLineThatNamesIt)
{
    writePreset (folder.getChildFile ("eighths.json"), eighthsPreset());
    writePreset (folder.getChildFile ("one.json"), oneOscillatorSound());
    folder.getChildFile ("text.mid").replaceWithText ("not a MIDI file");
    folder.getChildFile ("state.json").replaceWithText (R"({"product": "Other"})");

    const std::vector<std::pair<juce::StringArray, juce::String>> mistakes {
        { { "--bpm", "fast" }, "--bpm wants a number" },
        { { "--bpm", "120x" }, "--bpm wants a number" },
        { { "--bars", "0" }, "--bars wants a whole number" },
        { { "--bars", "1.5" }, "--bars wants a whole number" },
        { { "--rate", "1e400" }, "--rate wants" },
        { { "--block", "-256" }, "--block wants" },
        { { "--wav" }, "--wav needs a value" },
        { { "--loud" }, "unknown option '--loud'" },
        { { "--midi", path ("missing.mid") }, "no MIDI file" },
        { { "--midi", path ("text.mid") }, "is not a MIDI file" },
        { { "--midi", path ("text.mid"), "--clip", clip }, "choose one" },
        { { "--clip", "No Such Clip" }, "unknown clip 'No Such Clip'" },
        { { "--preset", "No Such Preset" }, "unknown pattern preset 'No Such Preset'" },
        { { "--sound", "No Such Sound" }, "unknown sound 'No Such Sound'" },
        { { "--preset", path ("missing.json") }, "no such file" },
        { { "--preset", path ("one.json") }, "is not a pattern preset" },
        { { "--sound", path ("eighths.json") }, "is not a sound" },
        { { "--state", path ("state.json") }, "is not a saved Halvane state" },
        { { "--state", path ("text.mid") }, "is not a saved Halvane state" },
        { { "--plugin", path ("Nothing.vst3") }, "no plug-in at" },
        { { "--bars", "1", "--wav", path ("text.mid/out.wav") }, "cannot write" },
    };

    for (const auto& [args, message] : mistakes)
    {
        const auto run = render (args);
        const auto lines = juce::StringArray::fromLines (run.output.trimEnd());
        EXPECT_EQ (run.exitCode, 2) << args.joinIntoString (" ");
        EXPECT_EQ (lines.size(), 1) << args.joinIntoString (" ") << ":\n" << run.output;
        EXPECT_TRUE (lines[0].startsWith ("halvane-render: ") && lines[0].contains (message))
            << args.joinIntoString (" ") << ": " << run.output;
    }

    const auto help = render ({ "--help" });
    EXPECT_EQ (help.exitCode, 0);
    for (const auto* option : { "--midi", "--clip", "--preset", "--sound", "--state", "--bpm", "--bars", "--rate", "--block",
                                "--wav", "--mid ", "--png", "--save-state", "--plugin", "--list" })
        EXPECT_TRUE (help.output.contains (option)) << option;
}

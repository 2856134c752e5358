#include "tools/render/RenderOptions.h"

#include "tools/render/RenderError.h"

#include <cmath>
#include <cstdlib>

namespace Orv::Tools::Render
{
namespace
{
    juce::File fileOf (const juce::String& path)
    {
        return juce::File::getCurrentWorkingDirectory().getChildFile (path);
    }

    /** The whole text must be the number: "120bpm" or "1e400" is refused
        rather than read as far as it goes. */
    double numberOf (const juce::String& option, const juce::String& text, double min, double max, bool wholeOnly)
    {
        const auto raw = text.trim().toStdString();
        char* end = nullptr;
        const auto value = raw.empty() ? std::nan ("") : std::strtod (raw.c_str(), &end);
        const bool parsed = ! raw.empty() && end != nullptr && *end == '\0' && std::isfinite (value);
        const bool whole = ! wholeOnly || value == std::floor (value);

        if (! parsed || ! whole || value < min || value > max)
            throw RenderError (option.toStdString() + " wants " + (wholeOnly ? "a whole number" : "a number")
                               + " from " + juce::String (min).toStdString() + " to "
                               + juce::String (max).toStdString() + ", not '" + text.toStdString() + "'");
        return value;
    }
} // namespace

juce::int64 RenderOptions::totalSamples() const
{
    constexpr int quartersPerBar = 4;
    return (juce::int64) std::llround ((double) bars * quartersPerBar * samplesPerQuarter());
}

RenderOptions RenderOptions::parse (const juce::StringArray& args, const juce::File& defaultPlugin)
{
    RenderOptions options;
    options.plugin = defaultPlugin;

    for (int i = 0; i < args.size(); ++i)
    {
        auto option = args[i];
        juce::String inlineValue;
        bool hasInlineValue = false;
        if (option.startsWith ("--") && option.containsChar ('='))
        {
            inlineValue = option.fromFirstOccurrenceOf ("=", false, false);
            option = option.upToFirstOccurrenceOf ("=", false, false);
            hasInlineValue = true;
        }

        const auto value = [&]() -> juce::String {
            if (hasInlineValue)
                return inlineValue;
            if (i + 1 >= args.size())
                throw RenderError (option.toStdString() + " needs a value");
            return args[++i];
        };
        const auto flag = [&] {
            if (hasInlineValue)
                throw RenderError (option.toStdString() + " takes no value");
            return true;
        };

        if (option == "--help" || option == "-h")
            options.help = flag();
        else if (option == "--list")
            options.list = flag();
        else if (option == "--plugin")
        {
            options.plugin = fileOf (value());
            options.pluginGiven = true;
        }
        else if (option == "--midi")
            options.midiFile = fileOf (value());
        else if (option == "--clip")
            options.clip = value();
        else if (option == "--preset")
            options.preset = value();
        else if (option == "--sound")
            options.sound = value();
        else if (option == "--state")
            options.stateFile = fileOf (value());
        else if (option == "--bpm")
            options.bpm = numberOf (option, value(), minBpm, maxBpm, false);
        else if (option == "--bars")
            options.bars = (int) numberOf (option, value(), minBars, maxBars, true);
        else if (option == "--rate")
            options.sampleRate = numberOf (option, value(), minSampleRate, maxSampleRate, true);
        else if (option == "--block")
            options.blockSize = (int) numberOf (option, value(), minBlockSize, maxBlockSize, true);
        else if (option == "--wav")
            options.wav = fileOf (value());
        else if (option == "--mid")
            options.mid = fileOf (value());
        else if (option == "--png")
            options.png = fileOf (value());
        else if (option == "--save-state")
            options.saveState = fileOf (value());
        else
            throw RenderError ("unknown option '" + option.toStdString() + "' (see --help)");
    }

    if (options.midiFile != juce::File() && options.clip.isNotEmpty())
        throw RenderError ("--midi and --clip both give the chords; choose one");
    if (options.clip.isEmpty() && args.contains ("--clip"))
        throw RenderError ("--clip needs a clip name (see --list)");

    return options;
}

juce::String RenderOptions::helpText (const juce::File& defaultPlugin)
{
    juce::String text;
    text << "Usage: halvane-render [options]\n"
            "\n"
            "Loads the Halvane VST3 bundle as a host does and renders it offline, with\n"
            "a transport that plays from the start of bar 1 at a fixed tempo.\n"
            "\n"
            "Chords (one of these; with neither, whatever the state plays):\n"
            "  --midi FILE        a standard MIDI file, fed to the plug-in as the host's\n"
            "                     MIDI input; its beats are laid on the render's tempo\n"
            "  --clip NAME        a built-in clip, played by the plug-in's own file player\n"
            "                     (\"Basics - Triads - C Major\"; the .mid is optional)\n"
            "\n"
            "What plays them:\n"
            "  --preset NAME|FILE a pattern preset: a file, or the name of a factory or\n"
            "                     user preset; its patterns and parameters are used\n"
            "  --sound NAME|FILE  a sound preset, by file or name, for the synth\n"
            "  --state FILE       a saved state to start from: the plug-in's own blob, a\n"
            "                     host's blob that wraps it, or its JSON. --preset, --sound\n"
            "                     and --clip apply on top of it\n"
            "\n"
            "Time and engine (defaults in brackets):\n"
            "  --bpm N            tempo in beats per minute [" << defaultBpm << "]\n"
            "  --bars N           length in bars of 4/4 [" << defaultBars << "]\n"
            "  --rate N           sample rate in Hz [" << defaultSampleRate << "]\n"
            "  --block N          block size in samples [" << defaultBlockSize << "]\n"
            "\n"
            "Outputs (any, all or none; the summary is always printed):\n"
            "  --wav FILE         the audio, 24-bit stereo WAV\n"
            "  --mid FILE         the arp's MIDI output, a type 1 MIDI file at 960 ticks\n"
            "                     per quarter note with the tempo\n"
            "  --png FILE         a piano roll of the output notes over the held chords,\n"
            "                     with bar lines and the waveform below\n"
            "  --save-state FILE  the plug-in's state blob as the render began, for --state\n"
            "\n"
            "Other:\n"
            "  --plugin PATH      the VST3 bundle [" << defaultPlugin.getFullPathName() << ",\n"
            "                     or ~/.vst3/Halvane.vst3 when that is missing]\n"
            "  --list             list the built-in clips and the pattern and sound presets\n"
            "  --help             this text\n"
            "\n"
            "Factory presets are unpacked by the plug-in into ~/.config/Trevalis/Halvane\n"
            "(Presets, Sounds) when it first starts; your own are found in\n"
            "~/Documents/Trevalis/Halvane. A name is matched against the file names\n"
            "without \".json\", ignoring case, factory files first.\n"
            "\n"
            "The same input always renders the same audio and MIDI. A progress bar is\n"
            "drawn on stderr when it is a terminal. Any error prints one line\n"
            "\"halvane-render: <what is wrong>\" and exits with code 2.\n";
    return text;
}
} // namespace Orv::Tools::Render

#include "tools/render/RenderJob.h"

#include "sequencer/midiplayer/ChoiceParam.h"
#include "tools/render/AudioStats.h"
#include "tools/render/HostState.h"
#include "tools/render/MidiTimeline.h"
#include "tools/render/OfflineHost.h"
#include "tools/render/PianoRollImage.h"
#include "tools/render/PresetLocator.h"
#include "tools/render/RenderError.h"

#include <juce_audio_formats/juce_audio_formats.h>

#include <chrono>
#include <cstdio>
#include <iomanip>
#include <ostream>
#include <unistd.h>

namespace Orv::Tools::Render
{
namespace
{
    constexpr int wavBitDepth = 24;
    constexpr int progressWidth = 40;

    using Clips = Sequencer::MidiPlayer::ChoiceParam;

    /** Key names as the "Key" parameter shows them, in semitones above C. */
    const juce::StringArray keyNames { "C", "Db", "D", "Eb", "E", "F", "Gb", "G", "Ab", "A", "Bb", "B" };

    int keyOffsetOf (const nlohmann::json& state)
    {
        const auto params = state.find ("Params");
        if (params == state.end() || ! params->is_object() || ! params->contains ("Key") || ! (*params)["Key"].is_string())
            return 0;
        return juce::jmax (0, keyNames.indexOf (juce::String ((*params)["Key"].get<std::string>())));
    }

    /** The built-in clip the state's file player plays, if it plays one. */
    const Clips::Entry* clipPlayedBy (const nlohmann::json& state)
    {
        const auto player = state.value ("MidiPlayer", nlohmann::json::object());
        if (! player.is_object() || ! player.value ("active", false) || ! player.value ("playing", false))
            return nullptr;
        const auto resource = player.value ("Resource", nlohmann::json::object());
        if (! resource.is_object() || resource.value ("type", "") == "External File")
            return nullptr;
        const auto name = juce::String (resource.value ("name", ""));
        for (const auto& clip : Clips::getClips())
            if (clip.name == name)
                return &clip;
        return nullptr;
    }

    /** A bar on stderr, redrawn only when it moves, for terminals only. */
    class ProgressBar
    {
    public:
        ProgressBar() : shown (isatty (STDERR_FILENO) != 0) {}

        void update (juce::int64 done, juce::int64 total)
        {
            if (! shown)
                return;
            const auto filled = (int) (done * progressWidth / juce::jmax<juce::int64> (1, total));
            const auto percent = (int) (done * 100 / juce::jmax<juce::int64> (1, total));
            if (percent == lastPercent)
                return;
            lastPercent = percent;
            std::fprintf (stderr, "\rRendering [%s%s] %3d%%", std::string ((size_t) filled, '#').c_str(),
                          std::string ((size_t) (progressWidth - filled), '.').c_str(), percent);
            std::fflush (stderr);
        }

        void finish()
        {
            if (shown && lastPercent >= 0)
                std::fprintf (stderr, "\n");
        }

    private:
        bool shown;
        int lastPercent = -1;
    };

    std::string decibels (double gain)
    {
        const auto db = AudioStats::toDecibels (gain);
        return std::isfinite (db) ? juce::String (db, 2).toStdString() + " dBFS" : std::string ("-inf dBFS (silent)");
    }

    std::string describe (const PresetLocator::Found& found)
    {
        return found.file.getFileNameWithoutExtension().toStdString() + (found.factory ? " (factory: " : " (")
               + found.file.getFullPathName().toStdString() + ")";
    }

    std::unique_ptr<juce::AudioFormatWriter> openWav (const juce::File& file, double sampleRate)
    {
        file.getParentDirectory().createDirectory();
        file.deleteFile();
        auto stream = std::make_unique<juce::FileOutputStream> (file);
        if (! stream->openedOk())
            throw RenderError ("cannot write " + file.getFullPathName().toStdString());

        juce::WavAudioFormat wav;
        std::unique_ptr<juce::AudioFormatWriter> writer (
            wav.createWriterFor (stream.get(), sampleRate, AudioStats::numChannels, wavBitDepth, {}, 0));
        if (writer == nullptr)
            throw RenderError ("cannot write " + file.getFullPathName().toStdString() + " as WAV");
        stream.release(); // the writer owns it now
        return writer;
    }
} // namespace

juce::String RenderJob::findClip (const juce::String& name)
{
    const auto wanted = name.trim().endsWithIgnoreCase (Clips::clipExtension) ? name.trim() : name.trim() + Clips::clipExtension;
    juce::StringArray byTitle;
    for (const auto& clip : Clips::getClips())
    {
        if (clip.name.equalsIgnoreCase (wanted))
            return clip.name;
        if (clip.name.fromLastOccurrenceOf (Clips::levelSeparator, false, false).equalsIgnoreCase (wanted))
            byTitle.add (clip.name);
    }
    if (byTitle.size() == 1)
        return byTitle[0];
    if (byTitle.size() > 1)
        throw RenderError ("clip name '" + name.toStdString() + "' fits " + std::to_string (byTitle.size())
                           + " clips; give the whole name (see --list)");
    throw RenderError ("unknown clip '" + name.toStdString() + "' (see --list)");
}

void RenderJob::list (std::ostream& out)
{
    // The plug-in unpacks its factory library when it first starts.
    OfflineHost host (options.plugin, options.sampleRate, options.blockSize);

    out << "Clips (--clip):\n";
    for (const auto& clip : Clips::getClips())
        out << "  " << clip.name.dropLastCharacters ((int) std::strlen (Clips::clipExtension)) << "\n";
    for (const auto kind : { PresetLocator::Kind::pattern, PresetLocator::Kind::sound })
    {
        out << (kind == PresetLocator::Kind::pattern ? "Pattern presets (--preset):\n" : "Sounds (--sound):\n");
        const auto names = PresetLocator::list (kind);
        for (const auto& name : names)
            out << "  " << name << "\n";
        if (names.isEmpty())
            out << "  (none in " << PresetLocator::folders (kind)[0].getFullPathName() << ")\n";
    }
}

void RenderJob::run (std::ostream& out)
{
    const MidiTimeline timeline (options.bpm, options.sampleRate, options.totalSamples());

    // What can be checked without the plug-in is checked first, so that a
    // typing error costs no load.
    std::vector<TimedMessage> input;
    if (options.midiFile != juce::File())
        input = timeline.readInput (options.midiFile);
    juce::String clip;
    if (options.clip.isNotEmpty())
        clip = findClip (options.clip);
    nlohmann::json state;
    if (options.stateFile != juce::File())
        state = HostState::readStateFile (options.stateFile);

    OfflineHost host (options.plugin, options.sampleRate, options.blockSize);
    if (state.is_null())
        state = host.save();

    std::string patternText = "the plug-in's default patterns", soundText = "the plug-in's default sound";
    if (options.stateFile != juce::File())
        patternText = soundText = "from " + options.stateFile.getFullPathName().toStdString();
    if (options.preset.isNotEmpty())
    {
        const auto found = PresetLocator::find (PresetLocator::Kind::pattern, options.preset);
        HostState::applyPatternPreset (state, found.json);
        patternText = describe (found);
    }
    if (options.sound.isNotEmpty())
    {
        const auto found = PresetLocator::find (PresetLocator::Kind::sound, options.sound);
        HostState::applySound (state, found.json);
        soundText = describe (found);
    }
    if (clip.isNotEmpty())
        HostState::applyClip (state, clip);

    const auto loaded = host.restore (state);
    if (options.saveState != juce::File())
    {
        options.saveState.getParentDirectory().createDirectory();
        if (! options.saveState.replaceWithData (HostState::blobOf (loaded).getData(), HostState::blobOf (loaded).getSize()))
            throw RenderError ("cannot write " + options.saveState.getFullPathName().toStdString());
    }
    host.settle();

    // The chords as the plug-in hears them, for the count and the picture.
    std::vector<NoteSpan> chords;
    std::string inputText = "none (no --midi or --clip, and the state plays no clip)";
    if (options.midiFile != juce::File())
    {
        chords = timeline.spansOf (input);
        inputText = "MIDI file " + options.midiFile.getFullPathName().toStdString();
    }
    else if (const auto* played = clipPlayedBy (loaded))
    {
        chords = timeline.clipNotes (played->data, played->size, keyOffsetOf (loaded));
        inputText = "clip \"" + played->name.dropLastCharacters ((int) std::strlen (Clips::clipExtension)).toStdString() + "\"";
    }

    std::unique_ptr<juce::AudioFormatWriter> wav;
    if (options.wav != juce::File())
        wav = openWav (options.wav, options.sampleRate);
    AudioStats stats (timeline.getTotalSamples(), PianoRollImage::plotColumns());

    ProgressBar progress;
    const auto started = std::chrono::steady_clock::now();
    const auto output = host.render (
        input, options.bpm, timeline.getTotalSamples(),
        [&] (const juce::AudioBuffer<float>& audio, int numSamples, juce::int64 start) {
            stats.add (audio, numSamples, start);
            if (wav != nullptr && ! wav->writeFromAudioSampleBuffer (audio, 0, numSamples))
                throw RenderError ("cannot write " + options.wav.getFullPathName().toStdString());
        },
        [&] (juce::int64 done, juce::int64 total) { progress.update (done, total); });
    const auto seconds = std::chrono::duration<double> (std::chrono::steady_clock::now() - started).count();
    progress.finish();
    wav.reset(); // finishes the header

    const auto notes = timeline.spansOf (output);
    if (options.mid != juce::File())
        timeline.write (output, options.mid);
    if (options.png != juce::File())
        PianoRollImage::write (PianoRollImage::draw (timeline, chords, notes, stats.getColumns()), options.png);

    const auto length = (double) timeline.getTotalSamples() / options.sampleRate;
    out << "Rendered     " << options.bars << " bars of 4/4 at " << options.bpm << " BPM: " << std::fixed
        << std::setprecision (3) << length << " s, " << timeline.getTotalSamples() << " samples at "
        << std::setprecision (0) << options.sampleRate << " Hz in blocks of " << options.blockSize << "\n"
        << "Plug-in      " << options.plugin.getFullPathName() << "\n"
        << "Chords       " << inputText << "\n"
        << "Patterns     " << patternText << "\n"
        << "Sound        " << soundText << "\n"
        << "Notes in     " << chords.size() << "\n"
        << "Notes out    " << notes.size() << "\n"
        << "Peak         " << decibels (stats.getPeak()) << "\n"
        << "RMS          " << decibels (stats.getRms()) << "\n"
        << "Speed        " << std::setprecision (1) << (seconds > 0.0 ? length / seconds : 0.0) << "x real time ("
        << std::setprecision (3) << seconds << " s)\n";
    for (const auto& [label, file] : { std::pair { "WAV          ", options.wav }, std::pair { "MIDI         ", options.mid },
                                       std::pair { "PNG          ", options.png }, std::pair { "State        ", options.saveState } })
        if (file != juce::File())
            out << label << file.getFullPathName() << "\n";
}
} // namespace Orv::Tools::Render

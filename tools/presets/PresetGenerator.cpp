// Writes the factory libraries: every pattern preset and every sound of the
// two readable sources, built through the program's own state objects and
// written in the form a save writes, under a fixed "id" each.
//
//   halvane_presets <pattern source> <sound source> <wavetable list> <output folder>
//
// The output folder gets "Presets" and "Sounds", each emptied first, and for
// each a list of its files relative to it ("Presets.list", "Sounds.list"),
// sorted, from which the build makes the archives.

#include "ContentSource.h"

#include "core/EmbeddedResource.h"
#include "core/ShutdownDeleter.h"
#include "core/State.h"
#include "persistence/JsonText.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <stdexcept>

namespace
{
using namespace Orv::Tools::Presets;
using Orv::Audio::ParamList;
using Orv::Audio::Plugins::Halvane::State;
using Orv::Audio::Plugins::Halvane::SynthParams;
using Orv::Audio::Plugins::Halvane::SynthPreset;

constexpr auto extension = ".json";

//==============================================================================
// The generator links the engine without the asset library (that library
// holds what this tool makes), so it embeds the one group a preset needs, the
// wavetables whose names the oscillators' Type offers, from the files the
// wavetable generator wrote.
std::vector<juce::MemoryBlock> wavetableBytes;
std::vector<std::string> wavetableNames;

void readWavetables (const juce::File& list)
{
    juce::StringArray paths;
    list.readLines (paths);
    paths.removeEmptyStrings();

    for (const auto& path : paths)
    {
        const juce::File file (path);
        juce::MemoryBlock bytes;
        if (! file.loadFileAsData (bytes))
            throw std::runtime_error ("cannot read the wavetable " + path.toStdString());
        wavetableBytes.push_back (std::move (bytes));
        wavetableNames.push_back (file.getFileName().toStdString());
    }
}
} // namespace

namespace Orv::Binaries
{
std::vector<EmbeddedResource> getEmbeddedResources()
{
    std::vector<EmbeddedResource> resources;
    for (size_t i = 0; i < wavetableBytes.size(); ++i)
        resources.push_back ({ "Wavetables", wavetableNames[i].c_str(),
                               static_cast<const unsigned char*> (wavetableBytes[i].getData()),
                               wavetableBytes[i].getSize() });
    return resources;
}
} // namespace Orv::Binaries

namespace
{
//==============================================================================
juce::AudioProcessorParameter& parameterAt (ParamList& root, const std::string& path)
{
    auto* list = &root;
    const auto keys = juce::StringArray::fromTokens (juce::String (path), "/", {});

    for (int i = 0; i + 1 < keys.size(); ++i)
    {
        const auto found = std::find_if (list->lists.begin(), list->lists.end(),
                                         [&] (const auto& entry) { return entry.key == keys[i]; });
        if (found == list->lists.end())
            throw std::runtime_error ("no parameter group " + keys[i].toStdString() + " in " + path);
        list = found->list;
    }

    const auto found = std::find_if (list->params.begin(), list->params.end(),
                                     [&] (const auto& entry) { return entry.key == keys[keys.size() - 1]; });
    if (found == list->params.end())
        throw std::runtime_error ("no parameter " + path);
    return *found->holder->getParameter();
}

bool isNumber (const juce::String& text)
{
    return text.trim().containsOnly ("0123456789.-+ dB%") && text.containsAnyOf ("0123456789");
}

/** Sets a parameter from its text and insists that the parameter took it:
    a wave name that is no table, or a number off the range, would otherwise
    fall quietly to another value. */
void applySetting (ParamList& root, const Setting& setting)
{
    auto& parameter = parameterAt (root, setting.first);
    const juce::String wanted (setting.second);
    parameter.setValue (parameter.getValueForText (wanted));
    const auto shown = parameter.getText (parameter.getValue(), 1024);

    // Floats keep a grid of hundredths from their lowest value (0.005 for the
    // envelope, so 0.55 is held as 0.555 and shows 0.56), volumes their gain:
    // the file holds the parameter's value, one step at most from the source's.
    constexpr double tolerance = 0.0101;
    const bool same = isNumber (wanted) && isNumber (shown)
                          ? std::abs (wanted.getDoubleValue() - shown.getDoubleValue()) <= tolerance
                          : wanted == shown;
    if (! same)
        throw std::runtime_error (setting.first + " does not take '" + setting.second + "' (it shows '"
                                  + shown.toStdString() + "')");
}

/** The bytes a save writes, with the preset's own id in place of the time
    of the save. */
void writePreset (Orv::Presets::Base& preset, const PresetSpec& spec, const juce::File& folder, bool nullParams)
{
    const auto file = folder.getChildFile (juce::String (spec.path) + extension);

    // As if the file had been loaded and saved over itself: that names the
    // object after the file, so a load and a save give back the same bytes.
    preset.id = spec.id;
    preset.name = file.getFileName().upToFirstOccurrenceOf (".", false, false);
    preset.dirty = false;

    auto json = preset.toJson (Orv::ReflectContext::forPreset());
    // A preset that sets no parameter leaves them all at the program's
    // defaults when loaded, today's and any added later.
    if (nullParams)
        json["Params"] = nullptr;

    const auto text = Orv::Json::toText (json);
    file.getParentDirectory().createDirectory();
    file.deleteFile();
    juce::FileOutputStream out (file);
    if (! out.openedOk() || ! out.writeString (juce::String::fromUTF8 (text.data(), (int) text.size())))
        throw std::runtime_error ("cannot write " + file.getFullPathName().toStdString());
}

void buildPatterns (State& state, const PresetSpec& spec)
{
    for (const auto& setting : spec.settings)
        applySetting (*state.getParams(), setting);

    auto& patterns = state.sequencer.patterns;
    if (patterns.size() != spec.patterns.size())
        throw std::runtime_error ("a state holds " + std::to_string (patterns.size()) + " patterns");

    for (size_t i = 0; i < spec.patterns.size(); ++i)
    {
        const auto& source = spec.patterns[i];
        auto& pattern = *patterns[i];

        pattern.time.bars.clear();
        for (const auto& bar : source.bars)
        {
            Orv::Sequencer::Modifiers::Bar b;
            b.num = bar.num;
            b.denum = bar.denum;
            pattern.time.bars.push_back (b);
        }
        pattern.multiply = source.multiply;

        auto& sequence = pattern.sequence;
        sequence.grid = source.grid;
        sequence.length = 1.0;
        sequence.steps.clear();
        for (const auto& step : source.steps)
        {
            Orv::Sequencer::Step s;
            s.time = { step.start, step.length };
            s.event.noteNum = step.row;
            s.event.velocity = step.velocity;
            s.enabled = true;
            sequence.steps.push_back (s);
        }
    }

    // The rebuild sets each pattern's length from its time, as after an edit.
    state.sequencer.rebuild();
}

/** Writes each preset with a fresh object, so that nothing of one leaks into
    the next, and answers the files' paths relative to the folder. */
template <typename Build>
juce::StringArray writeAll (const std::vector<PresetSpec>& specs, const juce::File& folder, Build&& build)
{
    folder.deleteRecursively();
    folder.createDirectory();

    juce::StringArray paths;
    for (const auto& spec : specs)
    {
        try
        {
            build (spec, folder);
        }
        catch (const std::exception& e)
        {
            throw std::runtime_error (spec.path + " (line " + std::to_string (spec.line) + "): " + e.what());
        }
        paths.add (juce::String (spec.path) + extension);
    }

    // Byte order, so that the archive does not depend on the source's order
    // or the file system's.
    std::sort (paths.begin(), paths.end(),
               [] (const juce::String& a, const juce::String& b) { return a.toStdString() < b.toStdString(); });
    return paths;
}

template <typename Parse>
std::vector<PresetSpec> parseFile (const char* path, Parse&& parse)
{
    std::ifstream in (path);
    if (! in)
        throw std::runtime_error (std::string ("cannot read ") + path);
    try
    {
        return parse (in);
    }
    catch (const std::exception& e)
    {
        throw std::runtime_error (std::string (path) + ", " + e.what());
    }
}

void writeList (const juce::File& file, const juce::StringArray& paths)
{
    if (! file.replaceWithText (paths.joinIntoString ("\n") + "\n", false, false, "\n"))
        throw std::runtime_error ("cannot write " + file.getFullPathName().toStdString());
}

void run (char** argv)
{
    const auto patternSpecs = parseFile (argv[1], parsePatternPresets);
    const auto soundSpecs = parseFile (argv[2], parseSounds);
    readWavetables (juce::File (argv[3]));
    const juce::File output (argv[4]);

    juce::ScopedJuceInitialiser_GUI juce;

    const auto presetPaths = writeAll (patternSpecs, output.getChildFile ("Presets"),
                                       [] (const PresetSpec& spec, const juce::File& folder) {
                                           State state;
                                           buildPatterns (state, spec);
                                           writePreset (state, spec, folder, spec.settings.empty());
                                       });

    const auto soundPaths = writeAll (soundSpecs, output.getChildFile ("Sounds"),
                                      [] (const PresetSpec& spec, const juce::File& folder) {
                                          SynthParams params;
                                          params.attach (nullptr);
                                          for (const auto& setting : spec.settings)
                                              applySetting (params, setting);
                                          // The oscillators hold the master unison
                                          // as the first block leaves it.
                                          params.pushMasterUnison();
                                          SynthPreset sound (params);
                                          writePreset (sound, spec, folder, false);
                                      });

    writeList (output.getChildFile ("Presets.list"), presetPaths);
    writeList (output.getChildFile ("Sounds.list"), soundPaths);
    Orv::ShutdownDeleter::releaseAll();
}
} // namespace

int main (int argc, char** argv)
{
    if (argc != 5)
    {
        std::cerr << "usage: " << argv[0] << " <pattern source> <sound source> <wavetable list> <output folder>\n";
        return 2;
    }

    // A home of its own: the desktop overrides of a developer's machine
    // (another set of wavetables, say) must not change what is written.
    const auto home = juce::File::createTempFile ("halvane-presets-home");
    home.createDirectory();
    setenv ("HOME", home.getFullPathName().toRawUTF8(), 1);

    int result = 0;
    try
    {
        run (argv);
    }
    catch (const std::exception& e)
    {
        std::cerr << "halvane_presets: " << e.what() << "\n";
        result = 1;
    }

    home.deleteRecursively();
    return result;
}

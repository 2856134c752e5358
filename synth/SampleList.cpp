#include "synth/SampleList.h"

#include "core/Binaries.h"
#include "core/Singleton.h"
#include "synth/ResampledInternalBuffer.h"
#include "synth/source/Reader.h"

#include <algorithm>

namespace Orv::Audio::WavetableSynth
{
namespace
{
    constexpr auto overrideFolderName = "TrevalisWavetables";
    constexpr auto overrideWildcard = "*.wav";
    constexpr auto resourceGroup = "Wavetables";
    constexpr auto categorySeparator = " - ";

    // Ten times the rate of a 192 kHz file: enough that a cubic read needs no
    // band limiting.
    constexpr double tableSampleRate = 1920000.0;
    constexpr int tableBlockSize = 1024;

    struct Instance
    {
        std::vector<SampleList::Entry> entries = SampleList::build();
    };

    juce::AudioBuffer<float> readTable (std::shared_ptr<Sampler::Source::Base> source)
    {
        Sampler::ResampledInternalBuffer buffer (std::move (source));
        buffer.useWorker = false;
        buffer.setTarget (tableBlockSize, tableSampleRate);
        return *buffer.getBuffer();
    }

    std::vector<SampleList::Entry> fromFolder (const juce::File& folder)
    {
        constexpr bool searchSubFolders = true;
        auto files = folder.findChildFiles (juce::File::findFiles, searchSubFolders, overrideWildcard);

        // Code-point order of the file names, as the embedded group has it.
        std::sort (files.begin(), files.end(),
                   [] (const juce::File& a, const juce::File& b) { return a.getFileName() < b.getFileName(); });

        std::vector<SampleList::Entry> entries;
        for (const auto& file : files)
            entries.push_back ({ file.getFileNameWithoutExtension(),
                                 readTable (std::make_shared<Sampler::Source::Reader> (file)) });
        return entries;
    }

    std::vector<SampleList::Entry> fromResources()
    {
        std::vector<SampleList::Entry> entries;
        for (const auto& [fileName, resource] : Binaries::getGroup (resourceGroup))
            entries.push_back ({ fileName.upToLastOccurrenceOf (".", false, false),
                                 readTable (std::make_shared<Sampler::Source::Reader> (resource)) });
        return entries;
    }

    // Takes the loudest tables down a little: the gain is one minus the RMS.
    // The RMS is that of the first channel, asked once per channel, so every
    // channel gives the same figure; a table louder than an RMS of 1 flips
    // sign. Existing sounds were voiced with exactly this, so it stays.
    void level (std::vector<SampleList::Entry>& entries)
    {
        for (auto& entry : entries)
        {
            auto& samples = entry.samples;
            float rms = 0.0f;
            for (int channel = 0; channel < samples.getNumChannels(); ++channel)
                rms = std::max (rms, samples.getRMSLevel (0, 0, samples.getNumSamples()));

            samples.applyGain (1.0f - rms);
        }
    }
} // namespace

std::vector<SampleList::Entry> SampleList::build()
{
    const auto folder = juce::File::getSpecialLocation (juce::File::userDesktopDirectory).getChildFile (overrideFolderName);
    auto entries = folder.isDirectory() ? fromFolder (folder) : fromResources();
    level (entries);
    return entries;
}

const std::vector<SampleList::Entry>& SampleList::getInstance()
{
    // Made under the singleton's spin lock, so a second thread that asks
    // meanwhile waits for the finished list.
    return Singleton<Instance>::get()->entries;
}

juce::StringArray SampleList::getWaveNames()
{
    juce::StringArray names;
    for (const auto& entry : getInstance())
    {
        const auto& name = entry.name;
        const auto waveName = name.contains (categorySeparator) ? name.fromFirstOccurrenceOf (categorySeparator, false, false)
                                                                : name;
        names.add (waveName.upToFirstOccurrenceOf (".", false, false));
    }
    return names;
}
} // namespace Orv::Audio::WavetableSynth

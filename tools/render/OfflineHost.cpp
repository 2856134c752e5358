#include "tools/render/OfflineHost.h"

#include "tools/render/HostState.h"
#include "tools/render/RenderError.h"

namespace Orv::Tools::Render
{
namespace
{
    constexpr int settleBlocks = 16;
    /** Time for whatever the plug-in leaves to its message-thread timer
        after a restore. */
    constexpr int settleMessagesMs = 30;
    constexpr int minChannels = 2;
    constexpr size_t midiBufferBytes = 4096;
} // namespace

void FixedTempoPlayHead::set (double bpm, double sampleRate, bool playing)
{
    samplesPerQuarter = 60.0 / bpm * sampleRate;
    position = {};
    position.setPpqPosition (0.0);
    position.setPpqPositionOfLastBarStart (0.0);
    position.setBpm (bpm);
    position.setTimeInSamples (0);
    position.setTimeInSeconds (0.0);
    position.setBarCount (0);
    position.setTimeSignature (juce::AudioPlayHead::TimeSignature { 4, 4 });
    position.setIsPlaying (playing);
}

void FixedTempoPlayHead::advance (int numSamples)
{
    if (! position.getIsPlaying())
        return;

    constexpr double quartersPerBar = 4.0;
    const auto sample = position.getTimeInSamples().orFallback (0) + numSamples;
    const auto ppq = (double) sample / samplesPerQuarter;
    const auto bar = std::floor (ppq / quartersPerBar);
    position.setTimeInSamples (sample);
    position.setTimeInSeconds ((double) sample / (samplesPerQuarter * position.getBpm().orFallback (120.0) / 60.0));
    position.setPpqPosition (ppq);
    position.setPpqPositionOfLastBarStart (bar * quartersPerBar);
    position.setBarCount ((juce::int64) bar);
}

OfflineHost::OfflineHost (const juce::File& bundle, double rate, int block) : sampleRate (rate), blockSize (block)
{
    const auto path = bundle.getFullPathName();
    if (! bundle.exists())
        throw RenderError ("no plug-in at " + path.toStdString() + " (build it, or give --plugin)");

    formats.addFormat (new juce::VST3PluginFormat());
    juce::OwnedArray<juce::PluginDescription> found;
    juce::VST3PluginFormat vst3;
    vst3.findAllTypesForFile (found, path);
    if (found.isEmpty())
        throw RenderError (path.toStdString() + " holds no VST3 plug-in");

    juce::String error;
    instance = formats.createPluginInstance (*found[0], sampleRate, blockSize, error);
    if (instance == nullptr)
        throw RenderError ("cannot load " + path.toStdString() + ": " + error.toStdString());

    instance->setPlayHead (&playHead);
    instance->enableAllBuses();
    instance->setNonRealtime (true);
    instance->prepareToPlay (sampleRate, blockSize);

    const auto channels = juce::jmax (minChannels, instance->getTotalNumInputChannels(), instance->getTotalNumOutputChannels());
    audio.setSize (channels, blockSize);
}

OfflineHost::~OfflineHost()
{
    if (instance != nullptr)
        instance->releaseResources();
}

nlohmann::json OfflineHost::save() { return HostState::jsonOf (HostState::save (*instance)); }

nlohmann::json OfflineHost::restore (const nlohmann::json& state)
{
    HostState::restore (*instance, HostState::blobOf (state));
    juce::MessageManager::getInstance()->runDispatchLoopUntil (settleMessagesMs);
    return save();
}

void OfflineHost::settle()
{
    playHead.set (120.0, sampleRate, false);
    juce::MidiBuffer midi;
    midi.ensureSize (midiBufferBytes);
    for (int i = 0; i < settleBlocks; ++i)
    {
        midi.clear();
        audio.clear();
        instance->processBlock (audio, midi);
    }
}

std::vector<TimedMessage> OfflineHost::render (const std::vector<TimedMessage>& input, double bpm, juce::int64 totalSamples,
                                               const AudioSink& sink, const Progress& progress)
{
    playHead.set (bpm, sampleRate, true);

    std::vector<TimedMessage> output;
    juce::MidiBuffer midi;
    midi.ensureSize (midiBufferBytes);
    size_t next = 0;

    for (juce::int64 start = 0; start < totalSamples; start += blockSize)
    {
        const auto count = (int) std::min<juce::int64> (blockSize, totalSamples - start);
        midi.clear();
        while (next < input.size() && input[next].sample < start + count)
        {
            midi.addEvent (input[next].message, (int) (input[next].sample - start));
            ++next;
        }

        // Every block is the same size but maybe the last, as a host that
        // renders offline gives them.
        audio.setSize (audio.getNumChannels(), count, false, false, true);
        audio.clear();
        instance->processBlock (audio, midi);

        for (const auto event : midi)
            output.push_back ({ event.getMessage(), start + event.samplePosition });

        if (sink)
            sink (audio, count, start);
        playHead.advance (count);
        if (progress)
            progress (start + count, totalSamples);
    }
    return output;
}
} // namespace Orv::Tools::Render

#include "host/HostHarness.h"

#include <gtest/gtest.h>

namespace Orv::Testing
{
void FakePlayHead::setPlaying (double ppq, double bpm, int64_t sampleTime, bool playing)
{
    PositionInfo info;
    info.setPpqPosition (ppq);
    info.setBpm (bpm);
    info.setTimeInSamples (sampleTime);
    info.setTimeInSeconds (0.0);
    info.setTimeSignature (juce::AudioPlayHead::TimeSignature { 4, 4 });
    info.setIsPlaying (playing);
    position = info;
    startPpq = ppq;
    startSample = sampleTime;
}

void FakePlayHead::advance (int numSamples, double sampleRate)
{
    if (! position.hasValue() || ! position->getIsPlaying())
        return;

    const auto bpm = position->getBpm().orFallback (120.0);
    const auto sample = position->getTimeInSamples().orFallback (0) + numSamples;
    position->setTimeInSamples (sample);
    position->setPpqPosition (startPpq + (double) (sample - startSample) * bpm / (60.0 * sampleRate));
}

juce::File HostedHalvane::getBundle() { return juce::File (HALVANE_VST3_BUNDLE); }

HostedHalvane::HostedHalvane (double rate, int blockSize) : sampleRate (rate)
{
    formats.addFormat (new juce::VST3PluginFormat());

    juce::OwnedArray<juce::PluginDescription> found;
    juce::VST3PluginFormat vst3;
    vst3.findAllTypesForFile (found, getBundle().getFullPathName());
    if (found.isEmpty())
        throw std::runtime_error ("no plug-in found in " + getBundle().getFullPathName().toStdString());

    juce::String error;
    instance = formats.createPluginInstance (*found[0], sampleRate, blockSize, error);
    if (instance == nullptr)
        throw std::runtime_error ("could not load the bundle: " + error.toStdString());

    instance->setPlayHead (&hostPlayHead);
    instance->enableAllBuses();
    instance->prepareToPlay (sampleRate, blockSize);
    audio.setSize (2, blockSize);
}

HostedHalvane::~HostedHalvane()
{
    if (instance != nullptr)
        instance->releaseResources();
}

juce::MidiBuffer HostedHalvane::processBlock (const juce::MidiBuffer& midiIn, int numSamples)
{
    audio.setSize (juce::jmax (2, audio.getNumChannels()), numSamples, false, false, true);
    juce::MidiBuffer midi (midiIn);
    instance->processBlock (audio, midi);

    hostPlayHead.advance (numSamples, sampleRate);

    samplesPlayed += numSamples;
    return midi;
}

std::vector<TimedEvent> HostedHalvane::play (const std::vector<TimedEvent>& events, int64_t totalSamples, int blockSize)
{
    std::vector<TimedEvent> output;
    size_t next = 0;
    const auto start = samplesPlayed;

    for (int64_t done = 0; done < totalSamples;)
    {
        const auto count = static_cast<int> (std::min<int64_t> (blockSize, totalSamples - done));
        juce::MidiBuffer in;
        while (next < events.size() && events[next].time < start + done + count)
        {
            in.addEvent (events[next].message, static_cast<int> (events[next].time - start - done));
            ++next;
        }

        const auto blockStart = samplesPlayed;
        for (const auto event : processBlock (in, count))
            output.push_back ({ event.getMessage(), blockStart + event.samplePosition });

        done += count;
    }
    return output;
}
} // namespace Orv::Testing

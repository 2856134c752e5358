#pragma once

#include "tools/render/MidiTimeline.h"

#include <juce_audio_processors/juce_audio_processors.h>
#include <nlohmann/json.hpp>

#include <functional>
#include <memory>
#include <vector>

namespace Orv::Tools::Render
{
/** A host's play head at a fixed tempo in 4/4. Its position is worked out
    from the sample where play started, never summed block by block, so that
    steps on whole quarters land on their exact samples. */
class FixedTempoPlayHead : public juce::AudioPlayHead
{
public:
    juce::Optional<PositionInfo> getPosition() const override { return position; }

    void set (double bpm, double sampleRate, bool playing);
    /** Moves the transport on by a block while it plays. */
    void advance (int numSamples);

private:
    PositionInfo position;
    double samplesPerQuarter = 1.0;
};

/** Loads the Halvane VST3 bundle through JUCE's VST3 hosting, as a DAW does,
    and plays it offline block by block. Message thread only. */
class OfflineHost
{
public:
    /** Called after every block with the block's audio and where it starts. */
    using AudioSink = std::function<void (const juce::AudioBuffer<float>&, int numSamples, juce::int64 start)>;
    using Progress = std::function<void (juce::int64 done, juce::int64 total)>;

    /** Throws RenderError when the bundle is missing or will not load. */
    OfflineHost (const juce::File& bundle, double sampleRate, int blockSize);
    ~OfflineHost();

    juce::AudioPluginInstance& plugin() noexcept { return *instance; }

    /** The plug-in's state as JSON, through a host's save. */
    nlohmann::json save();
    /** Restores the state as a host loading a project does, then saves once,
        which makes the plug-in finish a restore it would otherwise leave to
        its timer. Answers the JSON the plug-in then holds. */
    nlohmann::json restore (const nlohmann::json& state);

    /** Runs the host stopped at the start for a while, so that what the
        restore queued (the active pattern's switch) has landed before play;
        the output of these blocks is dropped. */
    void settle();

    /** Plays from sample 0 for the timeline's length at its tempo, feeding
        `input` into the blocks its events fall in. Answers the plug-in's
        MIDI output at absolute samples. */
    std::vector<TimedMessage> render (const std::vector<TimedMessage>& input, double bpm, juce::int64 totalSamples,
                                      const AudioSink& sink, const Progress& progress);

private:
    juce::AudioPluginFormatManager formats;
    std::unique_ptr<juce::AudioPluginInstance> instance;
    FixedTempoPlayHead playHead;
    juce::AudioBuffer<float> audio;
    double sampleRate;
    int blockSize;
};
} // namespace Orv::Tools::Render

#pragma once

#include <juce_core/juce_core.h>

namespace Orv::Tools::Render
{
/** What one run of the renderer is asked to do, as the command line gave it.
    Files are absolute; names that are not paths stay as text until the
    plug-in has unpacked its factory library. */
struct RenderOptions
{
    static constexpr double defaultBpm = 120.0;
    static constexpr int defaultBars = 4;
    static constexpr double defaultSampleRate = 48000.0;
    static constexpr int defaultBlockSize = 256;

    static constexpr double minBpm = 20.0, maxBpm = 400.0;
    static constexpr int minBars = 1, maxBars = 10000;
    static constexpr double minSampleRate = 8000.0, maxSampleRate = 384000.0;
    static constexpr int minBlockSize = 16, maxBlockSize = 8192;

    juce::File plugin;
    bool pluginGiven = false;

    juce::File midiFile;
    juce::String clip;
    juce::String preset;
    juce::String sound;
    juce::File stateFile;

    double bpm = defaultBpm;
    int bars = defaultBars;
    double sampleRate = defaultSampleRate;
    int blockSize = defaultBlockSize;

    juce::File wav, mid, png, saveState;

    bool help = false;
    bool list = false;

    /** Samples in the whole render: bars of 4/4 at the tempo and rate. */
    juce::int64 totalSamples() const;
    double samplesPerQuarter() const { return 60.0 / bpm * sampleRate; }

    /** Reads the arguments after the program's name. Throws RenderError for
        an unknown option, a missing or bad value, or options that exclude
        each other; files are not looked at here. */
    static RenderOptions parse (const juce::StringArray& args, const juce::File& defaultPlugin);

    /** The text of --help. */
    static juce::String helpText (const juce::File& defaultPlugin);
};
} // namespace Orv::Tools::Render

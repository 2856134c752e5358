#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <vector>

namespace Orv::Audio::WavetableSynth
{
/** The wavetables: one period of each wave, held at ten times the rate of
    its file so that a cubic read needs no band limiting. Built once per
    process on first use (message thread), read-only afterwards and shared by
    every voice of every instance without locks. */
class SampleList
{
public:
    struct Entry
    {
        /** The file name without extension: category, " - ", wave name. */
        juce::String name;
        juce::AudioBuffer<float> samples;
    };

    /** Any thread after the first call, which builds the list and must come
        from the message thread (an oscillator parameter's constructor). */
    static const std::vector<Entry>& getInstance();

    /** The Type choices: each entry's text after the first " - ", up to the
        first ".", in index order. */
    static juce::StringArray getWaveNames();

    /** One thread at a time, not the audio thread: a fresh list, made as the
        first getInstance() makes it: from the wave files in the desktop folder
        "TrevalisWavetables" and its sub-folders when that folder exists,
        otherwise from the embedded group "Wavetables"; sorted by file name. */
    static std::vector<Entry> build();
};
} // namespace Orv::Audio::WavetableSynth

#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

namespace Orv::Audio::WavetableSynth
{
/** One period of a sine, long enough that the sub oscillator's cubic read is
    clean at any pitch. Shared by every voice of every instance; made once per
    process and read-only afterwards. */
class SubTable
{
public:
    static constexpr int numSamples = 200000;

    /** Any thread. The first call allocates and must not come from the audio
        thread (a voice's prepare makes sure of that); later calls take only a
        short spin lock. */
    static const juce::AudioBuffer<float>& getInstance();

    /** Made by the singleton. */
    SubTable();

private:
    juce::AudioBuffer<float> samples;
};
} // namespace Orv::Audio::WavetableSynth

#pragma once

#include "synth/SampleList.h"

#include <juce_audio_processors/juce_audio_processors.h>

namespace Orv::Audio::WavetableSynth
{
/** An oscillator's wave: a choice over the wavetables' names, by index into
    the wavetable list. A file's name that matches none gives the first. */
class OscillatorParam : public juce::AudioParameterChoice
{
public:
    /** The first wave, "ARP". */
    static constexpr int defaultIndex = 0;

    /** Message thread. The choices default to the wavetable list's names,
        which the first call builds. */
    OscillatorParam (const juce::String& id, const juce::String& name,
                     const juce::StringArray& waveNames = SampleList::getWaveNames());
};
} // namespace Orv::Audio::WavetableSynth

#pragma once

#include "synth/OSCParams.h"

#include <array>

namespace Orv::Audio::WavetableSynth
{
/** The four oscillators, keyed "OSC 0" to "OSC 3", and the sync switch,
    which no sound code reads but files keep. */
struct OscillatorParams : public ParamList
{
    static constexpr int numOscillators = 4;

    /** Message thread. */
    OscillatorParams();

    /** The key of the oscillator at an index: counted from 0, unlike the
        host's names, which count from 1. */
    static juce::String keyFor (int index);

    ParamHolder<juce::AudioParameterBool> sync { "Sync", "Sync", false };
    std::array<OSCParams, numOscillators> osc;
};
} // namespace Orv::Audio::WavetableSynth

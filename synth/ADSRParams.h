#pragma once

#include "parameters/ParamList.h"

namespace Orv::Audio::WavetableSynth
{
/** The amplitude envelope. Times are in seconds; the sustain is a level.
    All share one range whose floor keeps every stage audible as a ramp. */
struct ADSRParams : public ParamList
{
    static constexpr float minimum = 0.005f;
    static constexpr float maximum = 1.0f;
    static constexpr float defaultAttack = minimum;
    static constexpr float defaultDecay = 1.0f;
    static constexpr float defaultSustain = 1.0f;
    static constexpr float defaultRelease = 0.01f;

    /** Message thread. */
    ADSRParams();

    ParamHolder<juce::AudioParameterFloat> attack { "Attack", "Attack", minimum, maximum, defaultAttack };
    ParamHolder<juce::AudioParameterFloat> decay { "Decay", "Decay", minimum, maximum, defaultDecay };
    ParamHolder<juce::AudioParameterFloat> sustain { "Sustain", "Sustain", minimum, maximum, defaultSustain };
    ParamHolder<juce::AudioParameterFloat> release { "Release", "Release", minimum, maximum, defaultRelease };
};
} // namespace Orv::Audio::WavetableSynth

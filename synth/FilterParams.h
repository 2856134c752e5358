#pragma once

#include "parameters/ParamList.h"

namespace Orv::Audio::WavetableSynth
{
/** The voice filter. The cutoff's range is linear; a knob that wants a
    curve makes it itself. */
struct FilterParams : public ParamList
{
    static constexpr float minimumCutoff = 10.0f;
    static constexpr float maximumCutoff = 12000.0f;
    static constexpr float defaultCutoff = 8000.0f;
    static constexpr float minimumResonance = 0.1f;
    static constexpr float maximumResonance = 3.0f;
    static constexpr float defaultResonance = 1.0f;
    static constexpr float defaultKeyTracking = 1.0f;

    /** Message thread. */
    FilterParams();

    ParamHolder<juce::AudioParameterBool> enable { "Enable", "Enable", true };
    /** Hz. */
    ParamHolder<juce::AudioParameterFloat> cutoff { "Cutoff", "Cutoff", minimumCutoff, maximumCutoff, defaultCutoff };
    ParamHolder<juce::AudioParameterFloat> resonance { "Resonance", "Resonance", minimumResonance, maximumResonance,
                                                       defaultResonance };
    ParamHolder<juce::AudioParameterFloat> keyTracking { "KeyTracking", "Key Tracking", 0.0f, 1.0f,
                                                         defaultKeyTracking };
};
} // namespace Orv::Audio::WavetableSynth

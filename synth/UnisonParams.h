#pragma once

#include "parameters/ParamList.h"

namespace Orv::Audio::WavetableSynth
{
/** One oscillator's unison group. The master unison controls overwrite it
    at every block, so what a file holds here is only a record. */
struct UnisonParams : public ParamList
{
    static constexpr int minimumVoices = 1;
    static constexpr int maximumVoices = 2;
    static constexpr float defaultAmount = 0.5f;

    /** Message thread. */
    UnisonParams();

    ParamHolder<juce::AudioParameterInt> unison { "Unison", "Unison", minimumVoices, maximumVoices, minimumVoices };
    ParamHolder<juce::AudioParameterFloat> unisonDepth { "UnisonDepth", "Unison Depth", 0.0f, 1.0f, defaultAmount };
    ParamHolder<juce::AudioParameterFloat> unisonSpread { "UnisonSpread", "Unison Spread", 0.0f, 1.0f, defaultAmount };
};
} // namespace Orv::Audio::WavetableSynth

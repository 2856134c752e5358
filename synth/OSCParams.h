#pragma once

#include "parameters/ParamList.h"
#include "parameters/VolumeParameter.h"
#include "synth/OscillatorParam.h"
#include "synth/UnisonParams.h"

#include <memory>

namespace Orv::Audio::WavetableSynth
{
/** One wavetable oscillator: its wave, switch, pitch, level and unison. A
    fresh one is off and plays the first wave. */
struct OSCParams : public ParamList
{
    static constexpr int minimumOctave = -3;
    static constexpr int maximumOctave = 3;
    static constexpr int minimumTune = -24;
    static constexpr int maximumTune = 24;
    static constexpr float minimumDb = VolumeParameter::floorDb;
    static constexpr float maximumDb = 6.0f;
    static constexpr float middleDb = -15.0f;
    static constexpr float defaultDb = 0.0f;

    /** Message thread; builds the wavetable list on first use. */
    OSCParams();

    ParamHolder<OscillatorParam> type { "Type", "Type" };
    ParamHolder<juce::AudioParameterBool> enable { "Enable", "Enable", false };
    ParamHolder<juce::AudioParameterInt> octave { "Octave", "Octave", minimumOctave, maximumOctave, 0 };
    /** Semitones. */
    ParamHolder<juce::AudioParameterInt> tune { "Tune", "Tune", minimumTune, maximumTune, 0 };
    ParamHolder<VolumeParameter> volume { "Volume", "Volume", minimumDb, maximumDb, middleDb, defaultDb };
    std::shared_ptr<UnisonParams> unison { std::make_shared<UnisonParams>() };
};
} // namespace Orv::Audio::WavetableSynth

#pragma once

#include "parameters/ParamList.h"
#include "parameters/VolumeParameter.h"

namespace Orv::Audio::WavetableSynth
{
/** The sub oscillator: a level and an octave below the played note. */
struct SubOSCParams : public ParamList
{
    static constexpr float minimumDb = VolumeParameter::floorDb;
    static constexpr float maximumDb = 3.0f;
    static constexpr float middleDb = 0.0f;
    static constexpr float defaultDb = 0.0f;
    static constexpr int minimumOctave = -3;
    static constexpr int maximumOctave = 3;
    static constexpr int defaultOctave = -2;

    /** Message thread. */
    SubOSCParams();

    ParamHolder<VolumeParameter> subVolume { "SubVolume", "Sub Volume", minimumDb, maximumDb, middleDb, defaultDb };
    ParamHolder<juce::AudioParameterInt> subOctave { "SubOctave", "Sub Octave", minimumOctave, maximumOctave,
                                                     defaultOctave };
};
} // namespace Orv::Audio::WavetableSynth

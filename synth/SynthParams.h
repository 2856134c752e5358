#pragma once

#include "synth/WavetableParams.h"

namespace Orv::Audio::Plugins::Halvane
{
/** A sound: the master controls and the engine's settings under "Synth".
    The master volume belongs to the instance, not to the sound: it is kept
    in the host's state but neither written to nor read from sound files. */
struct SynthParams : public ParamList
{
    static constexpr int minimumUnison = 1;
    static constexpr int maximumUnison = 2;
    static constexpr float defaultUnisonAmount = 0.5f;
    static constexpr float minimumMasterDb = Audio::VolumeParameter::floorDb;
    static constexpr float maximumMasterDb = 3.0f;
    static constexpr float middleMasterDb = 0.0f;
    static constexpr float defaultMasterDb = 0.0f;

    /** Message thread. */
    SynthParams();

    /** Audio thread, before the voices render: copies the master unison
        voices and amount into each oscillator's own group. A change of
        voices is announced to listeners; the amount only when it moved.
        No allocation; JUCE's listener lock is the only lock taken. */
    void pushMasterUnison() noexcept;

    ParamHolder<juce::AudioParameterInt> unison { "Unison", "Unison", minimumUnison, maximumUnison, minimumUnison };
    ParamHolder<juce::AudioParameterFloat> unisonAmount { "UnisonAmount", "Unison Amount", 0.0f, 1.0f,
                                                          defaultUnisonAmount };
    ParamHolder<juce::AudioParameterBool> synthEnable { "SynthEnable", "Synth Enable", true };
    ParamHolder<Audio::VolumeParameter> master { "Master", "Master", minimumMasterDb, maximumMasterDb, middleMasterDb,
                                                 defaultMasterDb };
    Audio::WavetableSynth::Params synth;
};
} // namespace Orv::Audio::Plugins::Halvane

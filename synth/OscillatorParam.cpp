#include "synth/OscillatorParam.h"

#include "parameters/ParamHolder.h"

namespace Orv::Audio::WavetableSynth
{
OscillatorParam::OscillatorParam (const juce::String& id, const juce::String& name, const juce::StringArray& waveNames)
    : juce::AudioParameterChoice ({ id, ParamHolderDetail::versionHint }, name, waveNames, defaultIndex)
{
}
} // namespace Orv::Audio::WavetableSynth

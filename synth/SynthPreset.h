#pragma once

#include "persistence/PresetBase.h"
#include "synth/SynthParams.h"

namespace Orv::Audio::Plugins::Halvane
{
/** A sound: the synth's parameter tree as a preset file of its own kind,
    "Halvane Sounds", kept apart from the pattern presets. Message thread. */
class SynthPreset : public Presets::Base
{
public:
    explicit SynthPreset (SynthParams& paramsToUse) : params (paramsToUse) {}

    juce::File getUserDirectory() const override { return getDocumentsRoot().getChildFile ("Sounds"); }
    juce::String getProduct() const override { return "Halvane Sounds"; }
    juce::File getDefaultFile() const override
    {
        return getFactoryDirectoryResolved().getChildFile ("Basics").getChildFile ("Spacey Piano.json");
    }
    juce::String getFactoryResource() const override { return "FactorySounds.zip"; }
    juce::File getFactoryDirectory() const override { return getApplicationDataRoot().getChildFile ("Sounds"); }

    /** "Params": the synth's tree. */
    void reflectContent (Reflector& reflector) override { reflector.addChild ("Params", params); }

    SynthParams& getParams() noexcept { return params; }

private:
    SynthParams& params;
};
} // namespace Orv::Audio::Plugins::Halvane

#include "synth/SynthParams.h"

namespace Orv::Audio::Plugins::Halvane
{
SynthParams::SynthParams()
{
    master.inPreset = false;

    addParam (unison);
    addParam (unisonAmount);
    addParam (synthEnable);
    addParam (master);
    addList ("Synth", synth);
}

void SynthParams::pushMasterUnison() noexcept
{
    const auto voices = unison->get();
    const auto amount = unisonAmount->get();

    for (auto& osc : synth.oscillators.osc)
    {
        auto& group = *osc.unison;

        if (group.unison->get() != voices)
        {
            // The JUCE class hides setValue; its base has it public.
            juce::AudioProcessorParameter& voicesParameter = *group.unison;
            const auto normalised = group.unison->convertTo0to1 ((float) voices);
            voicesParameter.setValue (normalised);
            voicesParameter.sendValueChangedMessageToListeners (normalised);
        }

        *group.unisonDepth = amount;
        *group.unisonSpread = amount;
    }
}
} // namespace Orv::Audio::Plugins::Halvane

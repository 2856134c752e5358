#include "synth/Synth.h"

#include "synth/WavetableParams.h"

namespace Orv::Audio::WavetableSynth
{
Synth::Synth() { pointVoicesAtLists(); }

Synth::Synth (int numberOfVoices) : MPESynth (numberOfVoices) { pointVoicesAtLists(); }

void Synth::pointVoicesAtLists() noexcept
{
    for (int i = 0; i < numVoices; ++i)
        voices[i].lists = &lists;
}

void Synth::beginBlock (const Params& params) noexcept
{
    lists.filter = &params.filter;
    lists.oscillators = &params.oscillators;
    lists.sub = &params.sub;
    pointVoicesAtLists();

    const auto& adsr = params.adsr;
    const auto attack = adsr.attack->get();
    const auto decay = adsr.decay->get();
    const auto sustain = adsr.sustain->get();
    const auto release = adsr.release->get();

    for (int i = 0; i < numVoices; ++i)
        voices[i].setEnvelope (attack, decay, sustain, release);
}
} // namespace Orv::Audio::WavetableSynth

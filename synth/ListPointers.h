#pragma once

namespace Orv::Audio::WavetableSynth
{
struct FilterParams;
struct OscillatorParams;
struct SubOSCParams;

/** The parameter lists that a voice reads while it renders, in one record that
    the synth owns and every voice points to. The synth writes it before each
    block; until then the lists are absent and a voice is silent. */
struct ListPointers
{
    const FilterParams* filter = nullptr;
    const OscillatorParams* oscillators = nullptr;
    const SubOSCParams* sub = nullptr;
};
} // namespace Orv::Audio::WavetableSynth

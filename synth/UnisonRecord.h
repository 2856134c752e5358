#pragma once

#include <array>

namespace Orv::Audio::WavetableSynth
{
struct OSCParams;

/** One voice of an oscillator's unison pair: where it sounds, where it sits
    and how loud it is. */
struct UnisonRecord
{
    float frequency = 0.0f;
    /** 0 left to 1 right. */
    float pan = 0.5f;
    float gain = 1.0f;
};

using UnisonRecords = std::array<UnisonRecord, 2>;

/** Audio thread; pure. The pair for an oscillator at a voice's frequency in Hz,
    shifted by tune + 12 * octave semitones. With one unison voice both
    records are the plain note, centred, at full gain; with two they stand
    0.01 + 0.09 * spread semitones either side of it at half gain, panned
    0.5 -/+ 0.5 * spread, so that spread widens both pitch and image. */
UnisonRecords getUnisonRecords (int octave, int tune, int unison, float spread, float frequency) noexcept;

/** Audio thread; reads the parameters without locks. */
UnisonRecords getUnisonRecords (const OSCParams& params, float frequency) noexcept;
} // namespace Orv::Audio::WavetableSynth

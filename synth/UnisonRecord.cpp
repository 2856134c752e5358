#include "synth/UnisonRecord.h"

#include "synth/OSCParams.h"

#include <cmath>

namespace Orv::Audio::WavetableSynth
{
namespace
{
    // Pitch is worked in single precision in note numbers, by these constants
    // exactly: 12 / ln 2, 1 / 440 and 1 / 12, rounded to float.
    constexpr float semitonesPerNeper = 17.31234f;
    constexpr float inverseA4 = 0.0022727272f;
    constexpr float octavesPerSemitone = 0.083333336f;
    constexpr float a4 = 440.0f;
    constexpr float a4Note = 69.0f;
    constexpr float a4Octaves = 5.75f; // 69 / 12
    constexpr int semitonesPerOctave = 12;

    // The pair is placed around the note plus one semitone, read back through
    // a ratio a hair below 1, and then moved down by these offsets; together
    // they put the voices 0.01 semitones either side before spread.
    constexpr float justBelowOne = 0.99999994f;
    constexpr float pairCentreOffset = 70.0f;
    constexpr float lowerOffset = 1.01f;
    constexpr float upperOffset = 0.98999995f;
    constexpr float detunePerSpread = -0.089999996f;
    constexpr float pairGain = 0.5f;
    constexpr float centre = 0.5f;

    float frequencyOfNote (float note) noexcept
    {
        return a4 * std::exp2 (note * octavesPerSemitone - a4Octaves);
    }
} // namespace

UnisonRecords getUnisonRecords (int octave, int tune, int unison, float spread, float frequency) noexcept
{
    const auto offset = tune + semitonesPerOctave * octave;
    const auto note = a4Note + semitonesPerNeper * std::log (frequency * inverseA4) + (float) offset;
    const auto ratio = std::exp2 (note * octavesPerSemitone - a4Octaves);

    if (unison == 1)
    {
        const UnisonRecord plain { ratio * a4, centre, 1.0f };
        return { plain, plain };
    }

    const auto pairNote = semitonesPerNeper * std::log (ratio * justBelowOne) + pairCentreOffset;
    const auto detune = spread * detunePerSpread;

    return { UnisonRecord { frequencyOfNote (pairNote - lowerOffset + detune), centre - centre * spread, pairGain },
             UnisonRecord { frequencyOfNote (pairNote - upperOffset - detune), centre + centre * spread, pairGain } };
}

UnisonRecords getUnisonRecords (const OSCParams& params, float frequency) noexcept
{
    return getUnisonRecords (params.octave->get(), params.tune->get(), params.unison->unison->get(),
                             params.unison->unisonSpread->get(), frequency);
}
} // namespace Orv::Audio::WavetableSynth

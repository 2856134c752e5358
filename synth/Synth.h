#pragma once

#include "synth/DefaultVoiceStealer.h"
#include "synth/ListPointers.h"
#include "synth/MPESynth.h"
#include "synth/Voice.h"

namespace Orv::Audio::WavetableSynth
{
struct Params;

/** The wavetable instrument: MPESynth over wavetable voices with the default
    stealing rule, and the record through which its voices reach the sound's
    parameter lists.

    Per block, on the audio thread: beginBlock(), then renderNextBlock(). */
class Synth : public MPESynth<Voice, DefaultVoiceStealer>
{
public:
    /** Message thread: voices as the desktop override or the default says. */
    Synth();

    /** Message thread: a given number of voices. */
    explicit Synth (int numberOfVoices);

    /** Audio thread, before each block: points the voices at the lists of
        params, gives every voice the envelope's times and recomputes its
        rates. params must outlive the block. */
    void beginBlock (const Params& params) noexcept;

    ListPointers lists;

private:
    void pointVoicesAtLists() noexcept;
};
} // namespace Orv::Audio::WavetableSynth

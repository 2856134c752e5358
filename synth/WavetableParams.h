#pragma once

#include "synth/ADSRParams.h"
#include "synth/DelayParams.h"
#include "synth/FilterParams.h"
#include "synth/OscillatorParams.h"
#include "synth/SubOSCParams.h"

namespace Orv::Audio::WavetableSynth
{
/** The sound engine's settings below the top level of a sound, keyed
    "Oscillators", "Filter", "ADSR", "Delay", "Sub" in that order. */
struct Params : public ParamList
{
    /** Message thread. */
    Params();

    OscillatorParams oscillators;
    FilterParams filter;
    ADSRParams adsr;
    AnalogDelay::Params delay;
    SubOSCParams sub;
};
} // namespace Orv::Audio::WavetableSynth

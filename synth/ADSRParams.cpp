#include "synth/ADSRParams.h"

namespace Orv::Audio::WavetableSynth
{
ADSRParams::ADSRParams()
{
    addParam (attack);
    addParam (decay);
    addParam (sustain);
    addParam (release);
}
} // namespace Orv::Audio::WavetableSynth

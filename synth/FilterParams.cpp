#include "synth/FilterParams.h"

namespace Orv::Audio::WavetableSynth
{
FilterParams::FilterParams()
{
    addParam (enable);
    addParam (cutoff);
    addParam (resonance);
    addParam (keyTracking);
}
} // namespace Orv::Audio::WavetableSynth

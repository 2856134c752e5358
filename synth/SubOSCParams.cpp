#include "synth/SubOSCParams.h"

namespace Orv::Audio::WavetableSynth
{
SubOSCParams::SubOSCParams()
{
    addParam (subVolume);
    addParam (subOctave);
}
} // namespace Orv::Audio::WavetableSynth

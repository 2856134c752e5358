#include "synth/UnisonParams.h"

namespace Orv::Audio::WavetableSynth
{
UnisonParams::UnisonParams()
{
    addParam (unison);
    addParam (unisonDepth);
    addParam (unisonSpread);
}
} // namespace Orv::Audio::WavetableSynth

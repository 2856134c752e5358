#include "synth/WavetableParams.h"

namespace Orv::Audio::WavetableSynth
{
Params::Params()
{
    addList ("Oscillators", oscillators);
    addList ("Filter", filter);
    addList ("ADSR", adsr);
    addList ("Delay", delay);
    addList ("Sub", sub);
}
} // namespace Orv::Audio::WavetableSynth

#include "synth/OSCParams.h"

namespace Orv::Audio::WavetableSynth
{
OSCParams::OSCParams()
{
    addParam (type);
    addParam (enable);
    addParam (octave);
    addParam (tune);
    addParam (volume);
    addList ("Unison", *unison);
}
} // namespace Orv::Audio::WavetableSynth

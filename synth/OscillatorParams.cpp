#include "synth/OscillatorParams.h"

namespace Orv::Audio::WavetableSynth
{
OscillatorParams::OscillatorParams()
{
    addParam (sync);

    for (int i = 0; i < numOscillators; ++i)
        addList (keyFor (i), osc[(size_t) i]);
}

juce::String OscillatorParams::keyFor (int index) { return "OSC " + juce::String (index); }
} // namespace Orv::Audio::WavetableSynth

#include "synth/DelayParams.h"

#include "synth/TimeMap.h"

namespace Orv::Audio::AnalogDelay
{
Params::Params()
    : mode ("Mode", "Mode", juce::StringArray { "Free", "Sync" }, freeMode),
      timeSync ("TimeSync", "Time Sync", TimeMap::getNames(), TimeMap::defaultIndex)
{
    addParam (analog);
    addParam (mode);
    addParam (time);
    addParam (timeSync);
    addParam (feedback);
    addParam (mix);
}
} // namespace Orv::Audio::AnalogDelay

#include "sequencer/PatternNumParam.h"

namespace Orv::Audio::Plugins::Halvane
{
NumParam::NumParam (Sequencer::Modifiers::MusicalTime& timeToTell, Sequencer::Modifiers::Bar& bar)
    : IntRef<int> (bar.num, minBeats, maxBeats), time (&timeToTell)
{
}

void NumParam::setIntValue (int newValue)
{
    const auto before = getIntValue();
    IntRef<int>::setIntValue (newValue);

    if (getIntValue() == before)
        return;

    time->valueBroadcaster.call();
    time->barsBroadcaster.call();
    onUpdate();
}
} // namespace Orv::Audio::Plugins::Halvane

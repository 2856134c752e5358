#include "sequencer/modifiers/TimedSteps.h"

#include "persistence/ChildContainerSerializer.h"
#include "persistence/ReflectMembers.h"

namespace Orv::Sequencer::Modifiers
{
TimedSteps::TimedSteps()
{
    duration.duration = defaultDuration;
    duration.mode = Duration::barsMode;
}

TimedSteps::TimedSteps (const TimedSteps& other)
    : Cloneable<Base, TimedSteps> (other),
      mute (other.mute),
      solo (other.solo),
      duration (other.duration),
      channel (other.channel)
{
    for (const auto& p : other.pulses)
        pulses.push_back (std::make_unique<StepPulseSequencer> (*p));
}

TimedSteps& TimedSteps::operator= (const TimedSteps& other)
{
    if (this != &other)
    {
        TimedSteps copy (other);
        Base::operator= (other);
        mute = other.mute;
        solo = other.solo;
        pulses = std::move (copy.pulses);
        duration = other.duration;
        channel = other.channel;
    }

    return *this;
}

void TimedSteps::evaluate (PatternData& result) const
{
    if (! mute)
    {
        double t = 0.0;

        for (const auto& sequence : pulses)
        {
            PatternData part;
            sequence->evaluate (part);
            part.shift (t);
            result.append (part);
            t += part.length;
        }

        result.sort();
        result.start = 0.0;
        result.length = t;

        for (auto& note : result.notes)
            note.event.channel = channel;
    }

    if (result.length == 0.0)
    {
        result.start = 0.0;
        result.length = duration.getLength();
    }
}

void TimedSteps::reflectMembers (Reflector& reflector)
{
    addMember (reflector, "mute", mute);
    addMember (reflector, "solo", solo);
    ChildContainerSerializer<Pulses> (pulses, "Sequences", "Step").add (reflector);
    Duration::reflectIn (reflector, duration);
}
} // namespace Orv::Sequencer::Modifiers

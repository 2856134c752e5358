#pragma once

#include "persistence/OwningPointer.h"
#include "sequencer/modifiers/StepPulseSequencer.h"

#include <memory>
#include <vector>

namespace Orv::Sequencer::Modifiers
{
using Pulses = OwnedVector<StepPulseSequencer>;

/** A track: step sequences played one after the other on one channel. A
    muted track, or one with nothing in it, still lasts its Duration.
    Message thread only. */
class TimedSteps : public Cloneable<Base, TimedSteps>
{
public:
    static constexpr double defaultDuration = 4.0;
    static constexpr std::int32_t defaultChannel = 1;

    TimedSteps();
    TimedSteps (const TimedSteps& other);
    TimedSteps& operator= (const TimedSteps& other);

    void evaluate (PatternData& result) const override;

    /** "mute", "solo", "Sequences" (each a "Step"), "Duration". */
    void reflectMembers (Reflector& reflector) override;

    bool mute = false;
    bool solo = false;
    Pulses pulses;
    Duration duration;
    /** Stamped on every note of the result; not stored. */
    std::int32_t channel = defaultChannel;
};
} // namespace Orv::Sequencer::Modifiers

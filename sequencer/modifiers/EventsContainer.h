#pragma once

#include "sequencer/modifiers/TimedSteps.h"

#include <memory>
#include <vector>

namespace Orv::Sequencer::Modifiers
{
/** Tracks looped to fill a loop: each track repeats from 0 until the loop's
    length is reached, and what starts past it is dropped. When any track is
    soloed only the soloed ones play. Track i above 0 plays on channel i.
    Message thread only. */
class EventsContainer : public Cloneable<Base, EventsContainer>
{
public:
    /** Most repetitions of one track under the loop: a thousand bars of
        sixteenth-note tracks, and a bound on what a hostile file can ask. */
    static constexpr int maxRepetitionsPerTrack = 16384;

    EventsContainer() = default;
    EventsContainer (const EventsContainer& other);
    EventsContainer& operator= (const EventsContainer& other);

    void evaluate (PatternData& result) const override;

    /** "Sequences" (each a "Sequence"), "LoopTime". */
    void reflectMembers (Reflector& reflector) override;

    OwnedVector<TimedSteps> tracks;
    MusicalTime loopTime;

private:
    void renderTrack (size_t index, double loopLength, PatternData& result) const;
};
} // namespace Orv::Sequencer::Modifiers

#pragma once

#include "sequencer/OwnPlayHead.h"
#include "sequencer/modifiers/EventsContainer.h"

namespace Orv::Sequencer::Modifiers
{
/** An EventsContainer with a head of its own over the whole loop, its
    result sorted. Message thread only. */
class LoopFitter : public Cloneable<Base, LoopFitter>
{
public:
    void evaluate (PatternData& result) const override;

    /** "Events". */
    void reflectMembers (Reflector& reflector) override;

    EventsContainer events;
    OwnPlayHead playHead;
};
} // namespace Orv::Sequencer::Modifiers

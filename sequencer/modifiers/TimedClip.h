#pragma once

#include "sequencer/modifiers/Clip.h"

namespace Orv::Sequencer::Modifiers
{
/** A clip placed on a pattern's time line: its notes are cut to the length
    of the span and moved to its start. Message thread only. */
class TimedClip : public Cloneable<Base, TimedClip>
{
public:
    /** Appends the placed clip to the result; start and length stay. */
    void evaluate (PatternData& result) const override;

    /** "Clip", "Time". */
    void reflectMembers (Reflector& reflector) override;

    Clip clip;
    Ranges::Span<double> time;
};
} // namespace Orv::Sequencer::Modifiers

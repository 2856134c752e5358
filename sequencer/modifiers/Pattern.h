#pragma once

#include "sequencer/OwnPlayHead.h"
#include "sequencer/modifiers/MusicalTime.h"
#include "sequencer/modifiers/TimedClip.h"

#include <vector>

namespace Orv::Sequencer::Modifiers
{
using TimedClips = std::vector<TimedClip>;

/** Timed clips on a time line as long as its bars: the clips' notes, sorted
    and cut to that length, with the pattern's own head. Message thread only. */
class Pattern : public Cloneable<Base, Pattern>
{
public:
    void evaluate (PatternData& result) const override;

    /** "Clips" (each a "TimedClip"), "Time". */
    void reflectMembers (Reflector& reflector) override;

    TimedClips clips;
    MusicalTime time;
    OwnPlayHead playHead;
};
} // namespace Orv::Sequencer::Modifiers

#include "sequencer/modifiers/TimedClip.h"

namespace Orv::Sequencer::Modifiers
{
void TimedClip::evaluate (PatternData& result) const
{
    PatternData placed;
    clip.evaluate (placed);
    placed.clip ({ 0.0, time.length });
    placed.shift (time.start);
    result.append (placed);
}

void TimedClip::reflectMembers (Reflector& reflector)
{
    reflector.addChild ("Clip", clip);
    reflector.addChild ("Time", time);
}
} // namespace Orv::Sequencer::Modifiers

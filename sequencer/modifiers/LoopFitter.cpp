#include "sequencer/modifiers/LoopFitter.h"

namespace Orv::Sequencer::Modifiers
{
void LoopFitter::evaluate (PatternData& result) const
{
    events.evaluate (result);
    const auto loopLength = events.loopTime.getLength();
    result.heads.push_back ({ { 0.0, loopLength }, playHead.get(), true });
    result.sort();
}

void LoopFitter::reflectMembers (Reflector& reflector) { reflector.addChild ("Events", events); }
} // namespace Orv::Sequencer::Modifiers

#include "sequencer/modifiers/Pattern.h"

#include "persistence/ChildContainerSerializer.h"

namespace Orv::Sequencer::Modifiers
{
void Pattern::evaluate (PatternData& result) const
{
    for (const auto& clip : clips)
        clip.evaluate (result);

    const auto length = time.getLength();
    result.start = 0.0;
    result.length = length;
    result.heads.push_back ({ { 0.0, length }, playHead.get(), true });
    result.sort();
    result.clip ({ 0.0, length });
}

void Pattern::reflectMembers (Reflector& reflector)
{
    ChildContainerSerializer<TimedClips> (clips, "Clips", "TimedClip").add (reflector);
    reflector.addChild ("Time", time);
}
} // namespace Orv::Sequencer::Modifiers

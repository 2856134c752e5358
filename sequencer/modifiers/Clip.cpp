#include "sequencer/modifiers/Clip.h"

#include "persistence/ReflectMembers.h"

namespace Orv::Sequencer::Modifiers
{
void Clip::evaluate (PatternData& result) const
{
    if (! enabled)
        return;

    mod->evaluate (result);
    result.clip (time);

    if (time.start > 0.0)
        result.shift (-time.start);

    if (! time.isEmpty())
        result.length = time.length;
}

void Clip::reflectMembers (Reflector& reflector)
{
    addMember (reflector, "enabled", enabled);
    reflector.addChild ("Mod", mod);
    reflector.addChild ("Time", time);
}
} // namespace Orv::Sequencer::Modifiers

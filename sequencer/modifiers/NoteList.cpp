#include "sequencer/modifiers/NoteList.h"

#include "persistence/ChildContainerSerializer.h"

namespace Orv::Sequencer::Modifiers
{
void NoteList::evaluate (PatternData& result) const
{
    const auto length = time.getLength();
    result.notes.insert (result.notes.end(), events.begin(), events.end());
    result.start = 0.0;
    result.length = length;
    result.clip ({ 0.0, length });
    result.heads.push_back ({ { 0.0, length }, playHead.get(), true });
}

void NoteList::reflectMembers (Reflector& reflector)
{
    reflector.addChild ("Time", time);
    // A load replaces the whole list, as for the steps of a sequence.
    ChildContainerSerializer<Steps> (events, "Events", "Event", true).add (reflector);
}
} // namespace Orv::Sequencer::Modifiers

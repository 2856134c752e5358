#include "sequencer/NoteEvent.h"

#include "persistence/ReflectMembers.h"

namespace Orv::Sequencer
{
void NoteEvent::reflect (Reflector& reflector)
{
    addMember (reflector, "noteNum", noteNum);
    addMember (reflector, "velocity", velocity);
    addMember (reflector, "channel", channel);
}
} // namespace Orv::Sequencer

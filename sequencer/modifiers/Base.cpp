#include "sequencer/modifiers/Base.h"

#include "persistence/ReflectMembers.h"

namespace Orv::Sequencer::Modifiers
{
// The broadcaster is deliberately not copied: listeners follow one object.
Base::Base (const Base& other) : HasBroadcaster(), CloneableInterface<Base>(), name (other.name) {}

Base& Base::operator= (const Base& other)
{
    name = other.name;
    return *this;
}

void Base::reflect (Reflector& reflector)
{
    addMember (reflector, "name", name);
    reflectMembers (reflector);
}
} // namespace Orv::Sequencer::Modifiers

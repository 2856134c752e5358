#include "sequencer/modifiers/Bar.h"

#include "persistence/ReflectMembers.h"

namespace Orv::Sequencer::Modifiers
{
namespace
{
    // A denum of 4 is one quarter note per beat.
    constexpr double quarterNotesPerWhole = 4.0;
} // namespace

double Bar::getLength() const noexcept
{
    return static_cast<double> (num) * quarterNotesPerWhole / static_cast<double> (denum);
}

void Bar::reflect (Reflector& reflector)
{
    addMember (reflector, "num", num);
    addMember (reflector, "denum", denum);
}
} // namespace Orv::Sequencer::Modifiers

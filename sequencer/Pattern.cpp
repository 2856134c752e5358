#include "sequencer/Pattern.h"

#include "persistence/ReflectMembers.h"

#include <algorithm>

namespace Orv::Audio::Plugins::Halvane
{
void Pattern::reflect (Reflector& reflector)
{
    reflector.addChild ("Pattern", sequence);
    addMember (reflector, "Multiply", multiply);
    reflector.addChild ("Time", time);

    if (reflector.isLoading())
        removeStepsOutsideRows();
}

void Pattern::removeStepsOutsideRows()
{
    auto& list = sequence.steps;
    const auto sizeBefore = list.size();

    list.erase (std::remove_if (list.begin(), list.end(),
                                [] (const Sequencer::Step& s) {
                                    return s.event.noteNum < lowestLoadedRow || s.event.noteNum > highestLoadedRow;
                                }),
                list.end());

    if (list.size() != sizeBefore)
        sequence.getBroadcaster().call();
}

double Pattern::getRebuiltLength() const noexcept
{
    const auto cells = multiply ? static_cast<double> (sequence.grid) : 1.0;
    return cells * time.getLength();
}
} // namespace Orv::Audio::Plugins::Halvane

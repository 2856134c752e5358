#include "sequencer/LiveState.h"

namespace Orv::Sequencer
{
void LiveState::reflect (Reflector& reflector)
{
    reflector.addChild ("Transport", transport);

    // Which pattern plays, and the slots' switches, belong to an instance,
    // not to a preset that another instance may load.
    if (reflector.context.isInstanceScope())
        reflector.addChild ("Slots", liveSlots);
}
} // namespace Orv::Sequencer

#include "sequencer/LiveSlots.h"

#include "core/GarbageCollector.h"
#include "persistence/ChildContainerSerializer.h"

namespace Orv::Sequencer
{
LiveSlots::LiveSlots() : live (std::make_shared<LiveControl>())
{
    Events::GarbageCollector::get().add (live);
}

void LiveSlots::reflect (Reflector& reflector)
{
    ChildContainerSerializer<PlaybackSlots> (slots, "Slots", "Slot").add (reflector);
    reflector.addChild ("Live", *live);
}
} // namespace Orv::Sequencer

#include "core/GUIMapping.h"

#include "core/SharedTimer.h"

namespace Orv::Audio::Plugins::Halvane
{
GUIMapping::GUIMapping (PitchMapRing& ringToFollow)
    : ring (ringToFollow),
      lastSeen (ring.getCounter()),
      tickListener (Events::SharedTimer::get().getBroadcaster(), [this] { poll(); })
{
}

void GUIMapping::poll()
{
    const auto counter = ring.getCounter();
    if (counter == lastSeen)
        return;

    lastSeen = counter;
    entry = ring.read();
    broadcaster.call();
}
} // namespace Orv::Audio::Plugins::Halvane

#pragma once

#include "core/Broadcaster.h"
#include "sequencer/LiveSlots.h"
#include "sequencer/TransportControl.h"

namespace Orv::Sequencer
{
/** The slots that the audio thread plays, the transport that shapes them,
    and the broadcasters that tell of a change. What fills the slots is the
    business of a subclass. Message thread only, but for what LiveControl
    and TransportControl share by atomics. */
class LiveState
{
public:
    virtual ~LiveState() = default;

    /** The "Sequencer" node: "Transport"; and, in an instance pass only,
        "Slots" with the slots' play states and the control record. */
    void reflect (Reflector& reflector);

    /** Told last in a rebuild, and after a read of the state. */
    Events::Broadcaster stateBroadcaster;
    /** Each change here must reach the audio thread as a copy (through a
        GUIToRealTime ring); never hand it the original. */
    LiveSlots liveSlots;
    TransportControl transport;
    /** Told when the slots have been rebuilt: the moment to publish a copy. */
    Events::Broadcaster slotsBroadcaster;
};
} // namespace Orv::Sequencer

#pragma once

#include "sequencer/LiveControl.h"
#include "sequencer/PlaybackSlot.h"

#include <memory>

namespace Orv::Sequencer
{
/** What the audio thread receives of the live patterns: the finished slots,
    and the control record that both threads share. A copy holds its own
    deep copy of the slots but shares the control record, so that a snapshot
    handed to the audio thread and the GUI's original agree on which pattern
    plays.

    Made, copied and destroyed on the message thread; the audio thread only
    reads a copy that a GUIToRealTime ring holds for it. */
struct LiveSlots
{
    /** Message thread: no slots, and a fresh control record, which is handed
        to the garbage collector so that its last release never falls to the
        audio thread. */
    LiveSlots();

    /** "Slots" as a list of "Slot", and "Live". Message thread. */
    void reflect (Reflector& reflector);

    PlaybackSlots slots;
    /** Never null. */
    std::shared_ptr<LiveControl> live;
};
} // namespace Orv::Sequencer

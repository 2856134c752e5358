#include "midi/LearnerInterface.h"

namespace Orv::Midi::Learn
{
LearnerInterface::LearnerInterface() : completion ([this] { complete(); }) {}

void LearnerInterface::complete()
{
    // A tick may find no capture: the counter moved, but the GUI has since
    // disarmed or re-armed the learner.
    if (mode.load() != captured)
        return;

    mode.store (learn() ? idle : armed);
}
} // namespace Orv::Midi::Learn

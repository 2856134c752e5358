#pragma once

#include "sequencer/PatternData.h"

namespace Orv::Sequencer
{
/** What a PatternRunner needs to know of a playback slot: the evaluated
    pattern, whether it is to sound, and whether and how long it loops. The
    slot itself stays with its owner; this is a view of it for one run.

    `length` is the slot's, not the data's: the slot timer loops an empty
    pattern over the quantize length. A looping slot whose length is not
    above 0 has no loop to fold into and runs as if it did not loop.

    A plain value on the audio thread; `data` must outlive the run. */
struct RunnerSlot
{
    const PatternData* data = nullptr;
    bool playing = false;
    bool looping = false;
    double length = 0.0;
};
} // namespace Orv::Sequencer

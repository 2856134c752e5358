#pragma once

#include "sequencer/PatternData.h"
#include "sequencer/Swing.h"
#include "sequencer/modifiers/Clip.h"

#include <vector>

namespace Orv::Sequencer
{
/** One pattern as the audio thread plays it: the finished, swung events of
    what the clip holds, and how they are to be played.

    Made on the message thread at every rebuild and handed to the audio
    thread inside a copy of the live slots; nothing may keep a pointer to a
    slot across a rebuild. */
struct PlaybackSlot
{
    /** Message thread: evaluates the clip afresh into events, with every
        item's start and end bent by the swing curve. The events' own length
        is not bent: the pattern keeps its exact length. A slot that is not
        playing only loses its events. */
    void update (SwingPair swing);

    /** "Clip", "playing", "looping". Message thread. */
    void reflect (Reflector& reflector);

    /** The finished notes, heads and pulses, in swung quarter notes. */
    PatternData events;
    /** What the slot plays. */
    Modifiers::Clip clip;
    /** When false, the slot's events are cleared on each rebuild. */
    bool playing = true;
    /** The slot repeats. */
    bool looping = true;
    /** events.length as of the last update. */
    double length = 0.0;
};

/** The slots, one per pattern in the same order. */
using PlaybackSlots = std::vector<PlaybackSlot>;
} // namespace Orv::Sequencer

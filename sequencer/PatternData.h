#pragma once

#include "sequencer/PlayHead.h"
#include "sequencer/TimedEvent.h"

#include <memory>
#include <vector>

namespace Orv::Sequencer
{
/** A pattern's head placed in time: which sequence contributes the span. */
using TimedHead = TimedEvent<std::shared_ptr<PlayHead>>;
using TimedHeads = std::vector<TimedHead>;

/** What a modifier evaluates to: notes and heads in quarter notes, and the
    length of the whole. Built on the message thread and handed to the audio
    thread as a finished object.

    The list operations treat all three lists alike, so that extra records
    (trigger pulses) travel with the notes through every modifier. */
struct PatternData
{
    double start = 0.0;
    double length = 0.0;
    Steps notes;
    TimedHeads heads;
    /** Carried along by every operation; no modifier adds to it. */
    TimedHeads extra;

    /** Message thread: keeps what starts inside the span and cuts what runs
        past its end. An empty span is no span: nothing changes. */
    void clip (Ranges::Span<double> span);

    /** Message thread: moves every item by the given quarter notes. */
    void shift (double offset);

    /** Message thread: adds the other's items; play heads are shared. */
    void append (const PatternData& other);

    /** Message thread: orders each list by start; items that start together
        keep no defined order. */
    void sort();

    /** Message thread: empties the three lists; start and length stay. */
    void clearLists();
};
} // namespace Orv::Sequencer

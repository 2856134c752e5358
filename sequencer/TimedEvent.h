#pragma once

#include "persistence/ReflectMembers.h"
#include "sequencer/NoteEvent.h"
#include "sequencer/Span.h"

#include <type_traits>
#include <vector>

namespace Orv::Sequencer
{
/** Something placed in time: a span, a payload and a flag. As a pattern step
    the flag says whether the step plays, and its times are fractions of the
    pattern; in an evaluated pattern the times are quarter notes.

    A record made by growing a vector, as a load does, is disabled with an
    empty span, which is the mark of an empty row in the factory presets. */
template <typename Event>
struct TimedEvent
{
    Ranges::Span<double> time;
    Event event {};
    bool enabled = false;

    double getStart() const noexcept { return time.start; }
    double getEnd() const noexcept { return time.getEnd(); }

    /** "enabled", "Time", "Event". A key that is missing leaves what the
        record had. Same thread as the pass. */
    void reflect (Reflector& reflector)
    {
        addMember (reflector, "enabled", enabled);
        reflector.addChild ("Time", time);
        reflector.addChild ("Event", event);
    }
};

template <typename Event>
using TimedEvents = std::vector<TimedEvent<Event>>;

/** A step of a pattern, or a note of an evaluated one. */
using Step = TimedEvent<NoteEvent>;
using Steps = TimedEvents<NoteEvent>;

// The editor snapshots whole patterns with one block copy.
static_assert (std::is_trivially_copyable_v<Step>, "a step must copy byte for byte");
static_assert (std::is_trivially_copyable_v<NoteEvent>, "a note must copy byte for byte");
} // namespace Orv::Sequencer

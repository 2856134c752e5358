#pragma once

#include "sequencer/modifiers/MusicalTime.h"

#include <cstdint>

namespace Orv::Sequencer::Modifiers
{
/** The length of a step sequence: either bars or an explicit number of
    quarter notes, as mode says.

    A value inside its owner; message thread only. */
struct Duration
{
    /** The length follows the bars of time. */
    static constexpr std::int32_t barsMode = 0;
    /** The length is duration; any value but barsMode means this. */
    static constexpr std::int32_t explicitMode = 1;
    static constexpr double defaultDuration = 1.0;

    double duration = defaultDuration;
    MusicalTime time;
    std::int32_t mode = explicitMode;

    /** The length in quarter notes. */
    double getLength() const noexcept;

    /** "Time", "duration", "mode". */
    void reflect (Reflector& reflector);

    /** The member as a step sequence holds it. When loading, an old file's
        bare number under "duration" in the parent wins over the child
        "Duration"; a save always writes the child. */
    static void reflectIn (Reflector& parent, Duration& duration);
};
} // namespace Orv::Sequencer::Modifiers

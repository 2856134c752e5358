#pragma once

#include "sequencer/modifiers/MusicalTime.h"
#include "sequencer/modifiers/StepPulseSequencer.h"

#include <cstdint>

namespace Orv::Audio::Plugins::Halvane
{
/** One of the eight patterns: the steps the user edits, and the length the
    user sets. The GUI changes it in place; the live state's rebuild turns it
    into a playback slot. Message thread only. */
struct Pattern
{
    /** The rows a loaded step may stand on. The editor offers 59 to 69: the
        lowest row kept here is one it cannot reach, and that is required. */
    static constexpr std::int32_t lowestLoadedRow = 58;
    static constexpr std::int32_t highestLoadedRow = 69;

    /** "Pattern", "Multiply", "Time". After a read, steps on rows outside
        lowestLoadedRow to highestLoadedRow are dropped. */
    void reflect (Reflector& reflector);

    /** Drops the steps on rows that a loaded pattern may not hold, keeping
        the order of the rest, and tells the steps' broadcaster if any went. */
    void removeStepsOutsideRows();

    /** The pattern's length in quarter notes as rebuild sets it: time is the
        whole pattern, or with multiply one grid cell of it. */
    double getRebuiltLength() const noexcept;

    /** The length the user sets; its first bar is what the length control edits. */
    Sequencer::Modifiers::MusicalTime time;
    /** false: time is the length of the whole pattern. true: time is the
        length of one grid cell, so the pattern grows with the grid. */
    bool multiply = false;
    Sequencer::Modifiers::StepPulseSequencer sequence;
};
} // namespace Orv::Audio::Plugins::Halvane

#pragma once

#include <cstdint>

namespace Orv
{
class Reflector;
}

namespace Orv::Sequencer
{
/** One note as a pattern step, an evaluated event or a note of a MIDI file.
    In a pattern noteNum is the row of the step; in a note list it is a MIDI
    note. Fixed size and owning nothing, so lists of steps copy as one block.

    A plain value; any thread. */
struct NoteEvent
{
    static constexpr std::int32_t defaultNoteNum = 36;
    static constexpr float defaultVelocity = 0.8f;
    static constexpr std::int32_t defaultChannel = 1;

    /** The chance that the note plays; no edit changes it, but it is kept and copied. */
    float gain = 1.0f;
    /** The range of a random offset added to the velocity as the note starts. */
    float randomVelocityLow = 0.0f;
    float randomVelocityHigh = 0.0f;
    std::int32_t noteNum = defaultNoteNum;
    /** 0 to 1. */
    float velocity = defaultVelocity;
    /** MIDI channel, counted from 1. */
    std::int32_t channel = defaultChannel;

    /** "noteNum", "velocity", "channel"; gain and the random range are not
        stored. A velocity may arrive as text. Same thread as the pass. */
    void reflect (Reflector& reflector);
};
} // namespace Orv::Sequencer

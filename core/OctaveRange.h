#pragma once

#include "persistence/Reflector.h"
#include "sequencer/ArpSettings.h"

#include <cstdint>

namespace Orv::Audio::Plugins::Halvane
{
/** The octaves the arp's notes are folded into, as the GUI and files see
    them: octave o stands for MIDI note 12 * (o + 2). The two ends never
    cross by an edit: raising Min pushes Max up, lowering Max pushes Min
    down. Every change rewrites the word the audio thread reads.

    Message thread. */
class OctaveRange
{
public:
    static constexpr std::int32_t defaultMin = -1;
    static constexpr std::int32_t defaultMax = 6;
    /** Octave numbers start two below the MIDI octave of note 0. */
    static constexpr std::int32_t octaveOffset = 2;

    explicit OctaveRange (ArpSettings& settingsToWrite);

    std::int32_t getMin() const noexcept { return min; }
    std::int32_t getMax() const noexcept { return max; }

    /** Sets Min; Max becomes at least m + 1. */
    void setMin (std::int32_t m);
    /** Sets Max; Min becomes at most x - 1. */
    void setMax (std::int32_t x);

    /** "Min" and "Max". A load takes both as they stand, even crossed, so
        a file's range is kept exactly; the word follows. */
    void reflect (Reflector& reflector);

private:
    void publish() noexcept;

    ArpSettings& settings;
    std::int32_t min = defaultMin;
    std::int32_t max = defaultMax;
};

/** Small display settings of the piano roll that an instance keeps. */
struct UIState
{
    enum Brush : std::int32_t
    {
        cursor = 0,
        pencil = 1,
        velocity = 2
    };

    /** "snap"; the brush is never stored. */
    void reflect (Reflector& reflector);

    bool snap = false;
    std::int32_t brush = cursor;
};
} // namespace Orv::Audio::Plugins::Halvane

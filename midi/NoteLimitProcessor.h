#pragma once

#include "midi/NoteModifierProcessor.h"

namespace Orv::Midi::Mapper
{
/** Keeps notes between two limits by clamping them. Unlike the pitch table's
    octave range it does not fold by octaves: a note above the range becomes
    the top note. */
class NoteLimitProcessor : public NoteModifierProcessor
{
public:
    static constexpr int32_t lowestNote = 0;
    static constexpr int32_t highestNote = 127;

    /** Audio thread: n limited to low to high, both included; an inverted
        range gives low. */
    int mapNote (int note) override { return juce::jlimit (low, juce::jmax (low, high), note); }

    /** Audio thread: new limits move the sounding notes at the next span. */
    void setLimits (int newLow, int newHigh) noexcept
    {
        if (newLow == low && newHigh == high)
            return;
        low = newLow;
        high = newHigh;
        markChanged();
    }

    int getLow() const noexcept { return low; }
    int getHigh() const noexcept { return high; }

private:
    int32_t low = lowestNote;
    int32_t high = highestNote;
};
} // namespace Orv::Midi::Mapper

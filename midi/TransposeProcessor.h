#pragma once

#include "midi/NoteModifierProcessor.h"

namespace Orv::Midi::Mapper
{
/** Moves every note by a number of semitones; the result is limited to the
    MIDI range, so notes pushed past either end share the end note. */
class TransposeProcessor : public NoteModifierProcessor
{
public:
    /** Audio thread: n plus the offset. */
    int mapNote (int note) override { return note + offset; }

    /** Audio thread: a new offset moves the sounding notes at the next span. */
    void setOffset (int newOffset) noexcept
    {
        if (newOffset == offset)
            return;
        offset = newOffset;
        markChanged();
    }

    int getOffset() const noexcept { return offset; }

private:
    int32_t offset = 0;
};
} // namespace Orv::Midi::Mapper

#pragma once

#include "sequencer/OwnPlayHead.h"
#include "sequencer/modifiers/Base.h"
#include "sequencer/modifiers/MusicalTime.h"

namespace Orv::Sequencer::Modifiers
{
/** Notes whose times are already quarter notes, as a MIDI file gives them,
    cut to the length of the bars. The enabled flag of an event is not looked
    at, and the result is not sorted. Message thread only. */
class NoteList : public Cloneable<Base, NoteList>
{
public:
    void evaluate (PatternData& result) const override;

    /** "Time", "Events" (each an "Event"). */
    void reflectMembers (Reflector& reflector) override;

    MusicalTime time;
    Steps events;
    OwnPlayHead playHead;
};
} // namespace Orv::Sequencer::Modifiers

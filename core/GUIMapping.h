#pragma once

#include "core/Broadcaster.h"
#include "sequencer/PitchMapRing.h"

#include <cstdint>

namespace Orv::Audio::Plugins::Halvane
{
/** The display's own copy of the arp's row-to-note table. The audio thread
    publishes the table through the ring whenever the held chord or the
    octave range changes; on each shared tick on which the ring's counter has
    moved, the newest entry is copied here and the broadcaster tells the
    piano roll and the pads.

    Made, read and destroyed on the message thread. */
class GUIMapping : public Events::HasBroadcaster
{
public:
    /** Message thread: follows the ring, which must outlive this. */
    explicit GUIMapping (PitchMapRing& ringToFollow);

    /** Message thread: copies the newest entry and tells the broadcaster, if
        the ring was written since the last look. The shared tick calls it;
        tests may too. */
    void poll();

    /** The notes each row stands for. */
    const ChordMap::Table& getTable() const noexcept { return entry.table; }
    const ChordMap::NoteRange& getNoteRange() const noexcept { return entry.range; }
    const ChordMap::NoteList& getSortedNotes() const noexcept { return entry.sortedNotes; }

private:
    PitchMapRing& ring;
    PitchMapRing::Entry entry;
    int32_t lastSeen = 0;
    Events::Listener tickListener;
};
} // namespace Orv::Audio::Plugins::Halvane

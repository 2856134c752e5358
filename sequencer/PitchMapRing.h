#pragma once

#include "sequencer/ChordMap.h"

#include <array>
#include <atomic>
#include <cstdint>

namespace Orv::Audio::Plugins::Halvane
{
/** Hands the arp's row-to-note table from the audio thread (the one writer)
    to the display (the one reader on the message thread): a ring of five
    copies, run as GUIToRealTime runs its ring, in the other direction. The
    writer copies into an entry the reader does not hold and only then
    publishes it; the reader takes the newest published entry and keeps it
    until its next read. A counter that rises with each publication tells the
    reader when to look.

    The writer is much faster than a message thread, so the ring assumes, as
    GUIToRealTime does, that no more than numEntries - 2 publications fall
    between the two atomic steps of one read. */
class PitchMapRing
{
public:
    static constexpr int numEntries = 5;

    /** One copy of what the display shows. */
    struct Entry
    {
        ChordMap::Table table {};
        ChordMap::NoteRange range {};
        ChordMap::NoteList sortedNotes {};
    };

    PitchMapRing() = default;
    PitchMapRing (const PitchMapRing&) = delete;
    PitchMapRing& operator= (const PitchMapRing&) = delete;

    /** Audio thread; never blocks or allocates: copies the map's table, range
        and sorted chord into the ring and raises the counter. */
    void publish (const ChordMap& map) noexcept;

    /** Message thread: the newest published entry (an empty one before the
        first publication). Stays unchanged until the next read(). */
    const Entry& read() noexcept;

    /** Any thread: the number of publications so far. */
    int32_t getCounter() const noexcept { return counter.load(); }
    /** The counter itself, for an AtomicListener on the message thread. */
    const std::atomic<int32_t>& getCounterAtomic() const noexcept { return counter; }

private:
    static constexpr int32_t next (int32_t index) noexcept { return (index + 1) % numEntries; }

    std::array<Entry, (size_t) numEntries> entries {};
    std::atomic<int32_t> writeIndex { 0 };
    std::atomic<int32_t> readIndex { -1 };
    std::atomic<int32_t> counter { 0 };
};
} // namespace Orv::Audio::Plugins::Halvane

#include "sequencer/PitchMapRing.h"

#include <gtest/gtest.h>

using namespace Orv::Audio::Plugins::Halvane;

TEST (PitchMapRing, TheReaderGetsTheNewestTableAndKeepsItWhileTheWriterRunsOn)
{
    PitchMapRing ring;
    ChordMap map;
    EXPECT_EQ (ring.read().sortedNotes.count, 0) << "empty before the first publication";

    map.hold (60);
    map.rebuild();
    ring.publish (map);
    const auto& held = ring.read();
    ASSERT_EQ (held.sortedNotes.count, 1);
    EXPECT_EQ (held.table[ChordMap::centreRow].notes[0], 60);

    // However often the writer publishes, the entry in the reader's hands
    // stays as it was, and the next read finds the latest.
    for (int note = 61; note < 61 + 3 * PitchMapRing::numEntries; ++note)
    {
        map.release (note - 1);
        map.hold (note);
        map.rebuild();
        ring.publish (map);
        EXPECT_EQ (held.table[ChordMap::centreRow].notes[0], 60) << note;
    }

    EXPECT_EQ (ring.getCounter(), 1 + 3 * PitchMapRing::numEntries);
    EXPECT_EQ (ring.read().table[ChordMap::centreRow].notes[0], 60 + 3 * PitchMapRing::numEntries);
    EXPECT_EQ (ring.read().range.high, ChordMap::octave * ChordMap::defaultHighOctave);
}

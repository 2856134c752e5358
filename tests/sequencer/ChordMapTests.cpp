#include "sequencer/ChordMap.h"

#include "midi/NoteMessage.h"
#include "sequencer/NoteTestHelpers.h"

#include <gtest/gtest.h>

namespace
{
using Orv::Audio::Plugins::Halvane::ChordMap;
using Orv::Testing::eventsOf;
using Words = std::vector<std::string>;
using Notes = std::vector<int>;
namespace NoteMessage = Orv::Midi::NoteMessage;

Notes rowOf (const ChordMap& map, int row)
{
    const auto& list = map.getTable()[(size_t) row];
    return { list.begin(), list.end() };
}

ChordMap mapOf (const Notes& held, int lowOctave = ChordMap::defaultLowOctave, int highOctave = ChordMap::defaultHighOctave)
{
    ChordMap map;
    for (auto note : held)
        map.hold (note);
    map.setOctaveRange (lowOctave, highOctave);
    map.rebuild();
    return map;
}

//==============================================================================
TEST (ChordMap, RowsStepThroughTheChordByOctavesAndFoldIntoTheRange)
{
    const struct
    {
        Notes held;
        int lowOctave;
        int highOctave;
        int row;
        Notes expected;
    } cases[] = {
        // Notes 12 to 96, the range a new state starts with.
        { { 60 }, 1, 8, 64, { 60 } },
        { { 60 }, 1, 8, 65, { 72 } },
        { { 60 }, 1, 8, 63, { 48 } },
        { { 60, 64 }, 1, 8, 64, { 60 } },
        { { 60, 64 }, 1, 8, 65, { 64 } },
        { { 60, 64 }, 1, 8, 66, { 72 } },
        { { 60, 64 }, 1, 8, 63, { 52 } },
        { { 64, 60 }, 1, 8, 64, { 60 } }, // arrival order doesn't count
        { { 60 }, 1, 8, 0, { 12 } },      // 60 - 64 * 12, folded up
        { { 60 }, 1, 8, 127, { 84 } },    // folded down, below 96
        // Notes 48 to 72, with 72 itself outside: it folds to 60.
        { { 60 }, 4, 6, 65, { 60 } },
        { { 60 }, 4, 6, 66, { 60 } },
        { { 60 }, 4, 6, 60, { 48 } },
        { { 61 }, 4, 6, 63, { 49 } },
        // Less than an octave wide: clamped, both ends included.
        { { 60 }, 5, 5, 65, { 60 } },
        { { 60 }, 5, 3, 63, { 60 } },
        // Notes 120 to 144: a note folded above 127 drops the row.
        { { 60, 68 }, 10, 12, 64, { 120 } },
        { { 60, 68 }, 10, 12, 65, {} },
        { {}, 1, 8, 64, {} },
    };

    for (const auto& c : cases)
        EXPECT_EQ (rowOf (mapOf (c.held, c.lowOctave, c.highOctave), c.row), c.expected)
            << "row " << c.row << " of " << c.held.size() << " notes from " << (c.held.empty() ? -1 : c.held[0])
            << ", octaves " << c.lowOctave << "-" << c.highOctave;
}

TEST (ChordMap, HeldNotesAreKeptOnceAndTheTableChangesOnlyAtARebuild)
{
    auto map = mapOf ({ 60, 60, 64 });
    EXPECT_EQ (map.getHeldNotes().count, 2);

    map.release (60);
    EXPECT_EQ (rowOf (map, 64), Notes ({ 60 }));
    EXPECT_EQ (map.getSortedNotes().count, 2);

    map.rebuild();
    EXPECT_EQ (rowOf (map, 64), Notes ({ 64 }));

    map.release (64);
    EXPECT_FALSE (map.hasHeldNotes());
    map.rebuild();
    for (int row = 0; row < ChordMap::numRows; ++row)
        ASSERT_TRUE (rowOf (map, row).empty()) << row;
}

//==============================================================================
struct ChordMapTranslation : ::testing::Test
{
    void on (int row, int sample) { NoteMessage::addNoteOn (rows, 0, row, 100, sample); }
    void off (int row, int sample) { NoteMessage::addNoteOff (rows, 0, row, 0, sample); }

    Words translate (ChordMap& map)
    {
        out.clear();
        map.translate (rows, out);
        rows.clear();
        return eventsOf (out);
    }

    juce::MidiBuffer rows;
    juce::MidiBuffer out;
};

TEST_F (ChordMapTranslation, TwoRowsOnOneNoteRestrikeItAndTheFirstRowsOffIsSilent)
{
    // Notes 60 to 72 with 60 held: rows 64 and 65 both give 60.
    auto map = mapOf ({ 60 }, 5, 6);
    on (64, 0);
    on (65, 5);
    off (64, 10);
    off (65, 20);

    EXPECT_EQ (translate (map), Words ({ "+0:60@0", "-0:60@5", "+0:60@5", "-0:60@20" }));
    EXPECT_EQ (map.getNumSounding(), 0);
}

TEST_F (ChordMapTranslation, ANoteEndsAsItStartedAfterTheChordChanged)
{
    auto map = mapOf ({ 60 });
    on (64, 0);
    EXPECT_EQ (translate (map), Words ({ "+0:60@0" }));

    map.release (60);
    map.hold (62);
    map.rebuild();
    off (64, 3);
    on (64, 4);
    EXPECT_EQ (translate (map), Words ({ "-0:60@3", "+0:62@4" }));
}

TEST_F (ChordMapTranslation, WithoutHeldNotesRowsSoundNothingAndOtherEventsPass)
{
    ChordMap map;
    map.rebuild();
    on (64, 0);
    NoteMessage::addController (rows, 0, 1, 64, 2);
    off (64, 4);

    EXPECT_EQ (translate (map), Words ({ "cc1@2" }));
}
} // namespace

#pragma once

#include "midi/NoteMessage.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <array>
#include <cstdint>

namespace Orv::Audio::Plugins::Halvane
{
/** Turns the pattern's rows into real notes. A pattern holds no pitches: row
    64 stands for the lowest held note, the rows above for the next held
    notes and then the same an octave up, the rows below for the chord an
    octave down; every note is folded into the octave range.

    The table is rebuilt when the held chord changes. Notes that a row
    started are remembered with the row, so that a row's note-off ends what
    it started even after the table has changed.

    Fixed arrays only: after construction nothing here allocates, apart from
    what the output buffer of translate() may need. Audio thread only. */
class ChordMap
{
public:
    static constexpr int numRows = 128;
    /** Most notes a row, a chord or the sounding list can hold; more are
        dropped quietly. */
    static constexpr int maxEntries = 128;
    /** The row of the lowest held note. */
    static constexpr int centreRow = 64;
    static constexpr int octave = 12;

    /** Up to maxEntries notes with a count. */
    struct NoteList
    {
        int32_t count = 0;
        std::array<int32_t, maxEntries> notes {};

        const int32_t* begin() const noexcept { return notes.data(); }
        const int32_t* end() const noexcept { return notes.data() + count; }
        bool contains (int32_t note) const noexcept;
        void add (int32_t note) noexcept;
    };

    using Table = std::array<NoteList, numRows>;

    /** The range the notes are folded into, in MIDI notes. */
    struct NoteRange
    {
        int32_t low = 0;
        int32_t high = 0;
    };

    /** A real note and the row that started it. */
    struct SoundingNote
    {
        int32_t row = 0;
        int32_t target = 0;
    };

    /** The octave range a new state starts with (notes 12 to 96). */
    static constexpr int defaultLowOctave = 1;
    static constexpr int defaultHighOctave = 8;

    ChordMap();

    //==============================================================================
    /** Audio thread: a note-on adds the note to the held chord, once. */
    void hold (int note) noexcept;
    /** Audio thread: a note-off takes every entry of the note from the chord. */
    void release (int note) noexcept;
    /** Audio thread: true while any note is held. */
    bool hasHeldNotes() const noexcept { return heldNotes.count > 0; }

    /** Audio thread: the range as whole octaves of 12 notes; a high octave
        below the low one counts as the low one. Takes effect at rebuild(). */
    void setOctaveRange (int lowOctave, int highOctave) noexcept;

    /** Audio thread: rebuilds the table from the chord held now. */
    void rebuild() noexcept;

    /** Audio thread: adds to `out`, at the same positions, the real notes for
        the row-numbered notes of `rows`; other events pass as they are. */
    void translate (const juce::MidiBuffer& rows, juce::MidiBuffer& out);

    //==============================================================================
    /** Audio thread, or a copy for the display: the table as last rebuilt. */
    const Table& getTable() const noexcept { return pitchTable; }
    const NoteRange& getRange() const noexcept { return noteRange; }
    /** The chord of the last rebuild, ascending. */
    const NoteList& getSortedNotes() const noexcept { return sortedNotes; }
    /** The chord held now, in order of arrival. */
    const NoteList& getHeldNotes() const noexcept { return heldNotes; }
    int getNumSounding() const noexcept { return soundingCount; }

private:
    int fitIntoRange (int candidate) const noexcept;
    void translateNoteOn (const juce::MidiMessageMetadata& event, juce::MidiBuffer& out);
    void translateNoteOff (const juce::MidiMessageMetadata& event, juce::MidiBuffer& out);
    /** Removes every pair that sounds `target`; returns how many there were. */
    int forgetTarget (int target) noexcept;

    NoteList heldNotes;
    Table pitchTable;
    NoteRange noteRange;
    NoteList sortedNotes;
    NoteList scheduledScratch;
    std::array<SoundingNote, maxEntries> soundingMap {};
    int32_t soundingCount = 0;
};
} // namespace Orv::Audio::Plugins::Halvane

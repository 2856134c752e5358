#pragma once

#include "sequencer/modifiers/NoteList.h"

#include <cstddef>

namespace Orv::Sequencer::MidiPlayer
{
/** Turns a standard MIDI file into the notes of a clip, in quarter notes, by
    the framework's MIDI file rules: "MThd" at the start or among the first
    words of a "RIFF" file, then the "MTrk" chunks, note-ons matched with
    their note-offs within a track and channel, a note-on also ending the note
    it strikes again.

    Every note of every track lands on channel 1 at its velocity out of 127,
    and so a note struck from another track or channel while it sounds ends
    there too: no note of a clip overlaps another of its number. The notes
    come in order of start, in file order where they start together.

    The clip lasts whole bars of 4/4 up to the file's last event of any kind,
    whatever meter the file states, so that a clip loops on the song's bars.
    A read takes time about in proportion to the events of the file. */
struct ClipReader
{
    /** The most of a file that is read; MIDI files are small, and this keeps
        a stray multi-gigabyte file from being taken in whole. */
    static constexpr size_t maxFileBytes = 0xC800000;
    /** A velocity byte to the 0 to 1 of a note: 1 / 127. */
    static constexpr float velocityScale = 0.007874016f;
    /** A clip is cut after this many bars, so that a file whose last event
        lies absurdly far out cannot ask for millions of them. */
    static constexpr int maxBars = 4096;

    /** Any thread but the audio thread (it allocates): replaces the list's
        notes and bars by the file's. Returns false, with the list empty and
        without bars, for data that is no MIDI file with ticks per quarter
        note. Never throws. */
    static bool read (const void* data, size_t size, Modifiers::NoteList& into) noexcept;
};
} // namespace Orv::Sequencer::MidiPlayer

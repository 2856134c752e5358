#pragma once

#include "midi/NoteMessage.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <array>
#include <cstdint>

namespace Orv::Sequencer
{
/** Remembers which notes one source has sent down the chain, so that they can
    be released when the source is switched off, or when an all-notes-off or
    all-sound-off controller comes by. Such controllers never pass: they are
    turned into note-offs for exactly the notes that are on, which a receiver
    that ignores those controllers still understands.

    Audio thread only, after construction; allocates nothing for ordinary
    spans. */
class NoteGate
{
public:
    NoteGate();

    /** Audio thread; never blocks. Tracks the notes of `buffer` and rewrites
        it in place. A change of `active` to false, or to true unless `quiet`,
        releases every tracked note at sample 0, ahead of the buffer's own
        events; a quiet activation forgets them instead, for a source that
        takes over from another whose notes are released elsewhere. */
    void process (juce::MidiBuffer& buffer, bool active, bool quiet);

    /** Any thread that owns the gate: the state given to the last process(). */
    bool isActive() const noexcept { return active; }

    /** Any thread that owns the gate: whether the note is marked as on;
        `channel` is 0 to 15. */
    bool isOn (int channel, int note) const noexcept { return table[index (channel, note)] != 0; }

private:
    static constexpr size_t index (int channel, int note) noexcept
    {
        return (size_t) (channel & Midi::NoteMessage::channelMask) * Midi::NoteMessage::numNotes
             + (size_t) (note & Midi::NoteMessage::dataMask);
    }

    void releaseAll (int sample);

    juce::MidiBuffer midi;
    std::array<uint8_t, Midi::NoteMessage::numChannels * Midi::NoteMessage::numNotes> table {};
    bool active = false;
};
} // namespace Orv::Sequencer

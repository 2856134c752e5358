#pragma once

#include "midi/MidiProcessorBase.h"

#include <cstdint>
#include <vector>

namespace Orv::Midi::Mapper
{
/** A note that a mapper has let through and not yet ended. */
struct ActiveNote
{
    int32_t note = 0;        ///< as it came in
    int32_t mapped = 0;      ///< as it went out
    float velocity = 0.0f;   ///< 0 to 1
    int32_t channel = 0;     ///< 1 to 16, or 0 if the message had none
};

/** A stage that moves each note to another number and remembers where it sent
    it, so that the note-off ends the note that actually sounds. When its
    setting changes (see markChanged) every sounding note is ended and started
    again at its new place at the start of the next span, unless the span
    ends it at that very sample anyway. */
class NoteModifierProcessor : public MidiProcessorBase
{
public:
    /** Room of the output buffer, as for every buffer of the block path. */
    static constexpr size_t outputBytes = 1504;
    /** A note-on ends any record of its own note, so there is at most one
        record per MIDI note. */
    static constexpr size_t maxActiveNotes = 128;

    /** Any thread, before use. */
    NoteModifierProcessor();
    ~NoteModifierProcessor() override = default;

    /** Audio thread: where note n goes. The result is limited to 0 to 127 by
        the caller. */
    virtual int mapNote (int note) = 0;

    /** Audio thread; never blocks, and allocates nothing once the caller's
        buffer has the room of outputBytes. */
    void process (juce::MidiBuffer& buffer) override;

    /** Audio thread: the mapping has changed; the next span moves every
        sounding note. */
    void markChanged() noexcept { changed = true; }

    /** Audio thread: the notes that sound now. */
    const std::vector<ActiveNote>& getActiveNotes() const noexcept { return active; }

private:
    void remapActiveNotes (const juce::MidiBuffer& buffer);
    void startNote (const juce::MidiMessage& message, int sample);
    void endNote (int note, int sample);
    int mapLimited (int note);

    juce::MidiBuffer output;
    bool changed = false;
    std::vector<ActiveNote> active;
};
} // namespace Orv::Midi::Mapper

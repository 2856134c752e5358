#pragma once

#include "midi/MidiProcessor.h"
#include "midi/SmallSet.h"

#include <atomic>
#include <cstdint>

namespace Orv::Midi::SustainPedal
{
/** The sustain pedal as a stage of the note chain: while the pedal is down,
    note releases are held back and all come out when it goes up. The pedal's
    controller itself never passes. */
class Processor : public MidiProcessor
{
public:
    /** Inline room of each note set: far more than a keyboard can hold. */
    static constexpr size_t inlineNotes = 200;
    using NoteSet = SmallSet<int32_t, inlineNotes>;

    /** The controller of the pedal, and the value from which it counts as down. */
    static constexpr int pedalController = 64;
    static constexpr int pedalDownFrom = 64;

    /** Velocity of the note-offs that a pedal release makes. Chosen, not
        derived: only the synth's release responds to it. */
    static constexpr uint8_t releaseVelocity = 25;

    /** Any thread, before use. The pedal's state is kept in `pedalState`,
        which must outlive this stage. */
    explicit Processor (std::atomic<bool>& pedalState);

    /** Audio thread; never blocks or allocates. */
    void processEvent (const juce::MidiMessage& message, int sample) override;

    /** Any thread: true while the pedal is down. */
    bool isPedalDown() const noexcept { return pedal->load(); }

    /** Audio thread: the keys now down, and the released ones the pedal holds. */
    const NoteSet& getHeldNotes() const noexcept { return heldNotes; }
    const NoteSet& getSustainedNotes() const noexcept { return sustainedNotes; }

private:
    void setPedal (const juce::MidiMessage& message, int sample);

    std::atomic<bool>* pedal;
    NoteSet heldNotes;
    NoteSet sustainedNotes;
};
} // namespace Orv::Midi::SustainPedal

#pragma once

#include "core/PlayHeadTransportView.h"
#include "midi/NoteMessage.h"
#include "sequencer/PatternData.h"
#include "sequencer/TriggerRecord.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <array>
#include <cstdint>
#include <vector>

namespace Orv::Sequencer
{
/** Turns the steps of an evaluated pattern that touch a piece of pattern time
    into row-numbered note-ons and note-offs at sample positions, and keeps
    the note table that makes sure every note it started is ended: by its
    step, by a newer step on the same note, when time goes back, or by the
    sweep once no step claims it any more.

    It also fires the pulses of the pattern's `extra` list and tells the play
    heads where they stand.

    Built on the message thread (it reserves); after that audio thread only,
    and allocation-free while a pattern has fewer items than reserved. */
class NoteScheduler
{
public:
    /** Room of each list of active records. */
    static constexpr size_t reservedItems = 10000;
    /** A pulse still fires this many quarter notes after its start, so that
        one that falls between two pieces is not lost. */
    static constexpr double pulseTolerance = 0.001;
    /** Time going back ends every note below this one at once; this one is
        left to the sweep at the end of the piece, so a step that still holds
        it at the new place keeps it sounding without a break. */
    static constexpr int sweepExemptNote = 127;

    /** State of a note in the table. */
    enum NoteTableState : int32_t
    {
        onAndSeen = 0,
        off = 1,
        onNotYetSeen = 2
    };

    /** Message thread: reserves every list and seeds the generator from the
        system. */
    NoteScheduler();

    //==============================================================================
    /** Audio thread; never blocks. Runs one piece: `piece` views the runner's
        clock, whose positions are pattern times that must not wrap within
        the piece. Fired pulses are appended to `triggers`, with offsets
        counted from the clock's first sample, so that pieces of one run
        share them. */
    void run (const Audio::PlayHeadTransportView& piece,
              const PatternData& data,
              std::vector<TriggerRecord>& triggers);

    /** Audio thread: the last piece's notes, at positions within the piece. */
    const juce::MidiBuffer& getOutput() const noexcept { return outMidi; }

    /** Audio thread: state of a note; `channel` is 0 to 15. */
    NoteTableState getNoteState (int channel, int note) const noexcept;

    //==============================================================================
    /** Any thread that owns the scheduler: makes the random draws repeatable. */
    void setSeed (int64_t seed) noexcept { random.setSeed (seed); }

    /** Audio thread: the next number of the generator, 0 up to 0.9999999. */
    float nextRandom() noexcept;

    /** Any thread: the MIDI velocity of a note of velocity `velocity` (0 to
        1). Below 0.01 it is as quiet as a note can sound, but never silent. */
    static int midiVelocity (float velocity) noexcept;

    /** Any thread: the sample of time `t` among `count` positions: the one
        whose interval [q[i], q[i+1]) holds it, the last sample if none does. */
    static int sampleOf (double t, const double* positions, int count) noexcept;

private:
    struct NoteSlot
    {
        int32_t state = off;
        int32_t channel = 0;
    };

    NoteSlot& slotFor (const NoteEvent& event) noexcept;
    void startNote (const NoteEvent& event, int sample);
    void endNote (NoteSlot& slot, int note, int sample);
    void endNotesOnTimeGoingBack();
    void sweepUnclaimedNotes();
    void settleInTimeOrder();
    void firePulses (const PatternData& data, std::vector<TriggerRecord>& triggers, int pieceStart);
    void updateHeads (bool playing);

    double lastPosition = 0.0;
    Steps activeSteps;
    TimedHeads activeHeads;
    TimedHeads activeExtra;
    juce::MidiBuffer outMidi;
    juce::MidiBuffer orderedMidi;
    /** What a receiver of the output has on: the truth the table must end
        each piece agreeing with. */
    std::array<bool, Midi::NoteMessage::numChannels * Midi::NoteMessage::numNotes> sounding {};
    std::array<NoteSlot, Midi::NoteMessage::numChannels * Midi::NoteMessage::numNotes> noteTable {};
    TimedHeads runningHeads;
    juce::Random random;

    // The piece in hand, for the sample lookups of one run.
    const double* positions = nullptr;
    int count = 0;
    double p0 = 0.0;
    double p1 = 0.0;
};
} // namespace Orv::Sequencer

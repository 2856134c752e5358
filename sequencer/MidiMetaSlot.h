#pragma once

#include "core/PlayHeadTransportView.h"
#include "sequencer/LiveSlots.h"
#include "sequencer/PatternController.h"
#include "sequencer/PatternRunner.h"
#include "sequencer/PlaybackSlot.h"
#include "sequencer/PulseRecord.h"

#include <juce_audio_basics/juce_audio_basics.h>

namespace Orv::Audio::Plugins::Halvane
{
/** Decides which of the live slots plays and plays it as row-numbered notes.

    A slot change waits for the next quantize boundary while the clock
    plays. The boundaries come from a slot timer: an empty pattern one
    quantize long, looping from the song's start, whose one pulse at its
    start is armed by a change and fires at the next wrap. The change then
    restarts the pattern runner on the new slot from its beginning.

    Built on the message thread; after that audio thread only. */
class MidiMetaSlot : public Sequencer::PatternController
{
public:
    /** Message thread: makes the slot timer and its pulse, and reserves. */
    MidiMetaSlot();

    /** Prepare time, never during a block: makes room in both runners for
        runs of up to `samplesPerBlock` samples (allocates). */
    void prepare (int samplesPerBlock);

    /** Audio thread: claims no message. */
    bool matches (const juce::MidiMessage&) override { return false; }
    /** Audio thread: there is nothing to handle. */
    void handle (const juce::MidiMessage&, juce::MidiBuffer&, int) override {}

    //==============================================================================
    /** Audio thread; never blocks: asks for `slot` to be (re)started. While
        the clock plays it is queued for the next quantize boundary; otherwise
        it becomes the active slot at once, reduced modulo the number of
        slots. */
    void requestSlot (int slot, bool clockPlaying, const Sequencer::LiveSlots& slots) noexcept;

    /** Audio thread; never blocks but for the control's spin lock, and
        allocates nothing once prepared. Runs a span of one block: adds the
        messages that wait in the live control to `messages` at sample 0,
        then plays the active slot, switching at a boundary that falls in the
        span. Nothing plays while the control's player is off. A jump cancels
        a queued change. The notes are in getOutput(). */
    void run (const PlayHeadTransportView& view, const Sequencer::LiveSlots& slots, juce::MidiBuffer& messages);

    /** Audio thread: the last run's row-numbered notes, at positions within
        its view. */
    const juce::MidiBuffer& getOutput() const noexcept { return outMidi; }

    /** Audio thread, or a test: the slot timer's pulse. */
    const Sequencer::PulseRecord& getPulse() const noexcept { return *pulse; }

    /** Audio thread: the number of slots that a slot index is reduced by;
        never 0, so that the modulo is always defined. */
    static int numSlotsOf (const Sequencer::LiveSlots& slots) noexcept;

private:
    void runLiveSlots (const PlayHeadTransportView& view, const Sequencer::LiveSlots& slots);
    void runActiveSlot (const PlayHeadTransportView& view, const Sequencer::LiveSlots& slots, int from, int to);

    Sequencer::PlaybackSlot timerSlot;
    /** The record of the timer's one `extra` item; the item owns it. */
    Sequencer::PulseRecord* pulse = nullptr;
    juce::MidiBuffer outMidi;
    juce::MidiBuffer spanMidi;
    Sequencer::PatternRunner timerRunner;
    Sequencer::PatternRunner patternRunner;
};
} // namespace Orv::Audio::Plugins::Halvane

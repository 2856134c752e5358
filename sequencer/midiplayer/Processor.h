#pragma once

#include "core/Broadcaster.h"
#include "core/GUIToRealTime.h"
#include "core/PlayHeadTransportView.h"
#include "sequencer/PatternRunner.h"
#include "sequencer/PlaybackSlot.h"
#include "sequencer/midiplayer/State.h"

#include <juce_audio_basics/juce_audio_basics.h>

namespace Orv::Sequencer::MidiPlayer
{
/** The file player's audio side: the clip as the audio thread sees it, and
    the runner that plays it on the block's clock. The clip loops by its
    length on the song's grid from position 0, as any pattern does, and what
    comes out are real notes for the note path, not rows.

    Built on the message thread; the ring is filled there by the state's
    listener, and everything else is the audio thread's. */
class Processor
{
public:
    /** The entries of the ring that hands clips to the audio thread. */
    static constexpr int numSlotEntries = 5;

    /** Message thread: plays nothing until attached. */
    Processor();

    /** Message thread: follows this state from now on, starting with its
        present clip. Attaching to the state it already follows does nothing. */
    void attach (State& stateToFollow);

    /** Message thread: the state followed, or null. */
    State* getState() const noexcept { return state; }

    /** Prepare time, never during a block: makes room for runs of up to
        `samplesPerBlock` samples (allocates). */
    void prepare (int samplesPerBlock) { runner.prepare (samplesPerBlock); }

    //==============================================================================
    /** Audio thread; never blocks or allocates. Takes the newest clip and
        plays the view's samples of it; the notes are in getOutput(), at
        positions within the view. */
    void run (const Audio::PlayHeadTransportView& view);

    /** Audio thread; never blocks or allocates. The player no longer feeds the
        note path, whose gate has released its notes: the runner forgets them
        too, so that a chord that still lies under the position when play
        resumes is struck afresh, not taken for one still sounding. */
    void stop (const Audio::PlayHeadTransportView& view);

    /** Audio thread: the last run's notes. */
    const juce::MidiBuffer& getOutput() const noexcept { return runner.getOutput(); }

    /** Audio thread, or a test: the runner. */
    const PatternRunner& getRunner() const noexcept { return runner; }

private:
    State* state = nullptr;
    GUIToRealTime<PlaybackSlot, numSlotEntries> slots;
    PatternRunner runner;
    Events::Listener stateListener;
};
} // namespace Orv::Sequencer::MidiPlayer

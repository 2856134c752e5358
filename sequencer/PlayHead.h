#pragma once

#include "core/Atomic.h"
#include "sequencer/NoteState.h"

#include <memory>

namespace Orv::Sequencer
{
/** Where a pattern stands, as the audio thread tells the display: a play
    state and the fraction of the pattern's span that has passed. Both words
    are atomic and no lock guards them.

    Held by shared pointers that the audio thread may drop; create() hands
    each new one to the garbage collector so that the last release happens on
    the message thread. */
class PlayHead
{
public:
    /** Any thread but the audio thread (it allocates): a new head, already
        registered with the garbage collector. */
    static std::shared_ptr<PlayHead> create();

    /** Any thread. */
    NoteState getState() const noexcept { return state.get(); }
    double getProgress() const noexcept { return progress.get(); }

    /** Audio thread; never blocks. */
    void setState (NoteState newState) noexcept { state.set (newState); }
    void setProgress (double newProgress) noexcept { progress.set (newProgress); }

    /** The atomics themselves, for an AtomicListener on the message thread. */
    const Atomic<NoteState>& getStateAtomic() const noexcept { return state; }
    const Atomic<double>& getProgressAtomic() const noexcept { return progress; }

private:
    Atomic<NoteState> state { NoteState::notPlaying };
    Atomic<double> progress { 0.0 };
};
} // namespace Orv::Sequencer

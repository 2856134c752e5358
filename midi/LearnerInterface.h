#pragma once

#include "core/UpdateTimer.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <atomic>
#include <cstdint>

namespace Orv::Midi::Learn
{
/** The learn mode: while armed, the next event the block sees is captured for
    the message thread instead of going to the handlers. The message thread
    then decides, in learn(), whether the event makes a mapping; if not, the
    learner stays armed for the next one. Make and destroy it on the message
    thread. */
class LearnerInterface
{
public:
    /** Values of `mode`. */
    enum Mode : int32_t
    {
        idle = 0,     ///< events go to the handlers
        armed = 1,    ///< the next event is captured
        captured = 2, ///< waiting for the message thread; events pass on
    };

    /** Message thread. */
    LearnerInterface();
    virtual ~LearnerInterface() = default;

    LearnerInterface (const LearnerInterface&) = delete;
    LearnerInterface& operator= (const LearnerInterface&) = delete;

    /** Message thread: turns the captured message into a mapping. False leaves
        the learner armed for another event. */
    virtual bool learn() = 0;

    /** Message thread: the next event the block sees is captured. */
    void arm() noexcept { mode.store (armed); }

    /** Audio thread; never blocks or allocates: takes the event in hand as the
        captured one. A three-byte message lives in the message's inline
        storage. The message is written before the mode says so, and the
        message thread reads it only in that mode. */
    void capture (const juce::MidiMessage& event) noexcept
    {
        message = event;
        mode.store (captured);
        counter.fetch_add (1);
        completion.trigger();
    }

    juce::MidiMessage message;
    std::atomic<int32_t> mode { idle };
    std::atomic<int32_t> counter { 0 };

private:
    void complete();

    // Wakes the message thread after a capture. It keeps a count of its own,
    // so that `counter` stays a plain atomic for whoever else watches captures.
    Orv::Events::UpdateTimer completion;
};
} // namespace Orv::Midi::Learn

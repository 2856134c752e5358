#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <atomic>

namespace Orv::Midi::Learn
{
/** The learn mode: while armed, the next event the block sees is captured for
    the message thread instead of going to the handlers. */
class LearnerInterface
{
public:
    /** Values of `mode`. */
    enum Mode : int
    {
        idle = 0,     ///< events go to the handlers
        armed = 1,    ///< the next event is captured
        captured = 2, ///< waiting for the message thread; events pass on
    };

    virtual ~LearnerInterface() = default;

    /** Message thread: turns the captured message into a mapping. False leaves
        the learner armed for another event. */
    virtual bool learn() = 0;

    /** Audio thread: takes the event in hand as the captured one. A three-byte
        message lives in the message's inline storage, so this never allocates. */
    void capture (const juce::MidiMessage& event) noexcept
    {
        message = event;
        mode.store (captured);
        counter.fetch_add (1);
    }

    juce::MidiMessage message;
    std::atomic<int32_t> mode { idle };
    std::atomic<int32_t> counter { 0 };
};
} // namespace Orv::Midi::Learn

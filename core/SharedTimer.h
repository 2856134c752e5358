#pragma once

#include "core/Broadcaster.h"

#include <juce_events/juce_events.h>

namespace Orv::Events
{
/** The one 10 ms tick of the process, on the message thread. Everything that
    polls (UpdateTimer, the atomic listeners, parameter listeners) hangs on it,
    which replaces signalling across threads. */
class SharedTimer : public HasBroadcaster, private juce::Timer
{
public:
    static constexpr int periodMs = 10;

    SharedTimer();
    ~SharedTimer() override;

    /** Message thread: the process's shared timer, started on first use. */
    static SharedTimer& get();

    /** Message thread: attaches a listener to the tick. */
    static void attach (Listener& listener) { get().getBroadcaster().add (listener); }

    /** Runs one tick now; tests use it to step the polling deterministically. */
    void tick() { broadcaster.call(); }

private:
    void timerCallback() override { tick(); }
};
} // namespace Orv::Events

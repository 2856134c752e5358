#pragma once

#include "core/Broadcaster.h"

#include <atomic>
#include <cstdint>

namespace Orv::Events
{
/** A counter that any thread may raise, polled on the SharedTimer's tick: when
    it has changed since the last tick, the callback runs once on the message
    thread, however often it was raised in between. Make and destroy it on the
    message thread. */
class UpdateTimer
{
public:
    /** Message thread. The counter starts at initialValue; with callNow the
        callback also runs once here. */
    explicit UpdateTimer (CallbackFunc callbackToUse, int32_t initialValue = 0, bool callNow = false);

    UpdateTimer (const UpdateTimer&) = delete;
    UpdateTimer& operator= (const UpdateTimer&) = delete;

    /** Any thread, including the audio thread; never blocks or allocates: asks
        for the callback on the next tick. */
    void trigger() noexcept { counter.fetch_add (1); }

    /** Any thread: the counter's current value. */
    int32_t getCounter() const noexcept { return counter.load(); }

private:
    void poll();

    static_assert (std::atomic<int32_t>::is_always_lock_free);

    std::atomic<int32_t> counter;
    int32_t lastSeen;
    CallbackFunc callback;
    Listener listener;
};
} // namespace Orv::Events

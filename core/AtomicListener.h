#pragma once

#include "core/Atomic.h"
#include "core/Broadcaster.h"
#include "core/SharedTimer.h"
#include "core/ValueListenerDetails.h"

#include <atomic>

namespace Orv::Events
{
/** Watches an atomic value that another thread (often the audio thread) writes,
    on the SharedTimer's tick: when the value differs from the last one seen,
    by T's operator==, the callback runs on the message thread. A value that
    changes and changes back within one tick is not reported. Make and destroy
    it on the message thread; the watched value must outlive it.

    A record watched here that the audio thread writes should be lock-free as
    a std::atomic (8 bytes at most on x86-64): a larger one is guarded by
    libatomic's locks and needs that library linked. */
template <typename T>
class AtomicListener : public ValueListenerDetails::Base
{
public:
    /** Message thread. With callNow the callback also runs once here. */
    AtomicListener (const std::atomic<T>& valueToWatch, CallbackFunc callbackToUse, bool callNow = false)
        : value (&valueToWatch),
          lastSeen (valueToWatch.load()),
          callback (std::move (callbackToUse)),
          listener (SharedTimer::get().getBroadcaster(), [this] { poll(); })
    {
        if (callNow)
            callback();
    }

    /** Message thread. With callNow the callback also runs once here. */
    AtomicListener (const Atomic<T>& valueToWatch, CallbackFunc callbackToUse, bool callNow = false)
        : AtomicListener (valueToWatch.getAtomic(), std::move (callbackToUse), callNow)
    {
    }

    /** Message thread: the value as of the last tick (or construction). */
    const T& getLastSeen() const noexcept { return lastSeen; }

private:
    void poll()
    {
        const T now = value->load();

        if (! (now == lastSeen))
        {
            lastSeen = now;
            callback();
        }
    }

    const std::atomic<T>* value;
    T lastSeen;
    CallbackFunc callback;
    Listener listener;
};
} // namespace Orv::Events

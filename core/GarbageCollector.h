#pragma once

#include "core/RefCountedHolder.h"
#include "core/TimerCallback.h"

#include <juce_core/juce_core.h>

#include <memory>
#include <vector>

namespace Orv::Events
{
/** Makes sure that the last release of a shared object happens on the message
    thread. An object that the audio thread may hold and let go of is given
    here when it is made; the collector keeps a reference, and once a second
    its timer deletes the objects that nobody else holds any more. */
class GarbageCollector
{
public:
    static constexpr int collectPeriodMs = 1000;

    GarbageCollector();
    ~GarbageCollector();

    GarbageCollector (const GarbageCollector&) = delete;
    GarbageCollector& operator= (const GarbageCollector&) = delete;

    /** Any thread but the audio thread: the process's collector, made on first use. */
    static GarbageCollector& get();

    /** Any thread but the audio thread (it allocates): keeps a reference to the
        object until it is the only one left. */
    template <typename T>
    void add (std::shared_ptr<T> object)
    {
        auto holder = std::make_unique<RefCountedHolder<T>> (std::move (object));
        const juce::ScopedLock sl (lock);
        holders.push_back (std::move (holder));
    }

    /** Message thread: one round now (the timer runs one each period): deletes
        the objects that only the collector still holds. */
    void collect();

    /** Any thread: the number of objects held. */
    int getNumHeld() const;

private:
    juce::CriticalSection lock;
    std::vector<std::unique_ptr<RefCountBase>> holders;
    TimerCallback timer;
};
} // namespace Orv::Events

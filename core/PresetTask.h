#pragma once

#include "core/Broadcaster.h"
#include "core/CallbackFunc.h"

#include <juce_core/juce_core.h>

namespace Orv::Audio::Plugin
{
/** The one state load of an instance that waits for the message thread.
    A host may restore from a loader thread that must not wait for the
    message thread, so the load is left here and the next shared tick runs
    it. Setting a new job replaces the waiting one: of two quick restores
    only the later is loaded.

    One per instance, not one per process, so that a project that restores
    two instances at once loads both.

    set from any thread; run on the message thread. */
class PresetTask
{
public:
    /** Message thread: ticks with the shared timer. */
    PresetTask();
    ~PresetTask();

    /** Any thread: replaces the waiting job; on the message thread the job
        runs at once. */
    void set (CallbackFunc job);

    /** Message thread: runs the waiting job, if any, and forgets it. */
    void run();

    /** Any thread: whether a job waits. */
    bool isPending() const;

private:
    juce::CriticalSection lock;
    CallbackFunc pending;
    bool hasJob = false;
    Events::Listener tickListener;
};
} // namespace Orv::Audio::Plugin

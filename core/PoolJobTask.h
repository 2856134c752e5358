#pragma once

#include "core/CallbackFunc.h"

#include <juce_core/juce_core.h>

namespace Orv::Threads
{
/** One job on the thread pool, shared by the pool's queue and the PoolJobMap
    that tracks it. Its lock is held while the job runs, which is what lets an
    owner cancel the job and know that it is no longer running. */
class PoolJobTask
{
public:
    explicit PoolJobTask (CallbackFunc jobToRun);

    PoolJobTask (const PoolJobTask&) = delete;
    PoolJobTask& operator= (const PoolJobTask&) = delete;

    /** Pool thread: runs the job, unless it was cancelled. */
    void run();

    /** Any thread but the job's own: replaces the job by a no-op. If the job is
        running, waits for it to finish. After it returns the job never runs. */
    void cancel();

private:
    juce::CriticalSection lock;
    CallbackFunc job;
};
} // namespace Orv::Threads

#pragma once

#include "core/PoolJobTask.h"

#include <juce_core/juce_core.h>

#include <map>
#include <memory>

namespace Orv::Threads
{
/** Background jobs on a thread pool, filed by the object that started them, so
    that the object's destructor can make sure none of its jobs runs on after
    it: call remove (this) there.

    Lock order: the map's lock, then a task's. A job runs under its task's lock,
    so a job must not call add() or remove() on the map that started it, nor
    wait for the thread that may be removing it (callOnMessageThreadAndBlock
    from a job of a message-thread owner deadlocks). */
class PoolJobMap
{
public:
    PoolJobMap() = default;

    /** Cancels every job still filed, waiting for running ones. */
    ~PoolJobMap();

    PoolJobMap (const PoolJobMap&) = delete;
    PoolJobMap& operator= (const PoolJobMap&) = delete;

    /** Any thread: runs the job on the pool, filed under its owner. An owner may
        have several jobs at once. */
    void add (const void* owner, const CallbackFunc& job, juce::ThreadPool& pool);

    /** Any thread but a job's own, usually the owner's destructor: cancels the
        owner's jobs, waiting for one that is running. After it returns no job of
        this owner runs. */
    void remove (const void* owner);

    /** Any thread: the number of the owner's jobs that are filed and not yet
        finished or cancelled. */
    int getNumJobs (const void* owner) const;

private:
    /** Drops the entries of jobs that the pool has finished with. */
    void forgetFinishedJobs();

    juce::CriticalSection lock;
    std::multimap<const void*, std::shared_ptr<PoolJobTask>> tasks;
};
} // namespace Orv::Threads

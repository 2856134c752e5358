#include "core/PoolJobMap.h"

namespace Orv::Threads
{
PoolJobMap::~PoolJobMap()
{
    const juce::ScopedLock sl (lock);

    for (auto& entry : tasks)
        entry.second->cancel();

    tasks.clear();
}

void PoolJobMap::add (const void* owner, const CallbackFunc& job, juce::ThreadPool& pool)
{
    const juce::ScopedLock sl (lock);
    forgetFinishedJobs();

    auto task = std::make_shared<PoolJobTask> (job);
    tasks.emplace (owner, task);

    // The pool's job keeps the task alive on its own, so that neither the map
    // nor the owner has to outlive a queued job.
    pool.addJob ([task] { task->run(); });
}

void PoolJobMap::remove (const void* owner)
{
    const juce::ScopedLock sl (lock);

    const auto range = tasks.equal_range (owner);
    for (auto it = range.first; it != range.second; ++it)
        it->second->cancel();

    tasks.erase (range.first, range.second);
}

int PoolJobMap::getNumJobs (const void* owner) const
{
    const juce::ScopedLock sl (lock);
    int count = 0;

    const auto range = tasks.equal_range (owner);
    for (auto it = range.first; it != range.second; ++it)
        if (it->second.use_count() > 1)
            ++count;

    return count;
}

void PoolJobMap::forgetFinishedJobs()
{
    // Only the map copies a task's pointer, under this lock, so once the pool
    // has let its copy go the count stays at one.
    for (auto it = tasks.begin(); it != tasks.end();)
        it = it->second.use_count() == 1 ? tasks.erase (it) : std::next (it);
}
} // namespace Orv::Threads

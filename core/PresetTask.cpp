#include "core/PresetTask.h"

#include "core/SharedTimer.h"

namespace Orv::Audio::Plugin
{
PresetTask::PresetTask() : tickListener (Events::SharedTimer::get().getBroadcaster(), [this] { run(); }) {}

PresetTask::~PresetTask() = default;

void PresetTask::set (CallbackFunc job)
{
    {
        const juce::ScopedLock sl (lock);
        pending = std::move (job);
        hasJob = ! pending.isEmpty();
    }

    if (auto* mm = juce::MessageManager::getInstanceWithoutCreating(); mm != nullptr && mm->isThisTheMessageThread())
        run();
}

void PresetTask::run()
{
    CallbackFunc job;
    {
        const juce::ScopedLock sl (lock);
        if (! hasJob)
            return;
        job = std::move (pending);
        pending = {};
        hasJob = false;
    }

    // Outside the lock: a host thread that sets a newer job meanwhile is not
    // held up by a load in progress, and its job runs on the next tick.
    job();
}

bool PresetTask::isPending() const
{
    const juce::ScopedLock sl (lock);
    return hasJob;
}
} // namespace Orv::Audio::Plugin

#include "core/PoolJobTask.h"

namespace Orv::Threads
{
PoolJobTask::PoolJobTask (CallbackFunc jobToRun) : job (std::move (jobToRun)) {}

void PoolJobTask::run()
{
    const juce::ScopedLock sl (lock);
    job();
}

void PoolJobTask::cancel()
{
    const juce::ScopedLock sl (lock);
    job = CallbackFunc();
}
} // namespace Orv::Threads

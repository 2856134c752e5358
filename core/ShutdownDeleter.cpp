#include "core/ShutdownDeleter.h"

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <vector>

namespace Orv
{
namespace
{
    struct DeleterList
    {
        std::mutex mutex;
        std::vector<std::shared_ptr<DeleterObjectBase>> deleters;
    };

    // Deliberately leaked: it must outlive every static that might still ask for
    // a singleton during process teardown.
    DeleterList& getList()
    {
        static auto* list = new DeleterList();
        return *list;
    }

    std::atomic<int> numInstances { 0 };

    void releaseAtExit() { ShutdownDeleter::releaseAll(); }
} // namespace

void ShutdownDeleter::add (std::shared_ptr<DeleterObjectBase> deleter)
{
    auto& list = getList();
    const std::lock_guard<std::mutex> lock (list.mutex);
    list.deleters.push_back (std::move (deleter));
}

void ShutdownDeleter::releaseAll()
{
    auto& list = getList();

    // One at a time, newest first, without holding the mutex while a singleton
    // dies: its destructor may itself ask for an older singleton.
    for (;;)
    {
        std::shared_ptr<DeleterObjectBase> last;
        {
            const std::lock_guard<std::mutex> lock (list.mutex);
            if (list.deleters.empty())
                return;
            last = std::move (list.deleters.back());
            list.deleters.pop_back();
        }
        last.reset();
    }
}

void ShutdownDeleter::registerExitFunction()
{
    static const bool registered = [] {
        std::atexit (releaseAtExit);
        return true;
    }();
    (void) registered;
}

ShutdownDeleter::InstanceCounter::InstanceCounter() { ++numInstances; }

ShutdownDeleter::InstanceCounter::~InstanceCounter()
{
    if (--numInstances == 0)
        releaseAll();
}

int ShutdownDeleter::InstanceCounter::getNumInstances() { return numInstances.load(); }
} // namespace Orv

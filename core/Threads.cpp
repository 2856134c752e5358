#include "core/Threads.h"

#include "core/Singleton.h"

#include <juce_events/juce_events.h>

#include <atomic>
#include <memory>
#include <thread>

namespace Orv::Threads
{
bool isMessageThread()
{
    auto* mm = juce::MessageManager::getInstanceWithoutCreating();
    return mm != nullptr && mm->isThisTheMessageThread();
}

void callOnMessageThreadAndBlock (const CallbackFunc& function)
{
    if (isMessageThread() || juce::MessageManager::getInstanceWithoutCreating() == nullptr)
    {
        function();
        return;
    }

    // The flag is shared with the message rather than living on this stack, and
    // the message clears it also when it is destroyed unrun (a message manager
    // that shuts down drops its queue), so that this thread never waits for a
    // message that will not come.
    struct Completion
    {
        std::atomic<bool> pending { true };
    };

    struct ClearOnDestruction
    {
        std::shared_ptr<Completion> completion;
        ~ClearOnDestruction() { completion->pending.store (false); }
    };

    auto completion = std::make_shared<Completion>();
    auto clearer = std::make_shared<ClearOnDestruction>();
    clearer->completion = completion;

    juce::MessageManager::callAsync ([function, clearer = std::move (clearer)] {
        function();
        clearer->completion->pending.store (false);
    });

    while (completion->pending.load())
        std::this_thread::yield();
}

CallbackFunc getAsyncCallback (const CallbackFunc& function)
{
    return CallbackFunc ([function] {
        if (isMessageThread())
            function();
        else
            juce::MessageManager::callAsync (function);
    });
}

juce::ThreadPool& getThreadPool()
{
    // JUCE 7 names every thread of a pool "Pool".
    return *Singleton<juce::ThreadPool>::get();
}
} // namespace Orv::Threads

#pragma once

#include <juce_events/juce_events.h>

namespace Orv::Testing
{
/** Message thread: runs the message loop in short slices until done() holds or
    the limit has passed. Returns done()'s last answer. */
template <typename Predicate>
bool pumpMessagesUntil (Predicate done, int limitMs = 5000)
{
    constexpr int sliceMs = 5;

    for (int waited = 0; waited < limitMs; waited += sliceMs)
    {
        if (done())
            return true;
        juce::MessageManager::getInstance()->runDispatchLoopUntil (sliceMs);
    }
    return done();
}

/** Message thread: runs the message loop for the given time. */
inline void pumpMessagesFor (int ms)
{
    juce::MessageManager::getInstance()->runDispatchLoopUntil (ms);
}
} // namespace Orv::Testing

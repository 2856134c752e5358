#pragma once

#include "core/CallbackFunc.h"

#include <juce_core/juce_core.h>

namespace Orv::Threads
{
/** Any thread: true if the framework's message manager exists and the caller
    is its thread. Without a message manager there is no message thread. */
bool isMessageThread();

/** Any thread but the audio thread: runs the function on the message thread and
    returns when it has run. On the message thread it runs at once. Elsewhere it
    posts the function and spins until it has run, so the caller must not hold
    anything the message thread may wait for. Without a message manager there is
    no other thread to run it on, and it runs at once on the caller's. */
void callOnMessageThreadAndBlock (const CallbackFunc& function);

/** Any thread: a callback that, when called, runs the function on the message
    thread: at once when called there, otherwise posted to run later. Calling
    it allocates, so it is not for the audio thread. */
CallbackFunc getAsyncCallback (const CallbackFunc& function);

/** Any thread: the process's pool for background jobs, with one thread named
    "Pool" per core; made on first use, ended by the ShutdownDeleter. */
juce::ThreadPool& getThreadPool();
} // namespace Orv::Threads

#pragma once

#include "core/CallbackFunc.h"

#include <juce_core/juce_core.h>

#include <vector>

namespace Orv::Events
{
class Broadcaster;

//==============================================================================
/** One subscription to a Broadcaster. Its destructor detaches it, so a listener
    that dies during a broadcast is never called after the destructor returns.
    Message thread only. */
class Listener
{
public:
    explicit Listener (CallbackFunc callbackToUse = {});
    Listener (Broadcaster& broadcaster, CallbackFunc callbackToUse);
    ~Listener();

    Listener (const Listener&) = delete;
    Listener& operator= (const Listener&) = delete;

    void setCallback (CallbackFunc newCallback) { callback = std::move (newCallback); }

    /** Detaches from the broadcaster, if attached. Safe to call from inside a
        broadcast of that same broadcaster. */
    void detach();

    bool isAttached() const noexcept { return owner != nullptr; }

private:
    friend class Broadcaster;

    CallbackFunc callback;
    Broadcaster* owner = nullptr;
};

//==============================================================================
/** Calls each attached listener in turn. A listener attached during a
    broadcast is attached at once but first called on the next broadcast.
    The lock is held while the listeners run: a callback may attach to another
    broadcaster, but must not wait on another thread. */
class Broadcaster
{
public:
    Broadcaster() = default;
    ~Broadcaster();

    Broadcaster (const Broadcaster&) = delete;
    Broadcaster& operator= (const Broadcaster&) = delete;

    /** Attaches a listener; it detaches itself when it dies. */
    void add (Listener& listener);

    /** Calls every attached listener once. */
    void call();

    int getNumListeners() const;

private:
    friend class Listener;
    void remove (Listener& listener);
    void moveWaitingListeners();
    static void compact (std::vector<Listener*>& list);

    juce::CriticalSection lock;
    std::vector<Listener*> listeners;
    std::vector<Listener*> waiting;
};

//==============================================================================
/** Base for classes that own one broadcaster. */
class HasBroadcaster
{
public:
    virtual ~HasBroadcaster() = default;

    Broadcaster& getBroadcaster() noexcept { return broadcaster; }

protected:
    Broadcaster broadcaster;
};
} // namespace Orv::Events

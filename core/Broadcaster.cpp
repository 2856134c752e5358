#include "core/Broadcaster.h"

#include <algorithm>

namespace Orv::Events
{
//==============================================================================
Listener::Listener (CallbackFunc callbackToUse) : callback (std::move (callbackToUse)) {}

Listener::Listener (Broadcaster& broadcaster, CallbackFunc callbackToUse)
    : callback (std::move (callbackToUse))
{
    broadcaster.add (*this);
}

Listener::~Listener() { detach(); }

void Listener::detach()
{
    if (auto* b = owner)
        b->remove (*this);
}

//==============================================================================
Broadcaster::~Broadcaster()
{
    const juce::ScopedLock sl (lock);

    for (auto* list : { &listeners, &waiting })
        for (auto* l : *list)
            if (l != nullptr)
                l->owner = nullptr;
}

void Broadcaster::add (Listener& listener)
{
    listener.detach();

    const juce::ScopedLock sl (lock);
    waiting.push_back (&listener);
    listener.owner = this;
}

void Broadcaster::remove (Listener& listener)
{
    const juce::ScopedLock sl (lock);

    // Entries are nulled rather than erased: a broadcast in progress on this
    // thread may be iterating over the list.
    for (auto* list : { &listeners, &waiting })
        std::replace (list->begin(), list->end(), &listener, static_cast<Listener*> (nullptr));

    listener.owner = nullptr;
}

void Broadcaster::moveWaitingListeners()
{
    compact (waiting);
    listeners.insert (listeners.end(), waiting.begin(), waiting.end());
    waiting.clear();
}

void Broadcaster::compact (std::vector<Listener*>& list)
{
    list.erase (std::remove (list.begin(), list.end(), nullptr), list.end());
}

void Broadcaster::call()
{
    {
        const juce::ScopedLock sl (lock);
        if (listeners.empty() && waiting.empty())
            return;
    }

    const juce::ScopedLock sl (lock);
    moveWaitingListeners();

    // Index-based: listeners may be added or detached by the callbacks.
    const auto count = listeners.size();
    for (size_t i = 0; i < count && i < listeners.size(); ++i)
        if (auto* l = listeners[i])
            l->callback();

    compact (listeners);
    moveWaitingListeners();
}

int Broadcaster::getNumListeners() const
{
    const juce::ScopedLock sl (lock);
    auto live = [] (const std::vector<Listener*>& v) {
        return (int) std::count_if (v.begin(), v.end(), [] (auto* l) { return l != nullptr; });
    };
    return live (listeners) + live (waiting);
}
} // namespace Orv::Events

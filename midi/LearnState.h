#pragma once

#include "core/Broadcaster.h"
#include "midi/LearnHandler.h"
#include "midi/LearnerInterface.h"

#include <memory>
#include <vector>

namespace Orv::Midi::Learn
{
/** The learner in force and the handlers, in the order in which they are
    offered each event. A copy reaches the audio thread through a
    GUIToRealTime ring whenever the broadcaster is called; the copy shares the
    handlers, and the garbage collector makes sure that the last of them is
    released on the message thread. */
class State : public Orv::Events::HasBroadcaster
{
public:
    State() = default;
    /** Copies the learner and the handlers; the broadcaster stays behind. */
    State (const State& other) : learner (other.learner), handlers (other.handlers) {}
    State& operator= (const State& other)
    {
        learner = other.learner;
        handlers = other.handlers;
        return *this;
    }

    /** Message thread: appends a handler, gives it to the garbage collector
        and tells the listeners. The list only grows. */
    void addHandler (std::shared_ptr<Handler> handler);

    LearnerInterface* learner = nullptr;
    std::vector<std::shared_ptr<Handler>> handlers;
};
} // namespace Orv::Midi::Learn

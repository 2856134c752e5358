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
    GUIToRealTime ring whenever the broadcaster is called. */
class State : public Orv::Events::HasBroadcaster
{
public:
    State() = default;
    State (const State& other) : learner (other.learner), handlers (other.handlers) {}
    State& operator= (const State& other)
    {
        learner = other.learner;
        handlers = other.handlers;
        return *this;
    }

    LearnerInterface* learner = nullptr;
    std::vector<std::shared_ptr<Handler>> handlers;
};
} // namespace Orv::Midi::Learn

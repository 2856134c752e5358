#include "midi/LearnState.h"

#include "core/GarbageCollector.h"

namespace Orv::Midi::Learn
{
void State::addHandler (std::shared_ptr<Handler> handler)
{
    // The audio thread's copy may hold the last reference to it.
    Orv::Events::GarbageCollector::get().add (handler);
    handlers.push_back (std::move (handler));
    broadcaster.call();
}
} // namespace Orv::Midi::Learn

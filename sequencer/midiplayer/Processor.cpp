#include "sequencer/midiplayer/Processor.h"

namespace Orv::Sequencer::MidiPlayer
{
Processor::Processor() = default;

void Processor::attach (State& stateToFollow)
{
    if (state == &stateToFollow)
        return;

    state = &stateToFollow;
    stateListener.detach();
    stateListener.setCallback ([this] { slots.push (state->getSlot()); });
    state->getBroadcaster().add (stateListener);
    slots.push (state->getSlot());
}

void Processor::run (const Audio::PlayHeadTransportView& view)
{
    const auto& slot = slots.acquire();
    runner.run (view, { &slot.events, slot.playing, slot.looping, slot.length });
}

void Processor::stop (const Audio::PlayHeadTransportView& view)
{
    // An empty slot ends, in the runner's own sweep, every note it holds; the
    // note-offs are not wanted, as the gate has sent its own.
    runner.run (view, {});
}
} // namespace Orv::Sequencer::MidiPlayer

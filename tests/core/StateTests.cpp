#include "core/SharedTimer.h"
#include "core/State.h"

#include <gtest/gtest.h>

using Orv::Audio::Plugins::Halvane::State;

TEST (State, AMoveOfSwingOrItsReferenceRebuildsTheSlotsOnTheNextTick)
{
    State state;
    int rebuilds = 0;
    Orv::Events::Listener listener (state.sequencer.slotsBroadcaster, [&] { ++rebuilds; });
    auto tick = [] { Orv::Events::SharedTimer::get().tick(); };
    juce::AudioProcessorParameter& swing = *state.transport.swing;
    juce::AudioProcessorParameter& swingRef = *state.transport.swingRef;

    tick();
    EXPECT_EQ (rebuilds, 0) << "nothing moved";

    swing.setValue (0.75f);
    EXPECT_EQ (rebuilds, 0) << "only on the tick";
    tick();
    EXPECT_EQ (rebuilds, 1);

    swingRef.setValue (1.0f);
    tick();
    tick();
    EXPECT_EQ (rebuilds, 2);
}

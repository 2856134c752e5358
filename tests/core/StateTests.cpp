#include "core/SharedTimer.h"
#include "core/State.h"
#include "persistence/JsonLoader.h"
#include "persistence/JsonSaver.h"

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

TEST (State, APatternPresetsParamsHoldTheArpsSettingsAndNeverTheSound)
{
    State state;
    *state.synth.unison = 2;

    auto saved = Orv::Json::toJson (*state.getParams(), Orv::ReflectContext::forPreset());
    EXPECT_EQ (saved, nlohmann::json::parse (R"({"Quantize": "1/4", "Retrigger": "Off", "Transpose": "0",
        "Octave": "0", "Key": "C", "ArpActive": "On", "Swing": "0%", "SwingRef": "1/8"})"));

    // Old pattern files still carry a sound; it is left alone.
    auto old = nlohmann::json::parse (R"({"Quantize": "2/4", "Synth": {"Unison": "1"}})");
    Orv::Json::fromJson (old, *state.getParams(), Orv::ReflectContext::forPreset());
    EXPECT_EQ (state.arp.getQuantize(), 1);
    EXPECT_EQ (state.synth.unison->get(), 2);
}

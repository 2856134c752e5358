#include "core/Processor.h"
#include "midi/Keyswitches.h"
#include "midi/ParamMidiCCHandler.h"
#include "MidiTestHelpers.h"
#include "support/FakeHostPlayHead.h"

#include <gtest/gtest.h>

using namespace Orv::Testing;
using Orv::Audio::Plugins::Halvane::MidiProcessor;
using Orv::Audio::Plugins::Halvane::Processor;

namespace
{
constexpr int blockSize = 256;

/** A prepared processor that runs one block at a time. The arp is off, so
    that played notes pass the chain and the output shows what reached the
    note path; the host stands still and the file player is on, so that the
    clock stops and a slot change is done at once. */
struct LearnFixture
{
    LearnFixture()
    {
        auto& state = processor.getState();
        *state.arp.arpActive = Orv::Audio::Plugins::Halvane::ArpSettings::arpOff;
        state.filePlayerActive.store (true);
        clock.stoppedAt (0, 0.0);
        processor.setPlayHead (&clock);
        processor.prepareToPlay (48000.0, blockSize);
        audio.setSize (2, blockSize);
    }

    Lines run (const std::vector<Timed>& events)
    {
        auto midi = bufferOf (events);
        processor.processBlock (audio, midi);
        return describe (midi);
    }

    FakeHostPlayHead clock;
    Processor processor;
    juce::AudioBuffer<float> audio;
};
} // namespace

TEST (ProcessorKeyswitch, APressSelectsItsSlotOnceAndNeitherOnNorOffReachesTheOutput)
{
    namespace Keyswitches = Orv::Audio::Plugins::Halvane::Keyswitches;
    LearnFixture f;
    auto& live = *f.processor.getState().sequencer.liveSlots.live;

    for (int slot = 0; slot < Keyswitches::numSlots; ++slot)
    {
        const auto note = Keyswitches::notes[(size_t) slot];
        live.active.store (slot == 0 ? 1 : 0);
        const auto played = 60 + slot;
        EXPECT_EQ (f.run ({ { on (note), 10 }, { on (played), 20 }, { off (note), 30 } }),
                   (Lines { "on " + std::to_string (played) + " 100 @20" }))
            << "note " << note;
        EXPECT_EQ (live.active.load(), slot) << "note " << note;
    }

    // Only a press asks: a release, or a note-on without velocity, selects nothing.
    live.active.store (3);
    EXPECT_EQ (f.run ({ { on (24, 0), 5 }, { off (24), 6 } }), Lines {});
    EXPECT_EQ (live.active.load(), 3);
    EXPECT_EQ (f.processor.getMidiProcessor().getPendingSlot(), MidiProcessor::noSlot);
}

TEST (ProcessorLearn, TwoHandlersOnOneControllerBothMoveTheirParameters)
{
    // Of the controllers only the sustain pedal reaches the handlers: the
    // others have gone past them to the output by then.
    constexpr int pedal = 64;
    LearnFixture f;
    CountingParameter first, second;
    auto& learn = f.processor.getLearnState();
    learn.addHandler (std::make_shared<Orv::Audio::Plugin::ParamMidiCCHandler> (first, pedal));
    learn.addHandler (std::make_shared<Orv::Audio::Plugin::ParamMidiCCHandler> (second, pedal));

    EXPECT_EQ (f.run ({ { on (60), 1 }, { cc (pedal, 127), 5 } }), (Lines { "on 60 100 @1" }));
    EXPECT_NEAR (first.value, 1.0f, 1e-6f);
    EXPECT_NEAR (second.value, 1.0f, 1e-6f);
}

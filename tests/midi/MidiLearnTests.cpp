#include "core/GarbageCollector.h"
#include "core/SharedTimer.h"
#include "midi/DefaultMidiLearner.h"
#include "midi/ParamMidiCCHandler.h"
#include "midi/SlotHandler.h"
#include "MidiTestHelpers.h"

#include <gtest/gtest.h>

using namespace Orv::Testing;
using Orv::Midi::Learn::LearnerInterface;

namespace
{
void tick() { Orv::Events::SharedTimer::get().tick(); }
int numCollected() { return Orv::Events::GarbageCollector::get().getNumHeld(); }

/** A learn state with a count of its broadcasts. */
struct CountedState
{
    Orv::Midi::Learn::State state;
    int broadcasts = 0;
    Orv::Events::Listener listener { state.getBroadcaster(), [this] { ++broadcasts; } };
};

juce::MidiMessage aftertouch (int note) { return juce::MidiMessage::aftertouchChange (1, note, 50); }
} // namespace

//==============================================================================
TEST (MidiLearn, ACapturedControllerIsLearnedAndAnythingElseLeavesTheLearnerArmed)
{
    const struct
    {
        const char* what;
        juce::MidiMessage event;
        int32_t modeAfter;
        size_t handlersAfter;
    } cases[] = {
        { "a controller", cc (64, 90, 2), LearnerInterface::idle, 1 },
        { "a note-on", on (60), LearnerInterface::armed, 0 },
        { "a note-off", off (60), LearnerInterface::armed, 0 },
        { "pitch bend", juce::MidiMessage::pitchWheel (1, 100), LearnerInterface::armed, 0 },
    };

    for (const auto& c : cases)
    {
        CountedState s;
        CountingParameter parameter;
        Orv::Audio::Plugin::DefaultMidiLearner learner (s.state);
        learner.startLearning (parameter);
        EXPECT_EQ (s.state.learner, &learner) << c.what;
        EXPECT_EQ (s.broadcasts, 1) << c.what << ": the learner in force reaches the block";

        tick();
        EXPECT_EQ (learner.mode.load(), LearnerInterface::armed) << c.what << ": nothing captured yet";

        const auto collectedBefore = numCollected();
        learner.capture (c.event);
        EXPECT_EQ (learner.mode.load(), LearnerInterface::captured) << c.what;
        EXPECT_EQ (learner.counter.load(), 1) << c.what;
        tick();

        EXPECT_EQ (learner.mode.load(), c.modeAfter) << c.what;
        ASSERT_EQ (s.state.handlers.size(), c.handlersAfter) << c.what;
        EXPECT_EQ (s.broadcasts, 1 + (int) c.handlersAfter) << c.what;
        EXPECT_EQ (numCollected(), collectedBefore + (int) c.handlersAfter) << c.what;

        if (c.handlersAfter > 0)
        {
            auto& handler = *s.state.handlers[0];
            EXPECT_TRUE (handler.matches (cc (64, 0))) << c.what << ": learned on any channel";
            handler.handle (cc (64, 127));
            EXPECT_NEAR (parameter.value, 1.0f, 1e-6f) << c.what;
        }
    }
}

TEST (MidiLearn, ALearnerLeavingTheStateWithdrawsFromIt)
{
    CountedState s;
    CountingParameter parameter;
    {
        Orv::Audio::Plugin::DefaultMidiLearner learner (s.state);
        learner.startLearning (parameter);
    }
    EXPECT_EQ (s.state.learner, nullptr);
    EXPECT_EQ (s.broadcasts, 2);
}

TEST (MidiLearn, ControllerHandlerClaimsItsControllerOnAnyChannelAndScalesTheValue)
{
    const struct
    {
        juce::MidiMessage event;
        bool claims;
        float value;
    } cases[] = {
        { cc (7, 127), true, 1.0f },
        { cc (7, 0), true, 0.0f },
        { cc (7, 64), true, 64.0f / 127.0f },
        { cc (7, 100, 5), true, 100.0f / 127.0f },
        { cc (8, 127), false, 0.0f },
        { on (7), false, 0.0f },
        { aftertouch (7), false, 0.0f },
    };

    for (const auto& c : cases)
    {
        CountingParameter parameter;
        Orv::Audio::Plugin::ParamMidiCCHandler handler (parameter, 7);
        const auto description = c.event.getDescription();
        ASSERT_EQ (handler.matches (c.event), c.claims) << description;
        if (! c.claims)
            continue;

        handler.handle (c.event);
        EXPECT_NEAR (parameter.value, c.value, 1e-6f) << description;
        EXPECT_EQ (parameter.notified, 1) << description;
    }
}

//==============================================================================
TEST (Keyswitch, ClaimsOnAndOffOfItsNoteAndAsksForItsSlotOnAPressOnly)
{
    CountedState s;
    std::vector<int> asked;
    const auto collectedBefore = numCollected();
    Orv::Audio::Plugins::Halvane::createHandle (s.state, 24, 5, [&] (int slot) { asked.push_back (slot); });

    ASSERT_EQ (s.state.handlers.size(), 1u);
    EXPECT_EQ (s.broadcasts, 1);
    EXPECT_EQ (numCollected(), collectedBefore + 1);

    const struct
    {
        juce::MidiMessage event;
        bool claims;
        std::vector<int> askedAfter;
    } cases[] = {
        { on (24), true, { 5 } },
        { off (24, 64, 3), true, {} },
        { on (24, 0), true, {} },
        { on (25), false, {} },
        { cc (24, 127), false, {} },
        { aftertouch (24), false, {} },
    };

    auto& handler = *s.state.handlers[0];
    for (const auto& c : cases)
    {
        asked.clear();
        const auto description = c.event.getDescription();
        ASSERT_EQ (handler.matches (c.event), c.claims) << description;
        if (c.claims)
            handler.handle (c.event);
        EXPECT_EQ (asked, c.askedAfter) << description;
    }
}

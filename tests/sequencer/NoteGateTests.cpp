#include "sequencer/NoteGate.h"

#include "sequencer/NoteTestHelpers.h"

#include <gtest/gtest.h>

namespace
{
using Orv::Sequencer::NoteGate;
using Orv::Testing::eventsOf;
using Words = std::vector<std::string>;
namespace NoteMessage = Orv::Midi::NoteMessage;

/** Notes 60 on channel 0 and 64 on channel 1 left on; 62 started and ended. */
juce::MidiBuffer someNotes()
{
    juce::MidiBuffer buffer;
    NoteMessage::addNoteOn (buffer, 0, 60, 100, 0);
    NoteMessage::addNoteOn (buffer, 1, 64, 100, 1);
    NoteMessage::addNoteOn (buffer, 0, 62, 100, 2);
    NoteMessage::addNoteOn (buffer, 0, 62, 0, 3);
    return buffer;
}

const Words releaseAtZero { "-0:60@0", "-1:64@0" };

TEST (NoteGate, AllNotesOffAndAllSoundOffBecomeNoteOffsForTheNotesThatAreOn)
{
    for (const int controller : { 123, 120 })
    {
        NoteGate gate;
        auto buffer = someNotes();
        gate.process (buffer, true, true);
        EXPECT_EQ (buffer.getNumEvents(), 4) << "notes pass";

        buffer.clear();
        NoteMessage::addController (buffer, 0, 1, 7, 9);
        NoteMessage::addController (buffer, 3, controller, 0, 10);
        gate.process (buffer, true, true);
        EXPECT_EQ (eventsOf (buffer), Words ({ "cc1@9", "-0:60@10", "-1:64@10" })) << controller;

        NoteMessage::addController (buffer, 0, controller, 0, 11);
        gate.process (buffer, true, true);
        EXPECT_EQ (eventsOf (buffer), Words ({ "cc1@9", "-0:60@10", "-1:64@10" })) << "nothing left to end";
    }
}

TEST (NoteGate, SwitchingReleasesTrackedNotesUnlessAQuietActivationForgetsThem)
{
    const struct
    {
        bool before;
        bool after;
        bool quiet;
        Words released;
        Words releasedLater;
    } cases[] = {
        { true, false, false, releaseAtZero, {} },
        { true, false, true, releaseAtZero, {} },
        { false, true, false, releaseAtZero, {} },
        { false, true, true, {}, {} },
        { true, true, false, {}, { "-0:60@5", "-1:64@5" } },
    };

    for (const auto& c : cases)
    {
        NoteGate gate;
        if (c.before)
        {
            juce::MidiBuffer none;
            gate.process (none, true, true);
        }

        // An inactive gate still tracks what passes through it.
        auto buffer = someNotes();
        gate.process (buffer, c.before, true);

        buffer.clear();
        gate.process (buffer, c.after, c.quiet);
        EXPECT_EQ (eventsOf (buffer), c.released) << c.before << c.after << c.quiet;
        EXPECT_EQ (gate.isActive(), c.after);

        buffer.clear();
        NoteMessage::addController (buffer, 0, NoteMessage::allNotesOffController, 0, 5);
        gate.process (buffer, c.after, c.quiet);
        EXPECT_EQ (eventsOf (buffer), c.releasedLater) << "what is left after the switch";
    }
}

TEST (NoteGate, ANoteThatStartsWithTheSwitchIsNotReleasedByIt)
{
    NoteGate gate;
    auto buffer = someNotes();
    gate.process (buffer, true, true);

    buffer.clear();
    NoteMessage::addNoteOn (buffer, 0, 72, 90, 0);
    gate.process (buffer, false, false);
    EXPECT_EQ (eventsOf (buffer), Words ({ "-0:60@0", "-1:64@0", "+0:72@0" }));
    EXPECT_TRUE (gate.isOn (0, 72));
}
} // namespace

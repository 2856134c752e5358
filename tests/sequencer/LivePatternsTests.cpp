#include "sequencer/LivePatterns.h"

#include "SequencerTestHelpers.h"
#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

using namespace Orv::Audio::Plugins::Halvane;
using namespace Orv::Sequencer;
using namespace Orv::Testing;
using Orv::ReflectContext;
using nlohmann::json;

namespace
{
constexpr auto instance = ReflectContext::forHostState();
constexpr auto preset = ReflectContext::forPreset();

json saveIn (LivePatterns& live, ReflectContext context) { return Orv::Json::toJson (live, context); }

void loadIn (LivePatterns& live, json file, ReflectContext context) { Orv::Json::fromJson (file, live, context); }

/** The notes that a drain hands the audio thread, in order. */
std::vector<int> drainedNotes (LivePatterns& live)
{
    juce::MidiBuffer midi;
    live.drainQueue (midi);

    std::vector<int> notes;
    for (const auto event : midi)
    {
        EXPECT_EQ (event.samplePosition, 0);
        EXPECT_EQ (event.data[0], 0x90);
        EXPECT_EQ (event.data[2], 0x40);
        notes.push_back (event.data[1]);
    }
    return notes;
}

void setHostText (juce::AudioProcessorParameter& parameter, const juce::String& text)
{
    parameter.setValue (parameter.getValueForText (text));
}

/** A pattern file with the given rows, each a step of 1/8 of the pattern. */
json patternWithRows (std::vector<int> rows)
{
    auto file = json::parse (R"({"Multiply": false, "Time": {"Bars": [{"num": 4, "denum": 4}]},
                                 "Pattern": {"name": "", "grid": 8, "length": 1.0, "Steps": []}})");
    for (size_t i = 0; i < rows.size(); ++i)
        file["Pattern"]["Steps"].push_back ({ { "enabled", true },
                                              { "Time", { { "start", 0.125 * (double) i }, { "length", 0.125 } } },
                                              { "Event", { { "noteNum", rows[i] }, { "velocity", 0.5 }, { "channel", 1 } } } });
    return file;
}
} // namespace

TEST (LivePatterns, LengthComesFromTimeAndMultiply)
{
    struct Case { bool multiply; int num; int denum; int grid; double length; };
    const Case cases[] = {
        { true, 1, 16, 16, 4.0 },
        { false, 1, 16, 16, 0.25 },
        { true, 1, 16, 8, 2.0 }, // the grid changes the pattern's length, not a cell's
        { false, 4, 4, 8, 4.0 },
        { true, 3, 8, 4, 6.0 },
    };

    LivePatterns live;
    for (const auto& c : cases)
    {
        auto& pattern = *live.patterns[3];
        pattern.multiply = c.multiply;
        pattern.time = barsOf ({ { c.num, c.denum } });
        pattern.sequence.grid = c.grid;
        pattern.sequence.duration.mode = Modifiers::Duration::barsMode;
        live.rebuild();

        EXPECT_EQ (pattern.sequence.duration.duration, c.length) << c.multiply << " " << c.grid;
        EXPECT_EQ (pattern.sequence.duration.mode, Modifiers::Duration::explicitMode);
        EXPECT_EQ (live.liveSlots.slots[3].length, c.length);
    }
}

TEST (LivePatterns, RebuildSwingsEventsAndTellsSlotsThenState)
{
    LivePatterns live;
    std::vector<std::string> log;
    BroadcastLog slots (live.slotsBroadcaster, "slots", log);
    BroadcastLog state (live.stateBroadcaster, "state", log);

    live.patterns[0]->sequence.steps = { makeStep (0.125, 0.125), makeStep (0.5, 0.0625) };
    live.patterns[0]->sequence.steps[1].enabled = false;
    setHostText (*live.transport.swing, "100%");   // the middle of each period lands at 3/4
    setHostText (*live.transport.swingRef, "1/4"); // one quarter note per period
    live.rebuild();

    const auto& slot = live.liveSlots.slots[0];
    EXPECT_EQ (log, (std::vector<std::string> { "slots", "state" }));
    EXPECT_EQ (live.liveSlots.slots.size(), 8u);
    ASSERT_EQ (slot.events.notes.size(), 1u);
    EXPECT_NEAR (slot.events.notes[0].time.start, 0.75, 1e-12);
    EXPECT_NEAR (slot.events.notes[0].time.length, 0.25, 1e-12);
    ASSERT_EQ (slot.events.heads.size(), 1u);
    EXPECT_EQ (slot.events.heads[0].time, (Orv::Ranges::Span<double> { 0.0, 4.0 }));
    EXPECT_EQ (slot.events.length, 4.0) << "the pattern's own length is not swung";
    EXPECT_EQ (slot.events.heads[0].event, live.patterns[0]->sequence.playHead.get());
}

TEST (LivePatterns, SlotThatIsNotPlayingIsEmpty)
{
    LivePatterns live;
    live.patterns[0]->sequence.steps = { makeStep (0.0, 0.5) };
    live.rebuild();

    auto& slot = live.liveSlots.slots[0];
    ASSERT_EQ (slot.events.notes.size(), 1u);
    slot.playing = false;
    slot.update (live.transport.swingPair());
    EXPECT_TRUE (slot.events.notes.empty());
    EXPECT_TRUE (slot.events.heads.empty());
}

TEST (LivePatterns, LoadKeepsOnlyRowsFiftyEightToSixtyNine)
{
    Pattern pattern;
    int told = 0;
    Orv::Events::Listener listener (pattern.sequence.getBroadcaster(), [&] { ++told; });

    load (patternWithRows ({ 70, 58, 36, 64, 69, 57 }), pattern);
    std::vector<int> rows;
    for (const auto& step : pattern.sequence.steps)
        rows.push_back (step.event.noteNum);
    EXPECT_EQ (rows, (std::vector<int> { 58, 64, 69 }));
    EXPECT_EQ (told, 2) << "once for the read, once for the removal";

    told = 0;
    load (patternWithRows ({ 60, 61 }), pattern);
    EXPECT_EQ (told, 1) << "nothing removed, nothing more to tell";

    Pattern fresh;
    load (json::parse (R"({"Multiply": true})"), fresh);
    EXPECT_TRUE (fresh.sequence.steps.empty()) << "the default step on row 36 never survives a load";
}

TEST (LivePatterns, PresetLoadIgnoresOldKeysKeepsEightPatternsAndOverwritesDuration)
{
    auto file = json::parse (R"({"Patterns": [], "Sequencer": {"Transport": {"SwingRef": {"Value": "1/2"}}}})");
    for (int i = 0; i < 3; ++i)
        file["Patterns"].push_back (patternWithRows ({ 60 + i }));
    file["Patterns"][1]["Pattern"]["Duration"] = { { "duration", 7.5 }, { "mode", 0 }, { "Time", { { "Bars", { { { "num", 9 }, { "denum", 8 } } } } } } };

    LivePatterns plain;
    loadIn (plain, file, preset);

    auto withOldKeys = file;
    withOldKeys["fitLoop"] = false;
    withOldKeys["Time"] = { { "Bars", { { { "num", 3 }, { "denum", 4 } } } } };
    LivePatterns old;
    loadIn (old, withOldKeys, preset);

    EXPECT_EQ (saveIn (old, preset), saveIn (plain, preset));
    EXPECT_FALSE (saveIn (old, preset).contains ("fitLoop"));
    // A file with fewer patterns fills the rest with empty ones: every
    // keyswitch and pad must find its pattern.
    ASSERT_EQ (plain.patterns.size(), 8u);
    EXPECT_EQ (plain.liveSlots.slots.size(), 8u);
    // The added ones are as an empty entry loads, so the state comes back
    // from its own file unchanged.
    EXPECT_EQ (plain.patterns[5]->sequence.steps.size(), 0u);
    LivePatterns again;
    loadIn (again, saveIn (plain, preset), preset);
    EXPECT_EQ (saveIn (again, preset), saveIn (plain, preset));
    EXPECT_EQ (plain.patterns[1]->sequence.duration.duration, 4.0);
    EXPECT_EQ (plain.patterns[1]->sequence.duration.mode, Modifiers::Duration::explicitMode);
    EXPECT_EQ (plain.transport.swingPair().period, 2.0);
}

TEST (LivePatterns, LoadQueuesTheKeyswitchOfTheActivePattern)
{
    struct Case { json active; int note; };
    const Case cases[] = { { 0, 24 }, { 1, 26 }, { 3, 29 }, { 7, 36 }, { 9, 24 }, { "6", 35 }, { -2, 24 } };

    for (const auto& c : cases)
    {
        LivePatterns live;
        int told = 0;
        Orv::Events::Listener listener (live.stateBroadcaster, [&] { ++told; });

        loadIn (live, { { "Sequencer", { { "Slots", { { "Live", { { "active", c.active } } } } } } } }, instance);
        EXPECT_EQ (drainedNotes (live), std::vector<int> { c.note }) << c.active;
        EXPECT_EQ (told, 2) << "after the read, and again at the end of the rebuild";
    }
}

TEST (LivePatterns, SelectPatternQueuesItsKeyswitchAndLeavesActive)
{
    LivePatterns live;
    for (int i = -1; i <= LivePatterns::numPatterns; ++i)
        live.selectPattern (i);

    EXPECT_EQ (drainedNotes (live), (std::vector<int> { 24, 26, 28, 29, 31, 33, 35, 36 }));
    EXPECT_EQ (live.liveSlots.live->active.load(), 0);
    EXPECT_TRUE (drainedNotes (live).empty()) << "a drain empties the queue";
}

TEST (LivePatterns, FullQueueDropsKeyswitches)
{
    LivePatterns live;
    for (size_t i = 0; i < LivePatterns::maxQueuedMessages; ++i)
        live.selectPattern (1);

    live.selectPattern (2);
    loadIn (live, json::object(), preset);
    EXPECT_EQ (live.getNumQueued(), LivePatterns::maxQueuedMessages);

    const auto notes = drainedNotes (live);
    EXPECT_EQ (notes.size(), LivePatterns::maxQueuedMessages);
    EXPECT_EQ (notes.back(), 26);
}

TEST (LivePatterns, DrainAllocatesNothing)
{
    LivePatterns live;
    for (int i = 0; i < LivePatterns::numPatterns; ++i)
        live.selectPattern (i);

    juce::MidiBuffer midi;
    midi.ensureSize (1504);

    {
        AllocationCounter counter;
        live.drainQueue (midi);
        EXPECT_EQ (counter.getCount(), 0);
    }

    EXPECT_EQ (midi.getNumEvents(), LivePatterns::numPatterns);
}

TEST (LivePatterns, FileFormInEachScope)
{
    LivePatterns live;
    for (auto& pattern : live.patterns)
        pattern->sequence.steps = { makeStep (0.25, 0.25, 61) };
    live.patterns[2]->multiply = true;
    live.patterns[2]->sequence.grid = 4;
    live.transport.bpm.setFromText ("133");
    setHostText (*live.transport.swing, "-40%");
    live.liveSlots.live->active = 5;
    live.liveSlots.live->enable = false;
    live.liveSlots.live->quantize = 0.5;
    live.rebuild();

    const auto presetFile = saveIn (live, preset);
    const auto instanceFile = saveIn (live, instance);
    EXPECT_FALSE (presetFile["Sequencer"].contains ("Slots"));
    EXPECT_EQ (presetFile["Sequencer"]["Transport"]["Swing"]["Value"], "-40%");
    EXPECT_EQ (presetFile["Patterns"].size(), 8u);
    EXPECT_EQ (presetFile["Patterns"][2]["Multiply"], true);
    EXPECT_EQ (instanceFile["Sequencer"]["Slots"]["Live"], json::parse (R"({"active": 5, "enable": false, "quantize": 0.5})"));
    EXPECT_EQ (instanceFile["Sequencer"]["Slots"]["Slots"].size(), 8u);
    EXPECT_EQ (instanceFile["Sequencer"]["Slots"]["Slots"][0]["playing"], true);

    LivePatterns fromPreset;
    loadIn (fromPreset, instanceFile, preset);
    EXPECT_EQ (fromPreset.liveSlots.live->active.load(), 0) << "a preset pass leaves the instance's choice";
    EXPECT_EQ (saveIn (fromPreset, preset), presetFile);

    LivePatterns fromState;
    loadIn (fromState, instanceFile, instance);
    EXPECT_EQ (saveIn (fromState, instance), instanceFile);
    EXPECT_EQ (fromState.liveSlots.slots[2].length, 4.0 * live.patterns[2]->sequence.grid);
}

TEST (LivePatterns, ControlRecordReadsTextForms)
{
    struct Case { json file; int active; bool enable; double quantize; };
    const Case cases[] = {
        { json::parse (R"({"active": "4", "enable": "1", "quantize": "2.5"})"), 4, true, 2.5 },
        { json::parse (R"({"active": 2.9, "enable": "0", "quantize": 1})"), 2, false, 1.0 },
        { json::parse (R"({"active": "x", "enable": 3, "quantize": 0.25})"), 0, true, 0.25 },
        { json::parse (R"({"enable": "yes"})"), 0, false, LiveControl::defaultQuantize },
        { json::parse (R"({"active": -3})"), 0, true, LiveControl::defaultQuantize },
    };

    for (const auto& c : cases)
    {
        LiveControl control;
        load (c.file, control);
        EXPECT_EQ (control.active.load(), c.active) << c.file;
        EXPECT_EQ (control.enable.load(), c.enable) << c.file;
        EXPECT_EQ (control.quantize.load(), c.quantize) << c.file;
        EXPECT_EQ (control.queued.load(), LiveControl::noPattern);
    }
}

TEST (LivePatterns, CopiesShareTheControlRecordButNotTheSlots)
{
    LivePatterns live;
    const LiveSlots copy = live.liveSlots;
    live.liveSlots.live->active = 6;
    live.liveSlots.slots[0].playing = false;

    EXPECT_EQ (copy.live->active.load(), 6);
    EXPECT_TRUE (copy.slots[0].playing);
    EXPECT_NE (LiveSlots().live, copy.live);
}

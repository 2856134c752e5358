#include "midi/NoteLimitProcessor.h"
#include "midi/SustainPedalSimpleProcessor.h"
#include "midi/TransposeProcessor.h"
#include "support/AllocationCounter.h"
#include "MidiTestHelpers.h"

#include <gtest/gtest.h>

using namespace Orv::Testing;
using Orv::Midi::Mapper::NoteLimitProcessor;
using Orv::Midi::Mapper::TransposeProcessor;
using Orv::Midi::SustainPedal::SimpleProcessor;

namespace
{
constexpr int pedal = 64;
} // namespace

//==============================================================================
TEST (SustainPedal, HoldsReleasesUntilThePedalGoesUp)
{
    const struct
    {
        const char* what;
        std::vector<Timed> in;
        Lines out;
    } cases[] = {
        { "down, on, off, up: one off at the pedal's sample",
          { { cc (pedal, 127), 0 }, { on (60), 10 }, { off (60, 64), 20 }, { cc (pedal, 0), 30 } },
          { "on 60 100 @10", "off 60 25 @30" } },
        { "63 counts as up",
          { { cc (pedal, 63), 0 }, { on (60), 1 }, { off (60, 64), 2 } },
          { "on 60 100 @1", "off 60 64 @2" } },
        { "64 counts as down",
          { { cc (pedal, 64), 0 }, { on (60), 1 }, { off (60, 64), 2 } },
          { "on 60 100 @1" } },
        { "one note released twice under the pedal ends once",
          { { cc (pedal, 127), 0 }, { on (60), 1 }, { off (60), 2 }, { on (60), 3 }, { off (60), 4 }, { cc (pedal, 0), 5 } },
          { "on 60 100 @1", "on 60 100 @3", "off 60 25 @5" } },
        { "a key struck again while sustained still ends with the pedal",
          { { cc (pedal, 127), 0 }, { on (60), 1 }, { off (60), 2 }, { on (60), 3 }, { cc (pedal, 0), 4 } },
          { "on 60 100 @1", "on 60 100 @3", "off 60 25 @4" } },
        { "a note-on of velocity 0 is a release",
          { { cc (pedal, 127), 0 }, { on (62), 1 }, { on (62, 0), 2 }, { cc (pedal, 0), 9 } },
          { "on 62 100 @1", "off 62 25 @9" } },
        { "releases come on the pedal's channel; other controllers pass",
          { { cc (pedal, 127, 3), 0 }, { on (60), 1 }, { off (60), 2 }, { cc (1, 5), 3 }, { cc (pedal, 0, 3), 4 } },
          { "on 60 100 @1", "cc 1 5 @3", "off 60 25 @4 ch3" } },
    };

    for (const auto& c : cases)
    {
        SimpleProcessor sustain;
        EXPECT_EQ (run (sustain, c.in), c.out) << c.what;
    }
}

TEST (SustainPedal, PedalAndHeldReleasesLastFromSpanToSpan)
{
    SimpleProcessor sustain;
    EXPECT_FALSE (sustain.isPedalDown());

    EXPECT_EQ (run (sustain, { { cc (pedal, 100), 5 }, { on (60), 6 }, { on (64), 6 }, { off (60), 7 } }),
               (Lines { "on 60 100 @6", "on 64 100 @6" }));
    EXPECT_TRUE (sustain.isPedalDown());
    EXPECT_EQ (std::vector<int32_t> (sustain.getHeldNotes().begin(), sustain.getHeldNotes().end()),
               (std::vector<int32_t> { 64 }));

    EXPECT_EQ (run (sustain, { { cc (pedal, 0), 3 } }), (Lines { "off 60 25 @3" }));
    EXPECT_FALSE (sustain.isPedalDown());
    EXPECT_TRUE (sustain.getSustainedNotes().isEmpty());
}

TEST (SmallSet, KeepsOrderAcrossTheMoveToTheHeapAndBack)
{
    using Set = Orv::Midi::SmallSet<int32_t, 4>;
    Set set;
    for (int32_t i : { 5, 3, 5, 9, 1, 7, 3 })
        set.insert (i);

    EXPECT_EQ (std::vector<int32_t> (set.begin(), set.end()), (std::vector<int32_t> { 5, 3, 9, 1, 7 }));
    set.remove (9);
    EXPECT_EQ (std::vector<int32_t> (set.begin(), set.end()), (std::vector<int32_t> { 5, 3, 1, 7 }));

    for (int32_t i : { 5, 3, 1, 7 })
        set.remove (i);
    EXPECT_TRUE (set.isEmpty());

    // Back in its inline array: the next items are found there, not in stale
    // heap storage.
    set.insert (2);
    set.insert (4);
    EXPECT_EQ (std::vector<int32_t> (set.begin(), set.end()), (std::vector<int32_t> { 2, 4 }));
    EXPECT_FALSE (set.contains (7));
}

//==============================================================================
TEST (NoteMapper, TransposesAndKeepsOnsAndOffsPaired)
{
    const struct
    {
        const char* what;
        int offset;
        std::vector<Timed> in;
        Lines out;
    } cases[] = {
        { "notes move; an off ends the mapped note with its on's velocity", 2,
          { { on (60), 1 }, { off (60, 30), 5 } },
          { "on 62 100 @1", "off 62 100 @5" } },
        { "past 127 is limited, and two such notes share it", 12,
          { { on (120), 1 }, { on (125, 90), 2 }, { off (120), 3 }, { off (125), 4 } },
          { "on 127 100 @1", "on 127 90 @2", "off 127 100 @3", "off 127 90 @4" } },
        { "below 0 is limited", -12,
          { { on (5), 0 } },
          { "on 0 100 @0" } },
        { "a second on of one note ends the first, whatever its channel", 0,
          { { on (60), 1 }, { on (60, 90, 2), 2 }, { off (60), 3 }, { off (60), 4 } },
          { "on 60 100 @1", "off 60 100 @2", "on 60 90 @2 ch2", "off 60 90 @3 ch2" } },
        { "an off without an on vanishes; other events pass", 0,
          { { off (61), 1 }, { on (62, 0), 2 }, { cc (1, 5), 3 } },
          { "cc 1 5 @3" } },
    };

    for (const auto& c : cases)
    {
        TransposeProcessor transpose;
        transpose.setOffset (c.offset);
        EXPECT_EQ (run (transpose, c.in), c.out) << c.what;
    }
}

TEST (NoteMapper, ChangedTranspositionMovesHeldNotesAtSpanStartOffsFirst)
{
    TransposeProcessor transpose;
    run (transpose, { { on (60), 5 }, { on (64, 90), 6 } });

    transpose.setOffset (2);
    EXPECT_EQ (run (transpose, { { off (60), 10 } }),
               (Lines { "off 60 100 @0", "off 64 90 @0", "on 62 100 @0", "on 66 90 @0", "off 62 100 @10" }));

    transpose.setOffset (2);
    EXPECT_EQ (run (transpose, {}), Lines {}) << "the same offset again is no change";
    ASSERT_EQ (transpose.getActiveNotes().size(), 1u);
    EXPECT_EQ (transpose.getActiveNotes()[0].mapped, 66);

    // A note that the span ends at its first sample is not struck anew for
    // no time: it ends where it sounds.
    run (transpose, { { on (67), 20 } });
    transpose.setOffset (5);
    EXPECT_EQ (run (transpose, { { off (64), 0 } }),
               (Lines { "off 69 100 @0", "on 72 100 @0", "off 66 90 @0" }));
}

TEST (NoteMapper, LimitClampsWithoutFoldingByOctaves)
{
    NoteLimitProcessor limit;
    limit.setLimits (48, 72);
    EXPECT_EQ (run (limit, { { on (40), 0 }, { on (85), 1 }, { on (60), 2 } }),
               (Lines { "on 48 100 @0", "on 72 100 @1", "on 60 100 @2" }));
}

//==============================================================================
TEST (MidiChainRealTime, SpansAllocateNothingOnceTheBuffersHaveSettled)
{
    SimpleProcessor sustain;
    TransposeProcessor transpose;
    NoteLimitProcessor limit;

    Orv::Midi::MidiProcessorBase* const chain[] = { &sustain, &transpose, &limit };

    juce::MidiBuffer buffer;
    buffer.ensureSize (Orv::Midi::MidiProcessor::outputBytes);
    const auto runChain = [&] {
        for (auto* stage : chain)
            stage->process (buffer);
    };

    // Held notes, then busy spans that move the pedal and both settings, so
    // that every path of every stage runs.
    buffer.addEvent (on (30), 0);
    buffer.addEvent (on (31), 0);
    runChain();

    const auto span = [&] (int i) {
        buffer.clear();
        for (int n = 0; n < 20; ++n)
        {
            buffer.addEvent (on (50 + n, 80 + n), n * 4);
            buffer.addEvent (off (50 + n), n * 4 + 2);
        }
        buffer.addEvent (cc (pedal, i % 2 == 0 ? 127 : 0), 90);
        buffer.addEvent (cc (7, i % 128), 91);
        transpose.setOffset (i % 3);
        limit.setLimits (24, 96 - i % 2);
        runChain();
    };

    for (int i = 0; i < 8; ++i)
        span (i);

    int64_t allocations = 0;
    for (int i = 0; i < 100; ++i)
    {
        AllocationCounter counter;
        span (i);
        allocations += counter.getCount();
    }
    EXPECT_EQ (allocations, 0);
    EXPECT_EQ (transpose.getActiveNotes().size(), 2u) << "the two notes held from the start still sound";
}

#include "sequencer/modifiers/StepPulseSequencer.h"

#include "SequencerTestHelpers.h"

#include <gtest/gtest.h>

using namespace Orv::Sequencer;
using namespace Orv::Sequencer::Modifiers;
using Orv::Testing::makeStep;

namespace
{
using Span = Orv::Ranges::Span<double>;

std::vector<std::pair<int, Span>> rowsAndSpans (const Steps& steps)
{
    std::vector<std::pair<int, Span>> out;

    for (const auto& s : steps)
        out.emplace_back (s.event.noteNum, s.time);

    return out;
}
} // namespace

TEST (StepEdit, RemoveNotesAtTakesOverlappingStepsOfOneRowAndTellsOnlyWhenItDid)
{
    StepPulseSequencer sequence;
    sequence.steps = { makeStep (0.0, 0.25), makeStep (0.25, 0.25), makeStep (0.3, 0.0), makeStep (0.5, 0.25), makeStep (0.3, 0.1, 65) };
    int told = 0;
    Orv::Events::Listener listener (sequence.getBroadcaster(), [&] { ++told; });

    EXPECT_TRUE (sequence.removeNotesAt ({ 0.25, 0.25 }, 64));
    EXPECT_EQ (rowsAndSpans (sequence.steps),
               (std::vector<std::pair<int, Span>> { { 64, { 0.0, 0.25 } }, { 64, { 0.5, 0.25 } }, { 65, { 0.3, 0.1 } } }))
        << "steps that only touch the span's edges stay";
    EXPECT_EQ (told, 1);

    EXPECT_FALSE (sequence.removeNotesAt ({ 0.25, 0.25 }, 64));
    EXPECT_EQ (told, 1);
}

TEST (StepEdit, ClearOverlapsCutsTheFrontOfWhicheverBeginsInsideTheOther)
{
    const struct
    {
        const char* what;
        Steps before;
        std::vector<std::pair<int, Span>> after;
    } cases[] = {
        { "the later step lies inside the earlier", { makeStep (0.0, 0.5), makeStep (0.1, 0.2) }, { { 64, { 0.0, 0.5 } } } },
        { "the earlier step lies inside the later", { makeStep (0.1, 0.2), makeStep (0.0, 0.5) }, { { 64, { 0.0, 0.5 } } } },
        { "the later begins inside the earlier", { makeStep (0.0, 0.5), makeStep (0.25, 0.5) }, { { 64, { 0.0, 0.5 } }, { 64, { 0.5, 0.25 } } } },
        { "the earlier begins inside the later", { makeStep (0.25, 0.5), makeStep (0.0, 0.5) }, { { 64, { 0.5, 0.25 } }, { 64, { 0.0, 0.5 } } } },
        { "other rows do not meet", { makeStep (0.0, 0.5), makeStep (0.1, 0.2, 65) }, { { 64, { 0.0, 0.5 } }, { 65, { 0.1, 0.2 } } } },
        { "a sliver is dropped even alone", { makeStep (0.0, 0.0005), makeStep (0.5, 0.001) }, { { 64, { 0.5, 0.001 } } } },
    };

    for (const auto& c : cases)
    {
        auto steps = c.before;
        StepPulseSequencer::clearOverlaps (steps);
        EXPECT_EQ (rowsAndSpans (steps), c.after) << c.what;
    }
}

TEST (StepEdit, QuantizeStepForEachFlagCombination)
{
    const struct
    {
        int grid;
        Span before;
        bool start, length;
        Span after;
    } cases[] = {
        { 4, { 0.3, 0.3 }, true, true, { 0.25, 0.25 } },
        { 4, { 0.3, 0.3 }, false, true, { 0.3, 0.2 } },
        { 4, { 0.3, 0.3 }, true, false, { 0.25, 0.3 } },
        { 4, { 0.3, 0.3 }, false, false, { 0.25, 0.3 } }, // the start moves all the same
        { 4, { 0.3, 0.05 }, true, true, { 0.25, 0.25 } }, // an end on the start grows by a cell
        { 4, { 0.9, 0.05 }, true, false, { 0.75, 0.05 } }, // a start never lands on the end
        { 4, { 0.95, 0.2 }, true, true, { 0.75, 0.5 } },
        { 1, { 0.7, 0.2 }, true, false, { 0.0, 0.2 } },
        { 1, { 0.3, 0.2 }, true, true, { 0.0, 1.0 } },
        { 8, { 0.49, 0.2 }, false, true, { 0.49, 0.26 } },
    };

    for (const auto& c : cases)
    {
        auto step = makeStep (c.before.start, c.before.length);
        StepPulseSequencer::quantizeStep (c.grid, step, c.start, c.length);
        EXPECT_DOUBLE_EQ (step.time.start, c.after.start) << c.grid << " " << c.before.start << " " << c.start << c.length;
        EXPECT_DOUBLE_EQ (step.time.length, c.after.length) << c.grid << " " << c.before.start << " " << c.start << c.length;
    }
}

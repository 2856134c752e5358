#include "sequencer/PatternData.h"

#include "core/GarbageCollector.h"

#include "SequencerTestHelpers.h"

#include <gtest/gtest.h>

using namespace Orv::Sequencer;
using Orv::Testing::makeStep;

namespace
{
PatternData withNotes (std::vector<Step> notes)
{
    PatternData data;
    data.notes = std::move (notes);
    return data;
}

std::vector<double> startsOf (const Steps& steps)
{
    std::vector<double> starts;

    for (const auto& s : steps)
        starts.push_back (s.time.start);

    return starts;
}

std::vector<double> lengthsOf (const Steps& steps)
{
    std::vector<double> lengths;

    for (const auto& s : steps)
        lengths.push_back (s.time.length);

    return lengths;
}
} // namespace

TEST (PatternData, ClipKeepsWhatStartsInsideAndCutsWhatRunsPastTheEnd)
{
    const struct
    {
        const char* what;
        Orv::Ranges::Span<double> span;
        std::vector<double> starts, lengths;
    } cases[] = {
        { "a start on the span's start is kept, one on its end is removed", { 1.0, 2.0 }, { 1.0, 2.5 }, { 0.5, 0.5 } },
        { "a span of length 0 is no span", { 1.0, 0.0 }, { 0.0, 1.0, 2.5, 3.0 }, { 0.5, 0.5, 1.0, 0.0 } },
        { "a negative length is no span either", { 1.0, -1.0 }, { 0.0, 1.0, 2.5, 3.0 }, { 0.5, 0.5, 1.0, 0.0 } },
        { "a zero-length note inside is kept", { 2.0, 2.0 }, { 2.5, 3.0 }, { 1.0, 0.0 } },
    };

    for (const auto& c : cases)
    {
        auto data = withNotes ({ makeStep (0.0, 0.5), makeStep (1.0, 0.5), makeStep (2.5, 1.0), makeStep (3.0, 0.0) });
        data.clip (c.span);
        EXPECT_EQ (startsOf (data.notes), c.starts) << c.what;
        EXPECT_EQ (lengthsOf (data.notes), c.lengths) << c.what;
    }
}

TEST (PatternData, EveryOperationTreatsHeadsAndExtraLikeNotes)
{
    auto head = PlayHead::create();
    PatternData data;
    data.notes = { makeStep (2.0, 4.0), makeStep (0.5, 1.0) };
    data.heads = { { { 2.0, 4.0 }, head, true }, { { 0.5, 1.0 }, head, true } };
    data.extra = data.heads;

    PatternData other;
    other.heads = { { { -1.0, 1.0 }, head, true } };
    data.append (other);
    data.shift (1.0);
    data.sort();
    data.clip ({ 0.5, 3.0 });

    for (const auto* list : { &data.heads, &data.extra })
    {
        ASSERT_EQ (list->size(), 2u);
        EXPECT_EQ ((*list)[0].time, (Orv::Ranges::Span<double> { 1.5, 1.0 }));
        EXPECT_EQ ((*list)[1].time, (Orv::Ranges::Span<double> { 3.0, 0.5 }));
    }

    EXPECT_EQ (startsOf (data.notes), (std::vector<double> { 1.5, 3.0 }));
    EXPECT_EQ (data.heads[0].event, head) << "appending shares the head";
}

TEST (PatternData, SortOrdersByStartOnly)
{
    auto a = makeStep (1.0, 0.5, 60), b = makeStep (1.0, 2.0, 61);
    auto data = withNotes ({ makeStep (3.0, 0.1), a, makeStep (0.0, 9.0), b });

    data.sort();

    EXPECT_EQ (startsOf (data.notes), (std::vector<double> { 0.0, 1.0, 1.0, 3.0 }));
    EXPECT_EQ (data.notes[1].event.noteNum + data.notes[2].event.noteNum, 121) << "both notes at 1.0 are next to each other";
}

TEST (PlayHead, StartsNotPlayingAtZeroAndIsHeldByTheCollector)
{
    auto& collector = Orv::Events::GarbageCollector::get();
    const auto heldBefore = collector.getNumHeld();

    auto head = PlayHead::create();

    EXPECT_EQ (collector.getNumHeld(), heldBefore + 1);
    EXPECT_EQ (head->getState(), NoteState::notPlaying);
    EXPECT_EQ (static_cast<int> (head->getState()), 1);
    EXPECT_EQ (head->getProgress(), 0.0);
}

#include "sequencer/PatternData.h"

#include "core/GarbageCollector.h"

#include "SequencerTestHelpers.h"

#include <gtest/gtest.h>

using namespace Orv::Sequencer;
using Orv::Testing::makeStep;
using Orv::Testing::spansOf;
using Span = Orv::Ranges::Span<double>;

TEST (PatternData, ClipKeepsWhatStartsInsideAndCutsWhatRunsPastTheEnd)
{
    const std::vector<Span> all { { 0.0, 0.5 }, { 1.0, 0.5 }, { 2.5, 1.0 }, { 3.0, 0.0 } };
    const struct
    {
        const char* what;
        Span span;
        std::vector<Span> kept;
    } cases[] = {
        { "a start on the span's start is kept, one on its end is removed", { 1.0, 2.0 }, { { 1.0, 0.5 }, { 2.5, 0.5 } } },
        { "a span of length 0 is no span", { 1.0, 0.0 }, all },
        { "a negative length is no span either", { 1.0, -1.0 }, all },
        { "a zero-length note inside is kept", { 2.0, 2.0 }, { { 2.5, 1.0 }, { 3.0, 0.0 } } },
    };

    for (const auto& c : cases)
    {
        PatternData data;
        for (const auto& s : all)
            data.notes.push_back (makeStep (s.start, s.length));
        data.clip (c.span);
        EXPECT_EQ (spansOf (data.notes), c.kept) << c.what;
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
        EXPECT_EQ (spansOf (*list), (std::vector<Span> { { 1.5, 1.0 }, { 3.0, 0.5 } }));
    EXPECT_EQ (spansOf (data.notes), (std::vector<Span> { { 1.5, 1.0 }, { 3.0, 0.5 } }));
    EXPECT_EQ (data.heads[0].event, head) << "appending shares the head";
}

TEST (PatternData, SortOrdersByStartOnly)
{
    PatternData data;
    data.notes = { makeStep (3.0, 0.1), makeStep (1.0, 0.5, 60), makeStep (0.0, 9.0), makeStep (1.0, 2.0, 61) };
    data.sort();

    std::vector<double> starts;
    for (const auto& n : data.notes)
        starts.push_back (n.time.start);
    EXPECT_EQ (starts, (std::vector<double> { 0.0, 1.0, 1.0, 3.0 }));
    EXPECT_EQ (data.notes[1].event.noteNum + data.notes[2].event.noteNum, 121) << "both notes at 1.0 are next to each other";
}

TEST (PlayHead, StartsNotPlayingAtZeroAndIsHeldByTheCollector)
{
    auto& collector = Orv::Events::GarbageCollector::get();
    const auto heldBefore = collector.getNumHeld();
    auto head = PlayHead::create();

    EXPECT_EQ (collector.getNumHeld(), heldBefore + 1);
    EXPECT_EQ (head->getState(), NoteState::notPlaying);
    EXPECT_EQ (head->getProgress(), 0.0);
}

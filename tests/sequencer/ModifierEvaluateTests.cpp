#include "sequencer/modifiers/Empty.h"
#include "sequencer/modifiers/LoopFitter.h"
#include "sequencer/modifiers/ModRef.h"
#include "sequencer/modifiers/NoteList.h"
#include "sequencer/modifiers/Pattern.h"

#include "SequencerTestHelpers.h"

#include <gtest/gtest.h>

using namespace Orv::Sequencer;
using namespace Orv::Sequencer::Modifiers;
using Orv::Testing::barsOf;
using Orv::Testing::makeStep;
using Orv::Testing::spansOf;

namespace
{
using Span = Orv::Ranges::Span<double>;

std::unique_ptr<StepPulseSequencer> makeSequence (double length, std::vector<Step> steps)
{
    auto sequence = std::make_unique<StepPulseSequencer>();
    sequence->duration.duration = length;
    sequence->steps = std::move (steps);
    return sequence;
}

PatternData evaluate (const Base& modifier)
{
    PatternData result;
    modifier.evaluate (result);
    return result;
}

/** A track of one sequence, with notes at the given fractions. */
std::unique_ptr<TimedSteps> makeTrack (double length, std::vector<Step> steps)
{
    auto track = std::make_unique<TimedSteps>();
    track->pulses.push_back (makeSequence (length, std::move (steps)));
    return track;
}
} // namespace

//==============================================================================
TEST (StepPulseSequencerEvaluate, ScalesEnabledStepsInListOrderWithoutClippingAndAddsOneHead)
{
    auto sequence = makeSequence (2.0, { makeStep (0.75, 0.5), makeStep (0.25, 0.5), makeStep (0.5, 0.25) });
    sequence->steps[2].enabled = false;
    sequence->steps[0].event.gain = 0.25f;

    const auto result = evaluate (*sequence);

    EXPECT_EQ (result.start, 0.0);
    EXPECT_EQ (result.length, 2.0);
    EXPECT_EQ (spansOf (result.notes), (std::vector<Span> { { 1.5, 1.0 }, { 0.5, 1.0 } }));
    EXPECT_EQ (result.notes[0].event.gain, 0.25f) << "the note keeps what the step carries";
    ASSERT_EQ (spansOf (result.heads), (std::vector<Span> { { 0.0, 2.0 } }));
    EXPECT_EQ (result.heads[0].event, sequence->playHead.get());
    EXPECT_TRUE (result.heads[0].enabled);
}

TEST (StepPulseSequencerEvaluate, EdgeLengths)
{
    auto noBars = makeSequence (3.0, { makeStep (0.5, 0.5), makeStep (0.9, 0.1) });
    noBars->duration.mode = Duration::barsMode;
    noBars->duration.time.bars.clear();
    auto result = evaluate (*noBars);
    EXPECT_EQ (result.length, 0.0);
    EXPECT_EQ (spansOf (result.notes), (std::vector<Span> { { 0.0, 0.0 }, { 0.0, 0.0 } }));

    auto noSteps = makeSequence (3.0, {});
    result = evaluate (*noSteps);
    EXPECT_EQ (result.length, 3.0);
    EXPECT_TRUE (result.heads.empty()) << "no steps, no head";

    result = evaluate (StepPulseSequencer()); // one disabled step
    EXPECT_TRUE (result.notes.empty());
    EXPECT_EQ (result.heads.size(), 1u) << "a disabled step still makes the head";
}

//==============================================================================
TEST (ClipEvaluate, KeepsTheSpanMovedToZeroWithTheSpansLength)
{
    Clip clip;
    clip.mod.set (makeSequence (4.0, { makeStep (0.0, 0.25), makeStep (0.25, 0.25), makeStep (0.625, 0.25), makeStep (0.75, 0.25) }));
    clip.time = { 1.0, 2.0 };

    auto result = evaluate (clip);
    EXPECT_EQ (result.length, 2.0);
    EXPECT_EQ (spansOf (result.notes), (std::vector<Span> { { 0.0, 1.0 }, { 1.5, 0.5 } }));
    EXPECT_TRUE (result.heads.empty()) << "the head at 0 starts before the span";

    clip.time = { 1.0, 0.0 };
    result = evaluate (clip);
    EXPECT_EQ (result.length, 4.0) << "an empty span neither clips nor sets the length";
    EXPECT_EQ (result.notes.size(), 4u);

    clip.enabled = false;
    result.length = 9.0;
    clip.evaluate (result);
    EXPECT_EQ (result.length, 9.0);
    EXPECT_EQ (result.notes.size(), 4u);
}

TEST (ModifierCopies, ASequenceGetsItsOwnHeadAndNoListenersAndAClipItsOwnModifier)
{
    StepPulseSequencer original;
    original.name = "seq";
    Orv::Events::Listener listener (original.getBroadcaster(), {});
    auto clone = original.clone();
    auto& copy = dynamic_cast<StepPulseSequencer&> (*clone);
    EXPECT_NE (copy.playHead.get(), original.playHead.get());
    EXPECT_EQ (copy.name, "seq");
    EXPECT_EQ (copy.getBroadcaster().getNumListeners(), 0);

    Clip clip;
    clip.mod.set (makeSequence (2.0, {}));
    Clip clipCopy (clip);
    EXPECT_NE (&clipCopy.mod.get(), &clip.mod.get());
    EXPECT_NE (dynamic_cast<StepPulseSequencer*> (&clipCopy.mod.get()), nullptr);
}

TEST (ModRefEvaluate, ForwardsToItsTargetAndACloneSharesIt)
{
    auto sequence = makeSequence (2.0, { makeStep (0.5, 0.5) });
    ModRef ref (sequence.get());
    auto clone = ref.clone();

    sequence->steps.push_back (makeStep (0.0, 0.25));

    EXPECT_EQ (evaluate (*clone).notes.size(), 2u);
    EXPECT_EQ (dynamic_cast<ModRef&> (*clone).getTarget(), sequence.get());
    EXPECT_TRUE (evaluate (ModRef()).notes.empty());
}

//==============================================================================
TEST (PatternEvaluate, PlacesClipsSortsAndCutsToItsTime)
{
    Pattern pattern;
    pattern.time = barsOf ({ { 3, 4 } });

    TimedClip first;
    first.clip.mod.set (makeSequence (2.0, { makeStep (0.0, 0.5), makeStep (0.75, 0.5) }));
    first.time = { 1.0, 1.0 }; // keeps [0, 1) of the clip, placed at 1
    TimedClip second;
    second.clip.mod.set (makeSequence (2.0, { makeStep (0.25, 1.0) }));
    second.time = { 2.5, 4.0 };
    pattern.clips = { first, second };

    PatternData result;
    result.length = 99.0;
    pattern.evaluate (result);

    EXPECT_EQ (result.length, 3.0);
    EXPECT_EQ (spansOf (result.notes), (std::vector<Span> { { 1.0, 1.0 } }))
        << "the second clip's note starts at 3.0, on the pattern's end";
    EXPECT_EQ (spansOf (result.heads), (std::vector<Span> { { 0.0, 3.0 }, { 1.0, 1.0 }, { 2.5, 0.5 } }));
    EXPECT_EQ (result.heads[0].event, pattern.playHead.get());
}

TEST (NoteListEvaluate, TakesEventsAsTheyAreCutToItsTimeThenAddsItsHead)
{
    NoteList list;
    list.time = barsOf ({ { 2, 4 } });
    list.events = { makeStep (1.5, 1.0), makeStep (0.5, 0.5), makeStep (2.0, 1.0) };
    list.events[1].enabled = false;

    const auto result = evaluate (list);

    EXPECT_EQ (result.length, 2.0);
    EXPECT_EQ (spansOf (result.notes), (std::vector<Span> { { 1.5, 0.5 }, { 0.5, 0.5 } }))
        << "unsorted, disabled kept, the note on the end dropped";
    EXPECT_EQ (spansOf (result.heads), (std::vector<Span> { { 0.0, 2.0 } }));
}

//==============================================================================
TEST (TimedStepsEvaluate, PlaysSequencesInTurnAndStampsItsChannelOnEveryNote)
{
    TimedSteps track;
    track.channel = 3;
    track.pulses.push_back (makeSequence (1.0, { makeStep (0.5, 0.5) }));
    track.pulses.push_back (makeSequence (2.0, { makeStep (0.0, 0.25) }));

    PatternData result;
    result.notes = { makeStep (0.25, 0.1) };
    track.evaluate (result);

    EXPECT_EQ (result.length, 3.0);
    EXPECT_EQ (spansOf (result.notes), (std::vector<Span> { { 0.25, 0.1 }, { 0.5, 0.5 }, { 1.0, 0.5 } }));

    for (const auto& n : result.notes)
        EXPECT_EQ (n.event.channel, 3);
}

TEST (TimedStepsEvaluate, AMutedOrEmptyTrackStillLastsItsDuration)
{
    TimedSteps muted;
    muted.mute = true;
    muted.duration.mode = Duration::explicitMode;
    muted.duration.duration = 2.0;
    muted.pulses.push_back (makeSequence (1.0, { makeStep (0.0, 0.5) }));

    auto result = evaluate (muted);
    EXPECT_EQ (result.length, 2.0);
    EXPECT_TRUE (result.notes.empty());
    EXPECT_TRUE (result.heads.empty());

    EXPECT_EQ (evaluate (TimedSteps()).length, 4.0) << "the default Duration is one bar of 4/4";
}

TEST (EventsContainerEvaluate, RepeatsATrackToFillTheLoopAndDropsWhatStartsPastIt)
{
    EventsContainer container;
    container.loopTime = barsOf ({ { 2, 1 } }); // 8 quarter notes
    container.tracks.push_back (makeTrack (3.0, { makeStep (0.0, 0.1), makeStep (0.5, 1.0 / 3.0), makeStep (2.0 / 3.0, 0.5) }));

    const auto result = evaluate (container);

    EXPECT_EQ (result.length, 8.0);
    const std::vector<double> starts { 0.0, 1.5, 2.0, 3.0, 4.5, 5.0, 6.0, 7.5 };
    ASSERT_EQ (result.notes.size(), starts.size()) << "the third repetition's note at 8.0 is dropped";

    for (size_t i = 0; i < starts.size(); ++i)
        EXPECT_DOUBLE_EQ (result.notes[i].time.start, starts[i]);

    EXPECT_DOUBLE_EQ (result.notes.back().getEnd(), 8.5) << "a note that starts inside keeps its length";
    EXPECT_EQ (spansOf (result.heads), (std::vector<Span> { { 0.0, 3.0 }, { 3.0, 3.0 }, { 6.0, 3.0 } }));
}

TEST (EventsContainerEvaluate, SoloChannelsAndEdges)
{
    EventsContainer container;
    container.loopTime = barsOf ({ { 4, 4 } });

    for (int i = 0; i < 3; ++i)
    {
        container.tracks.push_back (makeTrack (4.0, { makeStep (0.25 * i, 0.25) }));
        container.tracks.back()->channel = 9;
    }

    auto result = evaluate (container);
    ASSERT_EQ (result.notes.size(), 3u);
    EXPECT_EQ (result.notes[0].event.channel, 9) << "track 0 keeps its own channel";
    EXPECT_EQ (result.notes[1].event.channel, 1);
    EXPECT_EQ (result.notes[2].event.channel, 2);

    container.tracks[2]->solo = true;
    result = evaluate (container);
    ASSERT_EQ (result.notes.size(), 1u);
    EXPECT_EQ (result.notes[0].time.start, 2.0);

    container.loopTime.bars.clear();
    result = evaluate (container);
    EXPECT_TRUE (result.notes.empty());
    EXPECT_EQ (result.length, 0.0);

    // A track that does not move time on must not hang the loop.
    container.loopTime = barsOf ({ { 4, 4 } });
    container.tracks[2]->pulses.clear();
    container.tracks[2]->duration.time.bars.clear();
    EXPECT_TRUE (evaluate (container).notes.empty());
}

TEST (EventsContainerEvaluate, ATinyTrackUnderAHugeLoopStopsAtTheRepetitionCap)
{
    EventsContainer container;
    container.loopTime = barsOf ({ { 2000000000, 1 } });
    container.tracks.push_back (makeTrack (1.0e-3, { makeStep (0.0, 0.5) }));

    const auto result = evaluate (container);
    EXPECT_EQ (result.heads.size(), (size_t) EventsContainer::maxRepetitionsPerTrack);
}

TEST (LoopFitterEvaluate, AddsItsHeadOverTheLoopAndSorts)
{
    LoopFitter fitter;
    fitter.events.loopTime = barsOf ({ { 2, 4 } });
    fitter.events.tracks.push_back (makeTrack (1.0, { makeStep (0.5, 0.25) }));
    fitter.events.tracks.push_back (makeTrack (2.0, { makeStep (0.0, 0.25) }));

    const auto result = evaluate (fitter);

    EXPECT_EQ (spansOf (result.notes), (std::vector<Span> { { 0.0, 0.5 }, { 0.5, 0.25 }, { 1.5, 0.25 } }));
    ASSERT_EQ (result.heads.size(), 4u);
    EXPECT_EQ (result.heads[0].time.start, 0.0);
    EXPECT_EQ (std::count_if (result.heads.begin(), result.heads.end(), [&] (const auto& h) { return h.event == fitter.playHead.get(); }), 1);
}

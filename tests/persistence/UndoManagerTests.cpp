#include "core/State.h"
#include "persistence/UndoManager.h"

#include <gtest/gtest.h>

#include <functional>

namespace
{
using Orv::Audio::Plugins::Halvane::State;
using Orv::Undo::Manager;

constexpr auto instance = Orv::ReflectContext::forHostState();

/** A state whose patterns survive a load as they are (the default step of a
    new pattern lies on a row that loads drop), and its history from there. */
struct Fixture
{
    static State& withStepsOnLoadedRows (State& state)
    {
        for (auto& pattern : state.sequencer.patterns)
            for (auto& step : pattern->sequence.steps)
                step.event.noteNum = 60;
        return state;
    }

    void changeInStep (const juce::String& name, const std::function<void()>& change)
    {
        undo.beginStep();
        change();
        undo.markChanged();
        undo.endStep (name);
    }

    State state;
    Manager undo { withStepsOnLoadedRows (state) };
};

TEST (UndoManager, NestedStepsMergeUnderTheOuterNameAndStepsWithoutChangeLeaveNothing)
{
    Fixture f;
    auto& undo = f.undo;
    EXPECT_EQ (undo.getNumSteps(), 1);
    EXPECT_EQ (undo.getStepName (0), "Init");
    EXPECT_FALSE (undo.canUndo());
    EXPECT_FALSE (undo.canRedo());

    int told = 0;
    Orv::Events::Listener listener (undo.broadcaster, [&] { ++told; });

    undo.beginStep();
    undo.beginStep();
    f.state.arp.quantize->setValueNotifyingHost (1.0f);
    undo.markChanged();
    undo.endStep ("Inner");
    EXPECT_EQ (undo.getNumSteps(), 1) << "nothing is kept until the outer step closes";
    undo.endStep ("Outer");
    EXPECT_EQ (undo.getNumSteps(), 2);
    EXPECT_EQ (undo.getStepName (1), "Outer");
    EXPECT_EQ (told, 1);

    undo.beginStep();
    undo.endStep ("Nothing");
    undo.endStep ("Spare");
    EXPECT_EQ (undo.getNumSteps(), 2);
    EXPECT_EQ (told, 1);

    // A spare close does not leave the count below zero: the next step is
    // an outer one again.
    f.changeInStep ("After", [&] { f.state.getScreen().width = 640; });
    EXPECT_EQ (undo.getNumSteps(), 3);

    // A step without change keeps the redo branch; a real one cuts it.
    undo.undo();
    undo.beginStep();
    undo.endStep ("Nothing");
    EXPECT_TRUE (undo.canRedo());
    f.changeInStep ("Branch", [&] { f.state.getScreen().width = 700; });
    EXPECT_FALSE (undo.canRedo());
    EXPECT_EQ (undo.getNumSteps(), 3);
    EXPECT_EQ (undo.getStepName (2), "Branch");
}

TEST (UndoManager, UndoAndRedoBringBackPatternsParametersAndTheWindowSize)
{
    Fixture f;
    auto& state = f.state;
    auto& undo = f.undo;
    const auto atInit = state.toJson (instance);

    f.changeInStep ("Quantize", [&] { state.arp.quantize->setValueNotifyingHost (1.0f); });
    const auto afterQuantize = state.toJson (instance);
    f.changeInStep ("Piano Roll", [&] {
        auto& pattern = *state.sequencer.patterns[3];
        pattern.multiply = true;
        pattern.sequence.steps[0].event.noteNum = 65;
        state.getScreen().width = 640;
    });
    const auto afterEdit = state.toJson (instance);
    ASSERT_NE (afterEdit, afterQuantize);

    auto undoParam = undo.createUndoParam();
    auto redoParam = undo.createRedoParam();
    EXPECT_EQ (undoParam->getNormalised(), 1.0f);
    EXPECT_EQ (redoParam->getNormalised(), 0.0f);

    undo.undo();
    EXPECT_EQ (state.toJson (instance), afterQuantize);
    EXPECT_EQ (state.sequencer.patterns[3]->sequence.steps[0].event.noteNum, 60);
    EXPECT_FALSE (state.sequencer.patterns[3]->multiply);
    EXPECT_EQ (state.getScreen().width, -1);

    undoParam->setNormalised (0.0f);
    EXPECT_EQ (state.toJson (instance), atInit) << "setting runs the operation whatever the value";
    EXPECT_EQ (undoParam->getNormalised(), 0.0f);
    undo.undo();
    EXPECT_EQ (state.toJson (instance), atInit) << "nothing before the first step";

    redoParam->setNormalised (0.0f);
    undo.redo();
    EXPECT_EQ (state.toJson (instance), afterEdit);
    EXPECT_EQ (state.sequencer.patterns[3]->sequence.steps[0].event.noteNum, 65);
    undo.redo();
    EXPECT_EQ (undo.getPosition(), 2) << "nothing after the last step";
}
} // namespace

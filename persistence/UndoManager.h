#pragma once

#include "core/Broadcaster.h"
#include "persistence/PresetBase.h"
#include "persistence/UndoInterface.h"

#include <nlohmann/json.hpp>

#include <vector>

namespace Orv::Undo
{
/** Undo by snapshots: the whole state of the instance is kept as JSON after
    every step, and undo and redo load a snapshot back through the same
    reflect that saves presets, so no change needs an inverse. The first
    snapshot, "Init", is made at construction and is the state that the first
    undo goes back to.

    Message thread only. */
class Manager : public Interface
{
public:
    /** The preset must outlive the manager. Takes the "Init" snapshot. */
    explicit Manager (Presets::Base& presetToSnapshot);

    void beginStep() override;
    void markChanged() override;
    /** Closes the step. The outermost close of a step that changed something
        drops the redo branch and keeps a snapshot under the name; a step
        that changed nothing leaves the history as it was. A snapshot that
        cannot be made leaves the history as it was too. */
    void endStep (const juce::String& name) override;

    /** Loads the previous snapshot; nothing at the first. A snapshot that
        does not load leaves the state and the position as they were. */
    void undo() override;
    /** Loads the next snapshot; nothing at the last. */
    void redo() override;

    std::unique_ptr<Parameters::Parameter> createUndoParam() override;
    std::unique_ptr<Parameters::Parameter> createRedoParam() override;

    bool canUndo() const override { return position > 0; }
    bool canRedo() const override { return position < getNumSteps() - 1; }

    //==============================================================================
    int getPosition() const noexcept { return position; }
    int getNumSteps() const noexcept { return (int) steps.size(); }
    /** The name of a step; empty for an index outside the history. */
    juce::String getStepName (int index) const;

    /** Told after each new step, undo and redo. */
    Events::Broadcaster broadcaster;

    /** The name of the snapshot made at construction. */
    static constexpr const char* initStepName = "Init";

private:
    struct Step
    {
        juce::String name;
        nlohmann::json snapshot;
    };

    void moveTo (int newPosition);

    int position = 0;
    int depth = 0;
    bool changed = false;
    std::vector<Step> steps;
    Presets::Base* preset;
};
} // namespace Orv::Undo

#include "persistence/UndoManager.h"

#include "parameters/DefaultGesture.h"

#include <functional>
#include <utility>

namespace Orv::Undo
{
namespace
{
    /** A control that is on while its operation is possible, and runs the
        operation whatever value it is given. */
    class OperationParam : public Parameters::DefaultGesture
    {
    public:
        OperationParam (juce::String nameToUse, std::function<bool()> isPossibleToUse, std::function<void()> runToUse)
            : name (std::move (nameToUse)), isPossible (std::move (isPossibleToUse)), run (std::move (runToUse))
        {
        }

        float getNormalised() const override { return isPossible() ? 1.0f : 0.0f; }
        void setNormalisedNotifying (float) override { run(); }
        juce::String getName() const override { return name; }

    private:
        juce::String name;
        std::function<bool()> isPossible;
        std::function<void()> run;
    };
} // namespace

Manager::Manager (Presets::Base& presetToSnapshot) : preset (&presetToSnapshot)
{
    steps.push_back ({ initStepName, preset->toJson (ReflectContext::forUndo()) });
}

void Manager::beginStep() { ++depth; }

void Manager::markChanged() { changed = true; }

void Manager::endStep (const juce::String& name)
{
    // The outer step's name wins: an inner close only counts down.
    if (depth-- >= 2)
        return;

    depth = 0;
    if (! changed)
        return;

    changed = false;

    nlohmann::json snapshot;
    try
    {
        snapshot = preset->toJson (ReflectContext::forUndo());
    }
    catch (...)
    {
        // A gesture's close must not throw into the GUI; the step is lost,
        // and the redo branch with it kept.
        return;
    }

    steps.resize ((size_t) position + 1);
    steps.push_back ({ name, std::move (snapshot) });
    position = getNumSteps() - 1;
    broadcaster.call();
}

void Manager::moveTo (int newPosition)
{
    if (! preset->loadJsonOrRestore (steps[(size_t) newPosition].snapshot, ReflectContext::forUndo()))
        return;

    position = newPosition;
    broadcaster.call();
}

void Manager::undo()
{
    if (canUndo())
        moveTo (position - 1);
}

void Manager::redo()
{
    if (canRedo())
        moveTo (position + 1);
}

std::unique_ptr<Parameters::Parameter> Manager::createUndoParam()
{
    return std::make_unique<OperationParam> ("Undo", [this] { return canUndo(); }, [this] { undo(); });
}

std::unique_ptr<Parameters::Parameter> Manager::createRedoParam()
{
    return std::make_unique<OperationParam> ("Redo", [this] { return canRedo(); }, [this] { redo(); });
}

juce::String Manager::getStepName (int index) const
{
    return index >= 0 && index < getNumSteps() ? steps[(size_t) index].name : juce::String();
}
} // namespace Orv::Undo

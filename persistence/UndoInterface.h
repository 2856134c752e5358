#pragma once

#include "parameters/Parameter.h"

#include <juce_core/juce_core.h>

#include <memory>

namespace Orv::Undo
{
/** Undo as the GUI sees it: a step is a bracket around any change, opened
    with beginStep, marked with markChanged where something really changed,
    and closed with endStep. This class itself does nothing at all, so that a
    control outside an editor may call it safely.

    Message thread only. */
class Interface
{
public:
    virtual ~Interface() = default;

    /** Opens a step; steps opened inside one merge with it. */
    virtual void beginStep() {}

    /** Says that the open step changed something. */
    virtual void markChanged() {}

    /** Closes a step under a name that is kept but never shown. */
    virtual void endStep (const juce::String& /*name*/) {}

    virtual void undo() {}
    virtual void redo() {}

    /** Controls for the two operations; null when there is nothing to undo
        through this interface. */
    virtual std::unique_ptr<Parameters::Parameter> createUndoParam() { return nullptr; }
    virtual std::unique_ptr<Parameters::Parameter> createRedoParam() { return nullptr; }

    virtual bool canUndo() const { return false; }
    virtual bool canRedo() const { return false; }
};

/** Whatever owns an undo history for the components inside it. */
class Holder
{
public:
    virtual ~Holder() = default;

    /** The history of this holder's components. Message thread only. */
    virtual Interface& getUndo() = 0;
};
} // namespace Orv::Undo

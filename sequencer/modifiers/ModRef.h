#pragma once

#include "sequencer/modifiers/Base.h"

namespace Orv::Sequencer::Modifiers
{
/** Stands in for a modifier owned elsewhere, so that a live slot plays the
    pattern that the editor changes in place. A clone refers to the same
    target. The target must outlive the reference; with none, nothing is
    evaluated or reflected. Message thread only. */
class ModRef : public Cloneable<Base, ModRef>
{
public:
    explicit ModRef (Base* targetToUse = nullptr) : target (targetToUse) {}

    /** Evaluates the target. */
    void evaluate (PatternData& result) const override
    {
        if (target != nullptr)
            target->evaluate (result);
    }

    /** The target's members. */
    void reflectMembers (Reflector& reflector) override
    {
        if (target != nullptr)
            target->reflectMembers (reflector);
    }

    Base* getTarget() const noexcept { return target; }

private:
    Base* target;
};
} // namespace Orv::Sequencer::Modifiers

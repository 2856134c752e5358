#pragma once

#include "sequencer/modifiers/Base.h"

namespace Orv::Sequencer::Modifiers
{
/** The modifier that adds nothing: what a new clip holds. Message thread only. */
class Empty : public Cloneable<Base, Empty>
{
public:
    /** Leaves the result as it is. */
    void evaluate (PatternData&) const override {}

    /** No members. */
    void reflectMembers (Reflector&) override {}
};
} // namespace Orv::Sequencer::Modifiers

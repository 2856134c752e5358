#pragma once

#include "core/Broadcaster.h"
#include "core/Cloneable.h"
#include "sequencer/PatternData.h"

#include <juce_core/juce_core.h>

namespace Orv
{
class Reflector;
}

namespace Orv::Sequencer::Modifiers
{
/** A node that turns itself into notes in quarter notes. Modifiers nest: a
    clip wraps one, a pattern lists timed clips, a container loops tracks.

    A copy keeps the name but has a broadcaster of its own, with nobody
    listening. All modifiers live on the message thread, and evaluate runs
    there; the audio thread only ever sees the finished PatternData. */
class Base : public Events::HasBroadcaster, public CloneableInterface<Base>
{
public:
    Base() = default;
    Base (const Base& other);
    Base& operator= (const Base& other);
    ~Base() override = default;

    /** Message thread: adds this modifier's notes and heads to the result and
        sets its start and length. Allocates; never fails otherwise. */
    virtual void evaluate (PatternData& result) const = 0;

    /** Message thread: the members of the concrete kind, without the name. */
    virtual void reflectMembers (Reflector& reflector) = 0;

    /** Message thread: "name", then the members of the kind. This is the
        entry that containers and files call. */
    void reflect (Reflector& reflector);

    juce::String name;
};
} // namespace Orv::Sequencer::Modifiers

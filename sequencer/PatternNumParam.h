#pragma once

#include "core/CallbackFunc.h"
#include "parameters/IntRef.h"
#include "sequencer/modifiers/MusicalTime.h"

namespace Orv::Audio::Plugins::Halvane
{
/** The numerator of a live pattern's length, as its length control edits it:
    1 to 128 beats, wrapping past either end. A change tells the time's
    valueBroadcaster, then its barsBroadcaster, then runs onUpdate, through
    which the control that owns this reaches the editor's update.

    Holds plain pointers into the pattern; message thread only. */
class NumParam : public Parameters::IntRef<int>
{
public:
    static constexpr float minBeats = 1.0f;
    static constexpr float maxBeats = 128.0f;

    NumParam (Sequencer::Modifiers::MusicalTime& timeToTell, Sequencer::Modifiers::Bar& bar);

    /** Message thread only: stores as IntRef does; tells only on a change. */
    void setIntValue (int newValue) override;

    /** Runs after the broadcasters on each change; empty does nothing. */
    CallbackFunc onUpdate;

private:
    Sequencer::Modifiers::MusicalTime* time;
};
} // namespace Orv::Audio::Plugins::Halvane

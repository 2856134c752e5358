#pragma once

#include "sequencer/modifiers/DenumParam.h"
#include "sequencer/modifiers/MusicalTime.h"
#include "sequencer/modifiers/NumParam.h"

#include <memory>

namespace Orv::Sequencer::Modifiers
{
/** The two parameters of one bar of a MusicalTime. An edit through either
    tells valueBroadcaster, then barsBroadcaster, then onBarChange with the
    bar's index in the list (-1 once the bar is no longer in it), the bar as
    it was and the bar as it is.

    Built by the control that shows it; holds plain pointers into the owner
    and must not outlive it. Message thread only. */
class BarParams
{
public:
    BarParams (MusicalTime& time, Bar& bar);

    BarParams (const BarParams&) = delete;
    BarParams& operator= (const BarParams&) = delete;

    NumParam& getNumParam() noexcept { return num; }
    DenumParam& getDenumParam() noexcept { return denum; }

private:
    static CallbackFunc makeChangeFunc (MusicalTime& time, Bar& bar, std::shared_ptr<Bar> previous);

    std::shared_ptr<Bar> previous;
    NumParam num;
    DenumParam denum;
};
} // namespace Orv::Sequencer::Modifiers

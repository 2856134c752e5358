#pragma once

#include "core/Broadcaster.h"
#include "sequencer/modifiers/Bar.h"

#include <functional>
#include <vector>

namespace Orv::Sequencer::Modifiers
{
/** A length held as a list of bars and turned into quarter notes only when
    asked: nothing is cached, so an edit of a bar is seen at once.

    A value that lives inside its owner. A copy takes the bars and the
    callback but starts with broadcasters of its own: listeners are never
    copied. Message thread only. */
class MusicalTime
{
public:
    /** (index of the bar in the list or -1, the bar before, the bar now). */
    using BarChangeFunc = std::function<void (std::int32_t, const Bar&, const Bar&)>;

    /** One bar of 4/4. */
    MusicalTime();
    MusicalTime (const MusicalTime& other);
    MusicalTime& operator= (const MusicalTime& other);

    /** The sum of the bars' lengths in list order; 0 for no bars. */
    double getLength() const noexcept;

    /** Writes the bar list under "Bars", or reads it and tells barsBroadcaster. */
    void reflect (Reflector& reflector);

    /** Told when one bar is edited through BarParams. Never empty. */
    BarChangeFunc onBarChange;
    std::vector<Bar> bars;
    /** Told after a load and after any edit of a bar. */
    Events::Broadcaster barsBroadcaster;
    /** Told after an edit of a bar through a parameter, not after a load. */
    Events::Broadcaster valueBroadcaster;
};

/** The length in quarter notes of any list of bars. */
double getLength (const std::vector<Bar>& bars) noexcept;
} // namespace Orv::Sequencer::Modifiers

#pragma once

#include "sequencer/modifiers/MusicalTime.h"

namespace Orv::Sequencer::Modifiers
{
/** The bar list of a MusicalTime as it stands in a file: a sequence whose
    elements are each a "Bar". A load sizes the list to the file, new bars
    starting as 4/4, reads each bar by position, and tells barsBroadcaster.

    A view with no data of its own; same thread as the pass. */
class Bars
{
public:
    explicit Bars (MusicalTime& timeToView) : time (timeToView) {}

    void reflect (Reflector& node);

private:
    MusicalTime& time;
};
} // namespace Orv::Sequencer::Modifiers

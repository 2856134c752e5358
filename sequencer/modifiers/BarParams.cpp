#include "sequencer/modifiers/BarParams.h"

namespace Orv::Sequencer::Modifiers
{
namespace
{
    constexpr std::int32_t notInList = -1;

    // By address, not by value: equal bars elsewhere in the list are other bars.
    std::int32_t findBar (const std::vector<Bar>& bars, const Bar& bar)
    {
        for (size_t i = 0; i < bars.size(); ++i)
            if (&bars[i] == &bar)
                return static_cast<std::int32_t> (i);

        return notInList;
    }
} // namespace

CallbackFunc BarParams::makeChangeFunc (MusicalTime& time, Bar& bar, std::shared_ptr<Bar> previous)
{
    return [&time, &bar, previous] {
        time.valueBroadcaster.call();
        time.barsBroadcaster.call();
        time.onBarChange (findBar (time.bars, bar), *previous, bar);
        *previous = bar;
    };
}

BarParams::BarParams (MusicalTime& time, Bar& bar)
    : previous (std::make_shared<Bar> (bar)),
      num (bar, makeChangeFunc (time, bar, previous)),
      denum (bar, makeChangeFunc (time, bar, previous))
{
}
} // namespace Orv::Sequencer::Modifiers

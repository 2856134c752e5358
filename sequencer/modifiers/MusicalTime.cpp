#include "sequencer/modifiers/MusicalTime.h"

#include "persistence/Reflector.h"
#include "sequencer/modifiers/Bars.h"

namespace Orv::Sequencer::Modifiers
{
double getLength (const std::vector<Bar>& bars) noexcept
{
    double length = 0.0;

    for (const auto& bar : bars)
        length += bar.getLength();

    return length;
}

MusicalTime::MusicalTime() : onBarChange ([] (std::int32_t, const Bar&, const Bar&) {}), bars (1) {}

MusicalTime::MusicalTime (const MusicalTime& other) : onBarChange (other.onBarChange), bars (other.bars) {}

MusicalTime& MusicalTime::operator= (const MusicalTime& other)
{
    onBarChange = other.onBarChange;
    bars = other.bars;
    return *this;
}

double MusicalTime::getLength() const noexcept { return Modifiers::getLength (bars); }

void MusicalTime::reflect (Reflector& reflector)
{
    Bars view (*this);
    reflector.addChild ("Bars", view);
}
} // namespace Orv::Sequencer::Modifiers

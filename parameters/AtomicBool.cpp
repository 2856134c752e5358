#include "parameters/AtomicBool.h"

namespace Orv::Parameters
{
namespace
{
constexpr std::uint8_t onBit = 1;
}

float AtomicBool::getNormalised() const { return (flag->load() & onBit) != 0 ? 1.0f : 0.0f; }

void AtomicBool::setNormalisedNotifying (float normalised)
{
    flag->exchange (normalised > boolThreshold ? onBit : std::uint8_t (0));
}
} // namespace Orv::Parameters

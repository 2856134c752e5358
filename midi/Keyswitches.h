#pragma once

#include <array>

namespace Orv::Audio::Plugins::Halvane::Keyswitches
{
/** The number of pattern slots that keyswitches select. */
constexpr int numSlots = 8;

/** The note that selects each slot: the white keys from the C of note 24. */
constexpr std::array<int, numSlots> notes { 24, 26, 28, 29, 31, 33, 35, 36 };
} // namespace Orv::Audio::Plugins::Halvane::Keyswitches

#pragma once

#include "Recipe.h"

#include <vector>

namespace Orv::Tools::Wavetables
{
/** One period per channel, in the range -1 to 1. */
using Channels = std::vector<std::vector<double>>;

/** Makes the single period a recipe describes: every channel built from the
    recipe's partials, filters and shapers, band-limited to its harmonic limit,
    scaled to one common loudness and turned so that the period starts and ends
    where it is quiet. Pure arithmetic on doubles, seeded noise only: the same
    recipe gives the same samples on every run. Throws std::runtime_error for
    a bad operation, naming its line. */
Channels renderWave (const Recipe& recipe);

/** The loudness every wave is scaled to (RMS over all channels), unless its
    peak would pass peakLimit first. */
constexpr double targetRms = 0.2512; // -12 dBFS
constexpr double peakLimit = 0.98;
} // namespace Orv::Tools::Wavetables

#pragma once

#include <algorithm>
#include <cmath>

namespace Orv::Audio::WavetableSynth
{
/** Reading one period of a wave stored at a high rate: phases first, then a
    cubic read. Phases are computed into their own array so that the read has
    no dependency from one sample to the next, and the channels of a table can
    share them. Audio thread; pure functions on caller-owned memory. */
struct TableReader
{
    /** Fills phases with the phase at each sample, 0 to 1, and leaves phase
        where the next call starts. */
    static void runPhases (double* phases, int numSamples, double& phase, double increment) noexcept
    {
        for (int i = 0; i < numSamples; ++i)
        {
            phases[i] = phase;
            phase = std::fmod (phase + increment, 1.0);
        }
    }

    /** The table at phase x with Catmull-Rom interpolation between its samples.
        fmod keeps x below 1; the two guard branches only make a stray phase
        harmless. An empty table reads as silence. */
    static float interpolate (const float* table, int length, double x) noexcept
    {
        if (x > beyondTable || length < 1)
            return 0.0f;

        if (x >= 1.0)
            return table[length - 1];

        const auto last = length - 1;
        const auto position = x * (double) last;
        const auto i1 = (int) position;
        const auto f = (float) (position - (double) i1);

        const auto y0 = table[std::max (i1, 1) - 1];
        const auto y1 = table[i1];
        const auto y2 = table[std::min (i1 + 1, last)];
        const auto y3 = table[std::min (i1 + 2, last)];

        // Kept in this nesting: the order of the float operations is part of
        // the sound, and another order changes renders in their last bits.
        return 0.5f * (2.0f * y1 + f * ((y2 - y0) + f * ((4.0f * y2 - y3 + (2.0f * y0 - 5.0f * y1)) + f * (3.0f * (y1 - y2) + (y3 - y0)))));
    }

    /** Reads the table at each of the phases. */
    static void read (const float* table, int length, const double* phases, float* output, int numSamples) noexcept
    {
        for (int i = 0; i < numSamples; ++i)
            output[i] = interpolate (table, length, phases[i]);
    }

private:
    static constexpr double beyondTable = 1.5;
};
} // namespace Orv::Audio::WavetableSynth

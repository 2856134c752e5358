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
        // Below one period per sample, a phase in [0, 1) plus the increment is
        // below 2, where subtracting 1 is exact and gives what fmod gives.
        // fmod is several times slower, and this loop runs for every unison
        // voice of every oscillator.
        if (increment >= 0.0 && increment < 1.0)
        {
            for (int i = 0; i < numSamples; ++i)
            {
                phases[i] = phase;
                const auto next = phase + increment;
                phase = next >= 1.0 ? next - 1.0 : next;
            }
            return;
        }

        for (int i = 0; i < numSamples; ++i)
        {
            phases[i] = phase;
            phase = std::fmod (phase + increment, 1.0);
        }
    }

    /** Where a phase falls in a table: the four samples around it and the
        fraction between the middle two. */
    struct Position
    {
        enum Kind
        {
            inside,
            last,
            silent
        };

        Kind kind = silent;
        int i0 = 0, i1 = 0, i2 = 0, i3 = 0;
        float fraction = 0.0f;
    };

    /** fmod keeps x below 1; the two guard branches only make a stray phase
        harmless. An empty table reads as silence. */
    static Position locate (int length, double x) noexcept
    {
        Position p;
        if (x > beyondTable || length < 1)
            return p;

        const auto last = length - 1;
        if (x >= 1.0)
        {
            p.kind = Position::last;
            p.i1 = last;
            return p;
        }

        const auto position = x * (double) last;
        p.kind = Position::inside;
        p.i1 = (int) position;
        p.fraction = (float) (position - (double) p.i1);
        p.i0 = std::max (p.i1, 1) - 1;
        p.i2 = std::min (p.i1 + 1, last);
        p.i3 = std::min (p.i1 + 2, last);
        return p;
    }

    /** A table's value at a located position, by Catmull-Rom interpolation. */
    static float valueAt (const float* table, const Position& p) noexcept
    {
        if (p.kind != Position::inside)
            return p.kind == Position::last ? table[p.i1] : 0.0f;

        const auto f = p.fraction;
        const auto y0 = table[p.i0];
        const auto y1 = table[p.i1];
        const auto y2 = table[p.i2];
        const auto y3 = table[p.i3];

        // Kept in this nesting: the order of the float operations is part of
        // the sound, and another order changes renders in their last bits.
        return 0.5f * (2.0f * y1 + f * ((y2 - y0) + f * ((4.0f * y2 - y3 + (2.0f * y0 - 5.0f * y1)) + f * (3.0f * (y1 - y2) + (y3 - y0)))));
    }

    /** The table at phase x, 0 to 1 over its whole length. */
    static float interpolate (const float* table, int length, double x) noexcept
    {
        return valueAt (table, locate (length, x));
    }

    /** Reads the table at each of the phases. */
    static void read (const float* table, int length, const double* phases, float* output, int numSamples) noexcept
    {
        for (int i = 0; i < numSamples; ++i)
            output[i] = interpolate (table, length, phases[i]);
    }

    /** Reads two channels of a table at the same phases, locating each phase
        once. */
    static void read (const float* tableA, const float* tableB, int length, const double* phases, float* outputA,
                      float* outputB, int numSamples) noexcept
    {
        for (int i = 0; i < numSamples; ++i)
        {
            const auto p = locate (length, phases[i]);
            outputA[i] = valueAt (tableA, p);
            outputB[i] = valueAt (tableB, p);
        }
    }

private:
    static constexpr double beyondTable = 1.5;
};
} // namespace Orv::Audio::WavetableSynth

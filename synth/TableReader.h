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

        return cubic (p.fraction, table[p.i0], table[p.i1], table[p.i2], table[p.i3]);
    }

    /** Catmull-Rom between y1 and y2 at fraction f. */
    static float cubic (float f, float y0, float y1, float y2, float y3) noexcept
    {
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
        const float* tables[] = { table };
        float* outputs[] = { output };
        readTables (tables, outputs, 1, length, phases, numSamples);
    }

    /** Reads two channels of a table at the same phases, locating each phase
        once. */
    static void read (const float* tableA, const float* tableB, int length, const double* phases, float* outputA,
                      float* outputB, int numSamples) noexcept
    {
        const float* tables[] = { tableA, tableB };
        float* outputs[] = { outputA, outputB };
        readTables (tables, outputs, 2, length, phases, numSamples);
    }

private:
    static constexpr double beyondTable = 1.5;
    static constexpr int chunkSize = 64;

    /** The same values as interpolate(), sample for sample, in stages that a
        compiler can vectorise: positions for a chunk of phases, the four
        samples around each, then the cubic over the whole chunk. The float
        operations and their order are those of valueAt(); only the loop
        structure differs. A chunk with a phase at or past 1 takes the plain
        path. */
    static void readTables (const float* const* tables, float* const* outputs, int numTables, int length,
                            const double* phases, int numSamples) noexcept
    {
        int i0[chunkSize], i1[chunkSize], i2[chunkSize], i3[chunkSize];
        float f[chunkSize], y0[chunkSize], y1[chunkSize], y2[chunkSize], y3[chunkSize];
        for (int start = 0; start < numSamples; start += chunkSize)
        {
            const auto n = std::min (chunkSize, numSamples - start);
            const auto* x = phases + start;

            bool inside = length > 1;
            for (int k = 0; k < n && inside; ++k)
                inside = x[k] < 1.0;

            if (! inside)
            {
                for (int t = 0; t < numTables; ++t)
                    for (int k = 0; k < n; ++k)
                        outputs[t][start + k] = interpolate (tables[t], length, x[k]);
                continue;
            }

            for (int k = 0; k < n; ++k)
            {
                const auto p = locate (length, x[k]);
                f[k] = p.fraction;
                i0[k] = p.i0;
                i1[k] = p.i1;
                i2[k] = p.i2;
                i3[k] = p.i3;
            }

            for (int t = 0; t < numTables; ++t)
            {
                const auto* table = tables[t];
                for (int k = 0; k < n; ++k)
                {
                    y0[k] = table[i0[k]];
                    y1[k] = table[i1[k]];
                    y2[k] = table[i2[k]];
                    y3[k] = table[i3[k]];
                }

                auto* out = outputs[t] + start;
                for (int k = 0; k < n; ++k)
                    out[k] = cubic (f[k], y0[k], y1[k], y2[k], y3[k]);
            }
        }
    }
};
} // namespace Orv::Audio::WavetableSynth

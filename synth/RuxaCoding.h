#pragma once

#include <cstddef>
#include <cstdint>

namespace Orv::Audio::Formats::Ruxa
{
/** Where one compressed block of one channel lies in the data area, and how
    many bytes it decodes to. */
struct BlockRecord
{
    int64_t offset = 0;
    int64_t compressedSize = 0;
    int64_t uncompressedSize = 0;
};

/** A block record in the file: three 64-bit integers. */
inline constexpr int64_t blockRecordBytes = 3 * static_cast<int64_t> (sizeof (int64_t));

//==============================================================================
/** 16-bit payloads: little-endian words, each the difference to the sample
    before it modulo 2^16. */
struct Coding16
{
    static constexpr int bits = 16;
    static constexpr int bytes = 2;
    static constexpr uint32_t mask = 0xFFFFu;
    /** Samples travel in the top bits of a 32-bit integer, as JUCE's integer
        readers and writers hold them. */
    static constexpr int shift = 32 - bits;

    static uint32_t load (const uint8_t* p) noexcept
    {
        return static_cast<uint32_t> (p[0]) | (static_cast<uint32_t> (p[1]) << 8);
    }

    static void store (uint8_t* p, uint32_t value) noexcept
    {
        p[0] = static_cast<uint8_t> (value);
        p[1] = static_cast<uint8_t> (value >> 8);
    }
};

/** 24-bit payloads: groups of three bytes, most significant first, each the
    difference to the sample before it modulo 2^24. */
struct Coding24
{
    static constexpr int bits = 24;
    static constexpr int bytes = 3;
    static constexpr uint32_t mask = 0xFFFFFFu;
    static constexpr int shift = 32 - bits;

    static uint32_t load (const uint8_t* p) noexcept
    {
        return (static_cast<uint32_t> (p[0]) << 16) | (static_cast<uint32_t> (p[1]) << 8) | static_cast<uint32_t> (p[2]);
    }

    static void store (uint8_t* p, uint32_t value) noexcept
    {
        p[0] = static_cast<uint8_t> (value >> 16);
        p[1] = static_cast<uint8_t> (value >> 8);
        p[2] = static_cast<uint8_t> (value);
    }
};

/** Any thread: the bytes one sample takes in a payload, or 0 for a bit depth
    that the format does not have. */
constexpr int bytesPerSample (int bitsPerSample) noexcept
{
    return bitsPerSample == Coding16::bits ? Coding16::bytes
         : bitsPerSample == Coding24::bits ? Coding24::bytes
                                           : 0;
}

//==============================================================================
/** Any thread: the payload of one block, numSamples * Coding::bytes bytes, from
    the top bits of the samples. The first word is the raw sample (its
    difference to zero), so that every block decodes on its own. */
template <typename Coding>
void encodeBlock (const int32_t* samples, int numSamples, uint8_t* payload) noexcept
{
    uint32_t previous = 0;

    for (int i = 0; i < numSamples; ++i)
    {
        const auto sample = (static_cast<uint32_t> (samples[i]) >> Coding::shift) & Coding::mask;
        Coding::store (payload + static_cast<size_t> (i) * Coding::bytes, (sample - previous) & Coding::mask);
        previous = sample;
    }
}

/** Any thread; never allocates: integrates the first `end` samples of a
    decoded payload and writes those from `first` on to dest[0, end - first),
    each in the top bits of an int. */
template <typename Coding>
void integrateBlock (const uint8_t* payload, int first, int end, int* dest) noexcept
{
    uint32_t accumulator = 0;

    for (int i = 0; i < end; ++i)
    {
        accumulator = (accumulator + Coding::load (payload + static_cast<size_t> (i) * Coding::bytes)) & Coding::mask;

        if (i >= first)
            dest[i - first] = static_cast<int> (accumulator << Coding::shift);
    }
}
} // namespace Orv::Audio::Formats::Ruxa

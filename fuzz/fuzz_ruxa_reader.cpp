// libFuzzer target: arbitrary bytes opened as a RUXA file and read in ranges.
//
// What counts as a failure: any crash, hang or sanitizer report; a read that
// writes outside the range it was given; and, for a file that opens and is
// small enough, samples that do not survive being written again and read back
// (everything a reader gives is top-aligned, so the format must keep it).

#include "synth/RuxaFormat.h"
#include "synth/RuxaReader.h"
#include "synth/RuxaWriter.h"

#include <cstdint>
#include <cstdio>
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>

namespace
{
using namespace Orv::Audio::Formats::Ruxa;

constexpr int numRanges = 8;
/** Longest range read at once, so a huge claimed length costs no memory here. */
constexpr int maxRangeLength = 5000;
/** Ranges may start this far in front of the file and behind its end. */
constexpr int overhang = 100;
/** Samples around each destination that no read may touch. */
constexpr int guardLength = 16;
constexpr int guardValue = 0x13579BDF;
/** Files up to this many samples in all are read whole and written again. */
constexpr juce::int64 maxRoundTripSamples = 1 << 16;

[[noreturn]] void fail (const char* what)
{
    std::fprintf (stderr, "fuzz_ruxa_reader: %s\n", what);
    std::abort();
}

/** A destination per channel, one more than the file has, with guards. */
struct Destination
{
    std::vector<std::vector<int>> channels;
    std::vector<int*> pointers;

    Destination (int numChannels, int length, int fill)
    {
        for (int channel = 0; channel < numChannels; ++channel)
        {
            std::vector<int> samples (static_cast<size_t> (length + 2 * guardLength), fill);
            std::fill_n (samples.begin(), guardLength, guardValue);
            std::fill_n (samples.end() - guardLength, guardLength, guardValue);
            channels.push_back (std::move (samples));
        }

        for (auto& channel : channels)
            pointers.push_back (channel.data() + guardLength);
    }

    void checkGuards() const
    {
        for (const auto& channel : channels)
            for (int i = 0; i < guardLength; ++i)
                if (channel[(size_t) i] != guardValue || channel[channel.size() - 1 - (size_t) i] != guardValue)
                    fail ("a read wrote outside its range");
    }
};

/** FNV-1a over the input. */
juce::int64 seedFrom (const uint8_t* data, size_t size)
{
    constexpr uint64_t offsetBasis = 14695981039346656037ull;
    constexpr uint64_t prime = 1099511628211ull;
    uint64_t hash = offsetBasis;

    for (size_t i = 0; i < size; ++i)
        hash = (hash ^ data[i]) * prime;

    return static_cast<juce::int64> (hash);
}

void readWhole (juce::AudioFormatReader& reader, Destination& dest)
{
    reader.readSamples (dest.pointers.data(), (int) dest.pointers.size(), 0, 0, (int) reader.lengthInSamples);
    dest.checkGuards();
}

/** Writes what was read as a file of the same shape and checks that it reads back the same. */
void checkRoundTrip (juce::AudioFormatReader& reader)
{
    const auto numChannels = static_cast<int> (reader.numChannels);
    const auto length = static_cast<int> (reader.lengthInSamples);
    Destination first (numChannels, length, 0);
    readWhole (reader, first);

    juce::MemoryBlock file;
    {
        Writer writer (new juce::MemoryOutputStream (file, false), reader.sampleRate, reader.numChannels, reader.bitsPerSample);
        std::vector<const int*> channels (first.pointers.begin(), first.pointers.end());
        channels.push_back (nullptr);
        writer.write (channels.data(), length);
    }

    const std::unique_ptr<juce::AudioFormatReader> again (Format().createReaderFor (new juce::MemoryInputStream (file, false), true));
    if (again == nullptr || again->numChannels != reader.numChannels || again->lengthInSamples != reader.lengthInSamples)
        fail ("what was read did not write back as a file of the same shape");

    Destination second (numChannels, length, 0);
    readWhole (*again, second);
    if (second.channels != first.channels)
        fail ("what was read did not survive being written again");
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput (const uint8_t* data, size_t size)
{
    const std::unique_ptr<juce::AudioFormatReader> reader (Format().createReaderFor (new juce::MemoryInputStream (data, size, false), true));

    if (reader == nullptr)
        return 0;

    if (reader->numChannels == 0 || reader->lengthInSamples < 0)
        fail ("an opened file has no channels or a negative length");

    // The ranges follow from the bytes, so that a finding replays.
    juce::Random random (seedFrom (data, size));
    const auto length = reader->lengthInSamples;

    for (int range = 0; range < numRanges; ++range)
    {
        const auto span = static_cast<int> (std::min<juce::int64> (length + 2 * overhang, 1 << 30));
        const auto start = static_cast<juce::int64> (random.nextInt (span)) - overhang;
        const auto count = random.nextInt (maxRangeLength) + 1;
        // One channel more than the file has, and now and then a channel left out.
        Destination dest (static_cast<int> (reader->numChannels) + 1, count, guardValue);
        if (random.nextInt (4) == 0)
            dest.pointers[(size_t) random.nextInt ((int) dest.pointers.size())] = nullptr;

        if (! reader->readSamples (dest.pointers.data(), (int) dest.pointers.size(), 0, start, count))
            fail ("readSamples returned false");
        dest.checkGuards();
    }

    if (length * reader->numChannels <= maxRoundTripSamples)
        checkRoundTrip (*reader);

    return 0;
}

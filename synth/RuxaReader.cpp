#include "synth/RuxaReader.h"

#include "synth/RuxaFormat.h"

#include <lz4.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace Orv::Audio::Formats::Ruxa
{
namespace
{
/** An LZ4 block cannot decode to more than 255 times its own size: the
    longest run of output per input byte is a match-length byte of 255. A
    record that claims more is forged, and would only make us allocate. */
constexpr int64_t lz4MaxExpansion = 255;

bool readExactly (juce::InputStream& in, void* dest, int size)
{
    return in.read (dest, size) == size;
}

bool readInt32 (juce::InputStream& in, int32_t& value)
{
    char bytes[sizeof (int32_t)];

    if (! readExactly (in, bytes, sizeof (bytes)))
        return false;

    value = static_cast<int32_t> (juce::ByteOrder::littleEndianInt (bytes));
    return true;
}

bool readInt64 (juce::InputStream& in, int64_t& value)
{
    char bytes[sizeof (int64_t)];

    if (! readExactly (in, bytes, sizeof (bytes)))
        return false;

    value = static_cast<int64_t> (juce::ByteOrder::littleEndianInt64 (bytes));
    return true;
}

bool readDouble (juce::InputStream& in, double& value)
{
    int64_t bits = 0;

    if (! readInt64 (in, bits))
        return false;

    static_assert (sizeof (bits) == sizeof (value), "doubles are stored as their 64 bits");
    std::memcpy (&value, &bits, sizeof (value));
    return true;
}

/** Whether a record can be what the writer made for a block of this many
    bytes, inside a data area of this size. Every bound here is also what
    keeps a forged file from making the reader allocate more than the stream
    could really decode to. */
bool isPlausible (const BlockRecord& record, int64_t expectedDecodedBytes, int64_t dataSize)
{
    // The writer cannot compress a larger block, so a larger one is not ours.
    if (record.uncompressedSize != expectedDecodedBytes || expectedDecodedBytes > LZ4_MAX_INPUT_SIZE)
        return false;

    const auto minimumCompressed = (expectedDecodedBytes + lz4MaxExpansion - 1) / lz4MaxExpansion;
    const auto maximumCompressed = static_cast<int64_t> (LZ4_compressBound (static_cast<int> (expectedDecodedBytes)));

    return record.compressedSize >= minimumCompressed
        && record.compressedSize <= maximumCompressed
        && record.offset >= 0
        && record.offset <= dataSize
        && record.compressedSize <= dataSize - record.offset;
}
} // namespace

Reader::Reader (juce::InputStream* stream, std::shared_ptr<Cache> cacheToUse)
    : juce::AudioFormatReader (stream, Format::formatName),
      cache (cacheToUse != nullptr ? std::move (cacheToUse) : std::make_shared<Cache>())
{
    valid = input != nullptr && readHeader() && checkBlocks();

    if (! valid)
    {
        sampleRate = 0.0;
        numChannels = 0;
        bitsPerSample = 0;
        lengthInSamples = 0;
        blocks.clear();
    }
}

Reader::~Reader() = default;

bool Reader::readHeader()
{
    auto& in = *input;
    const auto totalLength = in.getTotalLength();

    // Without a length nothing in the tables can be checked against the stream.
    if (totalLength < 0 || ! in.setPosition (0) || ! Format::readMagic (in))
        return false;

    double rate = 0.0;
    int32_t channels = 0, bits = 0, samplesPerBlock = 0;
    int64_t length = 0;

    if (! readDouble (in, rate) || ! readInt32 (in, channels) || ! readInt32 (in, bits)
        || ! readInt64 (in, length) || ! readInt32 (in, samplesPerBlock))
        return false;

    if (! std::isfinite (rate) || rate <= 0.0 || channels <= 0 || bytesPerSample (bits) == 0
        || length < 0 || samplesPerBlock <= 0)
        return false;

    const auto expectedBlocks = length / samplesPerBlock + (length % samplesPerBlock != 0 ? 1 : 0);

    if (expectedBlocks > std::numeric_limits<int32_t>::max())
        return false;

    // Every channel's table must fit in what is left of the stream before any
    // of it is allocated; a forged count is then bounded by the stream's size.
    const auto tableBytesPerChannel = static_cast<int64_t> (sizeof (int32_t)) + expectedBlocks * blockRecordBytes;

    if ((totalLength - in.getPosition()) / tableBytesPerChannel < channels)
        return false;

    blocks.resize (static_cast<size_t> (channels));

    for (auto& table : blocks)
    {
        int32_t numBlocks = 0;

        if (! readInt32 (in, numBlocks) || numBlocks != expectedBlocks)
            return false;

        table.resize (static_cast<size_t> (numBlocks));

        for (auto& record : table)
            if (! readInt64 (in, record.offset) || ! readInt64 (in, record.compressedSize)
                || ! readInt64 (in, record.uncompressedSize))
                return false;
    }

    dataStart = in.getPosition();
    sampleRate = rate;
    numChannels = static_cast<unsigned int> (channels);
    bitsPerSample = static_cast<unsigned int> (bits);
    lengthInSamples = length;
    blockSize = samplesPerBlock;
    return true;
}

bool Reader::checkBlocks()
{
    const auto dataSize = input->getTotalLength() - dataStart;
    const auto sampleBytes = bytesPerSample (static_cast<int> (bitsPerSample));
    int64_t largestCompressed = 0, largestDecoded = 0;

    for (const auto& table : blocks)
    {
        for (size_t block = 0; block < table.size(); ++block)
        {
            const auto blockStart = static_cast<int64_t> (block) * blockSize;
            const auto samplesInBlock = std::min (static_cast<int64_t> (blockSize), static_cast<int64_t> (lengthInSamples) - blockStart);
            const auto& record = table[block];

            if (! isPlausible (record, samplesInBlock * sampleBytes, dataSize))
                return false;

            largestCompressed = std::max (largestCompressed, record.compressedSize);
            largestDecoded = std::max (largestDecoded, record.uncompressedSize);
        }
    }

    // Sized once here, so that no read has to grow it.
    cache->prepare (static_cast<size_t> (largestCompressed), static_cast<size_t> (largestDecoded));
    return true;
}

//==============================================================================
bool Reader::readSamples (int* const* destSamples, int numDestChannels, int startOffsetInDestBuffer,
                          juce::int64 startSampleInFile, int numSamples)
{
    clearSamplesBeyondAvailableLength (destSamples, numDestChannels, startOffsetInDestBuffer,
                                       startSampleInFile, numSamples, lengthInSamples);

    if (destSamples == nullptr || numSamples <= 0)
        return true;

    // Before the file's start there is silence; AudioFormatReader::read sees to
    // this itself, a direct caller may not.
    if (startSampleInFile < 0)
    {
        const auto silent = static_cast<int> (std::min (static_cast<juce::int64> (numSamples), -startSampleInFile));

        for (int channel = 0; channel < numDestChannels; ++channel)
            if (destSamples[channel] != nullptr)
                std::fill_n (destSamples[channel] + startOffsetInDestBuffer, silent, 0);

        startOffsetInDestBuffer += silent;
        numSamples -= silent;
        startSampleInFile += silent;
    }

    for (int channel = 0; channel < numDestChannels; ++channel)
    {
        auto* dest = destSamples[channel];

        if (dest == nullptr)
            continue;

        if (channel < static_cast<int> (numChannels))
            readChannel (channel, startSampleInFile, numSamples, dest + startOffsetInDestBuffer);
        else
            std::fill_n (dest + startOffsetInDestBuffer, numSamples, 0);
    }

    return true;
}

void Reader::readChannel (int channel, juce::int64 startSample, int numSamples, int* dest)
{
    if (numSamples <= 0)
        return;

    const auto& table = blocks[static_cast<size_t> (channel)];
    const auto endSample = startSample + numSamples;
    const auto firstBlock = startSample / blockSize;
    const auto lastBlock = (endSample - 1) / blockSize;

    for (auto block = firstBlock; block <= lastBlock; ++block)
    {
        const auto blockStart = block * blockSize;
        const auto first = static_cast<int> (std::max (startSample, blockStart) - blockStart);
        const auto end = static_cast<int> (std::min (endSample, blockStart + blockSize) - blockStart);
        const auto decoded = decodeBlock (table[static_cast<size_t> (block)]);
        auto* blockDest = dest + (blockStart + first - startSample);

        if (bitsPerSample == Coding16::bits)
            integrateBlock<Coding16> (cache->getDecoded(), first, std::min (end, decoded), blockDest);
        else
            integrateBlock<Coding24> (cache->getDecoded(), first, std::min (end, decoded), blockDest);
    }
}

int Reader::decodeBlock (const BlockRecord& record)
{
    const auto compressedSize = static_cast<int> (record.compressedSize);
    const auto decodedSize = static_cast<int> (record.uncompressedSize);
    cache->prepare (static_cast<size_t> (compressedSize), static_cast<size_t> (decodedSize));

    // A stream that gives fewer bytes than it said it had decodes to nothing.
    if (! input->setPosition (dataStart + record.offset)
        || ! readExactly (*input, cache->getCompressed(), compressedSize))
        return 0;

    const auto decodedBytes = LZ4_decompress_safe (cache->getCompressed(), reinterpret_cast<char*> (cache->getDecoded()),
                                                   compressedSize, decodedSize);

    return std::max (0, decodedBytes) / bytesPerSample (static_cast<int> (bitsPerSample));
}
} // namespace Orv::Audio::Formats::Ruxa

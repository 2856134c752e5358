#include "synth/DefaultFormatManager.h"
#include "synth/RuxaFormat.h"
#include "synth/RuxaReader.h"
#include "synth/RuxaWriter.h"

#include "support/AllocationCounter.h"

#include <gtest/gtest.h>
#include <lz4.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

namespace
{
using namespace Orv::Audio::Formats::Ruxa;
using Signal = std::vector<std::vector<int32_t>>;

constexpr double testRate = 48000.0;
/** What a destination holds before a read, to tell untouched samples apart. */
constexpr int sentinel = 0x5A5A5A5A;

/** Full-range samples; the format keeps their top bits. */
Signal makeSignal (int numChannels, int length, juce::int64 seed)
{
    juce::Random random (seed);
    Signal signal (static_cast<size_t> (numChannels));

    for (auto& channel : signal)
        for (int i = 0; i < length; ++i)
            channel.push_back (random.nextInt());

    return signal;
}

int32_t topBits (int32_t sample, int bits)
{
    return static_cast<int32_t> (static_cast<uint32_t> (sample) & (~0u << (32 - bits)));
}

/** Writes through the format (default block size) or a writer of the given
    block size, in uneven pieces so that appends are exercised. */
juce::MemoryBlock writeFile (const Signal& signal, int bits, int blockSize = Format::defaultBlockSize)
{
    constexpr int pieceLength = 3001;
    juce::MemoryBlock file;
    auto* stream = new juce::MemoryOutputStream (file, false);
    const auto numChannels = static_cast<unsigned int> (signal.size());
    std::unique_ptr<juce::AudioFormatWriter> writer;

    if (blockSize == Format::defaultBlockSize)
        writer.reset (Format().createWriterFor (stream, testRate, numChannels, bits, {}, 0));
    else
        writer = std::make_unique<Writer> (stream, testRate, numChannels, static_cast<unsigned int> (bits), blockSize);

    const auto length = static_cast<int> (signal.front().size());

    for (int start = 0; start < length; start += pieceLength)
    {
        std::vector<const int*> channels;
        for (const auto& channel : signal)
            channels.push_back (channel.data() + start);
        channels.push_back (nullptr);

        writer->write (channels.data(), std::min (pieceLength, length - start));
    }

    writer.reset();
    return file;
}

std::unique_ptr<juce::AudioFormatReader> openFile (const juce::MemoryBlock& file)
{
    // A copy, so that the reader may outlive the block it was opened from.
    return std::unique_ptr<juce::AudioFormatReader> (Format().createReaderFor (new juce::MemoryInputStream (file, true), true));
}

/** Reads a range into destinations that start out as the sentinel. */
Signal readRange (juce::AudioFormatReader& reader, int numChannels, juce::int64 start, int count)
{
    Signal out (static_cast<size_t> (numChannels), std::vector<int32_t> (static_cast<size_t> (count), sentinel));
    std::vector<int*> channels;
    for (auto& channel : out)
        channels.push_back (channel.data());

    reader.readSamples (channels.data(), numChannels, 0, start, count);
    return out;
}

/** The file as the format lays it out, parsed without the reader. */
struct ParsedFile
{
    double rate = 0.0;
    int numChannels = 0, bits = 0, blockSize = 0;
    juce::int64 length = 0, dataStart = 0;
    std::vector<std::vector<BlockRecord>> blocks;
    juce::MemoryBlock file;

    explicit ParsedFile (const juce::MemoryBlock& bytes) : file (bytes)
    {
        juce::MemoryInputStream in (file, false);
        EXPECT_EQ (in.readString(), "RUXA");
        rate = in.readDouble();
        numChannels = in.readInt();
        bits = in.readInt();
        length = in.readInt64();
        blockSize = in.readInt();

        for (int channel = 0; channel < numChannels; ++channel)
        {
            blocks.emplace_back (static_cast<size_t> (in.readInt()));
            for (auto& record : blocks.back())
                record = { in.readInt64(), in.readInt64(), in.readInt64() };
        }

        dataStart = in.getPosition();
    }

    std::vector<uint8_t> decode (int channel, int block) const
    {
        const auto& record = blocks[static_cast<size_t> (channel)][static_cast<size_t> (block)];
        std::vector<uint8_t> payload (static_cast<size_t> (record.uncompressedSize));
        const auto* source = static_cast<const char*> (file.getData()) + dataStart + record.offset;
        const auto size = LZ4_decompress_safe (source, reinterpret_cast<char*> (payload.data()),
                                               static_cast<int> (record.compressedSize), static_cast<int> (payload.size()));
        EXPECT_EQ (size, static_cast<int> (payload.size()));
        return payload;
    }
};

//==============================================================================
TEST (RuxaFormat, RoundTripsTheTopBitsOfEveryLengthDepthAndChannelCount)
{
    for (const int bits : { 16, 24 })
        for (const int numChannels : { 1, 2 })
            for (const int length : { 0, 1, 4096, 4097, 100000 })
            {
                SCOPED_TRACE (juce::String (bits) + " bits, " + juce::String (numChannels) + " channels, "
                              + juce::String (length) + " samples");
                const auto signal = makeSignal (numChannels, length, bits * 7 + length + numChannels);
                const auto reader = openFile (writeFile (signal, bits));
                ASSERT_NE (reader, nullptr);
                EXPECT_EQ (reader->sampleRate, testRate);
                EXPECT_EQ (reader->numChannels, static_cast<unsigned int> (numChannels));
                EXPECT_EQ (reader->bitsPerSample, static_cast<unsigned int> (bits));
                EXPECT_EQ (reader->lengthInSamples, length);
                EXPECT_FALSE (reader->usesFloatingPointData);

                // One channel more than the file has: it must come back silent.
                const auto read = readRange (*reader, numChannels + 1, 0, length);
                for (int channel = 0; channel < numChannels; ++channel)
                    for (int i = 0; i < length; ++i)
                        ASSERT_EQ (read[channel][i], topBits (signal[channel][i], bits)) << "channel " << channel << " sample " << i;
                for (int i = 0; i < length; ++i)
                    ASSERT_EQ (read[numChannels][i], 0);
            }
}

TEST (RuxaFormat, RandomRangesFromTwoReadersSharingACacheMatchTheWrittenSamples)
{
    constexpr int length = 100000;
    constexpr int numRanges = 200;
    constexpr int maxRangeLength = 10000;
    constexpr int overhang = 500;
    constexpr int maxDestOffset = 7;

    for (const int bits : { 16, 24 })
    {
        SCOPED_TRACE (bits);
        const auto signal = makeSignal (2, length, bits);
        const auto file = writeFile (signal, bits);
        Reader first (new juce::MemoryInputStream (file, false));
        Reader second (new juce::MemoryInputStream (file, false), first.getCache());
        juce::Random random (bits);

        // Each read follows the other reader's use of the cache.
        for (int range = 0; range < numRanges; ++range)
        {
            const auto start = static_cast<juce::int64> (random.nextInt (length + 2 * overhang)) - overhang;
            const auto count = 1 + random.nextInt (maxRangeLength);
            const auto destOffset = random.nextInt (maxDestOffset);

            for (auto* reader : { &first, &second })
            {
                Signal dest (2, std::vector<int32_t> (static_cast<size_t> (destOffset + count), sentinel));
                int* channels[] = { dest[0].data(), dest[1].data() };
                EXPECT_TRUE (reader->readSamples (channels, 2, destOffset, start, count));

                for (size_t channel = 0; channel < 2; ++channel)
                {
                    for (int i = 0; i < destOffset; ++i)
                        ASSERT_EQ (dest[channel][(size_t) i], sentinel) << "wrote in front of the destination offset";

                    for (int i = 0; i < count; ++i)
                    {
                        const auto at = start + i;
                        const auto expected = at >= 0 && at < length ? topBits (signal[channel][(size_t) at], bits) : 0;
                        ASSERT_EQ (dest[channel][(size_t) (destOffset + i)], expected) << "start " << start << " count " << count << " at " << i;
                    }
                }
            }
        }
    }
}

//==============================================================================
TEST (RuxaFormat, PayloadsAreDifferencesThatWrapInTheirWordSize)
{
    struct Case
    {
        int bits;
        std::vector<int32_t> samples;
        std::vector<uint8_t> payload;
    };
    const Case cases[] = {
        // 32767 then -32768: the difference wraps to 1. Words are little endian.
        { 16, { 32767 << 16, -32768 * 65536, 0x1234 << 16 }, { 0xFF, 0x7F, 0x01, 0x00, 0x34, 0x92 } },
        // Groups of three, most significant first; -0x800000 - 0x7FFFFF wraps to 1.
        { 24, { 0x7FFFFF << 8, -0x800000 * 256, 0x123456 << 8 }, { 0x7F, 0xFF, 0xFF, 0x00, 0x00, 0x01, 0x92, 0x34, 0x56 } },
    };

    for (const auto& c : cases)
    {
        SCOPED_TRACE (c.bits);
        const auto file = writeFile ({ c.samples }, c.bits, 64);
        const ParsedFile parsed (file);
        ASSERT_EQ (parsed.blocks[0].size(), 1u);
        EXPECT_EQ (parsed.decode (0, 0), c.payload);

        const auto reader = openFile (file);
        ASSERT_NE (reader, nullptr);
        EXPECT_EQ (readRange (*reader, 1, 0, 3)[0], c.samples);
    }
}

TEST (RuxaFormat, HeaderAndTablesAreLaidOutAsTheFormatSays)
{
    for (const int bits : { 16, 24 })
    {
        SCOPED_TRACE (bits);
        const int sampleBytes = bits / 8;
        auto signal = makeSignal (2, 4097, bits);
        signal[1][4096] = 0x123456 << 8;
        const ParsedFile parsed (writeFile (signal, bits));

        EXPECT_EQ (parsed.rate, testRate);
        EXPECT_EQ (parsed.numChannels, 2);
        EXPECT_EQ (parsed.bits, bits);
        EXPECT_EQ (parsed.length, 4097);
        EXPECT_EQ (parsed.blockSize, Format::defaultBlockSize);

        // Two blocks a channel, the second holding one raw sample; channel 0's
        // blocks first, each starting where the one before ended.
        juce::int64 nextOffset = 0;
        for (int channel = 0; channel < 2; ++channel)
        {
            ASSERT_EQ (parsed.blocks[(size_t) channel].size(), 2u);
            EXPECT_EQ (parsed.blocks[(size_t) channel][0].uncompressedSize, 4096 * sampleBytes);
            EXPECT_EQ (parsed.blocks[(size_t) channel][1].uncompressedSize, sampleBytes);

            for (const auto& record : parsed.blocks[(size_t) channel])
            {
                EXPECT_EQ (record.offset, nextOffset);
                nextOffset += record.compressedSize;
            }
        }
        EXPECT_EQ (parsed.dataStart + nextOffset, (juce::int64) parsed.file.getSize()) << "no padding, no trailer";

        const auto lastPayload = parsed.decode (1, 1);
        const auto expected = bits == 16 ? std::vector<uint8_t> { 0x34, 0x12 } : std::vector<uint8_t> { 0x12, 0x34, 0x56 };
        EXPECT_EQ (lastPayload, expected);
    }
}

TEST (RuxaFormat, ZeroSamplesGiveZeroBlocksAndNoData)
{
    const auto file = writeFile (Signal (2), 16);
    const ParsedFile parsed (file);
    EXPECT_EQ (parsed.length, 0);
    ASSERT_EQ (parsed.blocks.size(), 2u);
    EXPECT_TRUE (parsed.blocks[0].empty());
    EXPECT_TRUE (parsed.blocks[1].empty());
    EXPECT_EQ (parsed.dataStart, (juce::int64) file.getSize());
}

TEST (RuxaFormat, OpensThroughTheDefaultFormatsByItsExtensionOrByContent)
{
    constexpr int length = 5000;
    const auto signal = makeSignal (2, length, 23);
    const auto file = writeFile (signal, 24);

    for (const auto* extension : { "ruxa", "RUXA", "wav", "" })
    {
        SCOPED_TRACE (extension);
        const auto opened = Orv::Audio::DefaultFormatManager::getInstance().open (
            std::make_unique<juce::MemoryInputStream> (file, false), extension);
        ASSERT_NE (opened, nullptr);
        EXPECT_EQ (opened->getNumChannels(), 2);
        EXPECT_EQ (opened->getLengthInSamples(), length);
        EXPECT_EQ (opened->getBitsPerSample(), 24);

        juce::AudioBuffer<float> audio (2, length);
        ASSERT_TRUE (opened->read (audio, 0, length, 0));
        constexpr float fullScale = 2147483648.0f;
        constexpr float tolerance = 1.0e-6f;
        for (const int i : { 0, length / 2, length - 1 })
            EXPECT_NEAR (audio.getSample (1, i), (float) topBits (signal[1][(size_t) i], 24) / fullScale, tolerance) << i;
    }
}

//==============================================================================
/** A small file with several blocks per channel, for damage. */
constexpr int smallLength = 300;
constexpr int smallBlockSize = 64;
constexpr int smallBlocks = 5;

/** Overwrites a little-endian field of 4 or 8 bytes. */
void poke (juce::MemoryBlock& file, size_t at, int size, juce::int64 value)
{
    juce::MemoryOutputStream out (file.getSize());
    if (size == 4)
        out.writeInt (static_cast<int> (value));
    else
        out.writeInt64 (value);
    file.copyFrom (out.getData(), static_cast<int> (at), out.getDataSize());
}

juce::MemoryBlock makeSmallFile()
{
    return writeFile (makeSignal (2, smallLength, 11), 16, smallBlockSize);
}

TEST (RuxaReader, AStreamOfAnotherFormatIsLeftAsItWasUnlessItIsToBeDeleted)
{
    Format format;
    EXPECT_EQ (format.createReaderFor (nullptr, true), nullptr);

    auto wrongMagic = makeSmallFile();
    static_cast<char*> (wrongMagic.getData())[3] = 'B';
    auto badHeader = makeSmallFile();
    static_cast<char*> (badHeader.getData())[17] = 8; // bits per sample

    for (const auto* file : { &wrongMagic, &badHeader })
    {
        constexpr int somewhereInside = 2;
        juce::MemoryInputStream stream (*file, false);
        stream.setPosition (somewhereInside);
        EXPECT_EQ (format.createReaderFor (&stream, false), nullptr);
        EXPECT_EQ (stream.getPosition(), somewhereInside);
    }
}

TEST (RuxaReader, EveryTruncationOfAFileIsRefused)
{
    const auto file = makeSmallFile();
    ASSERT_NE (openFile (file), nullptr);

    for (size_t size = 0; size < file.getSize(); ++size)
        EXPECT_EQ (openFile (juce::MemoryBlock (file.getData(), size)), nullptr) << size << " of " << file.getSize() << " bytes";
}

TEST (RuxaReader, HeadersAndTablesThatDoNotHoldTogetherAreRefused)
{
    constexpr size_t rateAt = 5, channelsAt = 13, bitsAt = 17, lengthAt = 21, blockSizeAt = 29, tablesAt = 33;
    constexpr size_t firstRecordAt = tablesAt + 4;
    constexpr size_t secondTableAt = firstRecordAt + smallBlocks * 24;
    constexpr auto int32Max = std::numeric_limits<int32_t>::max();
    constexpr auto int64Max = std::numeric_limits<int64_t>::max();

    struct Damage
    {
        const char* what;
        size_t at;
        int size;
        juce::int64 value;
    };
    const auto bitsOf = [] (double d) { juce::int64 v; std::memcpy (&v, &d, sizeof (v)); return v; };
    const Damage cases[] = {
        { "rate NaN", rateAt, 8, bitsOf (std::nan ("")) },
        { "rate negative", rateAt, 8, bitsOf (-44100.0) },
        { "no channels", channelsAt, 4, 0 },
        { "more channels than tables", channelsAt, 4, 3 },
        { "absurd channels", channelsAt, 4, int32Max },
        { "8 bits", bitsAt, 4, 8 },
        { "negative length", lengthAt, 8, -1 },
        { "length that shortens the last block", lengthAt, 8, smallLength + 1 },
        { "block size zero", blockSizeAt, 4, 0 },
        { "absurd block size", blockSizeAt, 4, int32Max },
        { "block count", tablesAt, 4, smallBlocks - 1 },
        { "second channel's block count", secondTableAt, 4, smallBlocks + 1 },
        { "negative offset", firstRecordAt, 8, -1 },
        { "offset past the data", firstRecordAt, 8, 1 << 20 },
        { "compressed size past the data", firstRecordAt + 8, 8, 1 << 20 },
        { "absurd compressed size", firstRecordAt + 8, 8, int64Max },
        { "empty compressed block", firstRecordAt + 8, 8, 0 },
        { "uncompressed size short", firstRecordAt + 16, 8, smallBlockSize * 2 - 1 },
    };

    const auto file = makeSmallFile();
    ASSERT_EQ (ParsedFile (file).dataStart, (juce::int64) secondTableAt + 4 + smallBlocks * 24) << "offsets above are stale";

    for (const auto& damage : cases)
    {
        auto copy = file;
        poke (copy, damage.at, damage.size, damage.value);
        EXPECT_EQ (openFile (copy), nullptr) << damage.what;
    }
}

TEST (RuxaReader, ABlockThatDecodesShortOrNotAtAllLeavesTheRestAsItWas)
{
    constexpr int damagedBlock = 2;
    constexpr int shortSamples = 20;
    const auto signal = makeSignal (2, smallLength, 11);
    const auto file = makeSmallFile();
    const ParsedFile parsed (file);
    const auto& record = parsed.blocks[0][damagedBlock];
    const auto recordAt = (size_t) 37 + damagedBlock * 24;

    // A valid LZ4 block of the first samples only, in the place of the whole.
    std::vector<uint8_t> payload ((size_t) shortSamples * 2);
    encodeBlock<Coding16> (signal[0].data() + damagedBlock * smallBlockSize, shortSamples, payload.data());
    std::vector<char> shortBlock ((size_t) LZ4_compressBound ((int) payload.size()));
    shortBlock.resize ((size_t) LZ4_compress_default ((const char*) payload.data(), shortBlock.data(), (int) payload.size(), (int) shortBlock.size()));
    ASSERT_LE ((juce::int64) shortBlock.size(), record.compressedSize);
    auto shortened = file;
    std::memcpy (static_cast<char*> (shortened.getData()) + parsed.dataStart + record.offset, shortBlock.data(), shortBlock.size());
    poke (shortened, recordAt + 8, 8, (juce::int64) shortBlock.size());

    auto garbled = file;
    std::memset (static_cast<char*> (garbled.getData()) + parsed.dataStart + record.offset, 0xFF, (size_t) record.compressedSize);

    for (const auto& [damaged, samplesLeft] : { std::pair { &shortened, shortSamples }, std::pair { &garbled, 0 } })
    {
        SCOPED_TRACE (samplesLeft);
        const auto reader = openFile (*damaged);
        ASSERT_NE (reader, nullptr);
        const auto read = readRange (*reader, 2, 0, smallLength);

        for (int i = 0; i < smallLength; ++i)
        {
            const auto inDamage = i / smallBlockSize == damagedBlock && i % smallBlockSize >= samplesLeft;
            ASSERT_EQ (read[0][(size_t) i], inDamage ? sentinel : topBits (signal[0][(size_t) i], 16)) << i;
            ASSERT_EQ (read[1][(size_t) i], topBits (signal[1][(size_t) i], 16)) << i;
        }
    }
}

TEST (RuxaReader, ASteadyReadAllocatesNothing)
{
    constexpr int length = 50000;
    constexpr int readLength = 512;
    constexpr int numReads = 200;
    const auto reader = openFile (writeFile (makeSignal (2, length, 17), 24));
    ASSERT_NE (reader, nullptr);
    std::vector<int> left (readLength), right (readLength);
    int* channels[] = { left.data(), right.data() };
    reader->readSamples (channels, 2, 0, 0, readLength);

    const Orv::Testing::AllocationCounter counter;
    for (int i = 0; i < numReads; ++i)
        reader->readSamples (channels, 2, 0, (juce::int64) i * (length / numReads), readLength);

    EXPECT_EQ (counter.getCount(), 0);
    EXPECT_NE (left, right) << "the reads must really decode";
}
} // namespace

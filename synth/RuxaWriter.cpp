#include "synth/RuxaWriter.h"

#include <algorithm>

namespace Orv::Audio::Formats::Ruxa
{
Writer::Writer (juce::OutputStream* stream, double rate, unsigned int channels, unsigned int bits, int samplesPerBlock)
    : juce::AudioFormatWriter (stream, Format::formatName, rate, channels, bits),
      blockSize (juce::jlimit (1, maxBlockSize, samplesPerBlock)),
      channelSamples (channels),
      blocks (channels)
{
    jassert (bytesPerSample (static_cast<int> (bits)) != 0); // Format::createWriterFor refuses other depths
}

Writer::~Writer()
{
    if (output != nullptr)
        writeFile();
}

bool Writer::write (const int** samplesToWrite, int numSamples)
{
    if (numSamples <= 0)
        return true;

    bool listEnded = samplesToWrite == nullptr;

    for (auto& samples : channelSamples)
    {
        const int* source = listEnded ? nullptr : *samplesToWrite++;
        listEnded = listEnded || source == nullptr;

        if (source != nullptr)
            samples.insert (samples.end(), source, source + numSamples);
        else
            samples.resize (samples.size() + static_cast<size_t> (numSamples), 0);
    }

    return true;
}

void Writer::writeFile()
{
    auto& out = *output;
    const auto length = channelSamples.empty() ? 0 : channelSamples.front().size();

    out.writeString (Format::magic);
    out.writeDouble (sampleRate);
    out.writeInt (static_cast<int> (numChannels));
    out.writeInt (static_cast<int> (bitsPerSample));
    out.writeInt64 (static_cast<juce::int64> (length));
    out.writeInt (blockSize);

    for (size_t channel = 0; channel < channelSamples.size(); ++channel)
        compressChannel (channelSamples[channel], blocks[channel]);

    for (const auto& records : blocks)
    {
        out.writeInt (static_cast<int> (records.size()));

        for (const auto& record : records)
        {
            out.writeInt64 (record.offset);
            out.writeInt64 (record.compressedSize);
            out.writeInt64 (record.uncompressedSize);
        }
    }

    out.write (data.data(), data.size());
    out.flush();
}

void Writer::compressChannel (const std::vector<int32_t>& samples, std::vector<BlockRecord>& records)
{
    const auto sampleBytes = bytesPerSample (static_cast<int> (bitsPerSample));
    std::vector<uint8_t> payload (static_cast<size_t> (std::min (samples.size(), static_cast<size_t> (blockSize))) * static_cast<size_t> (sampleBytes));

    for (size_t start = 0; start < samples.size(); start += static_cast<size_t> (blockSize))
    {
        const auto count = static_cast<int> (std::min (samples.size() - start, static_cast<size_t> (blockSize)));
        const auto payloadSize = count * sampleBytes;

        if (bitsPerSample == Coding16::bits)
            encodeBlock<Coding16> (samples.data() + start, count, payload.data());
        else
            encodeBlock<Coding24> (samples.data() + start, count, payload.data());

        const auto offset = data.size();
        data.resize (offset + static_cast<size_t> (LZ4_compressBound (payloadSize)));
        const auto compressedSize = LZ4_compress_default (reinterpret_cast<const char*> (payload.data()), data.data() + offset,
                                                          payloadSize, LZ4_compressBound (payloadSize));
        data.resize (offset + static_cast<size_t> (compressedSize));

        records.push_back ({ static_cast<int64_t> (offset), static_cast<int64_t> (compressedSize),
                             static_cast<int64_t> (payloadSize) });
    }
}
} // namespace Orv::Audio::Formats::Ruxa

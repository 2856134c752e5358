#pragma once

#include "synth/RuxaCoding.h"
#include "synth/RuxaFormat.h"

#include <juce_audio_formats/juce_audio_formats.h>
#include <lz4.h>

#include <vector>

namespace Orv::Audio::Formats::Ruxa
{
/** Collects samples and writes the whole file when destroyed: the block
    tables come before the data, so nothing can be written before the last
    sample is known. Not for the audio thread. */
class Writer : public juce::AudioFormatWriter
{
public:
    /** Any thread but the audio thread: takes ownership of the stream. The bit
        depth must be 16 or 24. A block size outside 1 to maxBlockSize is
        brought inside it. */
    Writer (juce::OutputStream* stream, double sampleRate, unsigned int numChannels,
            unsigned int bitsPerSample, int blockSize = Format::defaultBlockSize);

    /** Writes the header, the tables and the data area. A failing stream is
        the stream's business: nothing is reported. */
    ~Writer() override;

    /** The writing thread: appends numSamples of each channel, of which the
        top 16 or 24 bits are kept. A null channel pointer ends the list; the
        channels behind it get silence. Always returns true. */
    bool write (const int** samplesToWrite, int numSamples) override;

    /** The largest block whose 24-bit payload LZ4 can still compress. */
    static constexpr int maxBlockSize = LZ4_MAX_INPUT_SIZE / Coding24::bytes;

private:
    void writeFile();
    /** Cuts a channel into blocks, compresses each onto the data area and
        records where it went. */
    void compressChannel (const std::vector<int32_t>& samples, std::vector<BlockRecord>& records);

    int blockSize;
    std::vector<std::vector<int32_t>> channelSamples;
    std::vector<std::vector<BlockRecord>> blocks;
    std::vector<char> data;
};
} // namespace Orv::Audio::Formats::Ruxa

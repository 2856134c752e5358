#pragma once

#include "synth/RuxaCache.h"
#include "synth/RuxaCoding.h"

#include <juce_audio_formats/juce_audio_formats.h>

#include <memory>
#include <vector>

namespace Orv::Audio::Formats::Ruxa
{
/** Reads a file of the format with random access by block. The header and
    block tables are read and checked once, at construction; a header that
    does not hold together leaves the reader invalid (Format hands out no
    invalid reader). Not thread-safe: one thread at a time. */
class Reader : public juce::AudioFormatReader
{
public:
    /** Any thread but the audio thread (it allocates): takes ownership of the
        stream and reads the header from its position 0. A cache may be shared
        with other readers of the same source that run on the same thread. */
    explicit Reader (juce::InputStream* stream, std::shared_ptr<Cache> cacheToUse = {});
    ~Reader() override;

    /** Any thread: true when the header and tables were read and agree with
        each other and with the length of the stream. */
    bool isValid() const noexcept { return valid; }

    /** Any thread: the cache, to hand to another reader of the same source. */
    std::shared_ptr<Cache> getCache() const { return cache; }

    /** The reading thread; allocates nothing on a valid reader: decodes the
        blocks that the range touches. A block that does not decode, or decodes
        short, leaves the rest of its part of the destination as it was.
        Always returns true. */
    bool readSamples (int* const* destSamples, int numDestChannels, int startOffsetInDestBuffer,
                      juce::int64 startSampleInFile, int numSamples) override;

private:
    bool readHeader();
    bool checkBlocks();
    void readChannel (int channel, juce::int64 startSample, int numSamples, int* dest);
    /** Decodes one block into the cache; the number of whole samples it gave. */
    int decodeBlock (const BlockRecord& record);

    bool valid = false;
    juce::int64 dataStart = 0;
    int blockSize = 0;
    std::vector<std::vector<BlockRecord>> blocks;
    std::shared_ptr<Cache> cache;
};
} // namespace Orv::Audio::Formats::Ruxa

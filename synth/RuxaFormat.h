#pragma once

#include <juce_audio_formats/juce_audio_formats.h>

namespace Orv::Audio::Formats::Ruxa
{
/** The program's own lossless audio format: PCM as first differences, each
    block of each channel compressed alone as an LZ4 block, so that any sample
    is reached by decoding one block per channel. */
class Format : public juce::AudioFormat
{
public:
    static constexpr const char* formatName = "RUXA";
    static constexpr const char* fileExtension = ".ruxa";
    /** The first field of a file, written with its terminating NUL. */
    static constexpr const char* magic = "RUXA";
    /** Samples per block unless a writer is told otherwise. */
    static constexpr int defaultBlockSize = 4096;

    Format();
    ~Format() override;

    /** Any thread. */
    juce::Array<int> getPossibleSampleRates() override;
    /** Any thread. */
    juce::Array<int> getPossibleBitDepths() override;
    /** Any thread. */
    bool canDoStereo() override;
    /** Any thread. */
    bool canDoMono() override;
    /** Any thread. */
    bool isCompressed() override;

    /** Any thread but the audio thread (it allocates): a reader that owns the
        stream, or null for a null stream, a stream of another format, or a
        header that does not hold together. On failure the stream is deleted if
        asked, and otherwise left at the position it had. */
    juce::AudioFormatReader* createReaderFor (juce::InputStream* sourceStream,
                                              bool deleteStreamIfOpeningFails) override;

    /** Any thread but the audio thread: a writer that owns the stream and
        writes the file when it is destroyed, or null (the stream stays the
        caller's) for a null stream, no channels or a depth other than 16 or 24
        bits. */
    juce::AudioFormatWriter* createWriterFor (juce::OutputStream* streamToWriteTo,
                                              double sampleRateToUse,
                                              unsigned int numberOfChannels,
                                              int bitsPerSample,
                                              const juce::StringPairArray& metadataValues,
                                              int qualityOptionIndex) override;
    using juce::AudioFormat::createWriterFor;

    /** Any thread: reads as many bytes as the magic takes with its NUL and
        tells whether they are the magic. Bounded, unlike a string read, so a
        large stream of another format costs nothing. */
    static bool readMagic (juce::InputStream& stream);
};
} // namespace Orv::Audio::Formats::Ruxa

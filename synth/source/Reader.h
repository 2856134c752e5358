#pragma once

#include "core/Binaries.h"
#include "synth/FileReaderStream.h"
#include "synth/source/Base.h"

#include <functional>
#include <memory>

namespace Orv::Audio::Sampler::Source
{
/** A source behind a function that opens it: a file, or a resource embedded
    in the program. The first question about it opens it once to learn its
    rate, size, length and channels, and closes it again; each reader opens it
    anew. */
class Reader : public Base
{
public:
    using StreamMaker = std::function<std::unique_ptr<Files::FileReaderStream>()>;

    /** Any thread: a source that opens the file with the default formats. */
    explicit Reader (const juce::File& file);

    /** Any thread: a source that reads the resource in place, without copying
        it; the resource's file name gives the format. */
    explicit Reader (const Binaries::BinaryInfo& resource);

    /** Any thread: a source that opens whatever the function opens. */
    explicit Reader (StreamMaker makeStream);

    /** Caller's thread, one at a time; opens on first use. */
    double getSampleRate() override;
    /** Caller's thread, one at a time; opens on first use. */
    int getNumChannels() override;
    /** Caller's thread, one at a time; opens on first use. A source that does
        not open, or opens with no channels or no positive rate, is invalid. */
    bool isValid() override;
    /** Caller's thread, one at a time; opens on first use. */
    juce::int64 getLengthInSamples() override;
    /** Caller's thread, one at a time; opens on first use. */
    int getBitsPerSample();

    /** Any thread: opens the source anew. Null when it does not open or is not
        valid. */
    std::unique_ptr<SourceReader> createReader() const override;

    /** Longer sources are invalid: a header that claims more is broken or
        hostile, and reading it whole would take the host's memory. About three
        minutes at 192 kHz. */
    static constexpr juce::int64 maxLengthInSamples = juce::int64 { 1 } << 25;

private:
    void open();

    bool opened = false;
    bool valid = false;
    double sampleRate = 0.0;
    int bitsPerSample = 0;
    int numChannels = 0;
    juce::int64 lengthInSamples = 0;
    StreamMaker makeStream;
};
} // namespace Orv::Audio::Sampler::Source

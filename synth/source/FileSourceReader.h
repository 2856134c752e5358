#pragma once

#include "synth/FileReaderStream.h"
#include "synth/source/SourceReader.h"

#include <memory>

namespace Orv::Audio::Sampler::Source
{
/** Reads an open audio file. */
class FileSourceReader : public SourceReader
{
public:
    /** Takes the open file, which must not be null. */
    explicit FileSourceReader (std::unique_ptr<Files::FileReaderStream> stream);

    /** Owner's thread: sizes the buffer to the file's channels by the range's
        length, reusing its memory when it is big enough (a buffer that was
        clear is cleared again), and reads the range into it from frame 0. */
    void read (juce::AudioBuffer<float>& buffer, juce::Range<int> samples) override;

private:
    std::unique_ptr<Files::FileReaderStream> stream;
};
} // namespace Orv::Audio::Sampler::Source

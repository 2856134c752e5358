#pragma once

#include <juce_audio_formats/juce_audio_formats.h>

#include <memory>

namespace Orv::Audio::Files
{
/** An open audio file: a format reader together with the stream it reads,
    which the reader owns. Not for the audio thread: reading decodes and may
    touch the disk. */
class FileReaderStream
{
public:
    /** Takes the reader, which must not be null. */
    explicit FileReaderStream (std::unique_ptr<juce::AudioFormatReader> reader);

    /** Any thread that owns this: the format's sample rate. */
    double getSampleRate() const noexcept { return reader->sampleRate; }

    /** Any thread that owns this: the format's sample size in bits. */
    int getBitsPerSample() const noexcept { return static_cast<int> (reader->bitsPerSample); }

    /** Any thread that owns this: the length in sample frames. */
    juce::int64 getLengthInSamples() const noexcept { return reader->lengthInSamples; }

    /** Any thread that owns this: the number of channels. */
    int getNumChannels() const noexcept { return static_cast<int> (reader->numChannels); }

    /** Any thread that owns this: reads numSamples frames from startInFile into
        the buffer at startInBuffer, every channel of the buffer from the file's
        channel of the same index (both sides of a stereo file kept apart).
        Frames past the end of the file read as silence. False when the format
        reports a read error. */
    bool read (juce::AudioBuffer<float>& buffer, int startInBuffer, int numSamples, juce::int64 startInFile);

private:
    std::unique_ptr<juce::AudioFormatReader> reader;
};
} // namespace Orv::Audio::Files

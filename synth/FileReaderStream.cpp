#include "synth/FileReaderStream.h"

namespace Orv::Audio::Files
{
FileReaderStream::FileReaderStream (std::unique_ptr<juce::AudioFormatReader> readerToUse)
    : reader (std::move (readerToUse))
{
    jassert (reader != nullptr);
}

bool FileReaderStream::read (juce::AudioBuffer<float>& buffer, int startInBuffer, int numSamples, juce::int64 startInFile)
{
    // Asking for both sides keeps a stereo file's channels apart; with a mono
    // buffer the reader gives the left side only.
    constexpr bool useLeftChannel = true;
    constexpr bool useRightChannel = true;
    return reader->read (&buffer, startInBuffer, numSamples, startInFile, useLeftChannel, useRightChannel);
}
} // namespace Orv::Audio::Files

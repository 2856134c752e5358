#include "synth/source/FileSourceReader.h"

namespace Orv::Audio::Sampler::Source
{
FileSourceReader::FileSourceReader (std::unique_ptr<Files::FileReaderStream> streamToRead)
    : stream (std::move (streamToRead))
{
    jassert (stream != nullptr);
}

void FileSourceReader::read (juce::AudioBuffer<float>& buffer, juce::Range<int> samples)
{
    const bool wasClear = buffer.hasBeenCleared();
    constexpr bool keepExistingContent = false;
    constexpr bool clearExtraSpace = false;
    constexpr bool avoidReallocating = true;
    buffer.setSize (stream->getNumChannels(), samples.getLength(), keepExistingContent, clearExtraSpace, avoidReallocating);

    if (wasClear)
        buffer.clear();

    // A failed read leaves silence where the frames could not be decoded,
    // which is all a caller could do about it.
    stream->read (buffer, 0, samples.getLength(), samples.getStart());
}
} // namespace Orv::Audio::Sampler::Source

#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

namespace Orv::Audio::Sampler::Source
{
/** An open source, read in ranges of sample frames. Owned by one thread at a
    time. */
class SourceReader
{
public:
    virtual ~SourceReader() = default;

    /** Owner's thread: the frames of the range, into the buffer from its
        start, the buffer sized to the source's channels by the range's
        length. */
    virtual void read (juce::AudioBuffer<float>& buffer, juce::Range<int> samples) = 0;
};
} // namespace Orv::Audio::Sampler::Source

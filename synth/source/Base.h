#pragma once

#include <juce_core/juce_core.h>

#include <memory>

namespace Orv::Audio::Sampler::Source
{
class SourceReader;

/** A named piece of audio that can be opened for reading any number of
    times. Not for the audio thread: asking may open a file. */
class Base
{
public:
    virtual ~Base() = default;

    /** Caller's thread, one at a time: the rate of the audio, 0 when invalid. */
    virtual double getSampleRate() = 0;

    /** Caller's thread, one at a time: the channels of the audio, 0 when invalid. */
    virtual int getNumChannels() = 0;

    /** Caller's thread, one at a time: whether the audio can be read. */
    virtual bool isValid() = 0;

    /** Caller's thread, one at a time: the length in sample frames, 0 when
        invalid. */
    virtual juce::int64 getLengthInSamples() = 0;

    /** Any thread, also while another thread asks the values above: a fresh
        reader of the audio, or null when it cannot be opened. */
    virtual std::unique_ptr<SourceReader> createReader() const = 0;
};
} // namespace Orv::Audio::Sampler::Source

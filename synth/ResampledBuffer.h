#pragma once

#include "synth/source/Base.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <atomic>
#include <memory>

namespace Orv::Audio::Sampler
{
/** The audio of a source at a wanted sample rate, remade whenever the target
    changes. Readers take the newest finished buffer without waiting; a buffer
    once handed out never changes and lives as long as someone holds it. */
class ResampledBuffer
{
public:
    using Buffer = juce::AudioBuffer<float>;

    /** Any thread: a buffer of the source, empty until the first target. A null
        source always gives an empty buffer. */
    explicit ResampledBuffer (std::shared_ptr<Source::Base> source);

    virtual ~ResampledBuffer() = default;

    ResampledBuffer (const ResampledBuffer&) = delete;
    ResampledBuffer& operator= (const ResampledBuffer&) = delete;

    /** Any thread; never blocks or allocates: the newest finished buffer,
        never null (an empty buffer where there is no audio). */
    virtual std::shared_ptr<const Buffer> getBuffer() = 0;

    /** One caller at a time, not the audio thread: asks for the source at this
        rate. The same pair as before does nothing; otherwise the buffer is
        emptied and, when the source is valid and the rate positive, remade. */
    void setTarget (int newBlockSize, double newSampleRate);

    /** Any thread: the block size of the last target. */
    int getBlockSize() const noexcept { return blockSize.load(); }

    /** Any thread: the rate of the last target, negative before the first. */
    double getTargetSampleRate() const noexcept { return sampleRate.load(); }

    /** Whether remaking runs on the thread pool (true) or within setTarget.
        Set it before the first setTarget. */
    bool useWorker = true;

protected:
    /** setTarget's thread: remakes the buffer for the stored target from a
        valid source. */
    virtual void resampleReader() = 0;

    /** setTarget's thread: publishes an empty buffer. */
    virtual void clearBuffer() = 0;

    // Any first target differs from this, so that it always takes effect.
    static constexpr double noRateYet = -500.0;

    std::atomic<int> blockSize { 0 };
    std::atomic<double> sampleRate { noRateYet };
    std::shared_ptr<Source::Base> source;
};
} // namespace Orv::Audio::Sampler

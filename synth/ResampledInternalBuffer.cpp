#include "synth/ResampledInternalBuffer.h"

#include "core/PoolJobMap.h"
#include "core/Singleton.h"
#include "core/Threads.h"
#include "synth/source/Reader.h"
#include "synth/source/SourceReader.h"

#include <cmath>
#include <limits>
#include <new>

namespace Orv::Audio::Sampler
{
namespace
{
    using Buffer = ResampledBuffer::Buffer;

    // Rates closer than this are the same rate: the audio is taken as it is.
    constexpr double sameRateTolerance = std::numeric_limits<double>::epsilon();

    // A result longer than this is refused rather than allocated: a source of
    // a valid length at a very low rate, asked for at a very high one, would
    // otherwise take the host's memory. Twice the longest source.
    constexpr double maxFrames = 2.0 * static_cast<double> (Source::Reader::maxLengthInSamples);

    std::shared_ptr<const Buffer> makeEmpty() { return std::make_shared<const Buffer>(); }

    std::shared_ptr<const Buffer> resample (const Source::Base& source, juce::int64 length, double fileRate, double targetRate)
    {
        auto reader = source.createReader();
        if (reader == nullptr || length < 0 || static_cast<double> (length) > maxFrames)
            return makeEmpty();

        auto fileBuffer = std::make_shared<Buffer>();
        reader->read (*fileBuffer, { 0, static_cast<int> (length) });
        reader.reset();

        if (std::abs (fileRate - targetRate) < sameRateTolerance)
            return fileBuffer;

        const auto ratio = fileRate / targetRate;
        const auto exactLength = std::round (static_cast<double> (length) / ratio);
        if (exactLength > maxFrames)
            return makeEmpty();
        const auto outLength = std::max (1, static_cast<int> (exactLength));
        const auto numChannels = fileBuffer->getNumChannels();

        constexpr bool copyMemory = false;
        constexpr bool deleteInputWhenDeleted = false;
        juce::MemoryAudioSource memory (*fileBuffer, copyMemory);
        juce::ResamplingAudioSource resampler (&memory, deleteInputWhenDeleted, numChannels);
        resampler.setResamplingRatio (ratio);
        resampler.prepareToPlay (outLength, targetRate);

        auto result = std::make_shared<Buffer> (numChannels, outLength);
        resampler.getNextAudioBlock (juce::AudioSourceChannelInfo (*result));
        resampler.releaseResources();
        return result;
    }
} // namespace

ResampledInternalBuffer::ResampledInternalBuffer (std::shared_ptr<Source::Base> sourceToUse)
    : ResampledBuffer (std::move (sourceToUse))
{
    slots[0] = makeEmpty();
}

ResampledInternalBuffer::~ResampledInternalBuffer()
{
    cancelJobs();
}

void ResampledInternalBuffer::cancelJobs()
{
    if (! hasUsedPool)
        return;

    // At shutdown the map may already have gone, having cancelled every job.
    if (auto* map = Singleton<Threads::PoolJobMap>::getIfExists())
        map->remove (this);
}

int ResampledInternalBuffer::getNumPendingJobs() const
{
    auto* map = hasUsedPool ? Singleton<Threads::PoolJobMap>::getIfExists() : nullptr;
    return map != nullptr ? map->getNumJobs (this) : 0;
}

std::shared_ptr<const ResampledBuffer::Buffer> ResampledInternalBuffer::getBuffer()
{
    const auto newest = writeSlot.load();
    readSlot.exchange (newest);
    return slots[static_cast<size_t> (newest)];
}

void ResampledInternalBuffer::publish (std::shared_ptr<const Buffer> buffer)
{
    auto slot = (writeSlot.load() + 1) % numSlots;
    if (slot == readSlot.load())
        slot = (slot + 1) % numSlots;

    slots[static_cast<size_t> (slot)] = std::move (buffer);
    writeSlot.exchange (slot);
}

void ResampledInternalBuffer::clearBuffer()
{
    cancelJobs();
    publish (makeEmpty());
}

void ResampledInternalBuffer::resampleReader()
{
    clearBuffer();

    // Taken here, on the one thread that asks the source, and handed to the
    // job by value.
    const auto length = source->getLengthInSamples();
    const auto fileRate = source->getSampleRate();
    const auto targetRate = sampleRate.load();
    auto job = [this, sourceToRead = source, length, fileRate, targetRate] {
        // Out of memory, the buffer stays empty: nothing that comes from a
        // file may take the host down.
        std::shared_ptr<const Buffer> result;
        try
        {
            result = resample (*sourceToRead, length, fileRate, targetRate);
        }
        catch (const std::bad_alloc&)
        {
            result = makeEmpty();
        }
        publish (std::move (result));
    };

    if (! useWorker)
    {
        job();
        return;
    }

    hasUsedPool = true;
    Singleton<Threads::PoolJobMap>::get()->add (this, job, Threads::getThreadPool());
}
} // namespace Orv::Audio::Sampler

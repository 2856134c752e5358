#pragma once

#include "synth/ResampledBuffer.h"

#include <array>

namespace Orv::Audio::Sampler
{
/** A resampled buffer that keeps the whole source in memory: the source is
    read in one go and resampled by the framework's resampler, on the thread
    pool or at once. Finished buffers go into a ring of five, so that the
    worker publishes while readers keep what they took. */
class ResampledInternalBuffer : public ResampledBuffer
{
public:
    /** Any thread: see ResampledBuffer. */
    explicit ResampledInternalBuffer (std::shared_ptr<Source::Base> source);

    /** Not the pool's thread: cancels a queued job and waits for a running one. */
    ~ResampledInternalBuffer() override;

    /** Any thread; never blocks or allocates. */
    std::shared_ptr<const Buffer> getBuffer() override;

    /** Any thread: jobs of this buffer queued or running on the pool. */
    int getNumPendingJobs() const;

protected:
    void resampleReader() override;
    void clearBuffer() override;

private:
    static constexpr int numSlots = 5;

    /** One writer at a time: the next slot that no reader holds gets the
        buffer, then becomes the newest. */
    void publish (std::shared_ptr<const Buffer> buffer);

    /** Cancels a queued job and waits for a running one, so that it cannot
        publish over what comes next. */
    void cancelJobs();

    std::array<std::shared_ptr<const Buffer>, numSlots> slots;
    std::atomic<int> writeSlot { 0 };
    std::atomic<int> readSlot { 0 };
    bool hasUsedPool = false;
};
} // namespace Orv::Audio::Sampler

#include "synth/ResampledBuffer.h"

namespace Orv::Audio::Sampler
{
ResampledBuffer::ResampledBuffer (std::shared_ptr<Source::Base> sourceToUse) : source (std::move (sourceToUse)) {}

void ResampledBuffer::setTarget (int newBlockSize, double newSampleRate)
{
    if (newBlockSize == blockSize.load() && newSampleRate == sampleRate.load())
        return;

    blockSize.store (newBlockSize);
    sampleRate.store (newSampleRate);

    if (source != nullptr && source->isValid() && newSampleRate > 0.0)
        resampleReader();
    else
        clearBuffer();
}
} // namespace Orv::Audio::Sampler

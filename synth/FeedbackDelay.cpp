#include "synth/FeedbackDelay.h"

namespace Orv::Audio::Filters
{
void FeedbackDelay::prepare (const Spec& spec)
{
    sampleRate = (float) spec.sampleRate;
    timeSmoother.reset (spec.sampleRate);
    feedbackSmoother.reset (spec.sampleRate);

    const auto numChannels = juce::jmax (0, spec.numChannels);
    lastOut.assign ((size_t) numChannels, 0.0f);
    line.writePos.assign ((size_t) numChannels, 0);
    line.readPos.assign ((size_t) numChannels, 0);

    line.totalSize = lineSize;
    line.buffer.setSize (numChannels, lineSize);
    for (int c = 0; c < numChannels; ++c)
        juce::FloatVectorOperations::clear (line.buffer.getWritePointer (c), lineSize);
}

void FeedbackDelay::setParameters (float seconds, float feedback) noexcept
{
    timeSmoother.setTarget (seconds * sampleRate);
    feedbackSmoother.setTarget (feedback);
}
} // namespace Orv::Audio::Filters

#pragma once

#include "synth/FeedbackDelay.h"

namespace Orv::Audio::Filters
{
/** A feedback delay with a filter of type FilterType in its loop, so that
    each repeat passes the filter once more.

    FilterType needs maxChannels, prepare (double sampleRate) and
    processSample (int channel, float input). Channels beyond the filter's
    capacity get no line. Audio thread after prepare. */
template <typename FilterType>
class FilteredDelay : public FeedbackDelay
{
public:
    /** Audio thread; never blocks. */
    void process (juce::AudioBuffer<float>& block) noexcept override
    {
        processWith (block, [this] (int channel, float input) noexcept
                     { return filter.processSample (channel, input); });
    }

    /** Owner's thread with the audio stopped: the line and ramps as the base
        prepares them, the filter cleared and its coefficients made for the
        rate. */
    void prepare (const Spec& spec) override
    {
        auto limited = spec;
        limited.numChannels = juce::jmin (spec.numChannels, (int) FilterType::maxChannels);
        FeedbackDelay::prepare (limited);
        filter.prepare (spec.sampleRate);
    }

    FilterType filter;
};
} // namespace Orv::Audio::Filters

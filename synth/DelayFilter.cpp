#include "synth/DelayFilter.h"

namespace Orv::Audio::AnalogDelay
{
DelayFilter::DelayFilter() noexcept : Filter (numStages, initialCutoff, initialResonance)
{
}

float DelayFilter::processSample (int channel, float input) noexcept
{
    for (int stage = 0; stage < stages; ++stage)
        input = Filter::processSample (channel, stage, input);

    return input;
}
} // namespace Orv::Audio::AnalogDelay

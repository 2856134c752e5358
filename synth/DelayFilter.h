#pragma once

#include "synth/Filter.h"

namespace Orv::Audio::AnalogDelay
{
/** The low-pass in the delay's feedback loop: one 12 dB stage, Q 1, which
    darkens every repeat a little more than the one before.

    Audio thread after prepare, never allocates. */
class DelayFilter : public Filter
{
public:
    static constexpr int numStages = 1;
    static constexpr float initialCutoff = 300.0f;
    static constexpr float initialResonance = 1.0f;

    /** Any thread, before use. */
    DelayFilter() noexcept;

    using Filter::processSample;

    /** Audio thread. Runs one sample of one channel through every stage. */
    float processSample (int channel, float input) noexcept;
};
} // namespace Orv::Audio::AnalogDelay

#pragma once

#include "synth/MPESynthVoice.h"

namespace Orv::Audio
{
/** A voice with a linear attack-decay-sustain-release envelope applied after
    its sound. The envelope is stepped per sample; its rates are worked out
    once per block by recalculate(), from times that the owner writes first.

    Two habits of this envelope are part of the instrument's sound:
    - a note does not reset the level, so a retaken or stolen voice rises
      from where it was;
    - the release rate set at note off lasts only to the end of that block;
      from then on the level falls at the rate that the sustain level gives,
      whatever it was when the release began.

    Audio thread, apart from prepare() and construction. */
class MPEVoiceWithADSR : public MPESynthVoice
{
public:
    enum State
    {
        idle = 0,
        attackState,
        decayState,
        sustainState,
        releaseState
    };

    /** Audio thread, once per block after the times are written: the rates
        per sample, and the moves that a change of time forces on a running
        envelope. */
    void recalculate() noexcept;

    /** Audio thread: the four times in seconds and the sustain level, then
        recalculate(). */
    void setEnvelope (float attackSeconds, float decaySeconds, float sustainLevel, float releaseSeconds) noexcept;

    void noteStarted() override;
    void noteStopped (bool allowTailOff) override;
    void setCurrentSampleRate (double newRate) override;
    void processBlock (juce::AudioBuffer<float>& block) override;

    int state = idle;
    float attack = 0.001f;
    float hold = 0.0f;
    float decay = 1.0f;
    float sustain = 1.0f;
    float release = 0.001f;
    bool frozen = false;
    bool noteOn = false;
    double sampleRate = 44100.0;
    int holdSamples = 0;
    int holdCount = 0;
    float value = 0.0f;
    float attackRate = 0.0f;
    float decayRate = 0.0f;
    float releaseRate = 0.0f;

private:
    void goIdle() noexcept;
    float releaseRateFrom (float level) const noexcept;
    float step() noexcept;
};
} // namespace Orv::Audio

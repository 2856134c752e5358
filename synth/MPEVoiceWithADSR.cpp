#include "synth/MPEVoiceWithADSR.h"

namespace Orv::Audio
{
namespace
{
    constexpr float fullLevel = 1.0f;
    constexpr float noRate = -1.0f;
} // namespace

void MPEVoiceWithADSR::recalculate() noexcept
{
    attackRate = attack > 0.0f ? (float) (fullLevel / (attack * sampleRate)) : noRate;
    decayRate = decay > 0.0f ? (float) ((fullLevel - sustain) / (decay * sampleRate)) : noRate;
    releaseRate = release > 0.0f ? (float) (sustain / (release * sampleRate)) : noRate;
    holdSamples = (int) (sampleRate * hold);

    if (state == attackState && attackRate <= 0.0f)
        state = decayRate > 0.0f ? decayState : sustainState;

    if (state == decayState && ! (decayRate > 0.0f && value > sustain))
        state = sustainState;

    if (state == releaseState && releaseRate <= 0.0f)
        goIdle();

    if (state == sustainState && ! noteOn && holdCount >= holdSamples)
    {
        if (releaseRate > 0.0f)
            state = releaseState;
        else
            goIdle();
    }
}

void MPEVoiceWithADSR::setEnvelope (float attackSeconds, float decaySeconds, float sustainLevel, float releaseSeconds) noexcept
{
    attack = attackSeconds;
    hold = 0.0f;
    decay = decaySeconds;
    sustain = sustainLevel;
    release = releaseSeconds;
    frozen = false;
    recalculate();
}

float MPEVoiceWithADSR::releaseRateFrom (float level) const noexcept
{
    return (float) (level / (release * sampleRate));
}

void MPEVoiceWithADSR::goIdle() noexcept
{
    state = idle;
    holdCount = 0;
    value = 0.0f;
}

void MPEVoiceWithADSR::noteStarted()
{
    if (noteOn && state != idle && ! frozen)
    {
        if (holdCount >= holdSamples && release <= 0.0f)
            value = 0.0f;
        else if (release > 0.0f)
            releaseRate = releaseRateFrom (value);
    }

    noteOn = true;
    holdCount = 0;
    state = attackState;

    if (attackRate <= 0.0f)
    {
        if (decayRate > 0.0f)
        {
            value = fullLevel;
            state = decayState;
        }
        else
        {
            value = sustain;
            state = sustainState;
        }
    }

    onNoteStarted();
}

void MPEVoiceWithADSR::noteStopped (bool allowTailOff)
{
    if (state != idle && noteOn && ! frozen)
    {
        if (holdCount >= holdSamples)
        {
            if (release <= 0.0f)
            {
                goIdle();
            }
            else
            {
                releaseRate = releaseRateFrom (value);
                state = releaseState;
            }
        }
        else
        {
            state = sustainState;
            if (release > 0.0f)
                releaseRate = releaseRateFrom (value);
        }
    }

    noteOn = false;
    onNoteStopped();

    // The envelope runs on; only the note goes, which frees the voice.
    if (! allowTailOff)
        clearNote();
}

void MPEVoiceWithADSR::setCurrentSampleRate (double newRate)
{
    MPESynthVoice::setCurrentSampleRate (newRate);
    sampleRate = newRate;
}

float MPEVoiceWithADSR::step() noexcept
{
    switch (state)
    {
        case attackState:
            value += attackRate;
            if (value >= fullLevel)
            {
                value = fullLevel;
                state = decayRate > 0.0f ? decayState : sustainState;
            }
            break;

        case decayState:
            value -= decayRate;
            if (value <= sustain)
            {
                value = sustain;
                state = sustainState;
            }
            break;

        case sustainState:
            ++holdCount;
            value = sustain;
            if ((! noteOn || frozen) && holdCount >= holdSamples)
            {
                noteOn = false;
                if (releaseRate > 0.0f)
                    state = releaseState;
                else
                    goIdle();
            }
            break;

        case releaseState:
            value -= releaseRate;
            if (value <= 0.0f)
            {
                goIdle();
                noteOn = false;
            }
            break;

        default:
            value = 0.0f;
            break;
    }

    return value;
}

void MPEVoiceWithADSR::processBlock (juce::AudioBuffer<float>& block)
{
    renderVoice (block);

    const auto numSamples = block.getNumSamples();
    const auto numChannels = block.getNumChannels();

    if (shouldApplyEnvelope())
    {
        if (state == idle)
        {
            block.clear();
        }
        else
        {
            auto* const* channels = block.getArrayOfWritePointers();
            for (int i = 0; i < numSamples; ++i)
            {
                const auto level = step();
                for (int c = 0; c < numChannels; ++c)
                    channels[c][i] *= level;
            }
        }
    }

    if (state == idle && clearWhenDone())
        clearNote();
}
} // namespace Orv::Audio

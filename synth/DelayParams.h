#pragma once

#include "parameters/ParamList.h"

namespace Orv::Audio::AnalogDelay
{
/** The delay: how dark its repeats grow, its time (free in seconds, or a
    note value at the tempo), feedback and wet share. */
struct Params : public ParamList
{
    /** Mode's choices: Time in seconds, or TimeSync's note value. */
    static constexpr int freeMode = 0;
    static constexpr int syncMode = 1;

    static constexpr float defaultAnalog = 0.5f;
    static constexpr float minimumTime = 0.01f;
    static constexpr float maximumTime = 1.0f;
    static constexpr float defaultTime = 0.1f;
    static constexpr float maximumFeedback = 0.4f;
    static constexpr float defaultFeedback = 0.1f;
    static constexpr float defaultMix = 0.0f;

    /** Message thread. */
    Params();

    ParamHolder<juce::AudioParameterFloat> analog { "Analog", "Analog", 0.0f, 1.0f, defaultAnalog };
    ParamHolder<juce::AudioParameterChoice> mode;
    /** Seconds. */
    ParamHolder<juce::AudioParameterFloat> time { "Time", "Time", minimumTime, maximumTime, defaultTime };
    /** An index into TimeMap. */
    ParamHolder<juce::AudioParameterChoice> timeSync;
    ParamHolder<juce::AudioParameterFloat> feedback { "Feedback", "Feedback", 0.0f, maximumFeedback, defaultFeedback };
    ParamHolder<juce::AudioParameterFloat> mix { "Mix", "Mix", 0.0f, 1.0f, defaultMix };
};
} // namespace Orv::Audio::AnalogDelay

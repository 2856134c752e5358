#pragma once

#include "midi/MidiProcessorBase.h"
#include "parameters/DefaultGesture.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <string>
#include <vector>

namespace Orv::Testing
{
/** An event and its sample position within a span. */
struct Timed
{
    juce::MidiMessage message;
    int sample;
};

inline juce::MidiMessage on (int note, int velocity = 100, int channel = 1)
{
    return juce::MidiMessage::noteOn (channel, note, (uint8_t) velocity);
}

inline juce::MidiMessage off (int note, int velocity = 0, int channel = 1)
{
    return juce::MidiMessage::noteOff (channel, note, (uint8_t) velocity);
}

inline juce::MidiMessage cc (int controller, int value, int channel = 1)
{
    return juce::MidiMessage::controllerEvent (channel, controller, value);
}

inline juce::MidiBuffer bufferOf (const std::vector<Timed>& events)
{
    juce::MidiBuffer buffer;
    for (const auto& e : events)
        buffer.addEvent (e.message, e.sample);
    return buffer;
}

/** Each event as "on 60 100 @10", "off 60 25 @30" or "cc 1 5 @3", with
    " ch3" added for any channel but the first, so that a whole span's result
    compares as one list. */
inline std::vector<std::string> describe (const juce::MidiBuffer& buffer)
{
    std::vector<std::string> result;
    for (const auto metadata : buffer)
    {
        const auto* d = metadata.data;
        const auto kind = d[0] & 0xF0;
        const std::string name = kind == 0x90 ? "on" : kind == 0x80 ? "off" : kind == 0xB0 ? "cc" : "other";
        auto text = name + " " + std::to_string (d[1]) + " " + std::to_string (d[2]) + " @"
                    + std::to_string (metadata.samplePosition);
        if ((d[0] & 0x0F) != 0)
            text += " ch" + std::to_string ((d[0] & 0x0F) + 1);
        result.push_back (text);
    }
    return result;
}

/** Runs one span through the stage and describes its result. */
inline std::vector<std::string> run (Midi::MidiProcessorBase& stage, const std::vector<Timed>& events)
{
    auto buffer = bufferOf (events);
    stage.process (buffer);
    return describe (buffer);
}

using Lines = std::vector<std::string>;

/** A parameter over a plain float that counts the notifying sets it gets. */
struct CountingParameter : Parameters::DefaultGesture
{
    float getNormalised() const override { return value; }
    void setNormalisedNotifying (float v) override
    {
        value = v;
        ++notified;
    }

    float value = 0.0f;
    int notified = 0;
};
} // namespace Orv::Testing

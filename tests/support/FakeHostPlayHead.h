#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <cstdint>

namespace Orv::Testing
{
/** A host's play head for tests: returns whatever `position` holds, or no
    position at all when it is empty. */
struct FakeHostPlayHead : juce::AudioPlayHead
{
    static constexpr double defaultTestTempo = 120.0;

    juce::Optional<PositionInfo> getPosition() const override { return position; }

    /** A playing transport at `timeInSamples` and `ppq`, with a tempo. */
    static PositionInfo playing (int64_t timeInSamples, double ppq, double bpm = defaultTestTempo)
    {
        PositionInfo info;
        info.setIsPlaying (true);
        info.setTimeInSamples (timeInSamples);
        info.setPpqPosition (ppq);
        info.setBpm (bpm);
        return info;
    }

    /** The same, stopped. */
    static PositionInfo stopped (int64_t timeInSamples, double ppq, double bpm = defaultTestTempo)
    {
        auto info = playing (timeInSamples, ppq, bpm);
        info.setIsPlaying (false);
        return info;
    }

    void playingAt (int64_t timeInSamples, double ppq, double bpm = defaultTestTempo)
    {
        position = playing (timeInSamples, ppq, bpm);
    }

    void stoppedAt (int64_t timeInSamples, double ppq, double bpm = defaultTestTempo)
    {
        position = stopped (timeInSamples, ppq, bpm);
    }

    juce::Optional<PositionInfo> position;
};
} // namespace Orv::Testing

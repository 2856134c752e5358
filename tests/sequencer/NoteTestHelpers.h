#pragma once

#include "core/InternalPlayHead.h"
#include "core/PlayHeadTransportView.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <string>
#include <vector>

namespace Orv::Testing
{
/** A buffer's events as short words, in buffer order: "+1:64@0" is a note-on
    on channel nibble 1, note 64, at sample 0; "-" a note-off (or a note-on of
    velocity 0); "cc123@0" a controller. */
inline std::vector<std::string> eventsOf (const juce::MidiBuffer& buffer)
{
    std::vector<std::string> words;
    for (const auto event : buffer)
    {
        const auto message = event.getMessage();
        const auto where = "@" + std::to_string (event.samplePosition);
        const auto channel = std::to_string (message.getChannel() - 1);

        if (message.isNoteOn())
            words.push_back ("+" + channel + ":" + std::to_string (message.getNoteNumber()) + where);
        else if (message.isNoteOff())
            words.push_back ("-" + channel + ":" + std::to_string (message.getNoteNumber()) + where);
        else if (message.isController())
            words.push_back ("cc" + std::to_string (message.getControllerNumber()) + where);
        else
            words.push_back ("?" + where);
    }
    return words;
}

/** Only the note-ons of a buffer. */
inline int countNoteOns (const juce::MidiBuffer& buffer)
{
    int n = 0;
    for (const auto event : buffer)
        n += event.getMessage().isNoteOn() ? 1 : 0;
    return n;
}

/** A clock whose positions the test writes, for views of pattern time. */
struct TestClock
{
    static constexpr double rate = 48000.0;
    static constexpr int capacity = 16384;

    TestClock() { clock.prepare (rate, capacity); }

    /** `n` samples of pattern time from `from`, `perSample` apart. */
    Audio::PlayHeadTransportView linear (double from, double perSample, int n, bool playing = true)
    {
        clock.getInfo().setIsPlaying (playing);
        clock.update (nullptr, n);
        for (int i = 0; i < n; ++i)
            clock.getPositions()[(size_t) i] = from + i * perSample;
        return { clock, 0, n };
    }

    /** One block of the song at `bpm`, from `ppq`. */
    Audio::PlayHeadTransportView block (double ppq, int n, bool playing = true, bool jump = false, double bpm = 120.0)
    {
        auto& info = clock.getInfo();
        info.setBpm (bpm);
        info.setIsPlaying (playing);
        info.setPpqPosition (ppq);
        if (jump)
            clock.requestJump();
        clock.update (nullptr, n);
        return { clock, 0, n };
    }

    Audio::InternalPlayHead clock;
};
} // namespace Orv::Testing

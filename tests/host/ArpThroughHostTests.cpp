#include "host/HostHarness.h"

#include <gtest/gtest.h>

#include <array>

// What a host can drive through the bundle today is MIDI in, the play head and
// the block size: there are no host parameters for the arp and no state blob
// yet, so a fresh instance plays its default patterns, which are empty. Drawn
// patterns are driven in-process (ArpTiming); here the host's view is checked:
// what leaves is well formed, on channel 1, and ends with the transport.
namespace
{
using Orv::Testing::HostedHalvane;
using Orv::Testing::TimedEvent;

constexpr double tempo = 120.0;
constexpr int64_t samplesPerQuarter = 24000; // at that tempo and the harness's rate
constexpr int64_t bar = 4 * samplesPerQuarter;
constexpr int modWheel = 1;
constexpr int modValue = 77;
constexpr int bendValue = 9000;

struct Input
{
    std::vector<TimedEvent> events;
    std::vector<std::pair<int, int64_t>> keyswitches;
    int64_t controllerAt = 0;
    int64_t bendAt = 0;
};

/** A chord on channel 3 held through the first bar, keyswitches pressed and
    released inside it, a controller and a pitch bend on other channels. */
Input heldChordWithKeyswitchesAndControllers()
{
    Input input;
    input.controllerAt = bar / 2 + 11;
    input.bendAt = bar / 2 + 5000;

    auto& e = input.events;
    for (const auto note : { 60, 64, 67 })
        e.push_back ({ juce::MidiMessage::noteOn (3, note, (uint8_t) 100), 100 });
    input.keyswitches = { { 24, bar / 4 }, { 26, bar / 3 }, { 36, bar / 2 } };
    for (const auto& [note, at] : input.keyswitches)
    {
        e.push_back ({ juce::MidiMessage::noteOn (1, note, (uint8_t) 90), at });
        e.push_back ({ juce::MidiMessage::noteOff (1, note), at + 700 });
    }
    e.push_back ({ juce::MidiMessage::controllerEvent (5, modWheel, modValue), input.controllerAt });
    e.push_back ({ juce::MidiMessage::pitchWheel (2, bendValue), input.bendAt });
    for (const auto note : { 60, 64, 67 })
        e.push_back ({ juce::MidiMessage::noteOff (3, note), bar - 50 });

    std::stable_sort (e.begin(), e.end(), [] (const TimedEvent& a, const TimedEvent& b) { return a.time < b.time; });
    return input;
}
} // namespace

TEST (ArpThroughHost, AHeldChordLeavesOnlyWellFormedChannelOneMidiAndTheStopEndsEveryNote)
{
    for (const auto blockSize : { 256, 31, 4096 })
    {
        SCOPED_TRACE (blockSize);
        HostedHalvane host (HostedHalvane::defaultSampleRate, blockSize);
        host.playHead().setPlaying (0.0, tempo, 0);

        const auto input = heldChordWithKeyswitchesAndControllers();
        auto out = host.play (input.events, bar + bar / 2, blockSize);

        // The host stops; the instance runs on its own clock from there, and
        // a pattern's length later nothing may still sound.
        const auto stoppedAt = host.getSamplesPlayed();
        host.playHead().setPlaying ((double) stoppedAt / samplesPerQuarter, tempo, stoppedAt, false);
        const auto after = host.play ({}, 2 * bar, blockSize);
        out.insert (out.end(), after.begin(), after.end());

        std::array<bool, 128> sounding {};
        int noteOns = 0;
        bool controllerPassed = false;
        bool bendPassed = false;

        for (const auto& [message, time] : out)
        {
            if (message.getChannel() != 0)
            {
                EXPECT_EQ (message.getChannel(), 1) << message.getDescription() << " @" << time;
            }

            if (message.isNoteOn())
            {
                ++noteOns;
                EXPECT_FALSE (sounding[(size_t) message.getNoteNumber()]) << "struck while on: " << message.getDescription();
                sounding[(size_t) message.getNoteNumber()] = true;
                for (const auto& [note, at] : input.keyswitches)
                    EXPECT_FALSE (message.getNoteNumber() == note && time == at) << "a keyswitch came out: " << note;
            }
            else if (message.isNoteOff())
            {
                sounding[(size_t) message.getNoteNumber()] = false;
            }

            // A VST3 host hands controllers over as parameter changes, which
            // the framework turns back into MIDI at the start of their block.
            auto inItsBlock = [&] (int64_t sent) { return time <= sent && sent - time < blockSize; };
            controllerPassed |= message.isControllerOfType (modWheel) && message.getControllerValue() == modValue
                             && inItsBlock (input.controllerAt);
            bendPassed |= message.isPitchWheel() && message.getPitchWheelValue() == bendValue && inItsBlock (input.bendAt);
        }

        for (int note = 0; note < 128; ++note)
            EXPECT_FALSE (sounding[(size_t) note]) << "note " << note << " still on after the stop";

        EXPECT_TRUE (controllerPassed) << "the controller must leave in its block";
        EXPECT_TRUE (bendPassed) << "the pitch bend must leave in its block";

        // The arp is on and its default patterns hold no steps: neither the
        // chord nor the keyswitches sound as played.
        EXPECT_EQ (noteOns, 0);
    }
}

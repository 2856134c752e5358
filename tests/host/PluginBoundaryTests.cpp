#include "host/HostHarness.h"
#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

using Orv::Testing::HostedHalvane;

namespace
{
juce::MidiBuffer bufferOf (std::initializer_list<std::pair<juce::MidiMessage, int>> events)
{
    juce::MidiBuffer buffer;
    for (const auto& [message, position] : events)
        buffer.addEvent (message, position);
    return buffer;
}
} // namespace

TEST (PluginBoundary, AnswersTheHostAsAStereoMidiInstrument)
{
    HostedHalvane host;
    auto& plugin = host.plugin();

    EXPECT_EQ (plugin.getName(), "Halvane");
    EXPECT_TRUE (plugin.acceptsMidi());
    EXPECT_TRUE (plugin.producesMidi());
    EXPECT_FALSE (plugin.isMidiEffect());
    EXPECT_EQ (plugin.getTailLengthSeconds(), 0.0);

    ASSERT_EQ (plugin.getBusCount (true), 1);
    ASSERT_EQ (plugin.getBusCount (false), 1);
    EXPECT_EQ (plugin.getBus (true, 0)->getName(), "Input");
    EXPECT_EQ (plugin.getBus (false, 0)->getName(), "Output");
    EXPECT_EQ (plugin.getBus (true, 0)->getCurrentLayout(), juce::AudioChannelSet::stereo());
    EXPECT_EQ (plugin.getBus (false, 0)->getCurrentLayout(), juce::AudioChannelSet::stereo());

    // One program: VST3 publishes a program list only for more than one, so a
    // host sees none rather than a nameless entry.
    EXPECT_EQ (plugin.getNumPrograms(), 0);

    const auto description = plugin.getPluginDescription();
    EXPECT_TRUE (description.isInstrument);
    EXPECT_EQ (description.manufacturerName, "Trevalis");
    EXPECT_EQ (description.version, "1.0.3");
}

TEST (PluginBoundary, SystemExclusiveNeverReachesTheOutput)
{
    HostedHalvane host;
    const uint8_t sysex[] = { 0xF0, 0x7E, 0x7F, 0x06, 0x01, 0xF7 };
    const auto out = host.processBlock (bufferOf ({ { juce::MidiMessage (sysex, sizeof (sysex)), 10 },
                                                    { juce::MidiMessage::noteOn (1, 60, 0.8f), 20 } }),
                                        256);
    for (const auto event : out)
        EXPECT_FALSE (event.getMessage().isSysEx());
}

TEST (PluginBoundary, EveryEventLeavesOnChannelOne)
{
    HostedHalvane host;
    juce::MidiBuffer in;
    for (int channel = 1; channel <= 16; ++channel)
    {
        in.addEvent (juce::MidiMessage::controllerEvent (channel, 1, 10 + channel), channel);
        in.addEvent (juce::MidiMessage::pitchWheel (channel, 1000 + channel), 20 + channel);
        in.addEvent (juce::MidiMessage::noteOn (channel, 60 + channel, 0.5f), 40 + channel);
    }

    int count = 0;
    for (int block = 0; block < 4; ++block)
    {
        for (const auto event : host.processBlock (block == 0 ? in : juce::MidiBuffer(), 256))
        {
            const auto message = event.getMessage();
            if (message.getChannel() != 0)
            {
                EXPECT_EQ (message.getChannel(), 1) << message.getDescription();
                ++count;
            }
        }
    }
    EXPECT_GT (count, 0);
}

TEST (PluginBoundary, BlocksOfZeroAndOddSizesAreFine)
{
    HostedHalvane host;
    host.playHead().setPlaying (0.0, 120.0, 0);

    for (const int size : { 0, 1, 7, 0, 256, 13, 0 })
    {
        const auto out = host.processBlock (bufferOf ({ { juce::MidiMessage::noteOn (1, 64, 0.7f), 0 } }), size);
        (void) out;
        for (int channel = 0; channel < host.lastAudio().getNumChannels(); ++channel)
            for (int i = 0; i < size; ++i)
                ASSERT_TRUE (std::isfinite (host.lastAudio().getSample (channel, i)));
    }
}

TEST (PluginBoundary, RunsWithoutAPlayHeadAndWithAHostThatGivesNoPosition)
{
    HostedHalvane host;
    host.plugin().setPlayHead (nullptr);
    for (int i = 0; i < 8; ++i)
        host.processBlock (256);

    host.plugin().setPlayHead (&host.playHead());
    host.playHead().clear();
    for (int i = 0; i < 8; ++i)
        host.processBlock (256);
    SUCCEED();
}

TEST (PluginBoundary, TwoInstancesInOneProcessAreIndependent)
{
    auto first = std::make_unique<HostedHalvane>();
    HostedHalvane second;
    first->processBlock (256);
    first.reset();
    // The second instance keeps working after the first is gone, with the
    // process's shared services still there for it.
    second.processBlock (256);
    auto* editor = second.plugin().createEditorIfNeeded();
    ASSERT_NE (editor, nullptr);
    EXPECT_EQ (editor->getWidth(), editor->getHeight());
    delete editor;
}

TEST (PluginBoundary, HostileStateBlobsAreIgnored)
{
    HostedHalvane host;
    juce::Random random (42);
    for (int i = 0; i < 50; ++i)
    {
        juce::MemoryBlock blob (static_cast<size_t> (random.nextInt (512)));
        random.fillBitsRandomly (blob.getData(), blob.getSize());
        host.plugin().setStateInformation (blob.getData(), static_cast<int> (blob.getSize()));
    }
    host.plugin().setStateInformation (nullptr, 0);

    juce::MemoryBlock saved;
    host.plugin().getStateInformation (saved);
    host.processBlock (256);
    SUCCEED();
}

// JUCE 7.0.5's VST3 wrapper copies its channel map on every block, so a block
// through the bundle is never entirely free of allocation. What is ours must
// add nothing to that, however busy the MIDI.
TEST (PluginBoundary, BusyBlocksAllocateNoMoreThanTheFrameworksOwnOverhead)
{
    HostedHalvane host;
    host.playHead().setPlaying (0.0, 120.0, 0);

    juce::MidiBuffer busy;
    for (int i = 0; i < 16; ++i)
    {
        busy.addEvent (juce::MidiMessage::noteOn (1 + i, 48 + i, (uint8_t) 100), i * 16);
        busy.addEvent (juce::MidiMessage::controllerEvent (1 + i, 64, 127), i * 16 + 1);
    }

    juce::AudioBuffer<float> audio (2, 256);
    juce::MidiBuffer midi;
    auto countBlocks = [&] (const juce::MidiBuffer& in, int blocks) {
        int64_t allocations = 0;
        for (int i = 0; i < blocks; ++i)
        {
            midi.clear();
            for (const auto event : in)
                midi.addEvent (event.data, event.numBytes, event.samplePosition);
            Orv::Testing::AllocationCounter counter;
            host.plugin().processBlock (audio, midi);
            allocations += counter.getCount();
        }
        return allocations;
    };

    countBlocks (busy, 16);
    const auto quiet = countBlocks ({}, 64);
    const auto loaded = countBlocks (busy, 64);
    EXPECT_EQ (loaded, quiet);
    EXPECT_LE (quiet, 64) << "more than the wrapper's one copy per block";
}

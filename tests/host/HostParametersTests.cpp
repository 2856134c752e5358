#include "host/HostHarness.h"

#include <gtest/gtest.h>

#include <array>

namespace
{
using Orv::Testing::HostedHalvane;
using Orv::Testing::TimedEvent;

struct Entry
{
    const char* id;
    const char* name;
    const char* defaultText;
};

/** The host's list, in order: what saved automation refers to. */
constexpr std::array<Entry, 34> hostList { {
    { "Transpose", "Transpose", "0" },
    { "Octave", "Octave", "0" },
    { "Key", "Key", "C" },
    { "Quantize", "Quantize", "1/4" },
    { "Retrigger", "Retrigger", "Off" },
    { "Swing", "Swing", "0%" },
    { "Swing-Ref", "Swing Ref", "1/8" },
    { "Enable-Synth", "Enable Synth", "On" },
    { "Synth-Volume", "Synth Volume", "0.00 dB" },
    { "Unison-Voices", "Unison Voices", "1" },
    { "Unison-Amount", "Unison Amount", "0.50" },
    { "OSC-1-Enable", "OSC 1 Enable", "Off" },
    { "OSC-1-Octave", "OSC 1 Octave", "0" },
    { "OSC-1-Volume", "OSC 1 Volume", "0.00 dB" },
    { "OSC-2-Enable", "OSC 2 Enable", "Off" },
    { "OSC-2-Octave", "OSC 2 Octave", "0" },
    { "OSC-2-Volume", "OSC 2 Volume", "0.00 dB" },
    { "Sub-Octave", "Sub Octave", "-2" },
    { "Sub-Volume", "Sub Volume", "0.00 dB" },
    { "ADSR-Attack", "ADSR Attack", "0.00" },
    { "ADSR-Decay", "ADSR Decay", "1.00" },
    { "ADSR-Sustain", "ADSR Sustain", "1.00" },
    { "ADSR-Release", "ADSR Release", "0.01" },
    { "Filter-Enable", "Filter Enable", "On" },
    { "Filter-Cutoff", "Filter Cutoff", "8000.00" },
    { "Filter-Resonance", "Filter Resonance", "1.00" },
    { "Filter-Key-Tracking", "Filter Key Tracking", "1.00" },
    { "Delay-Analog", "Delay Analog", "0.50" },
    { "Delay-Time-Free", "Delay Time Free", "0.10" },
    { "Delay-Time-Sync", "Delay Time Sync", "1/4" },
    { "Delay-Mode", "Delay Mode", "Free" },
    { "Delay-Feedback", "Delay Feedback", "0.10" },
    { "Delay-Mix", "Delay Mix", "0.00" },
    { "Arp-Active", "Arp Active", "On" },
} };

/** A VST3 host knows a parameter by a number that the framework derives
    from its string id. */
juce::String vst3IdFor (const char* id)
{
    constexpr juce::uint32 positiveBits = 0x7fffffffu;
    return juce::String ((juce::uint32) juce::String (id).hashCode() & positiveBits);
}

juce::AudioProcessorParameter& parameterWithId (juce::AudioPluginInstance& plugin, const char* id)
{
    for (auto* p : plugin.getParameters())
        if (auto* hosted = dynamic_cast<juce::HostedAudioProcessorParameter*> (p);
            hosted != nullptr && hosted->getParameterID() == vst3IdFor (id))
            return *p;

    throw std::runtime_error (std::string ("no host parameter ") + id);
}

/** Notes as a listener hears them. A release velocity is left out: the
    note chain ends each note with the velocity it started with. */
std::vector<juce::String> describe (const std::vector<TimedEvent>& events)
{
    std::vector<juce::String> words;

    for (const auto& e : events)
    {
        const auto& m = e.message;
        auto word = juce::String (m.isNoteOn() ? "+" : "-") + juce::String (m.getNoteNumber()) + " ch"
                    + juce::String (m.getChannel());

        if (m.isNoteOn())
            word << " v" << (int) m.getVelocity();

        words.push_back (word + " @" + juce::String (e.time));
    }

    return words;
}
} // namespace

TEST (HostParameters, TheHostSeesTheThirtyFourEntriesInOrderWithTheirIdsNamesAndDefaults)
{
    HostedHalvane host;
    const auto parameters = host.plugin().getParameters();
    ASSERT_GE (parameters.size(), (int) hostList.size());

    for (size_t i = 0; i < hostList.size(); ++i)
    {
        const auto& expected = hostList[i];
        auto& p = *parameters[(int) i];
        SCOPED_TRACE (expected.id);

        EXPECT_EQ (dynamic_cast<juce::HostedAudioProcessorParameter&> (p).getParameterID(), vst3IdFor (expected.id));
        EXPECT_EQ (p.getName (128), expected.name);
        EXPECT_EQ (p.getText (p.getDefaultValue(), 128), expected.defaultText);
        EXPECT_EQ (p.getCurrentValueAsText(), expected.defaultText);
    }

    // Behind ours come only the framework's own: its bypass, then the hidden
    // entries through which a VST3 host sends MIDI controllers.
    ASSERT_GT (parameters.size(), (int) hostList.size());
    EXPECT_EQ (parameters[(int) hostList.size()]->getName (128), "Bypass");

    for (int i = (int) hostList.size() + 1; i < parameters.size(); ++i)
        ASSERT_TRUE (parameters[i]->getName (128).startsWith ("MIDI CC ")) << i;
}

TEST (HostParameters, TextsRoundTripThroughTheHost)
{
    HostedHalvane host;

    const struct
    {
        const char* id;
        const char* text;
    } cases[] = {
        { "Synth-Volume", "-100.00 dB" }, { "Synth-Volume", "3.00 dB" }, { "OSC-2-Volume", "-15.00 dB" },
        { "Sub-Volume", "-100.00 dB" },   { "Quantize", "1/16" },        { "Delay-Time-Sync", "1/8D" },
        { "Swing-Ref", "1/4" },           { "Retrigger", "On" },         { "Enable-Synth", "Off" },
        { "Transpose", "-7" },            { "Swing", "-40%" },           { "Filter-Cutoff", "4753.56" },
        { "Key", "Gb" },                  { "Arp-Active", "Off" },
    };

    for (const auto& c : cases)
    {
        auto& p = parameterWithId (host.plugin(), c.id);
        p.setValue (p.getValueForText (c.text));
        EXPECT_EQ (p.getText (p.getValue(), 128), c.text) << c.id;
    }

    auto& volume = parameterWithId (host.plugin(), "Synth-Volume");
    EXPECT_FLOAT_EQ (volume.getValueForText ("-200 dB"), 0.0f);
}

TEST (HostParameters, WithArpActiveOffThroughTheHostPlayedNotesPassUnchanged)
{
    HostedHalvane host;
    host.playHead().setPlaying (0.0, 120.0, 0);

    const std::vector<TimedEvent> played {
        { juce::MidiMessage::noteOn (1, 60, (juce::uint8) 100), 100 },
        { juce::MidiMessage::noteOn (1, 64, (juce::uint8) 90), 700 },
        { juce::MidiMessage::noteOff (1, 60), 2000 },
        { juce::MidiMessage::noteOff (1, 64), 2500 },
    };
    constexpr int64_t length = 4096;
    constexpr int blockSize = 256;

    // On, the default, the empty default patterns play nothing of the chord.
    const auto withArp = host.play (played, length, blockSize);
    EXPECT_TRUE (withArp.empty()) << juce::StringArray (describe (withArp).data(), (int) withArp.size()).joinIntoString (", ");

    auto& arpActive = parameterWithId (host.plugin(), "Arp-Active");
    arpActive.setValueNotifyingHost (arpActive.getValueForText ("Off"));

    std::vector<TimedEvent> later;
    for (auto e : played)
        later.push_back ({ e.message, e.time + length });

    auto passed = host.play (later, length, blockSize);
    for (auto& e : passed)
        e.time -= length;

    EXPECT_EQ (describe (passed), describe (played));
}

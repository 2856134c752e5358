#include "core/Processor.h"
#include "core/StateBlob.h"
#include "core/SharedTimer.h"
#include "persistence/JsonText.h"
#include "support/MessagePump.h"
#include "sequencer/SequencerTestHelpers.h"

#include <gtest/gtest.h>

#include <thread>

using Orv::Audio::Plugins::Halvane::Processor;
namespace Blob = Orv::Audio::Plugin::StateBlob;

namespace
{
juce::MemoryBlock saveOf (Processor& processor)
{
    juce::MemoryBlock block;
    processor.getStateInformation (block);
    return block;
}

void restore (Processor& processor, const juce::MemoryBlock& block)
{
    processor.setStateInformation (block.getData(), (int) block.getSize());
}

juce::MemoryBlock blobOf (const std::string& text) { return Blob::write (text); }

/** Everything an instance keeps, as its own pass writes it, and the values
    the host sees: two instances with the same of both are the same. */
struct Snapshot
{
    explicit Snapshot (Processor& processor)
        : json (processor.getState().toJson (Orv::ReflectContext::forHostState()))
    {
        for (auto* parameter : processor.getParameters())
            values.push_back (parameter->getValue());
    }

    bool operator== (const Snapshot& other) const { return json == other.json && values == other.values; }

    nlohmann::json json;
    std::vector<float> values;
};

std::ostream& operator<< (std::ostream& out, const Snapshot& snapshot) { return out << snapshot.json.dump().substr (0, 400); }

juce::AudioProcessorParameter& hosted (Processor& processor, const juce::String& id)
{
    for (auto* parameter : processor.getParameters())
        if (auto* withId = dynamic_cast<juce::AudioProcessorParameterWithID*> (parameter); withId && withId->paramID == id)
            return *parameter;
    throw std::runtime_error ("no parameter " + id.toStdString());
}

/** Moves every part of the state away from a fresh instance's. */
void changeEverything (Processor& processor)
{
    auto& state = processor.getState();
    hosted (processor, "Transpose").setValueNotifyingHost (0.75f);
    hosted (processor, "Delay-Mix").setValueNotifyingHost (0.3f);
    hosted (processor, "Enable-Synth").setValueNotifyingHost (0.0f);
    *state.synth.synth.oscillators.osc[3].enable = true;

    auto& steps = state.sequencer.patterns[2]->sequence.steps;
    steps.push_back (Orv::Testing::makeStep (0.0, 0.25, 66));
    steps.push_back (Orv::Testing::makeStep (0.5, 0.125, 61));
    state.sequencer.rebuild();

    state.midiPlayer.loadBuiltIn (Orv::Sequencer::MidiPlayer::ChoiceParam::getClips().at (5).name);
    state.midiPlayer.setActive (true);
    state.octaveRange.setMin (2);
    state.octaveRange.setMax (4);
    state.ui.snap = true;
    state.getScreen().width = 640;
    state.getScreen().height = 640;
}
} // namespace

//==============================================================================
TEST (StateBlob, HoldsTheMagicTheTextsLengthTheTextAndAZeroWithEveryHostedValueByItsId)
{
    Processor processor;
    const auto block = saveOf (processor);
    const auto* bytes = static_cast<const char*> (block.getData());

    ASSERT_GT (block.getSize(), (size_t) Blob::overheadBytes);
    EXPECT_EQ (std::string (bytes, 4), "VC2!");
    const auto length = juce::ByteOrder::littleEndianInt (bytes + 4);
    EXPECT_EQ ((size_t) length, block.getSize() - Blob::overheadBytes);
    EXPECT_EQ (bytes[block.getSize() - 1], 0);

    const auto json = nlohmann::json::parse (std::string (bytes + Blob::headerBytes, length));
    EXPECT_EQ (std::string (bytes + Blob::headerBytes, length).find ('\n'), std::string::npos) << "no indentation";
    EXPECT_EQ (json.at ("product"), "Halvane");
    EXPECT_EQ (json.at ("version"), "1.0.3");
    for (const auto* key : { "Patterns", "Params", "MidiPlayer", "Synth", "Octave", "UI", "Screen" })
        EXPECT_TRUE (json.contains (key)) << key;
    EXPECT_EQ (json.at ("Synth").at ("product"), "Halvane Sounds");
    EXPECT_EQ (json.at ("Octave"), (nlohmann::json { { "Max", 6 }, { "Min", -1 } }));

    const auto& flat = json.at ("FlatParams");
    EXPECT_EQ (flat.size(), 34u);
    for (auto* parameter : processor.getParameters())
        if (auto* withId = dynamic_cast<juce::AudioProcessorParameterWithID*> (parameter))
            EXPECT_FLOAT_EQ (flat.at (withId->paramID.toStdString()).get<float>(), parameter->getValue()) << withId->paramID;
}

TEST (StateBlob, EnvelopesThatAreNotOursGiveNoTextAndALengthPastTheEndStopsAtTheData)
{
    const auto good = blobOf ("{\"a\":1}");
    const auto* bytes = static_cast<const char*> (good.getData());

    EXPECT_EQ (Blob::read (bytes, (int) good.getSize()), "{\"a\":1}");
    EXPECT_EQ (Blob::read (bytes, 8), "");
    EXPECT_EQ (Blob::read (bytes, 0), "");
    EXPECT_EQ (Blob::read (bytes, -5), "");
    EXPECT_EQ (Blob::read (nullptr, 100), "");

    auto wrongMagic = good;
    static_cast<char*> (wrongMagic.getData())[3] = '?';
    EXPECT_EQ (Blob::read (wrongMagic.getData(), (int) wrongMagic.getSize()), "");

    auto zeroLength = good;
    std::memset (static_cast<char*> (zeroLength.getData()) + 4, 0, 4);
    EXPECT_EQ (Blob::read (zeroLength.getData(), (int) zeroLength.getSize()), "");

    auto longLength = good;
    const auto huge = juce::ByteOrder::swapIfBigEndian ((juce::uint32) 0xFFFFFFF0u);
    std::memcpy (static_cast<char*> (longLength.getData()) + 4, &huge, 4);
    EXPECT_EQ (Blob::read (longLength.getData(), 12), "{\"a\"");
}

TEST (StateBlob, AFreshInstanceTakesEverythingBackFromABlob)
{
    Processor source;
    changeEverything (source);
    const auto blob = saveOf (source);

    Processor target;
    ASSERT_FALSE (Snapshot (target) == Snapshot (source));
    restore (target, blob);

    auto& state = target.getState();
    EXPECT_EQ (state.sequencer.patterns[2]->sequence.steps.size(), 2u);
    EXPECT_EQ (state.arp.getOctaves().low, 4);
    EXPECT_EQ (state.arp.getOctaves().high, 6);
    EXPECT_TRUE (state.midiPlayer.isActive());
    EXPECT_EQ (state.midiPlayer.getResource().name, Orv::Sequencer::MidiPlayer::ChoiceParam::getClips().at (5).name);
    EXPECT_FALSE (state.midiPlayer.getNoteList().events.size() == 0);
    EXPECT_FALSE (state.synth.synthEnable->get());
    EXPECT_EQ (state.arp.getTranspose(), 6);

    // A load drops the placeholder steps of untouched patterns, which lie
    // outside the rows a pattern plays; from then on a state goes through
    // blobs unchanged.
    EXPECT_EQ (state.sequencer.patterns[0]->sequence.steps.size(), 0u);
    Processor again;
    restore (again, saveOf (target));
    EXPECT_EQ (Snapshot (again), Snapshot (target));
    EXPECT_EQ (saveOf (again), saveOf (target));
}

TEST (StateBlob, HostileBlobsLeaveTheInstanceAsItWas)
{
    Processor processor;
    changeEverything (processor);
    restore (processor, saveOf (processor));
    const Snapshot before (processor);
    const auto good = Blob::read (saveOf (processor).getData(), (int) saveOf (processor).getSize());

    std::string deep (100000, '[');
    deep += std::string (100000, ']');
    std::string deepObject;
    for (int i = 0; i < 20000; ++i)
        deepObject += "{\"Patterns\":";
    deepObject += "1" + std::string (20000, '}');

    // A real given as text that is no number, deep inside a pattern: the
    // load fails halfway, after other members were already read.
    auto halfway = nlohmann::json::parse (good);
    halfway["Octave"]["Min"] = 0;
    halfway["Patterns"]["Patterns"][2]["Pattern"]["Steps"][1]["Time"]["start"] = "abc";

    auto wrongFlat = nlohmann::json::parse (good);
    wrongFlat["FlatParams"]["Transpose"] = "loud";

    const std::vector<std::pair<const char*, std::string>> texts {
        { "invalid JSON", "{\"Patterns\": [1, 2," },
        { "a number", "42" },
        { "a string", "\"VC2!\"" },
        { "deep arrays", deep },
        { "deep objects", deepObject },
        { "a bad real halfway", halfway.dump() },
        { "a flat value that is text", wrongFlat.dump() },
    };

    for (const auto& [what, text] : texts)
    {
        restore (processor, blobOf (text));
        EXPECT_EQ (Snapshot (processor), before) << what;
    }

    // A list of the wrong shape is left alone, and eight patterns stay eight.
    restore (processor, blobOf (R"({"Patterns": {"Patterns": {"Patterns": 1}}})"));
    EXPECT_EQ (Snapshot (processor), before);
    restore (processor, blobOf (R"({"Patterns": {"Patterns": [{}, {}, {}]}})"));
    EXPECT_EQ (processor.getState().sequencer.patterns.size(), 8u);
    EXPECT_EQ (processor.getState().sequencer.liveSlots.slots.size(), 8u);

    // Blobs of odd shapes set sensibly what they do hold, as a loose preset
    // would: numbers out of range are held to the range.
    restore (processor, blobOf (R"({"Patterns": 5, "Synth": [1, 2], "Octave": "x", "MidiPlayer": {"Resource": 7}})"));
    restore (processor, blobOf (R"({"Octave": {"Min": 1e308, "Max": -1e308}, "FlatParams": {"Transpose": 1e300}})"));
    EXPECT_EQ (processor.getState().arp.getTranspose(), 12);

    // Whatever came in, the instance still plays and saves.
    juce::AudioBuffer<float> audio (2, 256);
    juce::MidiBuffer midi;
    processor.prepareToPlay (48000.0, 256);
    processor.processBlock (audio, midi);
    EXPECT_GT (saveOf (processor).getSize(), (size_t) Blob::overheadBytes);

    juce::Random random (7);
    for (int i = 0; i < 200; ++i)
    {
        juce::MemoryBlock noise ((size_t) random.nextInt (400));
        random.fillBitsRandomly (noise.getData(), noise.getSize());
        if (i % 2 == 0 && noise.getSize() >= 8)
            std::memcpy (noise.getData(), "VC2!", 4);
        restore (processor, noise);
    }
    const auto truncated = saveOf (processor);
    for (const auto size : { 9, 20, (int) truncated.getSize() / 2, (int) truncated.getSize() - 2 })
        processor.setStateInformation (truncated.getData(), size);
    EXPECT_GT (saveOf (processor).getSize(), (size_t) Blob::overheadBytes);
}

TEST (StateBlob, ARestoreFromAnotherThreadWaitsForTheTickAndOnlyTheLaterOfTwoLoads)
{
    Processor source;
    changeEverything (source);
    const auto first = saveOf (source);
    source.getState().octaveRange.setMax (7);
    const auto second = saveOf (source);

    Processor target;
    std::thread host ([&] {
        restore (target, first);
        restore (target, second);
    });
    host.join();

    // Host values land at once; the rest waits for the message thread.
    EXPECT_EQ (target.getState().arp.getTranspose(), 6);
    EXPECT_TRUE (target.isRestorePending());
    EXPECT_EQ (target.getState().octaveRange.getMax(), 6);

    Orv::Events::SharedTimer::get().tick();
    EXPECT_FALSE (target.isRestorePending());
    EXPECT_EQ (target.getState().octaveRange.getMax(), 7);
    Processor direct;
    restore (direct, second);
    EXPECT_EQ (Snapshot (target), Snapshot (direct));

    // A save made before the tick holds what was restored: a host that
    // restores and saves at once gets back what it gave.
    Processor other;
    std::thread ([&] { restore (other, second); }).join();
    ASSERT_TRUE (other.isRestorePending());
    EXPECT_EQ (saveOf (other), saveOf (direct));
    EXPECT_FALSE (other.isRestorePending());
}

TEST (StateBlob, ASaveFromAnotherThreadIsMadeOnTheMessageThread)
{
    Processor processor;
    changeEverything (processor);
    const auto expected = saveOf (processor);

    juce::MemoryBlock fromHost;
    std::atomic<bool> done { false };
    std::thread host ([&] {
        processor.getStateInformation (fromHost);
        done = true;
    });
    Orv::Testing::pumpMessagesUntil ([&] { return done.load(); });
    host.join();
    EXPECT_EQ (fromHost, expected);
}

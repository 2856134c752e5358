// libFuzzer target: arbitrary bytes handed to an instance as the host's
// state blob, as a host restoring a damaged or foreign project would.
//
// What counts as a failure: any crash, hang, sanitizer report or exception
// out of the host calls; a restore that leaves anything but eight patterns;
// a state whose own blob does not load back to the same blob; a block that
// renders anything but finite audio afterwards.
//
// Every input starts from the same instance state, so that a crash replays
// from its input alone. With HALVANE_FUZZ_WRITE_SEEDS set to a folder, the
// target writes its seeds there and exits.

#include "core/Processor.h"
#include "core/StateBlob.h"
#include "sequencer/midiplayer/ChoiceParam.h"
#include "sequencer/TimedEvent.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace
{
using Orv::Audio::Plugins::Halvane::Processor;

constexpr double sampleRate = 48000.0;
constexpr int blockSize = 64;

[[noreturn]] void fail (const char* what)
{
    std::fprintf (stderr, "fuzz_state_blob: %s\n", what);
    std::abort();
}

juce::MemoryBlock saveOf (Processor& processor)
{
    juce::MemoryBlock block;
    processor.getStateInformation (block);
    return block;
}

void restore (Processor& processor, const void* data, size_t size)
{
    processor.setStateInformation (data, (int) std::min<size_t> (size, 1u << 30));
}

Orv::Sequencer::Step stepAt (double start, int row)
{
    Orv::Sequencer::Step step;
    step.time = { start, 0.2 };
    step.event.noteNum = row;
    step.enabled = true;
    return step;
}

/** An instance with something in every part of its state. */
void fillState (Processor& processor)
{
    auto& state = processor.getState();
    for (int p = 0; p < 3; ++p)
    {
        auto& steps = state.sequencer.patterns[(size_t) p]->sequence.steps;
        steps.clear();
        for (int i = 0; i < 4; ++i)
            steps.push_back (stepAt (i * 0.25, 62 + i + p));
    }
    state.sequencer.rebuild();
    state.midiPlayer.loadBuiltIn (Orv::Sequencer::MidiPlayer::ChoiceParam::getClips().at (0).name);
    state.octaveRange.setMax (5);
}

struct Instance
{
    Instance()
    {
        juce::MessageManager::getInstance();
        processor = std::make_unique<Processor>();
        processor->prepareToPlay (sampleRate, blockSize);
        fillState (*processor);
        base = saveOf (*processor);
    }

    std::unique_ptr<Processor> processor;
    juce::MemoryBlock base;
};

Instance& instance()
{
    static Instance made;
    return made;
}

void writeSeeds (const char* folder)
{
    auto& made = instance();
    const juce::File dir (folder);
    dir.createDirectory();
    dir.getChildFile ("filled.blob").replaceWithData (made.base.getData(), made.base.getSize());

    Processor fresh;
    const auto plain = saveOf (fresh);
    dir.getChildFile ("fresh.blob").replaceWithData (plain.getData(), plain.getSize());

    const auto text = Orv::Audio::Plugin::StateBlob::read (made.base.getData(), (int) made.base.getSize());
    const auto patternsOnly = Orv::Audio::Plugin::StateBlob::write (
        "{\"Patterns\":" + nlohmann::json::parse (text)["Patterns"].dump() + "}");
    dir.getChildFile ("patterns.blob").replaceWithData (patternsOnly.getData(), patternsOnly.getSize());
}
} // namespace

extern "C" int LLVMFuzzerInitialize (int*, char***)
{
    if (const auto* folder = std::getenv ("HALVANE_FUZZ_WRITE_SEEDS"))
    {
        writeSeeds (folder);
        std::exit (0);
    }
    instance();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput (const uint8_t* data, size_t size)
{
    auto& made = instance();
    auto& processor = *made.processor;
    restore (processor, made.base.getData(), made.base.getSize());

    restore (processor, data, size);

    auto& state = processor.getState();
    if (state.sequencer.patterns.size() != Orv::Audio::Plugins::Halvane::LivePatterns::numPatterns
        || state.sequencer.liveSlots.slots.size() != state.sequencer.patterns.size())
        fail ("a restore changed the number of patterns");

    // Whatever was loaded must save, and what it saves must load back to itself.
    const auto saved = saveOf (processor);
    restore (processor, saved.getData(), saved.getSize());
    if (const auto again = saveOf (processor); again != saved)
    {
        const auto textOf = [] (const juce::MemoryBlock& blob) {
            return nlohmann::json::parse (Orv::Audio::Plugin::StateBlob::read (blob.getData(), (int) blob.getSize()));
        };
        std::fprintf (stderr, "%s\n", nlohmann::json::diff (textOf (saved), textOf (again)).dump().substr (0, 2000).c_str());
        fail ("a restored state does not come back from its own blob");
    }

    juce::AudioBuffer<float> audio (2, blockSize);
    juce::MidiBuffer midi;
    midi.addEvent (juce::MidiMessage::noteOn (1, 60, (juce::uint8) 100), 0);
    processor.processBlock (audio, midi);
    for (int channel = 0; channel < 2; ++channel)
        for (int i = 0; i < blockSize; ++i)
            if (! std::isfinite (audio.getSample (channel, i)))
                fail ("a restored state renders audio that is not finite");

    return 0;
}

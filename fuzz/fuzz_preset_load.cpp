// libFuzzer target: arbitrary bytes read as a preset file of either kind,
// as the preset library reads a file from the user's folders.
//
// What counts as a failure: any crash, hang, sanitizer report or exception
// out of the load; a refused or failed load that changes the preset; a load
// that leaves anything but eight patterns; a loaded preset that does not come
// back from its own JSON.
//
// Each input starts from the same presets, so that a crash replays from its
// input alone. With HALVANE_FUZZ_WRITE_SEEDS set to a folder, the target
// writes its seeds there and exits.

#include "core/State.h"
#include "persistence/JsonText.h"
#include "sequencer/TimedEvent.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace
{
using Orv::Audio::Plugins::Halvane::State;
using Orv::ReflectContext;

[[noreturn]] void fail (const char* what)
{
    std::fprintf (stderr, "fuzz_preset_load: %s\n", what);
    std::abort();
}

struct Presets
{
    Presets()
    {
        juce::MessageManager::getInstance();
        state = std::make_unique<State>();

        Orv::Sequencer::Step step;
        step.time = { 0.25, 0.25 };
        step.event.noteNum = 65;
        step.enabled = true;
        state->sequencer.patterns[1]->sequence.steps.push_back (step);
        state->sequencer.rebuild();
        *state->synth.synth.oscillators.osc[1].enable = true;

        // A load drops what lies outside the playable rows: the base is what
        // a preset looks like once loaded.
        baseState = state->toJson (ReflectContext::forPreset());
        state->loadJsonOrRestore (baseState, ReflectContext::forPreset());
        baseState = state->toJson (ReflectContext::forPreset());
        baseSound = state->sound.toJson (ReflectContext::forPreset());
    }

    std::unique_ptr<State> state;
    nlohmann::json baseState;
    nlohmann::json baseSound;
};

Presets& presets()
{
    static Presets made;
    return made;
}

/** Loads the JSON as the library does; checks what must hold either way. */
template <typename Preset>
void loadChecked (Preset& preset, const nlohmann::json& base, const nlohmann::json& file)
{
    const auto context = ReflectContext::forPreset();
    if (! preset.loadJsonOrRestore (base, context))
        fail ("the base preset does not load");

    if (! preset.validate (file))
        return;

    if (! preset.loadJsonOrRestore (file, context))
    {
        if (preset.toJson (context) != base)
            fail ("a load that failed changed the preset");
        return;
    }

    const auto loaded = preset.toJson (context);
    preset.loadJsonOrRestore (loaded, context);
    if (const auto again = preset.toJson (context); again != loaded)
    {
        std::fprintf (stderr, "%s\n", nlohmann::json::diff (loaded, again).dump().substr (0, 2000).c_str());
        fail ("a loaded preset does not come back from its own JSON");
    }
}

void writeSeeds (const char* folder)
{
    auto& made = presets();
    const juce::File dir (folder);
    dir.createDirectory();
    dir.getChildFile ("pattern.json").replaceWithText (Orv::Json::toText (made.baseState));
    dir.getChildFile ("sound.json").replaceWithText (Orv::Json::toText (made.baseSound));
}
} // namespace

extern "C" int LLVMFuzzerInitialize (int*, char***)
{
    if (const auto* folder = std::getenv ("HALVANE_FUZZ_WRITE_SEEDS"))
    {
        writeSeeds (folder);
        std::exit (0);
    }
    presets();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput (const uint8_t* data, size_t size)
{
    auto& made = presets();
    const auto file = Orv::Json::fromText (reinterpret_cast<const char*> (data), size);

    loadChecked (*made.state, made.baseState, file);
    if (made.state->sequencer.patterns.size() != Orv::Audio::Plugins::Halvane::LivePatterns::numPatterns)
        fail ("a load changed the number of patterns");

    loadChecked (made.state->sound, made.baseSound, file);
    return 0;
}

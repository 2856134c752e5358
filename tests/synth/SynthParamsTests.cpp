#include "persistence/JsonLoader.h"
#include "persistence/JsonSaver.h"
#include "synth/SampleList.h"
#include "synth/SynthParams.h"

#include <gtest/gtest.h>

using namespace Orv;
using Audio::Plugins::Halvane::SynthParams;
using nlohmann::json;

namespace
{
struct ChangeCounter : juce::AudioProcessorParameter::Listener
{
    void parameterValueChanged (int, float) override { ++changes; }
    void parameterGestureChanged (int, bool) override {}
    int changes = 0;
};

void load (const char* text, SynthParams& params, ReflectContext context)
{
    auto file = json::parse (text);
    Json::fromJson (file, params, context);
}

juce::AudioProcessorParameter& base (juce::AudioProcessorParameter& p) { return p; }
} // namespace

TEST (SynthParams, TheMasterUnisonStepOverwritesEveryOscillatorsGroupAndTellsOnlyOfChanges)
{
    SynthParams params;
    *params.unison = 2;
    *params.unisonAmount = 0.8f;
    *params.synth.oscillators.osc[1].unison->unisonDepth = 1.0f; // as a sound file may hold it

    auto& first = *params.synth.oscillators.osc[0].unison;
    ChangeCounter voices, depth;
    first.unison->addListener (&voices);
    first.unisonDepth->addListener (&depth);

    params.pushMasterUnison();

    for (auto& osc : params.synth.oscillators.osc)
    {
        EXPECT_EQ (osc.unison->unison->get(), 2);
        EXPECT_FLOAT_EQ (osc.unison->unisonDepth->get(), 0.8f);
        EXPECT_FLOAT_EQ (osc.unison->unisonSpread->get(), 0.8f);
    }

    EXPECT_EQ (voices.changes, 1);
    EXPECT_EQ (depth.changes, 1);

    params.pushMasterUnison();
    EXPECT_EQ (voices.changes, 1) << "nothing moved, nothing to tell";
    EXPECT_EQ (depth.changes, 1);

    first.unison->removeListener (&voices);
    first.unisonDepth->removeListener (&depth);
}

TEST (SynthParams, AFreshSoundSavesTheKeysAndDefaultTextsOfASoundFile)
{
    SynthParams params;
    const auto file = Json::toJson (params, ReflectContext::forPreset());

    const struct
    {
        const char* path;
        juce::String text;
    } cases[] = {
        { "/Unison", "1" },
        { "/UnisonAmount", "0.50" },
        { "/SynthEnable", "On" },
        { "/Synth/ADSR/Attack", "0.00" },
        { "/Synth/ADSR/Decay", "1.00" },
        { "/Synth/Delay/Mode", "Free" },
        { "/Synth/Delay/TimeSync", "1/4" },
        { "/Synth/Delay/Time", "0.10" },
        { "/Synth/Delay/Feedback", "0.10" },
        { "/Synth/Filter/Enable", "On" },
        { "/Synth/Filter/Cutoff", "8000.00" },
        { "/Synth/Filter/KeyTracking", "1.00" },
        { "/Synth/Oscillators/Sync", "Off" },
        { "/Synth/Oscillators/OSC 0/Type", Audio::WavetableSynth::SampleList::getWaveNames()[0] },
        { "/Synth/Oscillators/OSC 0/Enable", "Off" },
        { "/Synth/Oscillators/OSC 3/Tune", "0" },
        { "/Synth/Oscillators/OSC 3/Volume", "0.00 dB" },
        { "/Synth/Oscillators/OSC 3/Unison/UnisonSpread", "0.50" },
        { "/Synth/Sub/SubOctave", "-2" },
        { "/Synth/Sub/SubVolume", "0.00 dB" },
    };

    for (const auto& c : cases)
    {
        const json::json_pointer at (c.path);
        ASSERT_TRUE (file.contains (at)) << c.path;
        EXPECT_EQ (file[at].get<std::string>(), c.text.toStdString()) << c.path;
    }

    EXPECT_FALSE (file.contains ("Master"));
    EXPECT_EQ (Audio::WavetableSynth::SampleList::getWaveNames()[0], "ARP");
}

TEST (SynthParams, MasterIsKeptByTheInstanceButNotTakenFromASoundFile)
{
    SynthParams params;
    base (*params.master).setValue (0.25f);
    const auto kept = params.master->getCurrentValueAsText();

    load (R"({"Master": "-100.00 dB", "UnisonAmount": "0.30"})", params, ReflectContext::forPreset());
    EXPECT_EQ (params.master->getCurrentValueAsText(), kept);
    EXPECT_FLOAT_EQ (params.unisonAmount->get(), 0.3f);

    load (R"({"Master": "-100.00 dB"})", params, ReflectContext::forHostState());
    EXPECT_FLOAT_EQ (params.master->get(), 0.0f);
}

TEST (SynthParams, FileTextsThatAreOffTheRangeOrTheChoicesAreClippedOrTakeTheFirst)
{
    SynthParams params;
    load (R"({"Synth": {"Delay": {"Time": "0.00", "Feedback": "0.90"},
                        "Oscillators": {"OSC 2": {"Type": "No Such Wave", "Tune": "40"}}}})",
          params, ReflectContext::forPreset());

    auto& delay = params.synth.delay;
    EXPECT_FLOAT_EQ (delay.time->get(), 0.01f);
    EXPECT_FLOAT_EQ (delay.feedback->get(), 0.4f);
    EXPECT_EQ (params.synth.oscillators.osc[2].type->getIndex(), 0);
    EXPECT_EQ (params.synth.oscillators.osc[2].tune->get(), 24);
}

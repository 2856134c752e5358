#include "core/ProcessorBase.h"
#include "parameters/ForwardingParameter.h"
#include "parameters/ParamList.h"
#include "parameters/VolumeParameter.h"
#include "persistence/JsonLoader.h"
#include "persistence/JsonSaver.h"

#include <gtest/gtest.h>

using namespace Orv;
using Audio::ParamHolder;
using Audio::ParamList;
using nlohmann::json;

namespace
{
struct Deep : ParamList
{
    Deep() { addParam (depth); }

    ParamHolder<juce::AudioParameterFloat> depth { "Depth", "Depth", 0.0f, 1.0f, 0.5f };
};

struct Inner : ParamList
{
    Inner()
    {
        addParam (mode);
        addParam (gain);
        addList ("Deep", deep);
    }

    ParamHolder<juce::AudioParameterChoice> mode { "Mode", "Mode", juce::StringArray { "Free", "Sync" }, 0 };
    ParamHolder<juce::AudioParameterFloat> gain { "Gain", "Gain", 0.0f, 10.0f, 2.5f };
    Deep deep;
};

/** A small tree in the shape of the synth's: plain parameters, an
    instance-only volume, and a list inside a list. */
struct Outer : ParamList
{
    Outer()
    {
        level.inPreset = false;
        addParam (voices);
        addParam (level);
        addParam (on);
        addList ("Inner List", inner);
    }

    ParamHolder<juce::AudioParameterInt> voices { "Voices", "Voices", 1, 4, 1 };
    ParamHolder<Audio::VolumeParameter> level { "Level", "Level", -100.0f, 3.0f, 0.0f, 0.0f };
    ParamHolder<juce::AudioParameterBool> on { "On", "On", true };
    Inner inner;
};

juce::StringArray keysOf (const ParamList& list)
{
    juce::StringArray keys;

    for (const auto& entry : list.params)
        keys.add (entry.key);

    return keys;
}

void setNormalised (Audio::ParamHolderBase& holder, float value) { holder.getParameter()->setValue (value); }

json save (ParamList& list, ReflectContext context) { return Json::toJson (list, context); }

void load (const char* text, ParamList& list, ReflectContext context)
{
    auto file = json::parse (text);
    Json::fromJson (file, list, context);
}
} // namespace

TEST (ParamList, AddingAKeyThatIsThereReplacesTheHolderInPlace)
{
    Outer outer;
    outer.params[1].enabled = false;
    ParamHolder<juce::AudioParameterFloat> otherLevel { "Level", "Level", 0.0f, 1.0f, 0.0f };

    outer.addParam (otherLevel);

    EXPECT_EQ (keysOf (outer), juce::StringArray ("Voices", "Level", "On"));
    EXPECT_EQ (outer.params[1].holder, &otherLevel);
    EXPECT_TRUE (outer.params[1].enabled);
}

TEST (ParamList, AListWithoutAKeyMergesByKeyAndAKeyedListReplacesInPlace)
{
    Outer outer;
    Inner other;
    ParamHolder<juce::AudioParameterInt> voices { "Voices", "Voices", 1, 8, 2 };
    other.addParam (voices);

    outer.addList ({}, other);
    EXPECT_EQ (keysOf (outer), juce::StringArray ("Voices", "Level", "On", "Mode", "Gain"));
    EXPECT_EQ (outer.params[0].holder, &voices);
    EXPECT_EQ (outer.params[3].holder, &other.mode);

    Inner replacement;
    outer.addList ("Inner List", replacement);
    ASSERT_EQ (outer.lists.size(), 1u);
    EXPECT_EQ (outer.lists[0].list, &replacement);
}

TEST (ParamList, AttachedToNoProcessorAHiddenOneOwnsFrontsNamedAfterTheKeyPath)
{
    Outer outer;
    outer.attach (nullptr);

    ASSERT_NE (outer.hiddenProcessor, nullptr);
    auto& hidden = *outer.hiddenProcessor;
    EXPECT_EQ (outer.processor, &hidden);
    ASSERT_EQ (hidden.getBusCount (true), 1);
    EXPECT_EQ (hidden.getBus (true, 0)->getName(), "Input");
    EXPECT_EQ (hidden.getBus (false, 0)->getName(), "Output");
    EXPECT_EQ (hidden.getBus (false, 0)->getCurrentLayout(), juce::AudioChannelSet::stereo());

    juce::StringArray ids, names;

    for (auto* p : hidden.getParameters())
    {
        ids.add (dynamic_cast<juce::HostedAudioProcessorParameter&> (*p).getParameterID());
        names.add (p->getName (100));
    }

    EXPECT_EQ (ids, juce::StringArray ({ "Voices", "Level", "On", "Inner-List-Mode", "Inner-List-Gain",
                                         "Inner-List-Deep-Depth" }));
    EXPECT_EQ (names[5], "Inner List Deep Depth");

    // The processor holds fronts, not the parameters themselves.
    auto* front = dynamic_cast<Audio::ForwardingParameter*> (hidden.getParameters()[4]);
    ASSERT_NE (front, nullptr);
    EXPECT_EQ (&front->getTarget(), outer.inner.gain.get());
    EXPECT_TRUE (outer.inner.gain.adopted);
    EXPECT_GE (outer.inner.gain->getParameterIndex(), 0);

    const auto& groups = hidden.getParameterTree().getSubgroups (false);
    ASSERT_EQ (groups.size(), 1);
    EXPECT_EQ (groups[0]->getID(), "Inner-List");
    EXPECT_EQ (groups[0]->getName(), "Inner List");
    EXPECT_EQ (groups[0]->getSeparator(), "-");
    ASSERT_EQ (groups[0]->getSubgroups (false).size(), 1);
    EXPECT_EQ (groups[0]->getSubgroups (false)[0]->getID(), "Inner-List-Deep");
}

TEST (ParamList, OwnedFrontsGoToTheProcessorAsTheyAreAndInOrder)
{
    Outer tree;
    tree.attach (nullptr);

    ParamList flat;
    flat.addForwarder (tree.inner.gain, "Inner-Gain");
    flat.addForwarder (tree.voices, "Voice-Count");

    Audio::ProcessorBase host ("Host", Audio::ProcessorBase::makeStereoBuses());
    flat.attach (&host);

    const auto parameters = host.getParameters();
    ASSERT_EQ (parameters.size(), 2);
    EXPECT_EQ (parameters[0]->getName (100), "Inner Gain");
    EXPECT_EQ (dynamic_cast<juce::HostedAudioProcessorParameter&> (*parameters[1]).getParameterID(), "Voice-Count");
    EXPECT_TRUE (flat.ownedHolders[0]->adopted);

    parameters[0]->setValue (0.2f);
    EXPECT_FLOAT_EQ (tree.inner.gain->get(), 2.0f);
}

TEST (ParamList, SavesTextsAndLoadsEveryMissingKeyAsItsDefault)
{
    Outer outer;
    *outer.voices = 3;
    *outer.inner.gain = 4.75f;
    *outer.inner.mode = 1;
    *outer.inner.deep.depth = 0.25f;

    auto saved = save (outer, ReflectContext::forPreset());
    EXPECT_EQ (saved, json::parse (R"({"Voices": "3", "On": "On",
                                      "Inner List": {"Mode": "Sync", "Gain": "4.75", "Deep": {"Depth": "0.25"}}})"));

    Outer copy;
    Json::fromJson (saved, copy, ReflectContext::forPreset());
    EXPECT_EQ (save (copy, ReflectContext::forPreset()), saved);

    *outer.on = false;
    load (R"({"Voices": "2", "Inner List": {"Mode": "Sync"}})", outer, ReflectContext::forPreset());
    EXPECT_EQ (outer.voices->get(), 2);
    EXPECT_EQ (outer.inner.mode->getIndex(), 1);
    EXPECT_FLOAT_EQ (outer.inner.gain->get(), 2.5f);
    EXPECT_TRUE (outer.on->get());
    // A child list that the file does not name is not visited, so it keeps its values.
    EXPECT_FLOAT_EQ (outer.inner.deep.depth->get(), 0.25f);
}

TEST (ParamList, AnInstanceOnlyParameterIsLeftAloneByPresetsAndKeptByTheInstance)
{
    Outer outer;
    setNormalised (outer.level, 0.3f);
    const auto level = outer.level->get();

    EXPECT_FALSE (save (outer, ReflectContext::forPreset()).contains ("Level"));

    load (R"({"Level": "-100.00 dB"})", outer, ReflectContext::forPreset());
    EXPECT_FLOAT_EQ (outer.level->get(), level);

    auto state = save (outer, ReflectContext::forHostState());
    ASSERT_TRUE (state.contains ("Level"));

    Outer restored;
    Json::fromJson (state, restored, ReflectContext::forHostState());
    EXPECT_EQ (restored.level->getCurrentValueAsText(), outer.level->getCurrentValueAsText());

    load (R"({})", restored, ReflectContext::forHostState());
    EXPECT_FLOAT_EQ (restored.level->get(), 1.0f);
}

TEST (ParamList, AListThatIsNotEnabledIsNeitherSavedNorLoaded)
{
    Outer outer;
    outer.lists[0].enabled = false;
    *outer.inner.gain = 7.0f;

    EXPECT_FALSE (save (outer, ReflectContext::forPreset()).contains ("Inner List"));
    load (R"({"Inner List": {"Gain": "1.00"}})", outer, ReflectContext::forPreset());
    EXPECT_FLOAT_EQ (outer.inner.gain->get(), 7.0f);
}

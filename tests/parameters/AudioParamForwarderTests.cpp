#include "core/ProcessorBase.h"
#include "parameters/AudioChoiceForwarder.h"
#include "parameters/AudioParameterMenus.h"
#include "parameters/ParamHolder.h"

#include <gtest/gtest.h>

using namespace Orv;
using Parameters::AudioChoiceForwarder;
using Parameters::AudioParamForwarderBase;

namespace
{
struct GestureLog : juce::AudioProcessorParameter::Listener
{
    void parameterValueChanged (int, float) override { log.add ("value"); }
    void parameterGestureChanged (int, bool starting) override { log.add (starting ? "begin" : "end"); }
    juce::StringArray log;
};

/** The three kinds a forwarder tells apart, owned by a processor as in the
    plug-in, so that gestures have somewhere to go. */
struct Owned
{
    Owned()
    {
        processor.addParameter (octave.get());
        processor.addParameter (quantize.get());
        processor.addParameter (cutoff.get());
        octave.adopted = quantize.adopted = cutoff.adopted = true;
    }

    Audio::ProcessorBase processor { "Owner", Audio::ProcessorBase::makeStereoBuses(),
                                     Audio::ProcessorBase::ParameterOwnerOnly {} };
    Audio::ParamHolder<juce::AudioParameterInt> octave { "Octave", "Octave", -3, 3, 0 };
    Audio::ParamHolder<juce::AudioParameterChoice> quantize {
        "Quantize", "Quantize", juce::StringArray { "4/4", "2/4", "1/4", "1/8" }, 2
    };
    Audio::ParamHolder<juce::AudioParameterFloat> cutoff { "Cutoff", "Cutoff", 0.0f, 100.0f, 50.0f };
};

juce::StringArray namesOf (const MenuItems::Item& root)
{
    juce::StringArray names;

    for (const auto& item : root.subItems)
        names.add (item.name);

    return names;
}
} // namespace

TEST (AudioParamForwarder, IntegersAndChoicesAreSetAndReadByValueOthersThroughTheFloat)
{
    Owned o;
    AudioParamForwarderBase octave (*o.octave), quantize (*o.quantize), cutoff (*o.cutoff);
    GestureLog hostSeesOctave;
    o.octave->addListener (&hostSeesOctave);

    octave.setInt (-2);
    EXPECT_EQ (o.octave->get(), -2);
    EXPECT_EQ (octave.getInt(), -2);
    EXPECT_EQ (hostSeesOctave.log, juce::StringArray ("value"));

    quantize.setInt (3);
    EXPECT_EQ (o.quantize->getIndex(), 3);
    EXPECT_EQ (quantize.getInt(), 3);
    quantize.setInt (9); // the range clips
    EXPECT_EQ (o.quantize->getIndex(), 3);

    cutoff.setInt (1); // a normalised value as it stands: the top of the range
    EXPECT_FLOAT_EQ (o.cutoff->get(), 100.0f);
    EXPECT_EQ (cutoff.getInt(), 1);
    o.octave->removeListener (&hostSeesOctave);
}

TEST (AudioParamForwarder, TextsAndDefaultsComeFromTheJuceParameter)
{
    Owned o;
    AudioParamForwarderBase quantize (*o.quantize);

    EXPECT_EQ (quantize.getName(), "Quantize");
    EXPECT_EQ (quantize.getText(), "1/4");
    EXPECT_EQ (quantize.getTextFor (1.0f), "1/8");
    EXPECT_EQ (quantize.getNumChoices(), 4);
    EXPECT_FLOAT_EQ (quantize.getDefaultNormalised(), 2.0f / 3.0f); // "1/4" of four choices

    quantize.setFromText ("2/4");
    EXPECT_EQ (o.quantize->getIndex(), 1);
}

TEST (AudioParamForwarder, AGestureIsBegunOnceAndAHostsTouchCountsAsOne)
{
    Owned o;
    AudioParamForwarderBase cutoff (*o.cutoff);
    GestureLog host;
    o.cutoff->addListener (&host);

    cutoff.beginGesture();
    cutoff.beginGesture();
    EXPECT_TRUE (cutoff.isInGesture());
    cutoff.endGesture();
    cutoff.endGesture();
    EXPECT_EQ (host.log, juce::StringArray ("begin", "end"));

    static_cast<juce::AudioProcessorParameter&> (*o.cutoff).beginChangeGesture();
    EXPECT_TRUE (cutoff.isInGesture());
    static_cast<juce::AudioProcessorParameter&> (*o.cutoff).endChangeGesture();
    EXPECT_FALSE (cutoff.isInGesture());
    o.cutoff->removeListener (&host);
}

TEST (AudioParamForwarder, MenusListChoicesLastFirstAndIntegersHighestFirst)
{
    Owned o;
    AudioParamForwarderBase octave (*o.octave), cutoff (*o.cutoff);
    AudioChoiceForwarder quantize (*o.quantize);

    auto octaves = octave.getMenuChoices();
    EXPECT_EQ (octaves.type, MenuItems::Item::subMenuRoot);
    EXPECT_EQ (namesOf (octaves), juce::StringArray ({ "3", "2", "1", "0", "-1", "-2", "-3" }));
    octaves.subItems[1].func();
    EXPECT_EQ (o.octave->get(), 2);
    EXPECT_TRUE (octaves.subItems[1].isSelected());
    EXPECT_FALSE (octaves.subItems[0].isSelected());

    auto grids = quantize.getMenuChoices();
    EXPECT_EQ (namesOf (grids), juce::StringArray ({ "1/8", "1/4", "2/4", "4/4" }));
    EXPECT_TRUE (grids.subItems[0].flag);

    GestureLog host;
    o.quantize->addListener (&host);
    grids.subItems[3].func();
    EXPECT_EQ (o.quantize->getIndex(), 0);
    EXPECT_TRUE (grids.subItems[3].isSelected());
    EXPECT_EQ (host.log, juce::StringArray ({ "begin", "value", "end" }));
    o.quantize->removeListener (&host);

    EXPECT_TRUE (cutoff.getMenuChoices().subItems.empty());
}

TEST (AudioParamForwarder, AChoiceNamesItsChoicesAndNothingPastTheEnd)
{
    Owned o;
    AudioChoiceForwarder quantize (*o.quantize);

    EXPECT_EQ (quantize.getChoiceName (0), "4/4");
    EXPECT_EQ (quantize.getChoiceName (3), "1/8");
    EXPECT_EQ (quantize.getChoiceName (4), "");
    EXPECT_EQ (quantize.getChoiceName (-1), "");
}

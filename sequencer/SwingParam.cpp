#include "sequencer/SwingParam.h"

#include <algorithm>

namespace Orv::Sequencer
{
namespace
{
    const juce::String swingId = "Swing";
    const juce::String percentSign = "%";
} // namespace

SwingParam::SwingParam()
    : juce::AudioParameterInt (juce::ParameterID (swingId, versionHint), swingId, minimum, maximum, defaultValue,
                               juce::AudioParameterIntAttributes()
                                   .withStringFromValueFunction ([] (int v, int) { return textFor (v); })
                                   .withValueFromStringFunction ([] (const juce::String& t) { return valueFor (t); }))
{
}

juce::String SwingParam::textFor (int value) { return juce::String (value) + percentSign; }

int SwingParam::valueFor (const juce::String& text) { return std::clamp (text.getIntValue(), minimum, maximum); }
} // namespace Orv::Sequencer

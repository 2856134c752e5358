#include "core/ProcessorBase.h"

namespace Orv::Audio
{
ProcessorBase::ProcessorBase (const juce::String& pluginName, const BusesProperties& buses)
    : juce::AudioProcessor (buses), name (pluginName)
{
    instanceCounter.emplace();
}

ProcessorBase::ProcessorBase (const juce::String& pluginName, const BusesProperties& buses, ParameterOwnerOnly)
    : juce::AudioProcessor (buses), name (pluginName)
{
}

ProcessorBase::~ProcessorBase() = default;

void ProcessorBase::prepareToPlay (double, int) {}

void ProcessorBase::processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer&)
{
    buffer.clear();
}

const juce::String ProcessorBase::getName() const { return name; }

juce::AudioProcessor::BusesProperties ProcessorBase::makeStereoBuses()
{
    return BusesProperties()
        .withInput ("Input", juce::AudioChannelSet::stereo(), true)
        .withOutput ("Output", juce::AudioChannelSet::stereo(), true);
}
} // namespace Orv::Audio

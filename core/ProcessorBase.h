#pragma once

#include "core/ShutdownDeleter.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <optional>

namespace Orv::Audio
{
/** The answers every plug-in of this family gives the host unless it says
    otherwise: an instrument that takes and gives MIDI, no tail, one program
    with no name, and a block that clears its buffer. */
class ProcessorBase : public juce::AudioProcessor
{
public:
    ProcessorBase (const juce::String& pluginName, const BusesProperties& buses);

    /** Marks a processor that exists only to own parameters for the
        framework's sake and never runs: it is no plug-in instance, so it
        keeps no singletons alive and its end releases none. */
    struct ParameterOwnerOnly
    {
    };

    /** Message thread: a processor of the kind above. */
    ProcessorBase (const juce::String& pluginName, const BusesProperties& buses, ParameterOwnerOnly);
    ~ProcessorBase() override;

    //==============================================================================
    /** Host thread, never during a block. */
    void prepareToPlay (double sampleRate, int samplesPerBlock) override;
    /** Host thread. */
    void releaseResources() override {}
    /** Audio thread: silence, MIDI as it came. */
    void processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi) override;
    using juce::AudioProcessor::processBlock;

    //==============================================================================
    const juce::String getName() const override;
    bool acceptsMidi() const override { return true; }
    bool producesMidi() const override { return true; }
    bool isMidiEffect() const override { return false; }
    bool supportsMPE() const override { return false; }
    double getTailLengthSeconds() const override { return 0.0; }

    //==============================================================================
    int getNumPrograms() override { return 1; }
    int getCurrentProgram() override { return 0; }
    void setCurrentProgram (int) override {}
    const juce::String getProgramName (int) override { return {}; }
    void changeProgramName (int, const juce::String&) override {}

    //==============================================================================
    bool hasEditor() const override { return false; }
    juce::AudioProcessorEditor* createEditor() override { return nullptr; }
    void getStateInformation (juce::MemoryBlock&) override {}
    void setStateInformation (const void*, int) override {}

    /** The plug-in's stereo-in, stereo-out layout; the input exists for the
        framework's sake only. */
    static BusesProperties makeStereoBuses();

private:
    const juce::String name;

    // Singletons shared by all instances of the process die with the last one.
    std::optional<ShutdownDeleter::InstanceCounter> instanceCounter;
};
} // namespace Orv::Audio

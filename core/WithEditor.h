#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <utility>

namespace Orv::Audio::Plugin
{
/** The class the plug-in entry makes: the processor with its window, and the
    boundary towards the host. No exception leaves a call that a host makes: a
    failing call keeps the instance's state and the host carries on. */
template <typename ProcessorType, typename EditorType>
class WithEditor : public ProcessorType
{
public:
    template <typename... Args>
    explicit WithEditor (Args&&... args) : ProcessorType (std::forward<Args> (args)...)
    {
    }

    //==============================================================================
    bool hasEditor() const override { return true; }

    /** Message thread: a new window on the same state. */
    juce::AudioProcessorEditor* createEditor() override
    {
        return guarded ([this]() -> juce::AudioProcessorEditor* { return new EditorType (*this); },
                        static_cast<juce::AudioProcessorEditor*> (nullptr));
    }

    //==============================================================================
    void prepareToPlay (double sampleRate, int samplesPerBlock) override
    {
        guarded ([&] { ProcessorType::prepareToPlay (sampleRate, samplesPerBlock); });
    }

    void releaseResources() override
    {
        guarded ([&] { ProcessorType::releaseResources(); });
    }

    /** Audio thread. A block that fails leaves silence and no MIDI. */
    void processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi) override
    {
        try
        {
            ProcessorType::processBlock (buffer, midi);
        }
        catch (...)
        {
            buffer.clear();
            midi.clear();
        }
    }
    using ProcessorType::processBlock;

    void getStateInformation (juce::MemoryBlock& destData) override
    {
        guarded ([&] { ProcessorType::getStateInformation (destData); });
    }

    void setStateInformation (const void* data, int sizeInBytes) override
    {
        guarded ([&] { ProcessorType::setStateInformation (data, sizeInBytes); });
    }

    void setCurrentProgram (int index) override
    {
        guarded ([&] { ProcessorType::setCurrentProgram (index); });
    }

    void changeProgramName (int index, const juce::String& newName) override
    {
        guarded ([&] { ProcessorType::changeProgramName (index, newName); });
    }

    void reset() override
    {
        guarded ([&] { ProcessorType::reset(); });
    }

private:
    template <typename Func>
    static void guarded (Func&& func) noexcept
    {
        try
        {
            func();
        }
        catch (...)
        {
        }
    }

    template <typename Func, typename Result>
    static Result guarded (Func&& func, Result fallback) noexcept
    {
        try
        {
            return func();
        }
        catch (...)
        {
            return fallback;
        }
    }
};
} // namespace Orv::Audio::Plugin

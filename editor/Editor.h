#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

namespace Orv::GUI::Plugins::Halvane
{
/** The plug-in's window: a resizable square on the instance's state. Closing
    it loses nothing; the state lives in the processor. Message thread only. */
class Editor : public juce::AudioProcessorEditor
{
public:
    static constexpr int defaultSize = 720;
    static constexpr int minimumSize = 360;
    static constexpr int maximumSize = 2160;

    explicit Editor (juce::AudioProcessor& processor);
    ~Editor() override;

    void paint (juce::Graphics& g) override;

private:
    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (Editor)
};
} // namespace Orv::GUI::Plugins::Halvane

#include "editor/Editor.h"

namespace Orv::GUI::Plugins::Halvane
{
namespace
{
    const juce::Colour background { 0xff1b1d22 };
    const juce::Colour foreground { 0xffe8e4da };
} // namespace

Editor::Editor (juce::AudioProcessor& processor) : juce::AudioProcessorEditor (processor)
{
    setResizable (true, true);
    setResizeLimits (minimumSize, minimumSize, maximumSize, maximumSize);
    if (auto* constrainer = getConstrainer())
        constrainer->setFixedAspectRatio (1.0);
    setSize (defaultSize, defaultSize);
}

Editor::~Editor() = default;

void Editor::paint (juce::Graphics& g)
{
    g.fillAll (background);
    g.setColour (foreground);
    g.setFont (static_cast<float> (getHeight()) / 12.0f);
    g.drawText (processor.getName(), getLocalBounds(), juce::Justification::centred);
}
} // namespace Orv::GUI::Plugins::Halvane

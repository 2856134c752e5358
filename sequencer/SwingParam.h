#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

namespace Orv::Sequencer
{
/** The swing amount in percent, -200 to 200, shown as "N%". Typed text is
    read as a number, so the "%" may be left out, and out-of-range values
    are limited. Its normalised value is 0.5 at no swing. */
class SwingParam : public juce::AudioParameterInt
{
public:
    static constexpr int versionHint = 1;
    static constexpr int minimum = -200;
    static constexpr int maximum = 200;
    static constexpr int defaultValue = 0;

    /** Message thread. */
    SwingParam();

    /** Any thread: the text of a value, e.g. "-40%". */
    static juce::String textFor (int value);

    /** Any thread: the value a text gives, limited to the range. */
    static int valueFor (const juce::String& text);
};
} // namespace Orv::Sequencer

#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

namespace Orv::Audio
{
/** A volume whose stored value is a linear gain, shown and typed in
    decibels. Everything at or below the floor is silence: 0.0 reads
    "-100.00 dB", and any text at or below the floor gives 0.0. The knob's
    middle sits at the gain of the middle decibel value. */
class VolumeParameter : public juce::AudioParameterFloat
{
public:
    /** The level that counts as silence, and the lowest text shown. */
    static constexpr float floorDb = -100.0f;

    /** Message thread. All four in decibels. */
    VolumeParameter (const juce::String& id, const juce::String& name, float minDb, float maxDb, float midDb,
                     float defaultDb);

    /** Any thread: the linear gain of a level, 0 at or below the floor.
        Single precision throughout, so that files give the same gains on
        every build. */
    static float gainFor (float decibels) noexcept;

    /** Any thread: a gain as text with two decimals and " dB". */
    static juce::String textFor (float gain);

    /** Any thread: the gain of a text; the unit behind the number is ignored. */
    static float gainForText (const juce::String& text);
};
} // namespace Orv::Audio

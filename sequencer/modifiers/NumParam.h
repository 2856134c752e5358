#pragma once

#include "sequencer/modifiers/Bar.h"
#include "sequencer/modifiers/MusicalTimeParam.h"

#include <juce_audio_basics/juce_audio_basics.h>

namespace Orv::Sequencer::Modifiers
{
/** The numerator of a bar, 1 to 32 beats. Message thread only. */
class NumParam : public MusicalTimeParam
{
public:
    static constexpr float minBeats = 1.0f;
    static constexpr float maxBeats = 32.0f;
    static constexpr float beatStep = 1.0f;
    static constexpr float defaultBeats = 4.0f;

    NumParam (Bar& bar, CallbackFunc onChange);

    /** Message thread only: the numerator's place in 1 to 32. */
    float getNormalised() const override;

    /** Message thread only: the range's whole number for the position. */
    void setNormalisedNotifying (float normalised) override;

    /** The position of 4 beats, through the range's own conversion. */
    float getDefaultNormalised() const override;

    static juce::NormalisableRange<float> getRange();
};
} // namespace Orv::Sequencer::Modifiers

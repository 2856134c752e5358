#include "sequencer/modifiers/NumParam.h"

namespace Orv::Sequencer::Modifiers
{
NumParam::NumParam (Bar& bar, CallbackFunc onChange) : MusicalTimeParam (bar.num, std::move (onChange)) {}

juce::NormalisableRange<float> NumParam::getRange() { return { minBeats, maxBeats, beatStep, 1.0f }; }

float NumParam::getNormalised() const { return getRange().convertTo0to1 (static_cast<float> (getField())); }

void NumParam::setNormalisedNotifying (float normalised)
{
    setInt (static_cast<int> (getRange().convertFrom0to1 (normalised)));
}

float NumParam::getDefaultNormalised() const { return getRange().convertTo0to1 (defaultBeats); }
} // namespace Orv::Sequencer::Modifiers

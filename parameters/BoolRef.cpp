#include "parameters/BoolRef.h"

namespace Orv::Parameters
{
float BoolRef::getNormalised() const { return *value ? 1.0f : 0.0f; }

void BoolRef::setBool (bool newValue) { *value = newValue; }

juce::String BoolRef::getTextFor (float normalised) const
{
    return normalised > boolThreshold ? getOnText() : getOffText();
}

juce::String BoolRef::getText() const { return getTextFor (getNormalised()); }

juce::String BoolRef::getTextForInt (int index) const { return index < 1 ? getOffText() : getOnText(); }

void BoolRef::setNormalisedNotifying (float normalised) { setBool (normalised > boolThreshold); }
} // namespace Orv::Parameters

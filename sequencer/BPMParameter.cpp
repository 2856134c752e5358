#include "sequencer/BPMParameter.h"

#include <algorithm>
#include <cmath>

namespace Orv::Sequencer
{
namespace
{
    constexpr double stepsPerBeat = 10000.0;
    constexpr double stepSize = 0.0001;
    // The minimum in steps less half a step: truncating what remains then
    // rounds to the nearest step counted from the minimum.
    constexpr double snapOffset = static_cast<double> (BPMParameter::minimum) * stepsPerBeat - 0.5;
    const juce::String name = "BPM";
} // namespace

BPMParameter::BPMParameter() : value (makeRange().convertFrom0to1 (defaultNormalised)) {}

juce::NormalisableRange<float> BPMParameter::makeRange()
{
    return { minimum, maximum, interval, skew };
}

float BPMParameter::getNormalised() const { return makeRange().convertTo0to1 (value.load()); }

void BPMParameter::setNormalised (float normalised) { value.store (makeRange().convertFrom0to1 (normalised)); }

void BPMParameter::setNormalisedNotifying (float normalised) { setNormalised (normalised); }

void BPMParameter::setFloat (float bpm) { value.store (std::clamp (bpm, minimum, maximum)); }

float BPMParameter::getFloat() const { return value.load(); }

float BPMParameter::snapTyped (double x) noexcept
{
    // Outside the range (and for NaN) the snap could not land inside it;
    // deciding first also keeps the narrowing below within float's range.
    if (! (x > static_cast<double> (minimum)))
        return minimum;

    if (x >= static_cast<double> (maximum))
        return maximum;

    const auto typed = static_cast<double> (static_cast<float> (x));
    const auto steps = std::trunc (typed * stepsPerBeat - snapOffset);
    const auto snapped = static_cast<float> (steps * stepSize + static_cast<double> (minimum));
    return std::clamp (snapped, minimum, maximum);
}

void BPMParameter::setFromText (const juce::String& text) { value.store (snapTyped (text.getDoubleValue())); }

juce::String BPMParameter::textOf (float bpm) { return juce::String (static_cast<int> (bpm)); }

juce::String BPMParameter::getText() const { return textOf (value.load()); }

juce::String BPMParameter::getTextFor (float normalised) const { return textOf (makeRange().convertFrom0to1 (normalised)); }

juce::String BPMParameter::getName() const { return name; }
} // namespace Orv::Sequencer

#include "sequencer/Swing.h"

#include <juce_core/juce_core.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace Orv::Sequencer
{
namespace
{
    // The control's value is kept off 0 and 1 so that the logarithm of the
    // curve is never of 0 or of 1.
    constexpr double lowestMiddle = 0.001;
    constexpr double highestMiddle = 0.999;

    // Beyond these the control's travel is halved, continuous at each knee.
    constexpr double upperKnee = 0.8;
    constexpr double lowerKnee = 0.2;
    constexpr double outerSlope = 0.5;
    constexpr double upperOffset = upperKnee * (1.0 - outerSlope);
    constexpr double lowerOffset = lowerKnee * (1.0 - outerSlope);

    constexpr std::array<double, 3> periodsByReference { 0.5, 1.0, 2.0 };
    constexpr double unknownReferencePeriod = 1.0;

    constexpr double logOfHalf = -0.6931471805599453;
    // The range's snapping interval; the conversion used here does not snap.
    constexpr double rangeInterval = 0.0001;
} // namespace

double swingPeriodFor (int referenceIndex) noexcept
{
    if (referenceIndex < 0 || referenceIndex >= static_cast<int> (periodsByReference.size()))
        return unknownReferencePeriod;

    return periodsByReference[static_cast<size_t> (referenceIndex)];
}

SwingPair makeSwingPair (float normalisedSwing, int referenceIndex) noexcept
{
    auto middle = std::clamp (static_cast<double> (normalisedSwing), lowestMiddle, highestMiddle);

    if (middle > upperKnee)
        middle = middle * outerSlope + upperOffset;
    else if (middle < lowerKnee)
        middle = middle * outerSlope + lowerOffset;

    return { middle, swingPeriodFor (referenceIndex) };
}

double swungTime (double middle, double period, double time)
{
    const auto remainder = std::fmod (time, period);
    const auto periodStart = time - remainder;
    const auto periodEnd = periodStart + period;

    // A negative proportion jumps to the period's start rather than being
    // mirrored: times before 0 are not expected to swing.
    const auto proportion = std::clamp (remainder / period, 0.0, 1.0);

    const juce::NormalisableRange<double> range (periodStart, periodEnd, rangeInterval,
                                                 logOfHalf / std::log (middle), false);
    return range.convertFrom0to1 (proportion);
}
} // namespace Orv::Sequencer

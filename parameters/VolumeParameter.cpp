#include "parameters/VolumeParameter.h"

#include "parameters/ParamHolder.h"

#include <algorithm>
#include <cmath>

namespace Orv::Audio
{
namespace
{
    // log2 (10) / 20: a decibel as a power of two, so that gainFor is one exp2.
    constexpr float log2OfTenOverTwenty = 0.16609640419483185f;
    constexpr double decibelsPerDecade = 20.0;
    constexpr int textDecimals = 2;
    const juce::String unitSuffix = " dB";

    juce::NormalisableRange<float> makeRange (float minDb, float maxDb, float midDb)
    {
        const auto a = VolumeParameter::gainFor (minDb);
        const auto b = VolumeParameter::gainFor (maxDb);

        juce::NormalisableRange<float> range (std::min (a, b), std::max (a, b));
        range.setSkewForCentre (VolumeParameter::gainFor (midDb));
        return range;
    }

    juce::AudioParameterFloatAttributes makeAttributes()
    {
        return juce::AudioParameterFloatAttributes()
            .withStringFromValueFunction ([] (float gain, int maximumLength)
                                          {
                                              const auto text = VolumeParameter::textFor (gain);
                                              return maximumLength > 0 ? text.substring (0, maximumLength) : text;
                                          })
            .withValueFromStringFunction ([] (const juce::String& text) { return VolumeParameter::gainForText (text); });
    }
} // namespace

VolumeParameter::VolumeParameter (const juce::String& id, const juce::String& name, float minDb, float maxDb,
                                  float midDb, float defaultDb)
    : juce::AudioParameterFloat ({ id, ParamHolderDetail::versionHint }, name, makeRange (minDb, maxDb, midDb),
                                 gainFor (defaultDb), makeAttributes())
{
}

float VolumeParameter::gainFor (float decibels) noexcept
{
    if (decibels <= floorDb)
        return 0.0f;

    return std::exp2 (decibels * log2OfTenOverTwenty);
}

juce::String VolumeParameter::textFor (float gain)
{
    const auto decibels = gain > 0.0f ? std::max (decibelsPerDecade * std::log10 ((double) gain), (double) floorDb)
                                      : (double) floorDb;
    return juce::String (decibels, textDecimals) + unitSuffix;
}

float VolumeParameter::gainForText (const juce::String& text)
{
    const auto decibels = text.getDoubleValue();

    if (decibels <= floorDb)
        return 0.0f;

    return gainFor ((float) decibels);
}
} // namespace Orv::Audio

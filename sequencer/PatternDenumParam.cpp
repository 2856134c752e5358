#include "sequencer/PatternDenumParam.h"

#include <array>

namespace Orv::Audio::Plugins::Halvane
{
namespace
{
    constexpr std::array<int, DenumParam::numChoices> denums { 2, 4, 8, 16, 32, 64, 128, 256 };
    constexpr float indexStep = 1.0f;
} // namespace

DenumParam::DenumParam (Sequencer::Modifiers::MusicalTime& timeToTell, Sequencer::Modifiers::Bar& barToEdit)
    : time (&timeToTell), bar (&barToEdit)
{
}

int DenumParam::denumForIndex (int index) noexcept
{
    if (index < 0 || index >= numChoices)
        return fallbackDenum;

    return denums[static_cast<size_t> (index)];
}

int DenumParam::indexForDenum (int denum) noexcept
{
    for (size_t i = 0; i < denums.size(); ++i)
        if (denums[i] == denum)
            return static_cast<int> (i);

    return fallbackReadIndex;
}

juce::NormalisableRange<float> DenumParam::getRange()
{
    return { 0.0f, static_cast<float> (numChoices - 1), indexStep };
}

float DenumParam::getNormalised() const
{
    return getRange().convertTo0to1 (static_cast<float> (indexForDenum (bar->denum)));
}

void DenumParam::setNormalisedNotifying (float normalised)
{
    setInt (static_cast<int> (getRange().convertFrom0to1 (normalised)));
}

void DenumParam::setInt (int index)
{
    const auto newDenum = denumForIndex (index);

    if (newDenum == bar->denum)
        return;

    bar->denum = newDenum;
    time->valueBroadcaster.call();
    time->barsBroadcaster.call();
    onUpdate();
}

void DenumParam::setFloat (float index) { setInt (static_cast<int> (index)); }

float DenumParam::getFloat() const { return static_cast<float> (indexForDenum (bar->denum)); }

juce::String DenumParam::getTextFor (float normalised) const
{
    return getTextForInt (static_cast<int> (getRange().convertFrom0to1 (normalised)));
}

juce::String DenumParam::getText() const { return juce::String (bar->denum); }

juce::String DenumParam::getTextForInt (int index) const { return juce::String (denumForIndex (index)); }

float DenumParam::getDefaultNormalised() const { return getRange().convertTo0to1 (static_cast<float> (fallbackReadIndex)); }

std::vector<juce::String> DenumParam::getAllChoices()
{
    std::vector<juce::String> choices;

    for (auto d : denums)
        choices.push_back (juce::String (d));

    return choices;
}
} // namespace Orv::Audio::Plugins::Halvane

#include "sequencer/modifiers/DenumParam.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <array>

namespace Orv::Sequencer::Modifiers
{
namespace
{
    struct Row
    {
        std::int32_t denum;
        float normalised;
    };

    constexpr std::array<Row, 4> table { { { 16, 0.0f }, { 8, 1.0f / 3.0f }, { 4, 2.0f / 3.0f }, { 2, 1.0f } } };

    // The row a write falls back to when its index lies outside the table.
    constexpr int fallbackIndex = 2;
    constexpr float lastIndex = static_cast<float> (table.size() - 1);
    constexpr float indexStep = 1.0f;
} // namespace

DenumParam::DenumParam (Bar& barToEdit, CallbackFunc onChangeToUse) : bar (&barToEdit), onChange (std::move (onChangeToUse)) {}

float DenumParam::getNormalised() const
{
    for (const auto& row : table)
        if (row.denum == bar->denum)
            return row.normalised;

    return 0.0f;
}

void DenumParam::setNormalisedNotifying (float normalised)
{
    const juce::NormalisableRange<float> range (0.0f, lastIndex, indexStep);
    auto index = static_cast<int> (range.convertFrom0to1 (normalised));

    if (index < 0 || index >= static_cast<int> (table.size()))
        index = fallbackIndex;

    const auto newDenum = table[static_cast<size_t> (index)].denum;

    if (newDenum == bar->denum)
        return;

    bar->denum = newDenum;
    onChange();
}

float DenumParam::getFloat() const { return static_cast<float> (bar->denum); }

juce::String DenumParam::getText() const { return juce::String (bar->denum); }
} // namespace Orv::Sequencer::Modifiers

#include "persistence/PresetParam.h"

#include <cmath>

namespace Orv::Presets
{
namespace
{
    constexpr const char* parameterName = "Preset";
    constexpr const char* dirtyMark = "*";

    int wrap (int index, int count) { return ((index % count) + count) % count; }
} // namespace

Param::Param (Base& presetToUse) : preset (&presetToUse) {}

int Param::getIndex() const
{
    const auto& list = preset->getFlatList();
    for (size_t i = 0; i < list.size(); ++i)
        if (list[i].id == preset->id && list[i].file.getFileNameWithoutExtension() == preset->name)
            return (int) i;

    return noMatch;
}

void Param::loadAt (int index)
{
    const auto& list = preset->getFlatList();
    if (list.empty())
        return;

    // The load may rebuild nothing, but the entry is copied all the same: a
    // listener of the load must be free to refresh the list.
    const auto file = list[(size_t) wrap (index, (int) list.size())].file;
    preset->load (file);
}

void Param::step (int delta)
{
    const auto count = getNumChoices();
    if (count == 0)
        return;

    auto index = getIndex();
    if (index == noMatch)
        index = delta > 0 ? -1 : count;

    loadAt (wrap (index + delta % count, count));
}

//==============================================================================
juce::String Param::getName() const { return parameterName; }

int Param::getNumChoices() const { return (int) preset->getFlatList().size(); }

float Param::getNormalised() const
{
    const auto index = getIndex();
    if (index == noMatch)
        return -1.0f;

    const auto last = getNumChoices() - 1;
    return last > 0 ? (float) index / (float) last : 0.0f;
}

int Param::indexFor (float normalised) const
{
    const auto count = getNumChoices();
    if (count == 0 || ! std::isfinite (normalised))
        return noMatch;

    if (normalised == 1.0f)
        return count - 1;

    const auto position = std::trunc ((double) count * (double) normalised);
    return position < 0.0 ? count - 1 : (int) std::fmod (position, (double) count);
}

void Param::setNormalisedNotifying (float normalised)
{
    if (const auto index = indexFor (normalised); index != noMatch)
        loadAt (index);
}

juce::String Param::getText() const { return preset->dirty ? preset->name + dirtyMark : preset->name; }

juce::String Param::getTextFor (float normalised) const
{
    const auto index = indexFor (normalised);
    if (index == noMatch)
        return {};

    return preset->getFlatList()[(size_t) index].file.getFileNameWithoutExtension();
}
} // namespace Orv::Presets

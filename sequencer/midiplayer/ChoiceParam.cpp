#include "sequencer/midiplayer/ChoiceParam.h"

#include <algorithm>

namespace Orv::Sequencer::MidiPlayer
{
namespace
{
    constexpr const char* parameterName = "MidiFiles";

    juce::String withoutExtension (const juce::String& fileName)
    {
        return fileName.upToLastOccurrenceOf (ChoiceParam::clipExtension, false, false);
    }

    /** The name's parts between whole separators; a name without one is one part. */
    juce::StringArray levelsOf (const juce::String& name)
    {
        const juce::String separator (ChoiceParam::levelSeparator);
        juce::StringArray levels;
        auto rest = name;

        for (auto at = rest.indexOf (separator); at >= 0; at = rest.indexOf (separator))
        {
            levels.add (rest.substring (0, at));
            rest = rest.substring (at + separator.length());
        }

        levels.add (rest);
        return levels;
    }

    MenuItems::Item& subMenuOf (MenuItems::Item& parent, const juce::String& name)
    {
        for (auto& item : parent.subItems)
            if (item.type == MenuItems::Item::subMenuRoot && item.name == name)
                return item;

        MenuItems::Item menu;
        menu.type = MenuItems::Item::subMenuRoot;
        menu.name = name;
        parent.subItems.push_back (std::move (menu));
        return parent.subItems.back();
    }
} // namespace

const std::vector<ChoiceParam::Entry>& ChoiceParam::getClips()
{
    static const auto clips = [] {
        std::vector<Entry> list;
        for (const auto& [name, info] : Binaries::getGroup (State::clipGroup))
            if (name.endsWith (clipExtension))
                list.push_back (info);
        return list;
    }();
    return clips;
}

ChoiceParam::ChoiceParam (State& stateToUse) : state (&stateToUse) {}

int ChoiceParam::getIndex() const
{
    const auto resource = state->getResource();
    if (! resource.isBuiltIn())
        return noClip;

    const auto& clips = getClips();
    const auto found = std::find_if (clips.begin(), clips.end(), [&] (const Entry& e) { return e.name == resource.name; });
    return found != clips.end() ? (int) (found - clips.begin()) : noClip;
}

void ChoiceParam::setValue (int index)
{
    const auto& clips = getClips();
    const auto count = (int) clips.size();
    if (count == 0)
        return;

    const auto wrapped = ((index % count) + count) % count;
    state->loadBuiltIn (clips[(size_t) wrapped].name);
}

//==============================================================================
juce::String ChoiceParam::getName() const { return parameterName; }

int ChoiceParam::indexForNormalised (float normalised) const
{
    const auto last = std::max (getNumChoices() - 1, 0);
    return juce::jlimit (0, last, juce::roundToInt (normalised * (float) last));
}

float ChoiceParam::getNormalised() const
{
    const auto last = getNumChoices() - 1;
    const auto index = getIndex();
    return last > 0 && index > 0 ? (float) index / (float) last : 0.0f;
}

void ChoiceParam::setNormalisedNotifying (float normalised) { setValue (indexForNormalised (normalised)); }

void ChoiceParam::setFloat (float index) { setValue ((int) index); }

juce::String ChoiceParam::getText() const
{
    const auto index = getIndex();
    return index != noClip ? getTextForInt (index) : state->getResource().name;
}

juce::String ChoiceParam::getTextFor (float normalised) const { return getTextForInt (indexForNormalised (normalised)); }

juce::String ChoiceParam::getTextForInt (int index) const
{
    const auto& clips = getClips();
    if (index < 0 || index >= (int) clips.size())
        return {};

    return withoutExtension (clips[(size_t) index].name);
}

MenuItems::Item ChoiceParam::getMenuChoices()
{
    MenuItems::Item root;
    root.type = MenuItems::Item::subMenuRoot;

    const auto& clips = getClips();
    for (int i = 0; i < (int) clips.size(); ++i)
    {
        const auto levels = levelsOf (getTextForInt (i));
        auto* menu = &root;
        for (int level = 0; level + 1 < levels.size(); ++level)
            menu = &subMenuOf (*menu, levels[level]);

        MenuItems::Item entry;
        entry.type = MenuItems::Item::plainEntry;
        entry.name = levels[levels.size() - 1];
        entry.func = [this, i] {
            beginGesture();
            setValue (i);
            endGesture();
        };
        entry.isSelected = [this, i] { return getIndex() == i; };
        menu->subItems.push_back (std::move (entry));
    }

    return root;
}
} // namespace Orv::Sequencer::MidiPlayer

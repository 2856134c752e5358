#include "parameters/AudioParameterMenus.h"

namespace Orv::Parameters
{
float normalisedPositionOf (const juce::RangedAudioParameter& parameter, int value)
{
    return parameter.getNormalisableRange().convertTo0to1 ((float) value);
}

void setNotifying (juce::RangedAudioParameter& parameter, int value)
{
    const auto normalised = normalisedPositionOf (parameter, value);
    // JUCE's parameter classes hide the setter that their base makes public.
    juce::AudioProcessorParameter& base = parameter;
    base.setValue (normalised);
    base.sendValueChangedMessageToListeners (normalised);
}

MenuItems::Item getMenuChoicesFor (juce::AudioParameterInt& parameter)
{
    MenuItems::Item root;
    root.type = MenuItems::Item::subMenuRoot;

    const auto range = parameter.getRange();

    for (int value = range.getEnd(); value >= range.getStart(); --value)
    {
        MenuItems::Item entry;
        entry.name = juce::String (value);
        entry.func = [&parameter, value] { setNotifying (parameter, value); };
        entry.isSelected = [&parameter, value] { return parameter.get() == value; };
        root.subItems.push_back (std::move (entry));
    }

    return root;
}

MenuItems::Item createMenuChoiceFor (juce::AudioParameterChoice& parameter, int index, const juce::String& name)
{
    MenuItems::Item entry;
    entry.name = name;
    entry.func = [&parameter, index]
    {
        parameter.beginChangeGesture();
        setNotifying (parameter, index);
        parameter.endChangeGesture();
    };
    entry.isSelected = [&parameter, index] { return parameter.getIndex() == index; };
    entry.flag = true;
    return entry;
}

MenuItems::Item getMenuChoicesFor (juce::AudioParameterChoice& parameter)
{
    MenuItems::Item root;
    root.type = MenuItems::Item::subMenuRoot;

    for (int index = parameter.choices.size() - 1; index >= 0; --index)
        root.subItems.push_back (createMenuChoiceFor (parameter, index, parameter.choices[index]));

    return root;
}
} // namespace Orv::Parameters

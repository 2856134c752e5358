#pragma once

#include "persistence/Reflector.h"

#include <juce_core/juce_core.h>

#include <string>

namespace Orv::Serializing
{
/** Longest display text asked of a parameter; the same bound that JUCE uses
    for a parameter's current text. */
inline constexpr int maximumParameterTextLength = 1024;

/** A host parameter (anything with the getText, getValueForText, getValue,
    setValue and getDefaultValue of juce::AudioProcessorParameter) as its
    display text under a key: the precision of a file is the precision of the
    display. Saving writes getText (getValue()). Loading reads the value under
    the key as text (a number in a file is taken as its text), parses it with
    getValueForText and sets the result; a missing key leaves the parameter
    as it is, which is why a parameter list resets first (see
    resetToDefault). Returns true when a value was written or read.

    Same thread as the pass; setValue is the parameter's own, so whoever runs
    a load tells the host as it sees fit. */
template <typename Parameter>
bool addParameterText (Reflector& reflector, const std::string& key, Parameter& parameter)
{
    if (! reflector.isLoading())
    {
        const auto text = parameter.getText (parameter.getValue(), maximumParameterTextLength);
        reflector.setValue (key, ReflectedValue (text.toStdString()));
        return true;
    }

    const auto value = reflector.getValue (key);

    if (value.isEmpty())
        return false;

    const auto text = value.toText();
    parameter.setValue (parameter.getValueForText (juce::String::fromUTF8 (text.data(), static_cast<int> (text.size()))));
    return true;
}

/** Whether a parameter list entry takes part in a pass: its inState flag in
    an instance-scoped pass, its inPreset flag otherwise. */
inline bool isParameterSelected (const ReflectContext& context, bool inPreset, bool inState) noexcept
{
    return context.isInstanceScope() ? inState : inPreset;
}

/** The first step of loading a parameter list: every selected parameter
    goes back to its default before any key is read, so a key missing from a
    file (or a file with "Params": null) gives the default rather than the
    value from before the load. Then come the enabled sub-lists in order,
    then addParameterText for each selected parameter in order. */
template <typename Parameter>
void resetToDefault (Parameter& parameter)
{
    parameter.setValue (parameter.getDefaultValue());
}
} // namespace Orv::Serializing

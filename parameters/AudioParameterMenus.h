#pragma once

#include "parameters/MenuItems.h"

#include <juce_audio_processors/juce_audio_processors.h>

namespace Orv::Parameters
{
/** Message thread: a menu of every integer of the range, highest first, as
    a list of values usually reads from the top down. Choosing one sets it
    and tells the host, without a gesture. */
MenuItems::Item getMenuChoicesFor (juce::AudioParameterInt& parameter);

/** Message thread: one menu entry that sets a choice inside a gesture of
    its own. Its flag is set. */
MenuItems::Item createMenuChoiceFor (juce::AudioParameterChoice& parameter, int index, const juce::String& name);

/** Message thread: an entry for each choice, last choice first. */
MenuItems::Item getMenuChoicesFor (juce::AudioParameterChoice& parameter);

/** Any thread: the normalised value of an integer or index in a ranged
    parameter's range, clipped to it, without snapping. */
float normalisedPositionOf (const juce::RangedAudioParameter& parameter, int value);

/** Any thread: sets a ranged parameter to an integer or index and tells
    its listeners, the host among them. */
void setNotifying (juce::RangedAudioParameter& parameter, int value);
} // namespace Orv::Parameters

#pragma once

#include "persistence/Reflector.h"

#include <juce_core/juce_core.h>

#include <string>

namespace Orv
{
/** Typed member helpers: when saving the member is written under the key;
    when loading a missing key leaves the member untouched, anything else is
    converted. Each returns true when a value was written or read, so that a
    caller can act only on a value that really arrived.

    Same thread as the pass. */

/** A string member; a number or bool in a file is taken as its text. */
bool addMember (Reflector& reflector, const std::string& key, juce::String& member);
} // namespace Orv

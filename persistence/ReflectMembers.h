#pragma once

#include "persistence/Reflector.h"
#include "persistence/Version.h"

#include <juce_core/juce_core.h>

#include <string>

namespace Orv
{
/** Typed member helpers: when saving the member is written under the key;
    when loading a missing key (or one that holds no scalar) leaves the member
    untouched, anything else is converted. Each returns true when a value was
    written or read, so that a caller can act only on a value that really
    arrived.

    Same thread as the pass. */

/** A bool. On load a number, or text read as a base-10 integer, is true
    from 1; text that is no integer gives false. */
bool addMember (Reflector& reflector, const std::string& key, bool& member);

/** A 32-bit int. On load a wider integer is truncated to 32 bits, a real is
    cut towards zero within the range of int, and text is read as a base-10
    integer; text that is no integer, or is out of range, gives 0. */
bool addMember (Reflector& reflector, const std::string& key, int& member);

/** A double. On load integers and bools are taken as numbers and text goes
    through the string-to-double parse, which does not depend on the locale.
    Text that is no number throws std::invalid_argument and text out of range
    throws std::out_of_range (see the messages below): neither is caught here,
    they reach whoever runs the load. */
bool addMember (Reflector& reflector, const std::string& key, double& member);

/** A float, written widened to double (so 0.8f appears as 0.800000011920929)
    and read as a double, then narrowed; values beyond the range of float
    become the largest float of their sign. Throws as the double helper. */
bool addMember (Reflector& reflector, const std::string& key, float& member);

/** A string member; a number or bool in a file is taken as its text. */
bool addMember (Reflector& reflector, const std::string& key, juce::String& member);

/** A version, written as "major.minor.patch"; on load anything is taken as
    text and split as Version::fromString does. */
bool addMember (Reflector& reflector, const std::string& key, Version& member);

/** The what() of the two exceptions that the double and float helpers let
    through, so that a caller can tell them from other failures. */
inline constexpr const char* invalidRealTextMessage = "invalid stod argument";
inline constexpr const char* realTextOutOfRangeMessage = "stod argument out of range";
} // namespace Orv

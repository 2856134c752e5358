#include "persistence/ReflectMembers.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <system_error>

namespace Orv
{
namespace
{
constexpr int decimalBase = 10;

/** A number of any tag as a double; bools count as 0 and 1. */
double numberAsDouble (const ReflectedValue& value)
{
    switch (value.getTag())
    {
        case ReflectedValue::Tag::boolean: return value.getBool() ? 1.0 : 0.0;
        case ReflectedValue::Tag::integer: return static_cast<double> (value.getInteger());
        case ReflectedValue::Tag::real:    return value.getReal();
        case ReflectedValue::Tag::text:
        case ReflectedValue::Tag::empty:   break;
    }

    jassertfalse; // callers deal with text and empty themselves
    return 0.0;
}

/** The base-10 integer parse of text, as std::stoi reads it: leading blanks
    and a sign allowed, trailing characters ignored. Any failure gives 0. */
int textAsInt (const std::string& text)
{
    try
    {
        return std::stoi (text, nullptr, decimalBase);
    }
    catch (...)
    {
        return 0;
    }
}

/** The string-to-double parse: leading blanks and a sign allowed, trailing
    characters ignored, "inf" and "nan" accepted. std::stod would read the
    decimal separator of the C locale, which a host may have changed, so this
    goes through from_chars and throws what std::stod throws. */
double textAsDouble (const std::string& text)
{
    const char* first = text.data();
    const char* last = first + text.size();

    while (first != last && std::isspace (static_cast<unsigned char> (*first)))
        ++first;

    // from_chars takes a minus but no plus.
    if (first != last && *first == '+' && (last - first < 2 || first[1] != '-'))
        ++first;

    double result = 0.0;
    const auto [end, error] = std::from_chars (first, last, result);

    if (error == std::errc::invalid_argument)
        throw std::invalid_argument (invalidRealTextMessage);

    if (error == std::errc::result_out_of_range)
        throw std::out_of_range (realTextOutOfRangeMessage);

    return result;
}

/** A double as an int, cut towards zero and held within the range of int,
    since converting a double out of range is undefined. */
int doubleAsInt (double value)
{
    if (std::isnan (value))
        return 0;

    constexpr auto lowest = static_cast<double> (std::numeric_limits<int>::lowest());
    constexpr auto highest = static_cast<double> (std::numeric_limits<int>::max());
    return static_cast<int> (std::clamp (std::trunc (value), lowest, highest));
}

/** A value of any tag but empty as a double; text goes through the
    string-to-double parse and may throw. */
double valueAsDouble (const ReflectedValue& value)
{
    return value.getTag() == ReflectedValue::Tag::text ? textAsDouble (value.getText()) : numberAsDouble (value);
}

/** The one shape of every member helper: a save writes `saved`; a load reads
    the key and, unless it is absent or not a scalar, hands the value to
    `read`. Returns whether a value was written or read. */
template <typename Saved, typename Read>
bool reflectScalar (Reflector& reflector, const std::string& key, const Saved& saved, Read&& read)
{
    if (! reflector.isLoading())
    {
        reflector.setValue (key, ReflectedValue (saved));
        return true;
    }

    const auto value = reflector.getValue (key);

    if (value.isEmpty())
        return false;

    read (value);
    return true;
}
} // namespace

//==============================================================================
bool addMember (Reflector& reflector, const std::string& key, bool& member)
{
    return reflectScalar (reflector, key, member, [&member] (const ReflectedValue& value) {
        switch (value.getTag())
        {
            case ReflectedValue::Tag::boolean: member = value.getBool(); break;
            case ReflectedValue::Tag::text:    member = textAsInt (value.getText()) >= 1; break;
            case ReflectedValue::Tag::integer: member = value.getInteger() >= 1; break;
            case ReflectedValue::Tag::real:    member = value.getReal() >= 1.0; break;
            case ReflectedValue::Tag::empty:   break;
        }
    });
}

bool addMember (Reflector& reflector, const std::string& key, int& member)
{
    return reflectScalar (reflector, key, member, [&member] (const ReflectedValue& value) {
        switch (value.getTag())
        {
            case ReflectedValue::Tag::boolean: member = value.getBool() ? 1 : 0; break;
            case ReflectedValue::Tag::integer: member = static_cast<int> (value.getInteger()); break;
            case ReflectedValue::Tag::real:    member = doubleAsInt (value.getReal()); break;
            case ReflectedValue::Tag::text:    member = textAsInt (value.getText()); break;
            case ReflectedValue::Tag::empty:   break;
        }
    });
}

bool addMember (Reflector& reflector, const std::string& key, double& member)
{
    return reflectScalar (reflector, key, member, [&member] (const ReflectedValue& value) {
        member = valueAsDouble (value);
    });
}

bool addMember (Reflector& reflector, const std::string& key, float& member)
{
    return reflectScalar (reflector, key, static_cast<double> (member), [&member] (const ReflectedValue& value) {
        constexpr auto highest = static_cast<double> (std::numeric_limits<float>::max());
        const auto wide = valueAsDouble (value);
        member = std::isnan (wide) ? std::numeric_limits<float>::quiet_NaN()
                                   : static_cast<float> (std::clamp (wide, -highest, highest));
    });
}

bool addMember (Reflector& reflector, const std::string& key, juce::String& member)
{
    return reflectScalar (reflector, key, member.toStdString(), [&member] (const ReflectedValue& value) {
        const auto text = value.toText();
        member = juce::String::fromUTF8 (text.data(), static_cast<int> (text.size()));
    });
}

bool addMember (Reflector& reflector, const std::string& key, Version& member)
{
    return reflectScalar (reflector, key, member.toString(), [&member] (const ReflectedValue& value) {
        member = Version::fromString (value.toText());
    });
}
} // namespace Orv

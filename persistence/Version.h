#pragma once

#include <cstdint>
#include <string>
#include <tuple>

namespace Orv
{
/** A program version as three numbers, compared major first. Files carry it
    as the text "major.minor.patch".

    A plain value; any thread. */
struct Version
{
    std::int32_t major = 0;
    std::int32_t minor = 0;
    std::int32_t patch = 0;

    /** "major.minor.patch", in decimal. */
    std::string toString() const;

    /** Splits text at "." into the three numbers. A part that is missing or
        is no base-10 number within range reads as 0, so "2" is 2.0.0 and any
        text at all gives some version. Parts after the third are ignored. */
    static Version fromString (const std::string& text);

    friend bool operator== (const Version& a, const Version& b) { return a.asTuple() == b.asTuple(); }
    friend bool operator!= (const Version& a, const Version& b) { return a.asTuple() != b.asTuple(); }
    friend bool operator< (const Version& a, const Version& b) { return a.asTuple() < b.asTuple(); }
    friend bool operator> (const Version& a, const Version& b) { return b < a; }
    friend bool operator<= (const Version& a, const Version& b) { return ! (b < a); }
    friend bool operator>= (const Version& a, const Version& b) { return ! (a < b); }

private:
    std::tuple<std::int32_t, std::int32_t, std::int32_t> asTuple() const { return { major, minor, patch }; }
};
} // namespace Orv

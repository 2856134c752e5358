#pragma once

#include "persistence/ReflectMembers.h"

#include <algorithm>

namespace Orv::Ranges
{
/** A stretch of time: where it starts and how long it lasts. A negative
    length does not make it run backwards: its end is never before its start.

    A plain value; any thread. */
template <typename T>
struct Span
{
    T start {};
    T length {};

    /** The larger of start and start + length. */
    constexpr T getEnd() const noexcept { return std::max (start, start + length); }

    /** True when the span covers nothing: its end equals its start. */
    constexpr bool isEmpty() const noexcept { return getEnd() == start; }

    constexpr bool operator== (const Span& other) const noexcept
    {
        return start == other.start && length == other.length;
    }

    constexpr bool operator!= (const Span& other) const noexcept { return ! operator== (other); }

    /** "start", then "length". Same thread as the pass. */
    void reflect (Reflector& reflector)
    {
        addMember (reflector, "start", start);
        addMember (reflector, "length", length);
    }
};
} // namespace Orv::Ranges

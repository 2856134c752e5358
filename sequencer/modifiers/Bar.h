#pragma once

#include <cstdint>

namespace Orv
{
class Reflector;
}

namespace Orv::Sequencer::Modifiers
{
/** One bar of a length that the user thinks of as a time signature.

    A plain value; any thread. */
struct Bar
{
    static constexpr std::int32_t defaultNum = 4;
    static constexpr std::int32_t defaultDenum = 4;

    /** Beats in the bar. */
    std::int32_t num = defaultNum;
    /** Note value of a beat; a power of two in use. */
    std::int32_t denum = defaultDenum;

    /** The bar's length in quarter notes. A zero denum is not guarded: it
        gives an infinite or undefined length. */
    double getLength() const noexcept;

    /** "num", then "denum". Same thread as the pass. */
    void reflect (Reflector& reflector);

    bool operator== (const Bar& other) const noexcept { return num == other.num && denum == other.denum; }
    bool operator!= (const Bar& other) const noexcept { return ! operator== (other); }
};
} // namespace Orv::Sequencer::Modifiers

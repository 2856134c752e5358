#pragma once

#include <cstdint>
#include <string>
#include <type_traits>
#include <variant>

namespace Orv
{
/** The one value type that crosses the reflector interface: a bool, a signed
    64-bit integer, a double, UTF-8 text, or nothing. "Nothing" is what a
    loader answers for a key that is absent or not a scalar, and every member
    helper treats it as "leave the member as it is".

    A plain value; any thread, but visitors themselves are single-threaded. */
class ReflectedValue
{
public:
    /** The tags are part of the interface: visitors switch on them. */
    enum class Tag : std::int32_t
    {
        boolean = 0,
        integer = 1,
        real = 2,
        text = 3,
        empty = 4
    };

    /** An empty value. */
    ReflectedValue() = default;

    /** Only a real bool becomes a boolean: pointers and numbers must not
        slip into this constructor through an implicit conversion. */
    template <typename B, std::enable_if_t<std::is_same_v<B, bool>, int> = 0>
    ReflectedValue (B b) : payload (std::in_place_type<bool>, b)
    {
    }

    template <typename I, std::enable_if_t<std::is_integral_v<I> && ! std::is_same_v<I, bool>, int> = 0>
    ReflectedValue (I i) : payload (std::in_place_type<std::int64_t>, static_cast<std::int64_t> (i))
    {
    }

    template <typename F, std::enable_if_t<std::is_floating_point_v<F>, int> = 0>
    ReflectedValue (F f) : payload (std::in_place_type<double>, static_cast<double> (f))
    {
    }

    ReflectedValue (std::string utf8) : payload (std::in_place_type<std::string>, std::move (utf8)) {}
    ReflectedValue (const char* utf8) : ReflectedValue (std::string (utf8 != nullptr ? utf8 : "")) {}

    Tag getTag() const noexcept { return static_cast<Tag> (payload.index()); }
    bool isEmpty() const noexcept { return getTag() == Tag::empty; }

    /** The payload; each throws std::bad_variant_access when the tag differs. */
    bool getBool() const { return std::get<bool> (payload); }
    std::int64_t getInteger() const { return std::get<std::int64_t> (payload); }
    double getReal() const { return std::get<double> (payload); }
    const std::string& getText() const { return std::get<std::string> (payload); }

    /** The payload as text, for members that are text but may meet a number
        or a bool in a file: text as it is, integers in decimal, reals in the
        shortest form that reads back to the same double, bools as "true" or
        "false" (as JSON writes them), and an empty string for nothing. */
    std::string toText() const;

    bool operator== (const ReflectedValue& other) const { return payload == other.payload; }
    bool operator!= (const ReflectedValue& other) const { return ! operator== (other); }

private:
    // The order of the alternatives is the order of the tags.
    std::variant<bool, std::int64_t, double, std::string, std::monostate> payload { std::monostate {} };
};
} // namespace Orv

#include "persistence/ReflectedValue.h"

#include <array>
#include <charconv>

namespace Orv
{
std::string ReflectedValue::toText() const
{
    switch (getTag())
    {
        case Tag::boolean:
            return getBool() ? "true" : "false";

        case Tag::integer:
            return std::to_string (getInteger());

        case Tag::real:
        {
            // Shortest round-trip form, so that a number read back as text and
            // parsed again gives the same double.
            std::array<char, 64> buffer {};
            const auto result = std::to_chars (buffer.data(), buffer.data() + buffer.size(), getReal());
            return std::string (buffer.data(), result.ptr);
        }

        case Tag::text:
            return getText();

        case Tag::empty:
            break;
    }

    return {};
}
} // namespace Orv

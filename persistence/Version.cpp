#include "persistence/Version.h"

#include <array>
#include <string>

namespace Orv
{
namespace
{
constexpr char separator = '.';
constexpr int decimalBase = 10;

std::int32_t parsePart (const std::string& part)
{
    try
    {
        return static_cast<std::int32_t> (std::stoi (part, nullptr, decimalBase));
    }
    catch (...)
    {
        return 0;
    }
}
} // namespace

std::string Version::toString() const
{
    return std::to_string (major) + separator + std::to_string (minor) + separator + std::to_string (patch);
}

Version Version::fromString (const std::string& text)
{
    std::array<std::int32_t, 3> parts {};
    std::string::size_type start = 0;

    for (auto& part : parts)
    {
        if (start > text.size())
            break;

        auto end = text.find (separator, start);

        if (end == std::string::npos)
            end = text.size();

        part = parsePart (text.substr (start, end - start));
        start = end + 1;
    }

    return { parts[0], parts[1], parts[2] };
}
} // namespace Orv

#include "persistence/JsonText.h"

#include <cstring>

namespace Orv::Json
{
namespace
{
constexpr int indentWidth = 4;
} // namespace

std::string toText (const nlohmann::json& value)
{
    return value.dump (indentWidth);
}

nlohmann::json fromText (const char* data, std::size_t size) noexcept
{
    if (data == nullptr)
        return nullptr;

    const auto* end = static_cast<const char*> (std::memchr (data, '\0', size));
    const auto length = end != nullptr ? static_cast<std::size_t> (end - data) : size;

    try
    {
        return nlohmann::json::parse (data, data + length);
    }
    catch (...)
    {
        return nullptr;
    }
}

nlohmann::json fromText (const std::string& text) noexcept
{
    return fromText (text.data(), text.size());
}
} // namespace Orv::Json

#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <string>

namespace Orv::Json
{
/** The text form of saved JSON: an indent of four blanks, "\n" line ends,
    keys in byte order, non-ASCII as raw UTF-8, no newline at the end.
    Throws the JSON library's type_error for a string that is not valid
    UTF-8. Any thread; never the audio thread. */
std::string toText (const nlohmann::json& value);

/** Parses the text up to its first NUL byte (saved files end in one), or
    all of it when there is none. Gives null, and never throws, when the text
    is no JSON. Any thread; never the audio thread. */
nlohmann::json fromText (const char* data, std::size_t size) noexcept;

/** The same for a whole string. */
nlohmann::json fromText (const std::string& text) noexcept;
} // namespace Orv::Json

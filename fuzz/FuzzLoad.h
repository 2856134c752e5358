#pragma once

#include "persistence/JsonLoader.h"
#include "persistence/ReflectMembers.h"

#include <cstring>
#include <stdexcept>

namespace Orv::Fuzzing
{
/** The text-to-number failures that a load may let out, told apart from the
    same exception types thrown for any other reason: a real read from text,
    and a step sequence's "mode" read from text. */
inline bool isDocumentedLoadFailure (const std::exception& e)
{
    for (const auto* message : { invalidRealTextMessage, realTextOutOfRangeMessage,
                                 "invalid stol argument", "stol argument out of range" })
        if (std::strcmp (e.what(), message) == 0)
            return true;
    return false;
}

/** Loads `value` into `object`, letting through (as a crash for the fuzzer)
    every exception but the documented ones. Returns true if the load ran to
    its end. */
template <typename Object>
bool loadTolerantly (nlohmann::json& value, Object& object, ReflectContext context)
{
    try
    {
        Json::fromJson (value, object, context);
        return true;
    }
    catch (const std::invalid_argument& e)
    {
        if (! isDocumentedLoadFailure (e))
            throw;
    }
    catch (const std::out_of_range& e)
    {
        if (! isDocumentedLoadFailure (e))
            throw;
    }
    return false;
}
} // namespace Orv::Fuzzing

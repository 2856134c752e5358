#include "persistence/JsonLoader.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace Orv::Json
{
namespace
{
using InvalidIterator = nlohmann::json::invalid_iterator;

// The library's own ids and texts, so that callers see one kind of error
// whichever way the position was wrong.
constexpr int cannotGetValueId = 214;
constexpr int keyOfNonObjectId = 207;

[[noreturn]] void throwCannotGetValue (const nlohmann::json& value)
{
    throw InvalidIterator::create (cannotGetValueId, "cannot get value", &value);
}
} // namespace

ReflectedValue toReflectedValue (const nlohmann::json& value)
{
    switch (value.type())
    {
        case nlohmann::json::value_t::boolean:         return ReflectedValue (value.get<bool>());
        case nlohmann::json::value_t::number_integer:  return ReflectedValue (value.get<std::int64_t>());
        case nlohmann::json::value_t::number_unsigned: return ReflectedValue (static_cast<std::int64_t> (value.get<std::uint64_t>()));
        case nlohmann::json::value_t::number_float:    return ReflectedValue (value.get<double>());
        case nlohmann::json::value_t::string:          return ReflectedValue (value.get_ref<const std::string&>());
        case nlohmann::json::value_t::null:
        case nlohmann::json::value_t::object:
        case nlohmann::json::value_t::array:
        case nlohmann::json::value_t::binary:
        case nlohmann::json::value_t::discarded:       break;
    }

    return {};
}

//==============================================================================
Loader::Loader (nlohmann::json& valueToRead, ReflectContext contextToUse)
    : Reflector (contextToUse), json (valueToRead)
{
}

Reflector* Loader::child (const std::string& name)
{
    if (! json.is_object())
        return nullptr;

    const auto found = json.find (name);

    if (found == json.end())
        return nullptr;

    namedChildren.push_back (std::make_unique<Loader> (*found, context));
    return namedChildren.back().get();
}

Reflector* Loader::childAt (int index)
{
    // Free the previous element before the array may grow and move it.
    indexedChild.reset();

    if (index < 0)
        throwCannotGetValue (json);

    const auto position = static_cast<std::size_t> (index);
    nlohmann::json* element = nullptr;

    if (json.is_array())
        element = &json[position];
    else if (json.is_object() && position < json.size())
        element = &*std::next (json.begin(), index);
    else if (json.is_primitive() && ! json.is_null() && position == 0)
        element = &json;
    else
        throwCannotGetValue (json);

    indexedChild = std::make_unique<Loader> (*element, context);
    return indexedChild.get();
}

ReflectedValue Loader::getValue (const std::string& name) const
{
    if (! json.is_object())
        return {};

    const auto found = json.find (name);
    return found != json.end() ? toReflectedValue (*found) : ReflectedValue();
}

std::string Loader::getKeyAt (int index) const
{
    if (! json.is_object())
        throw InvalidIterator::create (keyOfNonObjectId, "cannot use key() for non-object iterators", &json);

    if (index < 0 || static_cast<std::size_t> (index) >= json.size())
        throwCannotGetValue (json);

    return std::next (json.begin(), index).key();
}

int Loader::getSize() const
{
    if (! json.is_object() && ! json.is_array())
        return 0;

    constexpr auto largest = static_cast<std::size_t> (std::numeric_limits<int>::max());
    return static_cast<int> (std::min (json.size(), largest));
}
} // namespace Orv::Json

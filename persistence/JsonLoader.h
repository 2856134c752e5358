#pragma once

#include "persistence/Reflector.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

namespace Orv::Json
{
/** The visitor that reads. A node looks at a JSON value owned by the caller,
    which must outlive the pass and must not change during it except through
    this tree. A node owns the children it hands out, so each lives until its
    parent dies; of the children made by position only the latest is kept.

    Same thread as the pass; never the audio thread. */
class Loader : public Reflector
{
public:
    Loader (nlohmann::json& valueToRead, ReflectContext contextToUse);

    bool isLoading() const override { return true; }

    /** A node on the member under the key; null when this value is no object
        or has no such key. */
    Reflector* child (const std::string& name) override;

    /** A node on the element at the position. On an array a position past
        the end first grows the array with nulls up to it. On an object it is
        the member at that position in key order, on a scalar the value itself
        at position 0. Anything else (a null, a negative position, a position
        past the end of an object or past 0 of a scalar) throws the JSON
        library's invalid_iterator "cannot get value". Frees the node that the
        previous call returned. */
    Reflector* childAt (int index) override;

    /** The same as child (elementName). */
    Reflector* appendChild (const std::string& elementName) override { return child (elementName); }

    /** Loaders do not write. */
    void setValue (const std::string&, const ReflectedValue&) override {}

    /** The scalar under the key; empty when this value is no object, has no
        such key, or holds null, an object or an array there. */
    ReflectedValue getValue (const std::string& name) const override;

    /** The key of the member at the position of an object, in key order.
        Throws the JSON library's invalid_iterator: "cannot use key() for
        non-object iterators" on any other kind, "cannot get value" for a
        position outside the object. */
    std::string getKeyAt (int index) const override;

    /** The number of members of an object or elements of an array; 0 for
        anything else. */
    int getSize() const override;

    /** An array or null. */
    bool isSequence() const override { return json.is_array() || json.is_null(); }

    /** The value this node reads. */
    const nlohmann::json& getJson() const noexcept { return json; }

private:
    nlohmann::json& json;
    std::vector<std::unique_ptr<Loader>> namedChildren;
    std::unique_ptr<Loader> indexedChild;
};

/** The ReflectedValue of a JSON scalar; empty for null, objects and arrays.
    Unsigned integers beyond the signed range wrap. */
ReflectedValue toReflectedValue (const nlohmann::json& value);

//==============================================================================
/** Loads an object through its reflect function from a JSON value. The value
    may grow (see Loader::childAt). Lets through whatever the reflect
    functions throw. Same thread as the object's owner; never the audio
    thread. */
template <typename Object>
void fromJson (nlohmann::json& value, Object& object, ReflectContext context)
{
    Loader root (value, context);
    object.reflect (root);
}
} // namespace Orv::Json

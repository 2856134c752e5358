#pragma once

#include "persistence/Reflector.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

namespace Orv::Json
{
/** The visitor that writes. Each node keeps its own JSON value (null at
    first), its key and its children; nothing reaches a parent's JSON until
    the whole tree is folded by foldInto, once every reflect has returned.
    That is why an object that writes nothing still leaves its key with null,
    and a container without elements leaves null rather than an empty array.

    Same thread as the pass; never the audio thread. */
class Saver : public Reflector
{
public:
    explicit Saver (ReflectContext contextToUse, std::string keyToUse = {});

    bool isLoading() const override { return false; }

    /** A new child under the key. Asking twice for a key makes two children,
        and the later one wins when the tree is folded. */
    Reflector* child (const std::string& name) override;

    /** Savers are never walked by position: null. */
    Reflector* childAt (int index) override { return nullptr; }

    /** Turns this node's own JSON into an empty array, dropping what it held,
        and makes a new child without a key: the next element. The element
        name means nothing to JSON. */
    Reflector* appendChild (const std::string& elementName) override;

    /** Writes json[name] = value into this node's own JSON at once, so plain
        keys and child keys may share a node. An empty value writes null.
        Throws the JSON library's type_error when this node has become an
        array: a reflect function that mixes the two is wrong. */
    void setValue (const std::string& name, const ReflectedValue& value) override;

    /** Moves the tree's JSON into out: this node's own JSON, then each child
        in order, a child of an array node pushed at its end and any other
        child set under its key (which turns a null node into an object).
        Leaves the tree's values moved-from; fold a tree once. */
    void foldInto (nlohmann::json& out);

private:
    std::string key;
    nlohmann::json json;
    std::vector<std::unique_ptr<Saver>> children;
};

/** The JSON value of a ReflectedValue: empty becomes null. */
nlohmann::json toJsonValue (const ReflectedValue& value);

//==============================================================================
/** Saves an object through its reflect function into out (replacing what out
    held). Same thread as the object's owner; never the audio thread. */
template <typename Object>
void toJson (nlohmann::json& out, Object& object, ReflectContext context)
{
    Saver root (context);
    object.reflect (root);
    root.foldInto (out);
}

/** The same, as a value. */
template <typename Object>
nlohmann::json toJson (Object& object, ReflectContext context)
{
    nlohmann::json out;
    toJson (out, object, context);
    return out;
}
} // namespace Orv::Json

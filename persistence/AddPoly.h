#pragma once

#include "persistence/OwningPointer.h"
#include "persistence/Reflector.h"

#include <string>
#include <type_traits>

namespace Orv::Serializing
{
/** A polymorphic member whose JSON key names its type: the caller makes one
    call per concrete type that the member may hold, each with its own key,
    inside one enclosing child.

    Saving: when the object is a T (a checked downcast, so a type derived from
    T is one too), it is written under the key; otherwise nothing is.
    Loading: when the key is present a new default T replaces the object
    (deleting the one before) and reads itself from it; when it is absent the
    pointer keeps its object and type. With several keys present, each is
    applied in the order of the calls and the last one wins.

    Same thread as the pass. */
template <typename T, typename Base>
void addPoly (Reflector& reflector, const std::string& key, OwningPointer<Base>& pointer)
{
    static_assert (std::is_base_of_v<Base, T>, "the concrete type must derive from the member's type");

    if (! reflector.isLoading())
    {
        if (auto* object = dynamic_cast<T*> (pointer.get()))
            reflector.addChild (key, *object);

        return;
    }

    auto* node = reflector.child (key);

    if (node == nullptr)
        return;

    auto fresh = std::make_unique<T>();
    auto* object = fresh.get();
    pointer = std::move (fresh);
    object->reflect (*node);
}
} // namespace Orv::Serializing

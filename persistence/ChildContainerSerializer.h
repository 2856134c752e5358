#pragma once

#include "persistence/OwningPointer.h"
#include "persistence/Reflector.h"

#include <cstddef>
#include <memory>
#include <string>
#include <type_traits>

namespace Orv
{
/** A sequence of persistent elements under one key, given to addChild with
    that key (or added through add()). The container needs size(), resize(n)
    that keeps the elements in front, clear() and operator[]. An element is
    either an object with reflect, or an OwningPointer to one, which a load
    fills with a default object when it is empty (all of them before the
    first element is read).

    Saving: one appended node per element, in order; an empty container
    leaves null. Loading: the container is first emptied when clearFirst is
    set, then sized to exactly the number of elements in the file (cutting
    the end or adding default elements), and each element reads from its
    position, so elements that were already there keep any field the file
    lacks.

    Same thread as the pass. */
template <typename Container>
class ChildContainerSerializer
{
public:
    ChildContainerSerializer (Container& containerToUse, std::string arrayKeyToUse,
                              std::string elementNameToUse, bool clearFirstToUse = false)
        : container (containerToUse),
          arrayKey (std::move (arrayKeyToUse)),
          elementName (std::move (elementNameToUse)),
          clearFirst (clearFirstToUse)
    {
    }

    /** Visits the container as the child under its array key. */
    void add (Reflector& parent) { parent.addChild (arrayKey, *this); }

    /** Visits the container as the node itself. */
    void reflect (Reflector& node)
    {
        if (node.isLoading())
            load (node);
        else
            save (node);

        node.unusedAsSequence = false;
    }

private:
    template <typename Element>
    struct IsOwningPointer : std::false_type {};

    template <typename T>
    struct IsOwningPointer<OwningPointer<T>> : std::true_type {};

    void save (Reflector& node)
    {
        for (std::size_t i = 0; i < container.size(); ++i)
        {
            auto* elementNode = node.appendChild (elementName);

            if (elementNode != nullptr)
                reflectElement (container[i], *elementNode);
        }
    }

    void load (Reflector& node)
    {
        // A list of the wrong shape is treated like a missing one: whatever
        // a file puts there, the elements stay as they are.
        if (! node.isSequence())
            return;

        if (clearFirst)
            container.clear();

        const auto size = node.getSize();
        container.resize (static_cast<std::size_t> (size));

        // Every owned element exists before any is read, so that a load that
        // throws halfway leaves default objects behind, never empty pointers.
        for (std::size_t i = 0; i < container.size(); ++i)
            makeIfEmpty (container[i]);

        for (int i = 0; i < size; ++i)
            if (auto* elementNode = node.childAt (i))
                reflectElement (container[static_cast<std::size_t> (i)], *elementNode);
    }

    template <typename Element>
    static void makeIfEmpty (Element& element)
    {
        if constexpr (IsOwningPointer<Element>::value)
            if (element == nullptr)
                element = std::make_unique<typename Element::element_type>();
    }

    /** An empty owned element saves as null. */
    template <typename Element>
    static void reflectElement (Element& element, Reflector& node)
    {
        if constexpr (IsOwningPointer<Element>::value)
        {
            if (element != nullptr)
                element->reflect (node);
        }
        else
        {
            element.reflect (node);
        }
    }

    Container& container;
    std::string arrayKey;
    std::string elementName;
    bool clearFirst;
};
} // namespace Orv

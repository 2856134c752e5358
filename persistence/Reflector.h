#pragma once

#include "persistence/ReflectContext.h"
#include "persistence/ReflectedValue.h"

#include <string>

namespace Orv
{
class Reflector;

//==============================================================================
/** The visitor that one reflect function per persistent class is written
    against. The same reflect body serves saving, loading, the host's state
    and undo snapshots; the node decides whether a member is read or written.

    The order of the virtual operations is fixed: visitors in other modules
    are built against it. Nodes are not thread-safe and a pass runs on one
    thread, never the audio thread. */
class ReflectorBase
{
public:
    virtual ~ReflectorBase() = default;

    /** False for nodes that write, true for nodes that read. */
    virtual bool isLoading() const = 0;

    /** The child node for a key, or null when loading and the key is absent
        (or this node is no object). A saving node makes the key. The parent
        keeps the child alive at least until the child's reflect returns. */
    virtual Reflector* child (const std::string& name) = 0;

    /** The child node at a position of a sequence, or null. */
    virtual Reflector* childAt (int index) = 0;

    /** A new child at the end of a sequence; the element name is for
        visitors that name their elements. */
    virtual Reflector* appendChild (const std::string& elementName) = 0;

    /** Writes a plain value under a key. Loading nodes ignore it. */
    virtual void setValue (const std::string& name, const ReflectedValue& value) = 0;

    /** Reads a plain value; empty when absent or not a scalar. */
    virtual ReflectedValue getValue (const std::string& name) const { return {}; }

    /** The key of the element at a position; empty when there is none. */
    virtual std::string getKeyAt (int index) const { return {}; }

    /** The number of children of this node. */
    virtual int getSize() const { return 0; }

    /** Whether this node may be read as a sequence: a list, or nothing at
        all. A node that holds something else (an object or a plain value
        where a list belongs) is of the wrong shape. */
    virtual bool isSequence() const { return true; }
};

//==============================================================================
/** A visitor node with the context of its pass. */
class Reflector : public ReflectorBase
{
public:
    explicit Reflector (ReflectContext contextToUse = {}) : context (contextToUse) {}

    /** Visits a member object under a key: on load a missing key leaves the
        object as it is. onChild runs first, before the object is visited,
        for callers that must make room for the member. */
    template <typename Object, typename OnChild>
    void addChild (const std::string& name, Object& object, OnChild&& onChild)
    {
        auto* node = child (name);

        if (node == nullptr)
            return;

        onChild();
        object.reflect (*node);
    }

    template <typename Object>
    void addChild (const std::string& name, Object& object)
    {
        addChild (name, object, [] {});
    }

    ReflectContext context;

    /** True until a container helper has used this node as a sequence. */
    bool unusedAsSequence = true;
};
} // namespace Orv

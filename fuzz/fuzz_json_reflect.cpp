// libFuzzer target: arbitrary bytes read as JSON and reflected into a small
// persistent object graph, then saved, read back and saved again.
//
// What counts as a failure: any crash or sanitizer report; any exception
// other than the two that the double member lets out of a load; a saved text
// that does not read back; and a second save that differs from the first.

#include "FuzzLoad.h"
#include "persistence/AddPoly.h"
#include "persistence/ChildContainerSerializer.h"
#include "persistence/JsonLoader.h"
#include "persistence/JsonSaver.h"
#include "persistence/JsonText.h"
#include "persistence/ReflectMembers.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace
{
using namespace Orv;
using nlohmann::json;

/** Deep enough for any shape the graph below can read; bounds the walk of
    arbitrary input so that nesting cannot exhaust the stack. */
constexpr int maximumWalkDepth = 64;

[[noreturn]] void fail (const char* what, const std::string& detail = {})
{
    std::fprintf (stderr, "fuzz_json_reflect: %s\n%s\n", what, detail.c_str());
    std::abort();
}

//==============================================================================
/** Every member kind, and one member that only instance-scoped passes see. */
struct Leaf
{
    bool flag = false;
    int count = 0;
    double length = 1.0;
    float velocity = 0.8f;
    juce::String name = "Init";
    Version version { 1, 0, 3 };
    int active = 0;

    void reflect (Reflector& r)
    {
        addMember (r, "flag", flag);
        addMember (r, "count", count);
        addMember (r, "length", length);
        addMember (r, "velocity", velocity);
        addMember (r, "name", name);
        addMember (r, "version", version);

        if (r.context.isInstanceScope())
            addMember (r, "active", active);
    }
};

struct Modifier
{
    virtual ~Modifier() = default;
    virtual void reflect (Reflector& r) = 0;
};

struct StepList : Modifier
{
    int grid = 4;
    std::vector<Leaf> steps;

    void reflect (Reflector& r) override
    {
        addMember (r, "grid", grid);
        ChildContainerSerializer<std::vector<Leaf>> (steps, "Steps", "Step").add (r);
    }
};

/** Derived from another keyed type, so that saving writes both keys. */
struct SwungStepList : StepList
{
    double swing = 0.0;

    void reflect (Reflector& r) override
    {
        StepList::reflect (r);
        addMember (r, "swing", swing);
    }
};

struct NoteList : Modifier
{
    Leaf defaults;
    OwnedVector<Leaf> notes;

    void reflect (Reflector& r) override
    {
        r.addChild ("Defaults", defaults);
        ChildContainerSerializer<OwnedVector<Leaf>> (notes, "Notes", "Note", true).add (r);
    }
};

struct ModSlot
{
    OwningPointer<Modifier> mod = std::make_unique<StepList>();

    void reflect (Reflector& r)
    {
        Serializing::addPoly<StepList> (r, "StepList", mod);
        Serializing::addPoly<SwungStepList> (r, "SwungStepList", mod);
        Serializing::addPoly<NoteList> (r, "NoteList", mod);
    }
};

struct Slot
{
    Leaf leaf;
    ModSlot mod;

    void reflect (Reflector& r)
    {
        r.addChild ("Leaf", leaf);
        r.addChild ("Mod", mod);
    }
};

/** Plain keys and children in one node, nested children, a container of
    values and one of owned objects. */
struct Root
{
    Leaf leaf;
    Slot nested;
    std::vector<Slot> slots;
    OwnedVector<Slot> owned;

    void reflect (Reflector& r)
    {
        leaf.reflect (r);
        r.addChild ("Nested", nested);
        ChildContainerSerializer<std::vector<Slot>> (slots, "Slots", "Slot").add (r);
        ChildContainerSerializer<OwnedVector<Slot>> (owned, "Owned", "Slot").add (r);
    }
};

//==============================================================================
/** Walks every member of arbitrary JSON through the loader's own interface,
    checking that positions and keys agree. */
void walk (Json::Loader& node, int depth)
{
    if (depth > maximumWalkDepth)
        return;

    const auto& value = node.getJson();
    const auto size = node.getSize();

    for (int i = 0; i < size; ++i)
    {
        if (value.is_object())
        {
            const auto key = node.getKeyAt (i);
            node.getValue (key);

            auto* byKey = static_cast<Json::Loader*> (node.child (key));

            if (byKey == nullptr)
                fail ("a key given by getKeyAt has no child");

            const auto* byKeyValue = &byKey->getJson();

            if (&static_cast<Json::Loader*> (node.childAt (i))->getJson() != byKeyValue)
                fail ("childAt and getKeyAt disagree on an object");

            walk (*byKey, depth + 1);
        }
        else
        {
            walk (*static_cast<Json::Loader*> (node.childAt (i)), depth + 1);
        }
    }
}

/** NaN and infinity are written as null and so cannot read back. */
bool holdsNonFiniteNumber (const json& value)
{
    if (value.is_number_float())
        return ! std::isfinite (value.get<double>());

    if (value.is_structured())
        for (const auto& element : value)
            if (holdsNonFiniteNumber (element))
                return true;

    return false;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size)
{
    // Both kinds of pass, chosen by the input so that each case replays.
    const auto context = size % 2 == 0 ? ReflectContext::forPreset() : ReflectContext::forHostState();

    auto input = Json::fromText (reinterpret_cast<const char*> (data), size);

    {
        Json::Loader rootNode (input, context);
        walk (rootNode, 0);
    }

    Root first;
    Fuzzing::loadTolerantly (input, first, context);

    const auto saved = Json::toJson (first, context);
    const auto text = Json::toText (saved);

    auto reread = Json::fromText (text);

    if (reread.is_null() && ! saved.is_null())
        fail ("saved text does not read back", text);

    // The saved text holds no number as text, so this load must not throw.
    Root second;
    Json::fromJson (reread, second, context);

    if (holdsNonFiniteNumber (saved))
        return 0;

    const auto textAgain = Json::toText (Json::toJson (second, context));

    if (textAgain != text)
        fail ("a second save differs from the first", text + "\n---\n" + textAgain);

    return 0;
}

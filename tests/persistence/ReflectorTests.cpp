#include "persistence/ReflectMembers.h"
#include "persistence/Reflector.h"

#include <gtest/gtest.h>

#include <map>

using namespace Orv;

namespace
{
/** One level of plain values and named children. */
class MapNode : public Reflector
{
public:
    explicit MapNode (bool loadingToUse) : loading (loadingToUse) {}

    bool isLoading() const override { return loading; }
    Reflector* child (const std::string& name) override
    {
        auto found = children.find (name);
        return found != children.end() ? found->second : nullptr;
    }
    Reflector* childAt (int) override { return nullptr; }
    Reflector* appendChild (const std::string&) override { return nullptr; }
    void setValue (const std::string& name, const ReflectedValue& v) override { values[name] = v; }
    ReflectedValue getValue (const std::string& name) const override
    {
        auto found = values.find (name);
        return found != values.end() ? found->second : ReflectedValue();
    }

    std::map<std::string, ReflectedValue> values;
    std::map<std::string, Reflector*> children;

private:
    bool loading;
};

struct Named
{
    juce::String name = "before";
    void reflect (Reflector& r) { addMember (r, "name", name); }
};
} // namespace

TEST (ReflectorAddChild, MissingChildLeavesTheObjectAndSkipsOnChild)
{
    MapNode root (true);
    Named object;
    bool onChildRan = false;

    root.addChild ("Thing", object, [&] { onChildRan = true; });

    EXPECT_FALSE (onChildRan);
    EXPECT_EQ (object.name, "before");
}

TEST (ReflectorAddChild, OnChildRunsBeforeTheObjectIsVisited)
{
    MapNode root (true);
    MapNode thing (true);
    thing.values["name"] = ReflectedValue ("loaded");
    root.children["Thing"] = &thing;
    Named object;
    juce::String nameWhenOnChildRan;

    root.addChild ("Thing", object, [&] { nameWhenOnChildRan = object.name; });

    EXPECT_EQ (nameWhenOnChildRan, "before");
    EXPECT_EQ (object.name, "loaded");
}

//==============================================================================
TEST (ReflectStringMember, SavesUtf8TextUnderTheKey)
{
    MapNode saver (false);
    auto text = juce::String::fromUTF8 ("Gr\xc3\xbc\xc3\x9f""e");

    EXPECT_TRUE (addMember (saver, "name", text));
    EXPECT_EQ (saver.values["name"], ReflectedValue ("Gr\xc3\xbc\xc3\x9f""e"));
}

TEST (ReflectStringMember, LoadTakesNumbersAndBoolsAsTheirText)
{
    MapNode loader (true);
    loader.values["a"] = ReflectedValue (12);
    loader.values["b"] = ReflectedValue (true);
    juce::String a, b;

    addMember (loader, "a", a);
    addMember (loader, "b", b);

    EXPECT_EQ (a, "12");
    EXPECT_EQ (b, "true");
}

TEST (ReflectStringMember, MissingKeyLeavesTheMemberAndSaysSo)
{
    MapNode loader (true);
    juce::String text = "kept";

    EXPECT_FALSE (addMember (loader, "absent", text));
    EXPECT_EQ (text, "kept");
}

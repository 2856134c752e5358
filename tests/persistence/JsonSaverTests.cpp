#include "persistence/JsonSaver.h"
#include "persistence/JsonText.h"
#include "persistence/ReflectMembers.h"

#include <gtest/gtest.h>

using namespace Orv;
using nlohmann::json;

namespace
{
struct NoMembers
{
    void reflect (Reflector&) {}
};

/** The top of a preset, declared in the order a reflect function would. */
struct PresetTop
{
    Version version { 1, 0, 3 };
    bool dirty = false;
    juce::String name = "Init";
    float velocity = 0.8f;
    double length = 1.0;
    NoMembers params, patterns;

    void reflect (Reflector& r)
    {
        addMember (r, "version", version);
        addMember (r, "dirty", dirty);
        addMember (r, "name", name);
        addMember (r, "velocity", velocity);
        addMember (r, "length", length);
        r.addChild ("Patterns", patterns);
        r.addChild ("Params", params);
    }
};

/** A node that writes both plain keys and children, in an awkward order. */
struct Mixed
{
    void reflect (Reflector& r)
    {
        r.setValue ("b", 2);
        r.addChild ("child", inner);
        r.setValue ("a", "one");
    }

    struct Inner
    {
        void reflect (Reflector& r) { r.setValue ("x", true); }
    } inner;
};
} // namespace

TEST (JsonSaver, TextHasKeysInByteOrderFourBlankIndentAndWidenedFloats)
{
    PresetTop top;
    json out;
    Json::toJson (out, top, ReflectContext::forPreset());

    EXPECT_EQ (Json::toText (out), "{\n"
                                   "    \"Params\": null,\n"
                                   "    \"Patterns\": null,\n"
                                   "    \"dirty\": false,\n"
                                   "    \"length\": 1.0,\n"
                                   "    \"name\": \"Init\",\n"
                                   "    \"velocity\": 0.800000011920929,\n"
                                   "    \"version\": \"1.0.3\"\n"
                                   "}");
}

TEST (JsonSaver, PlainKeysAndChildKeysShareANode)
{
    Mixed object;
    EXPECT_EQ (Json::toJson (object, {}), json::parse (R"({"a": "one", "b": 2, "child": {"x": true}})"));
}

TEST (JsonSaver, AppendingTurnsTheNodeIntoAnArrayAndDropsItsKeys)
{
    struct Sequence
    {
        void reflect (Reflector& r)
        {
            r.setValue ("dropped", 1);
            r.appendChild ("Step")->setValue ("n", 0);
            r.appendChild ("Step");
            r.appendChild ("Step")->setValue ("n", 2);
        }
    } sequence;

    EXPECT_EQ (Json::toJson (sequence, {}), json::parse (R"([{"n": 0}, null, {"n": 2}])"));
}

TEST (JsonSaver, ChildrenCarryTheContext)
{
    struct Probe
    {
        ReflectContext seen;
        void reflect (Reflector& r) { seen = r.context; }
    } probe;
    struct Holder
    {
        Probe& probe;
        void reflect (Reflector& r) { r.appendChild ("e")->addChild ("p", probe); }
    } holder { probe };

    Json::toJson (holder, ReflectContext::forUndo());
    EXPECT_EQ (probe.seen.scope, ReflectContext::instanceScope);
    EXPECT_EQ (probe.seen.purpose, ReflectContext::undoPurpose);
}

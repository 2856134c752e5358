#include "persistence/JsonSaver.h"
#include "persistence/JsonText.h"
#include "persistence/ReflectMembers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using namespace Orv;
using nlohmann::json;

namespace
{
struct NoMembers
{
    void reflect (Reflector&) {}
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

struct Velocity
{
    float velocity = 0.8f;
    double length = 1.0;
    void reflect (Reflector& r)
    {
        addMember (r, "velocity", velocity);
        addMember (r, "length", length);
    }
};
} // namespace

TEST (JsonSaver, TextHasSortedKeysFourBlankIndentAndWidenedFloats)
{
    Velocity object;
    json out;
    Json::toJson (out, object, ReflectContext::forPreset());

    EXPECT_EQ (Json::toText (out), "{\n    \"length\": 1.0,\n    \"velocity\": 0.800000011920929\n}");
}

TEST (JsonSaver, KeysComeInByteOrderWithCapitalsFirst)
{
    struct Keys
    {
        void reflect (Reflector& r)
        {
            for (const auto* key : { "version", "product", "name", "id", "dirty", "Patterns", "Params" })
                r.setValue (key, 0);
        }
    } keys;

    const auto text = Json::toText (Json::toJson (keys, {}));
    std::vector<size_t> positions;

    for (const auto* key : { "\"Params\"", "\"Patterns\"", "\"dirty\"", "\"id\"", "\"name\"", "\"product\"", "\"version\"" })
        positions.push_back (text.find (key));

    EXPECT_TRUE (std::is_sorted (positions.begin(), positions.end())) << text;
    EXPECT_EQ (std::count (positions.begin(), positions.end(), std::string::npos), 0) << text;
}

TEST (JsonSaver, AChildThatWritesNothingIsNull)
{
    NoMembers params;
    struct Holder
    {
        NoMembers& params;
        void reflect (Reflector& r) { r.addChild ("Params", params); }
    } holder { params };

    EXPECT_EQ (Json::toJson (holder, {}), json::parse (R"({"Params": null})"));
    EXPECT_TRUE (Json::toJson (params, {}).is_null());
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

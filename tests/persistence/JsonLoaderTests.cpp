#include "persistence/JsonLoader.h"
#include "persistence/JsonText.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Orv;
using nlohmann::json;
using Tag = ReflectedValue::Tag;

namespace
{
/** The what() of a call that must throw the JSON library's error. */
template <typename Call>
std::string errorOf (Call&& call)
{
    try
    {
        call();
    }
    catch (const json::exception& e)
    {
        return e.what();
    }

    return "no error";
}

const std::string cannotGetValue = "[json.exception.invalid_iterator.214] cannot get value";
const std::string keyOfNonObject = "[json.exception.invalid_iterator.207] cannot use key() for non-object iterators";
} // namespace

TEST (JsonLoader, GetValueGivesScalarsAndEmptyForEverythingElse)
{
    auto root = json::parse (R"({"b": true, "i": -3, "u": 18446744073709551615, "r": 0.5, "s": "On",
                                 "n": null, "o": {}, "a": [1]})");
    Json::Loader loader (root, {});

    EXPECT_EQ (loader.getValue ("b"), ReflectedValue (true));
    EXPECT_EQ (loader.getValue ("i"), ReflectedValue (-3));
    EXPECT_EQ (loader.getValue ("u").getTag(), Tag::integer);
    EXPECT_EQ (loader.getValue ("r"), ReflectedValue (0.5));
    EXPECT_EQ (loader.getValue ("s"), ReflectedValue ("On"));

    for (const auto* key : { "n", "o", "a", "absent" })
        EXPECT_TRUE (loader.getValue (key).isEmpty()) << key;

    auto array = json::parse (R"([{"b": true}])");
    EXPECT_TRUE (Json::Loader (array, {}).getValue ("b").isEmpty());
}

TEST (JsonLoader, ChildOnlyForAnExistingKeyOfAnObject)
{
    auto root = json::parse (R"({"o": {"x": 1}, "n": null, "a": [{"x": 2}]})");
    Json::Loader loader (root, ReflectContext::forHostState());

    auto* o = loader.child ("o");
    ASSERT_NE (o, nullptr);
    EXPECT_EQ (o->getValue ("x"), ReflectedValue (1));
    EXPECT_EQ (o->context.purpose, ReflectContext::hostStatePurpose);
    EXPECT_EQ (loader.appendChild ("o")->getValue ("x"), ReflectedValue (1));

    EXPECT_NE (loader.child ("n"), nullptr); // present though null: a container reads it as empty
    EXPECT_EQ (loader.child ("absent"), nullptr);
    EXPECT_EQ (loader.child ("a")->child ("x"), nullptr);
}

TEST (JsonLoader, SizeCountsMembersOfObjectsAndArraysOnly)
{
    const std::vector<std::pair<const char*, int>> cases {
        { R"({"a": 1, "b": 2})", 2 }, { "[1, 2, 3]", 3 }, { "[]", 0 }, { "null", 0 }, { "\"abc\"", 0 }, { "7", 0 }
    };

    for (const auto& [text, size] : cases)
    {
        auto value = json::parse (text);
        EXPECT_EQ (Json::Loader (value, {}).getSize(), size) << text;
    }
}

TEST (JsonLoader, ChildAtWalksArraysObjectsAndScalars)
{
    auto array = json::parse (R"([{"x": 0}, {"x": 1}])");
    Json::Loader arrayLoader (array, {});
    EXPECT_EQ (arrayLoader.childAt (1)->getValue ("x"), ReflectedValue (1));

    // Past the end the array grows with nulls.
    EXPECT_EQ (arrayLoader.childAt (3)->getSize(), 0);
    EXPECT_EQ (array, json::parse (R"([{"x": 0}, {"x": 1}, null, null])"));

    auto object = json::parse (R"({"b": {"x": 2}, "a": {"x": 1}})");
    Json::Loader objectLoader (object, {});
    EXPECT_EQ (objectLoader.childAt (0)->getValue ("x"), ReflectedValue (1)); // key order, not text order
    EXPECT_EQ (objectLoader.childAt (1)->getValue ("x"), ReflectedValue (2));

    auto scalar = json::parse (R"({"x": 5})")["x"];
    EXPECT_NE (Json::Loader (scalar, {}).childAt (0), nullptr);
}

TEST (JsonLoader, ChildAtThrowsTheLibraryErrorWhereThereIsNoElement)
{
    auto null = json();
    auto object = json::parse (R"({"a": 1})");
    auto scalar = json ("text");
    auto array = json::parse ("[1]");

    EXPECT_EQ (errorOf ([&] { Json::Loader (null, {}).childAt (0); }), cannotGetValue);
    EXPECT_EQ (errorOf ([&] { Json::Loader (object, {}).childAt (1); }), cannotGetValue);
    EXPECT_EQ (errorOf ([&] { Json::Loader (scalar, {}).childAt (1); }), cannotGetValue);
    EXPECT_EQ (errorOf ([&] { Json::Loader (array, {}).childAt (-1); }), cannotGetValue);
}

TEST (JsonLoader, GetKeyAtNamesObjectMembersAndThrowsOnOtherKinds)
{
    auto object = json::parse (R"({"b": 1, "B": 2, "a": 3})");
    Json::Loader loader (object, {});
    EXPECT_EQ (loader.getKeyAt (0), "B");
    EXPECT_EQ (loader.getKeyAt (2), "b");
    EXPECT_EQ (errorOf ([&] { loader.getKeyAt (3); }), cannotGetValue);

    for (auto other : { json::parse ("[1, 2]"), json(), json (4) })
        EXPECT_EQ (errorOf ([&] { Json::Loader (other, {}).getKeyAt (0); }), keyOfNonObject) << other.dump();
}

//==============================================================================
TEST (JsonText, ReadStopsAtTheFirstNulAndGivesNullForNoJson)
{
    const std::string saved ("{\n    \"a\": 1\n}\0garbage", 22);
    EXPECT_EQ (Json::fromText (saved), json::parse (R"({"a": 1})"));

    for (const auto& garbage : std::vector<std::string> { "", "{", "{\"a\": 1} x", "\xff\xfe", "nul", std::string ("\0{}", 3) })
        EXPECT_TRUE (Json::fromText (garbage).is_null()) << garbage;

    EXPECT_TRUE (Json::fromText (nullptr, 5).is_null());
}

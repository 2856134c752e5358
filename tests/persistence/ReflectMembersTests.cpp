#include "persistence/JsonLoader.h"
#include "persistence/JsonSaver.h"
#include "persistence/JsonText.h"
#include "persistence/ReflectMembers.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <utility>
#include <vector>

using namespace Orv;
using nlohmann::json;

namespace
{
/** Loads one member from {"k": value}; gives whether it was read, and the
    member after the load. */
template <typename T>
std::pair<bool, T> loadFrom (const json& value, T member)
{
    json root = json::object();
    root["k"] = value;
    Json::Loader loader (root, {});
    const bool read = addMember (loader, "k", member);
    return { read, member };
}

/** Checks each (JSON, expected) pair, starting from a member that differs
    from every expected value, so that a load that does nothing fails. */
template <typename T>
void expectLoads (const std::vector<std::pair<json, T>>& cases, T start)
{
    for (const auto& [in, expected] : cases)
    {
        const auto [read, result] = loadFrom (in, start);
        EXPECT_TRUE (read) << in.dump();
        EXPECT_EQ (result, expected) << in.dump();
    }
}

struct AllKinds
{
    bool flag = false;
    int count = 0;
    double length = 0.0;
    float velocity = 0.0f;
    juce::String name;
    Version version;

    void reflect (Reflector& r)
    {
        addMember (r, "flag", flag);
        addMember (r, "count", count);
        addMember (r, "length", length);
        addMember (r, "velocity", velocity);
        addMember (r, "name", name);
        addMember (r, "version", version);
    }
};
} // namespace

TEST (ReflectMembers, EveryKindSurvivesTheTextForm)
{
    AllKinds saved { true, -123456, 1.0 / 3.0, 0.8f, juce::String::fromUTF8 ("Gr\xc3\xbc\xc3\x9f"), { 1, 22, 333 } };
    auto text = Json::toText (Json::toJson (saved, ReflectContext::forPreset()));

    auto parsed = Json::fromText (text);
    AllKinds loaded;
    Json::fromJson (parsed, loaded, ReflectContext::forPreset());

    EXPECT_EQ (loaded.flag, saved.flag);
    EXPECT_EQ (loaded.count, saved.count);
    EXPECT_EQ (loaded.length, saved.length);
    EXPECT_EQ (loaded.velocity, saved.velocity);
    EXPECT_EQ (loaded.name, saved.name);
    EXPECT_EQ (loaded.version, saved.version);
}

TEST (ReflectMembers, NothingToReadLeavesEveryKindUntouched)
{
    for (const auto& nothing : { json(), json::object(), json::array() })
    {
        AllKinds before { true, 7, 2.5, 0.5f, "kept", { 1, 2, 3 } };
        AllKinds object = before;
        json root = json::object();

        for (const auto* key : { "flag", "count", "length", "velocity", "name", "version" })
            root[key] = nothing;

        Json::fromJson (root, object, {});
        EXPECT_EQ (object.flag, before.flag);
        EXPECT_EQ (object.count, before.count);
        EXPECT_EQ (object.length, before.length);
        EXPECT_EQ (object.velocity, before.velocity);
        EXPECT_EQ (object.name, before.name);
        EXPECT_EQ (object.version, before.version);
    }

    int absent = 5;
    EXPECT_EQ (loadFrom (json(), absent), std::make_pair (false, 5));
}

TEST (ReflectMembers, BoolAcceptsLegacyForms)
{
    expectLoads<bool> ({ { true, true }, { "1", true }, { "2", true }, { 1, true }, { 1.0, true } }, false);
    expectLoads<bool> ({ { false, false }, { "0", false }, { "yes", false }, { "", false }, { 0, false }, { 0.5, false } }, true);
}

TEST (ReflectMembers, IntAcceptsLegacyFormsAndStoresZeroForBadText)
{
    constexpr std::int64_t beyond32Bits = (std::int64_t { 1 } << 33) + 5;

    expectLoads<int> ({ { 42, 42 },
                        { "17", 17 },
                        { " -8 steps", -8 },
                        { "abc", 0 },
                        { "99999999999", 0 },
                        { beyond32Bits, 5 },
                        { 2.9, 2 },
                        { -2.9, -2 },
                        { 1.0e300, std::numeric_limits<int>::max() },
                        { true, 1 } },
                      12345);
}

TEST (ReflectMembers, RealsAcceptIntegersAndText)
{
    expectLoads<double> ({ { 1, 1.0 }, { "2.5", 2.5 }, { " +3.5e2 Hz", 350.0 }, { 0.25, 0.25 }, { -4, -4.0 } }, -7.0);

    constexpr auto largestFloat = std::numeric_limits<float>::max();
    expectLoads<float> ({ { 0.800000011920929, 0.8f }, { "0.5", 0.5f }, { 1.0e300, largestFloat }, { -1.0e300, -largestFloat } },
                        -7.0f);
}

TEST (ReflectMembers, VersionSplitsTextAtDots)
{
    expectLoads<Version> ({ { "1.0.3", { 1, 0, 3 } },
                            { "2", { 2, 0, 0 } },
                            { "1.x.3", { 1, 0, 3 } },
                            { "4.5.6.7", { 4, 5, 6 } },
                            { "", { 0, 0, 0 } },
                            { 7, { 7, 0, 0 } } },
                          Version { 9, 9, 9 });
}

TEST (ReflectMembers, RealTextThatIsNoNumberThrowsOutOfTheLoad)
{
    struct RealAndFloat
    {
        double real = 1.0;
        float narrow = 1.0f;
        void reflect (Reflector& r)
        {
            addMember (r, "narrow", narrow);
            addMember (r, "real", real);
        }
    };

    const std::vector<std::pair<const char*, const char*>> cases {
        { R"({"real": "abc"})", invalidRealTextMessage },
        { R"({"real": ""})", invalidRealTextMessage },
        { R"({"real": "1e999"})", realTextOutOfRangeMessage },
        { R"({"narrow": "x1"})", invalidRealTextMessage },
    };

    for (const auto& [text, message] : cases)
    {
        auto root = Json::fromText (text);
        RealAndFloat object;

        try
        {
            Json::fromJson (root, object, {});
            ADD_FAILURE() << text << " loaded";
        }
        catch (const std::invalid_argument& e)
        {
            EXPECT_STREQ (e.what(), message) << text;
            EXPECT_STREQ (message, invalidRealTextMessage) << text;
        }
        catch (const std::out_of_range& e)
        {
            EXPECT_STREQ (e.what(), message) << text;
            EXPECT_STREQ (message, realTextOutOfRangeMessage) << text;
        }
    }
}

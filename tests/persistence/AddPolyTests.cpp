#include "persistence/AddPoly.h"
#include "persistence/JsonLoader.h"
#include "persistence/JsonSaver.h"
#include "persistence/ReflectMembers.h"

#include <gtest/gtest.h>

using namespace Orv;
using nlohmann::json;

namespace
{
struct Modifier
{
    virtual ~Modifier() = default;
    virtual void reflect (Reflector& r) = 0;
};

struct Steps : Modifier
{
    int grid = 4;
    void reflect (Reflector& r) override { addMember (r, "grid", grid); }
};

struct Notes : Modifier
{
    juce::String name = "default";
    int unsaved = 0;
    void reflect (Reflector& r) override { addMember (r, "name", name); }
};

/** The one enclosing child in which each possible type has its own key. */
struct ModSlot
{
    OwningPointer<Modifier> mod = std::make_unique<Steps>();

    void reflect (Reflector& r)
    {
        Serializing::addPoly<Steps> (r, "Steps", mod);
        Serializing::addPoly<Notes> (r, "Notes", mod);
    }
};

struct Clip
{
    ModSlot slot;
    void reflect (Reflector& r) { r.addChild ("Mod", slot); }
};

Modifier* loadInto (Clip& clip, const char* text)
{
    auto file = json::parse (text);
    Json::fromJson (file, clip, {});
    return clip.slot.mod.get();
}
} // namespace

TEST (AddPoly, SavesOnlyTheKeyOfTheHeldType)
{
    Clip clip;
    static_cast<Steps&> (*clip.slot.mod).grid = 16;
    EXPECT_EQ (Json::toJson (clip, {}), json::parse (R"({"Mod": {"Steps": {"grid": 16}}})"));

    clip.slot.mod = std::make_unique<Notes>();
    EXPECT_EQ (Json::toJson (clip, {}), json::parse (R"({"Mod": {"Notes": {"name": "default"}}})"));
}

TEST (AddPoly, APresentKeyReplacesTheObjectWithANewOneOfItsType)
{
    Clip clip;
    auto* loaded = dynamic_cast<Notes*> (loadInto (clip, R"({"Mod": {"Notes": {"name": "chords"}}})"));
    ASSERT_NE (loaded, nullptr);
    EXPECT_EQ (loaded->name, "chords");

    // Even the same type is made anew, so fields the file lacks go to their defaults.
    loaded->unsaved = 9;
    loaded = dynamic_cast<Notes*> (loadInto (clip, R"({"Mod": {"Notes": {}}})"));
    ASSERT_NE (loaded, nullptr);
    EXPECT_EQ (loaded->unsaved, 0);
}

TEST (AddPoly, AnAbsentKeyLeavesThePointerAsItIs)
{
    Clip clip;
    auto* before = clip.slot.mod.get();

    EXPECT_EQ (loadInto (clip, R"({"Mod": {"Unknown": {}}})"), before);
    EXPECT_EQ (loadInto (clip, R"({"Mod": null})"), before);
    EXPECT_EQ (loadInto (clip, R"({})"), before);
}

TEST (AddPoly, WithSeveralKeysTheLastCallWins)
{
    Clip clip;
    clip.slot.mod = std::make_unique<Notes>();

    // "Notes" is added after "Steps", whatever the order in the file.
    auto* notes = dynamic_cast<Notes*> (loadInto (clip, R"({"Mod": {"Steps": {"grid": 3}, "Notes": {"name": "x"}}})"));
    ASSERT_NE (notes, nullptr);
    EXPECT_EQ (notes->name, "x");
}

#include "core/State.h"
#include "persistence/JsonText.h"
#include "persistence/PresetInitializer.h"
#include "persistence/PresetParam.h"

#include <gtest/gtest.h>
#include <juce_core/juce_core.h>

#include <cstdlib>

namespace
{
using Orv::Audio::Plugins::Halvane::State;
using nlohmann::json;

constexpr auto preset = Orv::ReflectContext::forPreset();
constexpr auto instance = Orv::ReflectContext::forHostState();

/** Each test gets a home of its own: the libraries live in the user's special
    folders, and what one test writes must not be listed by the next. */
class PresetLibrary : public ::testing::Test
{
protected:
    void SetUp() override
    {
        previousHome = juce::SystemStats::getEnvironmentVariable ("HOME", {});
        home = juce::File::createTempFile ("preset-home");
        ASSERT_TRUE (home.createDirectory());
        setenv ("HOME", home.getFullPathName().toRawUTF8(), 1);
    }

    void TearDown() override
    {
        setenv ("HOME", previousHome.toRawUTF8(), 1);
        home.deleteRecursively();
    }

    juce::File home;
    juce::String previousHome;
};

json header (const char* product, const char* version, const char* id = "")
{
    return { { "product", product }, { "version", version }, { "id", id }, { "name", "Stored Name" }, { "dirty", false } };
}

void write (const juce::File& file, const json& content)
{
    file.getParentDirectory().createDirectory();
    ASSERT_TRUE (file.replaceWithText (Orv::Json::toText (content)));
}

juce::StringArray namesOf (Orv::Presets::Base& library)
{
    juce::StringArray names;
    for (const auto& entry : library.getFlatList())
        names.add (entry.file.getRelativePathFrom (entry.file.getParentDirectory().getParentDirectory()));
    return names;
}

/** A preset class of its own per tag: the factory library is unpacked once
    per class and process, so each test of first use needs a fresh class. */
template <int tag>
struct ArchivePreset : Orv::Presets::Base
{
    void setArchive (const std::vector<std::pair<juce::String, juce::String>>& entries)
    {
        juce::ZipFile::Builder builder;
        for (const auto& [path, text] : entries)
            builder.addEntry (new juce::MemoryInputStream (text.toRawUTF8(), text.getNumBytesAsUTF8(), true), 9, path,
                              juce::Time::getCurrentTime());

        juce::MemoryOutputStream out (archive, false);
        ASSERT_TRUE (builder.writeToStream (out, nullptr));
        out.flush();
        info = { "Test.zip", static_cast<const char*> (archive.getData()), archive.getSize() };
    }

    const Orv::Binaries::BinaryInfo* findFactoryArchive() const override { return archive.isEmpty() ? nullptr : &info; }
    juce::File getDefaultFile() const override { return getFactoryDirectoryResolved().getChildFile ("Top.json"); }

    juce::MemoryBlock archive;
    Orv::Binaries::BinaryInfo info;
};

/** A pattern preset whose program holds no factory archive: its library is
    only what a test writes. */
struct BareState : State
{
    const Orv::Binaries::BinaryInfo* findFactoryArchive() const override { return nullptr; }
};

//==============================================================================
TEST_F (PresetLibrary, FirstInitialiseOfAClassUnpacksItsArchiveLoadsTheDefaultAndLaterOnesLeaveTheFolderAlone)
{
    const auto top = header ("Halvane", "1.0.3", "top-id").dump();
    ArchivePreset<1> first;
    first.setArchive ({ { "Top.json", top },
                        { "Basic/Steps.json", header ("Halvane", "1.0.3").dump() },
                        { "__MACOSX/Basic/._Steps.json", "resource fork" } });

    const auto factory = first.getFactoryDirectoryResolved();
    write (factory.getChildFile ("Left Over.json"), header ("Halvane", "1.0.3"));

    first.initialise();
    EXPECT_TRUE (first.getUserDirectory().isDirectory());
    EXPECT_FALSE (factory.getChildFile ("__MACOSX").exists());
    EXPECT_FALSE (factory.getChildFile ("Left Over.json").exists()) << "the factory folder is replaced whole";
    EXPECT_EQ (namesOf (first), juce::StringArray ({ "Basic/Steps.json", "Presets/Top.json" }));
    EXPECT_EQ (first.name, "Top");
    EXPECT_EQ (first.id, "top-id");

    // What a user drops into the factory folder later lives until the next
    // process: a second object of the class does not unpack again.
    write (factory.getChildFile ("Mine.json"), header ("Halvane", "1.0.3"));
    ArchivePreset<1> second;
    second.setArchive ({ { "Top.json", top } });
    second.initialise();
    EXPECT_TRUE (factory.getChildFile ("Mine.json").existsAsFile());
    EXPECT_EQ (second.name, "Top");
}

TEST_F (PresetLibrary, WithoutAnArchiveOrWithTheDevelopersFolderNothingIsUnpackedOrDeleted)
{
    ArchivePreset<2> withoutArchive;
    const auto factoryFile = withoutArchive.getFactoryDirectory().getChildFile ("Kept.json");
    write (factoryFile, header ("Halvane", "1.0.3"));
    withoutArchive.initialise();
    EXPECT_TRUE (factoryFile.existsAsFile());
    EXPECT_TRUE (withoutArchive.getUserDirectory().isDirectory());
    EXPECT_EQ (withoutArchive.name, "Init");

    const auto dev = juce::File::getSpecialLocation (juce::File::userDesktopDirectory).getChildFile ("TrevalisDev/Presets");
    ASSERT_TRUE (dev.createDirectory());
    ArchivePreset<3> overridden;
    overridden.setArchive ({ { "Top.json", header ("Halvane", "1.0.3").dump() } });
    EXPECT_EQ (overridden.getFactoryDirectoryResolved(), dev.getChildFile ("Halvane"));
    overridden.initialise();
    EXPECT_TRUE (dev.getChildFile ("Halvane").isDirectory());
    EXPECT_FALSE (dev.getChildFile ("Halvane/Top.json").exists());
    EXPECT_TRUE (factoryFile.existsAsFile());
}

//==============================================================================
TEST_F (PresetLibrary, FilesOfTheOtherKindTooOldOrWithoutVersionAreRefusedUnchangedAndUnlisted)
{
    State state;
    auto& sound = state.sound;
    const auto patterns = state.getUserDirectory();
    const auto sounds = sound.getUserDirectory();

    auto good = header ("Halvane", "0.5.3");
    good["Params"] = { { "Quantize", "2/4" } };
    write (patterns.getChildFile ("Good.json"), good);
    auto old = header ("Halvane", "0.5.2");
    old["Params"] = { { "Quantize", "4/4" } };
    write (patterns.getChildFile ("Old.json"), old);
    auto unversioned = old;
    unversioned.erase ("version");
    write (patterns.getChildFile ("Unversioned.json"), unversioned);
    write (patterns.getChildFile ("A Sound.json"), header ("Halvane Sounds", "1.0.3"));
    write (patterns.getChildFile ("Other Extension.txt"), good);
    ASSERT_TRUE (patterns.getChildFile ("Broken.json").replaceWithText ("{\"product\": \"Halvane\""));
    write (sounds.getChildFile ("Old Sound.json"), header ("Halvane Sounds", "0.5.2"));
    write (sounds.getChildFile ("A Pattern.json"), header ("Halvane", "1.0.3"));

    const auto before = state.toJson (instance);
    for (const auto* name : { "Old.json", "Unversioned.json", "A Sound.json", "Other Extension.txt", "Broken.json" })
    {
        EXPECT_TRUE (state.load (patterns.getChildFile (name)).is_null()) << name;
        EXPECT_EQ (state.toJson (instance), before) << name;
        EXPECT_EQ (state.name, "Init") << name;
    }
    EXPECT_TRUE (state.load (patterns).is_null()) << "a folder";
    EXPECT_TRUE (sound.load (sounds.getChildFile ("A Pattern.json")).is_null());
    EXPECT_TRUE (sound.load (patterns.getChildFile ("Good.json")).is_null()) << "a verdict for one kind does not serve the other";

    EXPECT_EQ (namesOf (state), juce::StringArray ({ "Presets/Good.json" }));
    EXPECT_EQ (namesOf (sound), juce::StringArray ({ "Sounds/Old Sound.json" }));
    EXPECT_FALSE (sound.load (sounds.getChildFile ("Old Sound.json")).is_null()) << "sounds take any version";

    EXPECT_FALSE (state.load (patterns.getChildFile ("Good.json")).is_null());
    EXPECT_EQ (state.arp.getQuantize(), 1);
    EXPECT_EQ (state.name, "Good") << "the name comes from the file, not its \"name\"";
    EXPECT_EQ (state.version.toString(), "0.5.3");
}

TEST_F (PresetLibrary, AFileThatFailsHalfwayLeavesEverythingAsItWas)
{
    State state;
    auto good = header ("Halvane", "1.0.3", "good");
    good["Params"] = { { "Quantize", "2/4" } };
    good["Patterns"] = state.toJson (preset)["Patterns"];
    good["Patterns"]["Patterns"][0]["Pattern"]["Steps"][0]["Event"]["noteNum"] = 60;
    write (state.getUserDirectory().getChildFile ("Good.json"), good);
    ASSERT_FALSE (state.load (state.getUserDirectory().getChildFile ("Good.json")).is_null());
    const auto before = state.toJson (instance);
    ASSERT_EQ (before["Patterns"]["Patterns"][0]["Pattern"]["Steps"][0]["Event"]["noteNum"], 60);

    // The parameters and the first patterns load before the bad real is met.
    auto bad = good;
    bad["id"] = "bad";
    bad["Params"]["Quantize"] = "4/4";
    bad["Patterns"]["Patterns"][0]["Pattern"]["Steps"][0]["Event"]["noteNum"] = 62;
    bad["Patterns"]["Patterns"][5]["Pattern"]["Steps"][0]["Time"]["start"] = "abc";
    write (state.getUserDirectory().getChildFile ("Bad.json"), bad);

    int loads = 0;
    Orv::Events::Listener listener (state.loadedBroadcaster, [&] { ++loads; });
    EXPECT_TRUE (state.load (state.getUserDirectory().getChildFile ("Bad.json")).is_null());
    EXPECT_EQ (state.toJson (instance), before);
    EXPECT_EQ (state.name, "Good");
    EXPECT_EQ (state.arp.getQuantize(), 1);
    EXPECT_EQ (loads, 1) << "listeners hear of the state that was put back";
}

//==============================================================================
TEST_F (PresetLibrary, NextAndPreviousRunThroughFactoryThenUserFilesAndWrap)
{
    BareState state;
    state.initialise();
    Orv::Presets::Param param (state);
    EXPECT_EQ (param.getNormalised(), -1.0f);
    param.step (1);
    param.setNormalisedNotifying (0.5f);
    EXPECT_EQ (state.name, "Init") << "an empty list does nothing";

    const auto factory = state.getFactoryDirectoryResolved();
    const auto user = state.getUserDirectory();
    write (factory.getChildFile ("Top.json"), header ("Halvane", "1.0.3", "t"));
    write (factory.getChildFile ("Bass/Low.json"), header ("Halvane", "1.0.3", "l"));
    write (user.getChildFile ("Mine 10.json"), header ("Halvane", "1.0.3", "m10"));
    write (user.getChildFile ("Mine 9.json"), header ("Halvane", "1.0.3", "m9"));
    auto dirty = header ("Halvane", "1.0.3", "d");
    dirty["dirty"] = true;
    write (user.getChildFile ("Folder/Dirty.json"), dirty);
    state.refreshFlatList();

    const juce::StringArray order { "Low", "Top", "Dirty", "Mine 9", "Mine 10" };
    auto stepTo = [&] (int delta) {
        param.step (delta);
        return state.name;
    };
    EXPECT_EQ (stepTo (1), order[0]) << "from no match, the first";
    for (int i = 1; i < order.size(); ++i)
        EXPECT_EQ (stepTo (1), order[i]);
    EXPECT_EQ (param.getNormalised(), 1.0f);
    EXPECT_EQ (stepTo (1), order[0]) << "wraps past the end";
    EXPECT_EQ (stepTo (-1), order[4]) << "and before the start";
    EXPECT_EQ (stepTo (-2), order[2]);
    EXPECT_EQ (param.getText(), "Dirty*");
    EXPECT_EQ (param.getNormalised(), 0.5f);

    ASSERT_TRUE (state.loadInit());
    EXPECT_EQ (param.getIndex(), Orv::Presets::Param::noMatch);
    EXPECT_EQ (stepTo (-1), order[4]) << "from no match, the last";

    param.setNormalisedNotifying (0.0f);
    EXPECT_EQ (state.name, order[0]);
    param.setNormalisedNotifying (0.7f);
    EXPECT_EQ (state.name, order[3]);
    param.setNormalisedNotifying (1.0f);
    EXPECT_EQ (state.name, order[4]);
    param.setNormalisedNotifying (-0.5f);
    EXPECT_EQ (state.name, order[4]) << "a negative index is the last";

    // The same file name and id in both libraries: the factory's is the match.
    write (user.getChildFile ("Top.json"), header ("Halvane", "1.0.3", "t"));
    state.refreshFlatList();
    ASSERT_TRUE (state.load (user.getChildFile ("Top.json")).is_object());
    EXPECT_EQ (param.getIndex(), 1);
}

//==============================================================================
TEST_F (PresetLibrary, ASavedFileHasTheExactFileFormTheOldNameAndIsListedAtOnce)
{
    BareState state;
    state.initialise();
    EXPECT_TRUE (state.getFlatList().empty());
    state.arp.quantize->setValueNotifyingHost (1.0f);

    const auto file = state.getUserDirectory().getChildFile ("Foo.json");
    ASSERT_TRUE (state.save (file));
    EXPECT_EQ (state.name, "Foo");

    juce::MemoryBlock bytes;
    ASSERT_TRUE (file.loadFileAsData (bytes));
    const std::string text (static_cast<const char*> (bytes.getData()), bytes.getSize());
    ASSERT_GE (text.size(), 2u);
    EXPECT_EQ (text.substr (text.size() - 2), std::string ("}\0", 2));
    EXPECT_EQ (text.find ('\0'), text.size() - 1);

    const auto saved = json::parse (text.substr (0, text.size() - 1));
    EXPECT_EQ (text.substr (0, text.size() - 1), Orv::Json::toText (saved));
    EXPECT_EQ (saved["name"], "Init");
    EXPECT_EQ (saved["product"], "Halvane");
    EXPECT_EQ (saved["version"], "1.0.3");
    EXPECT_EQ (saved["Params"]["Quantize"], state.arp.quantize->getCurrentValueAsText().toStdString());
    EXPECT_TRUE (juce::String (saved["id"].get<std::string>()).matchesWildcard ("* * 2??? *:??:??", false)) << saved["id"];
    EXPECT_EQ (juce::String (saved["id"].get<std::string>()), state.id);

    EXPECT_EQ (namesOf (state), juce::StringArray ({ "Presets/Foo.json" }));
    EXPECT_EQ (Orv::Presets::Param (state).getIndex(), 0);

    // The name ends at the first dot on save and at the last on load.
    const auto dotted = state.getUserDirectory().getChildFile ("a.b.json");
    ASSERT_TRUE (state.save (dotted));
    EXPECT_EQ (state.name, "a");
    ASSERT_TRUE (state.load (dotted).is_object());
    EXPECT_EQ (state.name, "a.b");

    // A file that cannot be written changes nothing.
    const auto id = state.id;
    EXPECT_FALSE (state.save (file.getChildFile ("Below A File.json")));
    EXPECT_EQ (state.name, "a.b");
    EXPECT_EQ (state.id, id);
}

TEST_F (PresetLibrary, LoadInitPutsBackTheDefaultsOfTheClass)
{
    ArchivePreset<4> neverInitialised;
    EXPECT_FALSE (neverInitialised.loadInit());

    BareState state;
    state.initialise();

    // What the class's initial JSON gives through a load: a fresh pattern's
    // step lies on a row that no load keeps.
    State fresh;
    ASSERT_TRUE (fresh.loadJson (*Orv::Presets::Initializer::get().find (typeid (BareState)), preset));
    // The pattern preset's own content: the sound is a preset of its own,
    // which the instance's start loaded from the factory.
    const auto init = fresh.toJson (preset);

    auto file = header ("Halvane", "0.9.0", "some-id");
    file["dirty"] = true;
    file["Params"] = { { "Quantize", "4/4" }, { "Transpose", "5" } };
    file["Patterns"] = state.toJson (preset)["Patterns"];
    file["Patterns"]["Patterns"][2]["Multiply"] = true;
    write (state.getUserDirectory().getChildFile ("Changed.json"), file);
    ASSERT_TRUE (state.load (state.getUserDirectory().getChildFile ("Changed.json")).is_object());
    ASSERT_NE (state.toJson (preset), init);

    ASSERT_TRUE (state.loadInit());
    EXPECT_EQ (state.toJson (preset), init);
    EXPECT_EQ (state.name, "Init");
    EXPECT_EQ (Orv::Presets::Param (state).getText(), "Init");
}
} // namespace

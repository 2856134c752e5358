#include "core/Binaries.h"

#include <gtest/gtest.h>
#include <juce_core/juce_core.h>

namespace
{
constexpr auto wavetableGroup = "Wavetables";

TEST (Binaries, FindsEmbeddedFilesByGroupAndNameAndNothingElse)
{
    const auto* sine = Orv::Binaries::find ({ wavetableGroup, "Basics - Sine.wav" });
    ASSERT_NE (sine, nullptr);
    EXPECT_EQ (sine->name, "Basics - Sine.wav");
    ASSERT_GT (sine->size, 12u);
    EXPECT_EQ (juce::String (sine->data, 4), "RIFF");
    EXPECT_EQ (juce::String (sine->data + 8, 4), "WAVE");

    EXPECT_EQ (Orv::Binaries::find ({ wavetableGroup, "Basics - Sine" }), nullptr);
    EXPECT_EQ (Orv::Binaries::find ({ "wavetables", "Basics - Sine.wav" }), nullptr);
    EXPECT_TRUE (Orv::Binaries::getGroup ("No such group").empty());
    EXPECT_EQ (&Orv::Binaries::getGroup (wavetableGroup), &Orv::Binaries::getTable().at (wavetableGroup));
}

// The build made the embedded files; a second run of the generator must give
// the same bytes, or a build on another day would change every sound.
TEST (Binaries, WavetableGeneratorGivesTheEmbeddedBytesAgain)
{
    const auto folder = juce::File::createTempFile ("wavetables");
    juce::ChildProcess generator;
    ASSERT_TRUE (generator.start (juce::StringArray { HALVANE_WAVETABLE_GENERATOR, HALVANE_WAVETABLE_RECIPES,
                                                      folder.getFullPathName() }));
    const auto output = generator.readAllProcessOutput();
    ASSERT_EQ (generator.getExitCode(), 0u) << output;

    const auto& group = Orv::Binaries::getGroup (wavetableGroup);
    EXPECT_EQ (group.size(), 71u);
    EXPECT_EQ (folder.findChildFiles (juce::File::findFiles, false, "*.wav").size(), static_cast<int> (group.size()));

    for (const auto& [name, resource] : group)
    {
        juce::MemoryBlock written;
        ASSERT_TRUE (folder.getChildFile (name).loadFileAsData (written)) << name;
        EXPECT_TRUE (written.matches (resource.data, resource.size)) << name;
    }
    folder.deleteRecursively();
}
} // namespace

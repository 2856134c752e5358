#include "core/Processor.h"
#include "persistence/PresetInitializer.h"

#include <gtest/gtest.h>

using Orv::Audio::Plugins::Halvane::Processor;
using Orv::Audio::Plugins::Halvane::State;

TEST (InstanceStart, TheFirstInstanceUnpacksTheFactoryLibrariesAndStartsOnWelcomeWithSpaceyPiano)
{
    // The factory libraries are unpacked once in a process: only a process
    // whose first instance this is can watch it happen. ctest runs each test
    // in a process of its own.
    if (Orv::Presets::Initializer::get().find (typeid (State)) != nullptr)
        GTEST_SKIP() << "the preset libraries were initialised earlier in this process";

    const auto previousHome = juce::SystemStats::getEnvironmentVariable ("HOME", {});
    const auto home = juce::File::createTempFile ("first-start-home");
    ASSERT_TRUE (home.createDirectory());
    setenv ("HOME", home.getFullPathName().toRawUTF8(), 1);

    {
        Processor processor;
        auto& state = processor.getState();

        EXPECT_EQ (state.name, "WELCOME");
        EXPECT_EQ (state.sound.name, "Spacey Piano");
        EXPECT_TRUE (state.getFactoryDirectoryResolved().getChildFile ("WELCOME.json").existsAsFile());
        EXPECT_TRUE (state.getUserDirectory().isDirectory());
        EXPECT_TRUE (state.sound.getUserDirectory().isDirectory());
        EXPECT_EQ (state.getFlatList().size(), 59u);
        EXPECT_EQ (state.sound.getFlatList().size(), 34u);

        int drawnPatterns = 0;
        for (const auto& pattern : state.sequencer.patterns)
            drawnPatterns += pattern->sequence.steps.empty() ? 0 : 1;
        EXPECT_EQ (drawnPatterns, 8) << "WELCOME shows eight different patterns";
    }

    setenv ("HOME", previousHome.toRawUTF8(), 1);
    home.deleteRecursively();
}

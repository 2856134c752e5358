#include "core/ShutdownDeleter.h"

#include <gtest/gtest.h>
#include <juce_gui_basics/juce_gui_basics.h>

#include <cstdlib>

namespace
{
/** Every test process gets a fresh home folder, so that nothing a test writes
    (presets, version files) touches the developer's own, and nothing of theirs
    leaks into a test. */
juce::File makeFreshHome()
{
    auto home = juce::File::createTempFile ("halvane-test-home");
    home.createDirectory();
    setenv ("HOME", home.getFullPathName().toRawUTF8(), 1);
    return home;
}
} // namespace

int main (int argc, char** argv)
{
    testing::InitGoogleTest (&argc, argv);

    const auto home = makeFreshHome();
    int result = 0;
    {
        juce::ScopedJuceInitialiser_GUI juce;
        result = RUN_ALL_TESTS();
        Orv::ShutdownDeleter::releaseAll();
    }
    home.deleteRecursively();
    return result;
}

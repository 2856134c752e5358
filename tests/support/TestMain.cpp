#include "core/ShutdownDeleter.h"

#include <gtest/gtest.h>
#include <juce_gui_basics/juce_gui_basics.h>

#include <cstdlib>

namespace
{
/** Every test process gets a fresh home folder, so that nothing a test writes
    (presets, version files) touches the developer's own, and nothing of theirs
    leaks into a test.

    The home holds the developer's folder on the desktop, which stands in for
    the factory libraries: an instance then starts from its plain defaults,
    not from the factory's default preset and sound, and tests see exactly
    the patterns and sound they set. Tests of the factory content and of the
    libraries make homes of their own. */
juce::File makeFreshHome()
{
    auto home = juce::File::createTempFile ("halvane-test-home");
    home.createDirectory();
    setenv ("HOME", home.getFullPathName().toRawUTF8(), 1);
    home.getChildFile ("Desktop").getChildFile ("TrevalisDev").getChildFile ("Presets").createDirectory();
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

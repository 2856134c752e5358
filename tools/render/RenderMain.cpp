#include "core/ShutdownDeleter.h"
#include "tools/render/RenderError.h"
#include "tools/render/RenderJob.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <iostream>

namespace
{
using namespace Orv::Tools::Render;

/** The bundle this build made, else the one installed for the user. */
juce::File defaultPlugin()
{
    const juce::File built (HALVANE_DEFAULT_VST3_BUNDLE);
    if (built.exists())
        return built;
    return juce::File::getSpecialLocation (juce::File::userHomeDirectory).getChildFile (".vst3/Halvane.vst3");
}

int fail (const std::string& what)
{
    std::cerr << "halvane-render: " << what << std::endl;
    return RenderError::exitCode;
}
} // namespace

int main (int argc, char** argv)
{
    juce::StringArray args;
    for (int i = 1; i < argc; ++i)
        args.add (juce::String::fromUTF8 (argv[i]));

    int result = 0;
    {
        // The picture's fonts need the GUI side of JUCE; no window is opened.
        juce::ScopedJuceInitialiser_GUI juce;
        try
        {
            const auto options = RenderOptions::parse (args, defaultPlugin());
            if (options.help)
                std::cout << RenderOptions::helpText (defaultPlugin());
            else if (options.list)
                RenderJob (options).list (std::cout);
            else
                RenderJob (options).run (std::cout);
        }
        catch (const RenderError& e)
        {
            result = fail (e.what());
        }
        catch (const std::exception& e)
        {
            result = fail (std::string ("unexpected failure: ") + e.what());
        }
        Orv::ShutdownDeleter::releaseAll();
    }
    return result;
}

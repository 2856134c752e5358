#include "core/Processor.h"
#include "core/WithEditor.h"
#include "editor/Editor.h"

// The framework's plug-in wrappers call this to make each new instance.
juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter()
{
    return new Orv::Audio::Plugin::WithEditor<Orv::Audio::Plugins::Halvane::Processor,
                                              Orv::GUI::Plugins::Halvane::Editor>();
}

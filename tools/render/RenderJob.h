#pragma once

#include "tools/render/RenderOptions.h"

#include <iosfwd>

namespace Orv::Tools::Render
{
/** One render from options to files: loads the bundle, builds the state it
    is to start from, plays it, writes what was asked for and prints the
    summary. Message thread; the GUI must be initialised. */
class RenderJob
{
public:
    explicit RenderJob (RenderOptions optionsToUse) : options (std::move (optionsToUse)) {}

    /** Throws RenderError for anything the user can put right. */
    void run (std::ostream& out);

    /** The clips, presets and sounds that names may give. */
    void list (std::ostream& out);

    /** The file name of the built-in clip that `name` means: the file name
        itself, without ".mid", or its last part after " - " when only one
        clip has it; case is ignored. Throws RenderError otherwise. */
    static juce::String findClip (const juce::String& name);

private:
    RenderOptions options;
};
} // namespace Orv::Tools::Render

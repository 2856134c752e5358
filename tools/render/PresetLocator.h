#pragma once

#include <juce_core/juce_core.h>
#include <nlohmann/json.hpp>

namespace Orv::Tools::Render
{
/** Finds pattern and sound presets by path or by name, in the folders where
    the plug-in keeps them: the factory files it unpacks on first start, then
    the user's own. Ask only after the plug-in has been loaded once, or the
    factory folders may not exist yet. */
class PresetLocator
{
public:
    enum class Kind
    {
        pattern,
        sound
    };

    /** A preset that was found and read. */
    struct Found
    {
        juce::File file;
        nlohmann::json json;
        bool factory = false;
    };

    /** The factory folder of a kind, then the user's. */
    static juce::Array<juce::File> folders (Kind kind);

    /** An existing file is read as it is. Otherwise the name is matched,
        ignoring case, against the file names without ".json" in the folders,
        alone or with their subfolder, factory first. Throws RenderError when
        nothing is found, or when the file is no preset of this kind. */
    static Found find (Kind kind, const juce::String& nameOrPath);

    /** The names that find() accepts, each with its folder below the
        kind's root ("Basics/Spacey Piano"), factory files first. */
    static juce::StringArray list (Kind kind);

    /** The word a file of the kind carries under "product". */
    static juce::String productOf (Kind kind) { return kind == Kind::pattern ? "Halvane" : "Halvane Sounds"; }
    static juce::String describe (Kind kind) { return kind == Kind::pattern ? "pattern preset" : "sound"; }

private:
    static Found read (Kind kind, const juce::File& file, bool factory);
    static juce::Array<juce::File> filesIn (const juce::File& folder);
};
} // namespace Orv::Tools::Render

#include "tools/render/PresetLocator.h"

#include "persistence/PresetBase.h"
#include "tools/render/RenderError.h"

namespace Orv::Tools::Render
{
namespace
{
    constexpr const char* extension = ".json";

    juce::String folderName (PresetLocator::Kind kind)
    {
        return kind == PresetLocator::Kind::pattern ? "Presets" : "Sounds";
    }
} // namespace

juce::Array<juce::File> PresetLocator::folders (Kind kind)
{
    return { Presets::Base::getApplicationDataRoot().getChildFile (folderName (kind)),
             Presets::Base::getDocumentsRoot().getChildFile (folderName (kind)) };
}

juce::Array<juce::File> PresetLocator::filesIn (const juce::File& folder)
{
    constexpr bool recursive = true;
    auto files = folder.findChildFiles (juce::File::findFiles, recursive, juce::String ("*") + extension);
    // A fixed order, so that two files of one name always resolve alike.
    std::sort (files.begin(), files.end(), [] (const juce::File& a, const juce::File& b) {
        return a.getFullPathName() < b.getFullPathName();
    });
    return files;
}

PresetLocator::Found PresetLocator::read (Kind kind, const juce::File& file, bool factory)
{
    const auto path = file.getFullPathName().toStdString();
    if (! Presets::Base::isReadableFile (file))
        throw RenderError ("cannot read " + path + " as a " + describe (kind).toStdString());

    auto json = Presets::Base::readJsonFile (file);
    if (! json.is_object())
        throw RenderError (path + " is not a preset file (no JSON object in it)");

    const auto product = json.contains ("product") && json["product"].is_string() ? json["product"].get<std::string>() : std::string();
    if (product != productOf (kind).toStdString())
        throw RenderError (path + " is not a " + describe (kind).toStdString() + " (its product is '" + product + "', not '"
                           + productOf (kind).toStdString() + "')");

    return { file, std::move (json), factory };
}

PresetLocator::Found PresetLocator::find (Kind kind, const juce::String& nameOrPath)
{
    const auto asPath = juce::File::getCurrentWorkingDirectory().getChildFile (nameOrPath);
    if (asPath.existsAsFile())
        return read (kind, asPath, false);

    const auto wanted = nameOrPath.trim();
    const auto places = folders (kind);
    for (int i = 0; i < places.size(); ++i)
        for (const auto& file : filesIn (places[i]))
            if (file.getFileNameWithoutExtension().equalsIgnoreCase (wanted)
                || file.getRelativePathFrom (places[i]).dropLastCharacters ((int) std::strlen (extension)).equalsIgnoreCase (wanted))
                return read (kind, file, i == 0);

    // "Basics/Spacey Piano" is a name as --list shows it; these are paths.
    const bool looksLikePath = wanted.endsWithIgnoreCase (extension) || wanted.startsWithChar ('/')
                               || wanted.startsWith ("./") || wanted.startsWith ("../") || wanted.startsWithChar ('~');
    if (looksLikePath)
        throw RenderError ("no such file: " + asPath.getFullPathName().toStdString());
    throw RenderError ("unknown " + describe (kind).toStdString() + " '" + nameOrPath.toStdString() + "' (see --list)");
}

juce::StringArray PresetLocator::list (Kind kind)
{
    juce::StringArray names;
    for (const auto& folder : folders (kind))
        for (const auto& file : filesIn (folder))
            names.add (file.getRelativePathFrom (folder).dropLastCharacters ((int) std::strlen (extension)));
    return names;
}
} // namespace Orv::Tools::Render

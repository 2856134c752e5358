#include "tools/render/HostState.h"

#include "tools/render/RenderError.h"

namespace Orv::Tools::Render::HostState
{
namespace
{
    /** "VC2!" read as a little-endian word: the plug-in's blob and JUCE's
        binary XML share this envelope. */
    constexpr juce::uint32 magic = 0x21324356;
    constexpr size_t headerBytes = 8;
    constexpr const char* componentTag = "IComponent";
    constexpr const char* hostTag = "VST3PluginState";
    /** A state is a pattern preset with the instance's keys added. */
    constexpr const char* productName = "Halvane";
    /** A saved state is a few hundred kilobytes at most; this bounds what a
        wrong path can make the tool read. */
    constexpr juce::int64 maxStateFileBytes = 64 * 1024 * 1024;

    /** The text of an envelope, or nothing when the bytes are not one. The
        length word may run past the data; the text then ends with it. */
    std::optional<std::string> envelopeText (const void* data, size_t size)
    {
        if (size < headerBytes + 1 || juce::ByteOrder::littleEndianInt (data) != magic)
            return std::nullopt;
        const auto* bytes = static_cast<const char*> (data);
        const auto length = juce::jmin ((size_t) juce::ByteOrder::littleEndianInt (bytes + 4), size - headerBytes);
        auto text = std::string (bytes + headerBytes, length);
        // JUCE's own envelope counts the terminator in its length.
        while (! text.empty() && text.back() == '\0')
            text.pop_back();
        return text;
    }

    nlohmann::json objectOf (const std::string& text, const std::string& what)
    {
        try
        {
            auto json = nlohmann::json::parse (text);
            if (json.is_object() && json.value ("product", "") == productName)
                return json;
        }
        catch (const nlohmann::json::exception&)
        {
        }
        throw RenderError (what);
    }

    /** The plug-in's blob inside a host's XML, if the text is that XML. */
    std::optional<juce::MemoryBlock> componentOf (const std::string& text)
    {
        const auto xml = juce::parseXML (juce::String::fromUTF8 (text.data(), (int) text.size()));
        if (xml == nullptr || xml->getChildByName (componentTag) == nullptr)
            return std::nullopt;

        juce::MemoryBlock component;
        if (! component.fromBase64Encoding (xml->getChildByName (componentTag)->getAllSubText()))
            return std::nullopt;
        return component;
    }
} // namespace

juce::MemoryBlock blobOf (const nlohmann::json& state)
{
    const auto text = state.dump();
    juce::MemoryOutputStream out;
    out.writeInt ((int) magic);
    out.writeInt ((int) text.size());
    out.write (text.data(), text.size());
    out.writeByte (0);
    return out.getMemoryBlock();
}

nlohmann::json jsonOf (const juce::MemoryBlock& blob)
{
    const auto text = envelopeText (blob.getData(), blob.getSize());
    if (! text.has_value())
        throw RenderError ("the plug-in gave no state blob");
    return objectOf (*text, "the plug-in's state blob holds no Halvane state");
}

juce::MemoryBlock save (juce::AudioPluginInstance& plugin)
{
    juce::MemoryBlock hostData;
    plugin.getStateInformation (hostData);
    const auto xml = juce::AudioProcessor::getXmlFromBinary (hostData.getData(), (int) hostData.getSize());
    if (xml == nullptr || xml->getChildByName (componentTag) == nullptr)
        throw RenderError ("the plug-in gave the host no component state");

    juce::MemoryBlock component;
    component.fromBase64Encoding (xml->getChildByName (componentTag)->getAllSubText());
    // The length word excludes the wrapper's own data behind the blob.
    const auto text = envelopeText (component.getData(), component.getSize());
    if (! text.has_value())
        return component;
    return juce::MemoryBlock (component.getData(), juce::jmin (text->size() + headerBytes + 1, component.getSize()));
}

void restore (juce::AudioPluginInstance& plugin, const juce::MemoryBlock& blob)
{
    juce::XmlElement state (hostTag);
    state.createNewChildElement (componentTag)->addTextElement (blob.toBase64Encoding());
    juce::MemoryBlock hostData;
    juce::AudioProcessor::copyXmlToBinary (state, hostData);
    plugin.setStateInformation (hostData.getData(), (int) hostData.getSize());
}

nlohmann::json readStateFile (const juce::File& file)
{
    const auto name = file.getFullPathName().toStdString();
    if (! file.existsAsFile())
        throw RenderError ("no state file " + name);
    if (file.getSize() > maxStateFileBytes)
        throw RenderError (name + " is too large to be a saved state");

    juce::MemoryBlock bytes;
    if (! file.loadFileAsData (bytes))
        throw RenderError ("cannot read " + name);

    const auto notAState = name + " is not a saved Halvane state";
    if (auto text = envelopeText (bytes.getData(), bytes.getSize()))
    {
        if (auto component = componentOf (*text))
        {
            auto inner = envelopeText (component->getData(), component->getSize());
            if (! inner.has_value())
                throw RenderError (notAState);
            return objectOf (*inner, notAState);
        }
        return objectOf (*text, notAState);
    }

    auto text = bytes.toString().toStdString();
    while (! text.empty() && text.back() == '\0')
        text.pop_back();
    return objectOf (text, notAState);
}

void merge (nlohmann::json& target, const nlohmann::json& source)
{
    if (! target.is_object() || ! source.is_object())
    {
        target = source;
        return;
    }
    for (const auto& [key, value] : source.items())
        merge (target[key], value);
}

void applyPatternPreset (nlohmann::json& state, const nlohmann::json& preset)
{
    if (preset.contains ("Patterns"))
        merge (state["Patterns"], preset["Patterns"]);
    // A preset without parameters leaves them as the state has them.
    if (preset.contains ("Params") && preset["Params"].is_object())
        merge (state["Params"], preset["Params"]);
}

void applySound (nlohmann::json& state, const nlohmann::json& sound) { merge (state["Synth"], sound); }

void applyClip (nlohmann::json& state, const juce::String& clipFileName)
{
    state["MidiPlayer"] = { { "Resource", { { "name", clipFileName.toStdString() }, { "type", "Binary" }, { "data", "" } } },
                            { "active", true },
                            { "playing", true } };
}
} // namespace Orv::Tools::Render::HostState

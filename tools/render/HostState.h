#pragma once

#include <juce_audio_processors/juce_audio_processors.h>
#include <nlohmann/json.hpp>

namespace Orv::Tools::Render::HostState
{
/** The plug-in's blob: "VC2!", the text's length as a 32-bit little-endian
    word, the compact JSON and a zero byte. */
juce::MemoryBlock blobOf (const nlohmann::json& state);

/** The JSON inside a plug-in's blob. Throws RenderError when the bytes are
    no such blob or its text is no JSON object. */
nlohmann::json jsonOf (const juce::MemoryBlock& blob);

/** The plug-in's own blob, out of what JUCE's VST3 hosting gave the host:
    its XML keeps the component state base-64 encoded under "IComponent",
    with the wrapper's private data behind the blob. */
juce::MemoryBlock save (juce::AudioPluginInstance& plugin);

/** Hands the plug-in a blob wrapped as JUCE's hosting wraps it, as a host
    restoring a project does. */
void restore (juce::AudioPluginInstance& plugin, const juce::MemoryBlock& blob);

/** Reads a saved state: the plug-in's blob, a host's blob (JUCE's envelope
    around XML with "IComponent"), or the JSON text itself. Throws
    RenderError for anything else. */
nlohmann::json readStateFile (const juce::File& file);

/** Copies source into target: objects key by key, all else whole (lists
    too, so eight patterns replace eight patterns). Keys the source lacks
    keep what the target had, as a load through reflection would. */
void merge (nlohmann::json& target, const nlohmann::json& source);

/** A pattern preset over the state: its "Patterns", and its "Params" when
    the preset has any. */
void applyPatternPreset (nlohmann::json& state, const nlohmann::json& preset);

/** A sound preset over the state's "Synth". */
void applySound (nlohmann::json& state, const nlohmann::json& sound);

/** Sets the file player to play the built-in clip of that file name, on. */
void applyClip (nlohmann::json& state, const juce::String& clipFileName);
} // namespace Orv::Tools::Render::HostState

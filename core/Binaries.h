#pragma once

#include <juce_core/juce_core.h>

#include <cstddef>
#include <map>

namespace Orv::Binaries
{
/** One embedded resource: its file name and its bytes, which live as long as
    the process. */
struct BinaryInfo
{
    juce::String name;
    const char* data = nullptr;
    size_t size = 0;
};

/** A resource by its group ("Wavetables", "Clips", ...) and file name. */
struct Resource
{
    juce::String group;
    juce::String name;
};

/** File name to resource, in the order of the names' code points. */
using Group = std::map<juce::String, BinaryInfo>;

/** Any thread: the whole table, group to file name to bytes, built on first
    use and immutable afterwards. */
const std::map<juce::String, Group>& getTable();

/** Any thread: a group, or an empty group when there is none of that name. */
const Group& getGroup (const juce::String& group);

/** Any thread: one resource, or null when it is not embedded. */
const BinaryInfo* find (const Resource& resource);
} // namespace Orv::Binaries

#pragma once

#include <juce_core/juce_core.h>

#include <string>

namespace Orv::Audio::Plugin::StateBlob
{
/** The blob's first four bytes, "VC2!" read as a little-endian word. */
static constexpr juce::uint32 magic = 0x21324356;
/** Magic and length word. */
static constexpr int headerBytes = 8;
/** Header and the closing zero byte. */
static constexpr int overheadBytes = headerBytes + 1;

/** Any thread: the magic, the text's length as a little-endian word, the
    text and a zero byte. */
juce::MemoryBlock write (const std::string& text);

/** Any thread: the text of a blob; empty for anything that is not one. A
    length word past the end of the data is cut to the data. Never throws. */
std::string read (const void* data, int sizeInBytes) noexcept;
} // namespace Orv::Audio::Plugin::StateBlob

#include "core/StateBlob.h"

namespace Orv::Audio::Plugin::StateBlob
{
juce::MemoryBlock write (const std::string& text)
{
    juce::MemoryOutputStream out;
    out.writeInt ((int) magic);
    out.writeInt (0);
    out.write (text.data(), text.size());
    out.writeByte (0);

    auto block = out.getMemoryBlock();
    // The length is stored afterwards, from what was really written.
    const auto length = (juce::uint32) (block.getSize() - overheadBytes);
    const auto littleEndian = juce::ByteOrder::swapIfBigEndian (length);
    block.copyFrom (&littleEndian, 4, sizeof (littleEndian));
    return block;
}

std::string read (const void* data, int sizeInBytes) noexcept
{
    if (data == nullptr || sizeInBytes < overheadBytes)
        return {};

    const auto* bytes = static_cast<const char*> (data);
    if (juce::ByteOrder::littleEndianInt (bytes) != magic)
        return {};

    const auto length = juce::ByteOrder::littleEndianInt (bytes + 4);
    if (length == 0)
        return {};

    const auto available = (juce::uint32) (sizeInBytes - headerBytes);
    try
    {
        return std::string (bytes + headerBytes, std::min (length, available));
    }
    catch (...)
    {
        return {};
    }
}
} // namespace Orv::Audio::Plugin::StateBlob

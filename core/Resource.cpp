#include "core/Resource.h"

#include "persistence/ReflectMembers.h"

#include <array>
#include <utility>

namespace Orv::Resources
{
namespace
{
    const std::array<std::pair<Type, const char*>, 4> typeNames { { { Type::none, "None" },
                                                                     { Type::binary, "Binary" },
                                                                     { Type::sharedBinary, "SharedBinary" },
                                                                     { Type::externalFile, "External File" } } };
} // namespace

juce::String Resource::getTypeName (Type type)
{
    for (const auto& [t, name] : typeNames)
        if (t == type)
            return name;

    return typeNames.front().second;
}

Type Resource::getTypeFromName (const juce::String& text)
{
    for (const auto& [t, name] : typeNames)
        if (text == name)
            return t;

    return Type::none;
}

void Resource::reflect (Reflector& reflector)
{
    addMember (reflector, "name", name);

    auto typeText = getTypeName (type);
    if (addMember (reflector, "type", typeText) && reflector.isLoading())
        type = getTypeFromName (typeText);

    auto encoded = reflector.isLoading() ? juce::String() : juce::Base64::toBase64 (data.getData(), data.getSize());
    if (addMember (reflector, "data", encoded) && reflector.isLoading())
    {
        juce::MemoryBlock decoded;
        {
            // The stream trims the block to what it wrote when it goes.
            juce::MemoryOutputStream out (decoded, false);
            if (! juce::Base64::convertFromBase64 (out, encoded))
                out.reset();
        }
        data = std::move (decoded);
    }
}
} // namespace Orv::Resources

#include "core/Binaries.h"

#include "core/EmbeddedResource.h"

namespace Orv::Binaries
{
namespace
{
    std::map<juce::String, Group> buildTable()
    {
        std::map<juce::String, Group> table;

        for (const auto& resource : getEmbeddedResources())
        {
            const auto name = juce::String::fromUTF8 (resource.name);
            auto& group = table[juce::String::fromUTF8 (resource.group)];

            // Two files of one name in one group would make the table depend on
            // link order; the build's embedding rule should never let it happen.
            jassert (group.count (name) == 0);

            group[name] = BinaryInfo { name, reinterpret_cast<const char*> (resource.data), resource.size };
        }

        return table;
    }
} // namespace

const std::map<juce::String, Group>& getTable()
{
    // A function-local static: its first use builds it exactly once, whichever
    // thread comes first, and the others wait for that.
    static const auto table = buildTable();
    return table;
}

const Group& getGroup (const juce::String& group)
{
    static const Group none;

    const auto& table = getTable();
    const auto found = table.find (group);
    return found != table.end() ? found->second : none;
}

const BinaryInfo* find (const Resource& resource)
{
    const auto& group = getGroup (resource.group);
    const auto found = group.find (resource.name);
    return found != group.end() ? &found->second : nullptr;
}
} // namespace Orv::Binaries

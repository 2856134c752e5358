#include "parameters/ParamList.h"

#include "core/ProcessorBase.h"
#include "persistence/ParameterText.h"
#include "persistence/Reflector.h"

#include <algorithm>

namespace Orv::Audio
{
namespace
{
    template <typename Entry>
    Entry* findByKey (std::vector<Entry>& entries, const juce::String& key)
    {
        const auto found = std::find_if (entries.begin(), entries.end(), [&] (const Entry& e) { return e.key == key; });
        return found != entries.end() ? &*found : nullptr;
    }

    juce::String keyOf (const ParamHolderBase& holder)
    {
        if (const auto* withId = dynamic_cast<const juce::AudioProcessorParameterWithID*> (holder.getParameter()))
            return withId->getParameterID();

        jassertfalse; // a list entry needs an id to be found by in files
        return {};
    }
} // namespace

ParamList::ParamList() = default;
ParamList::~ParamList() = default;

void ParamList::addParam (ParamHolderBase& holder)
{
    const auto key = keyOf (holder);

    if (auto* existing = findByKey (params, key))
    {
        existing->holder = &holder;
        existing->enabled = true;
        return;
    }

    params.push_back ({ key, &holder, true });
}

void ParamList::addList (const juce::String& key, ParamList& list)
{
    if (key.isEmpty())
    {
        for (const auto& entry : list.params)
        {
            if (auto* existing = findByKey (params, entry.key))
                existing->holder = entry.holder;
            else
                params.push_back (entry);
        }

        return;
    }

    if (auto* existing = findByKey (lists, key))
    {
        existing->list = &list;
        existing->enabled = true;
        return;
    }

    lists.push_back ({ key, &list, true });
}

void ParamList::reflect (Reflector& reflector)
{
    const auto isSelected = [&] (const ParamEntry& entry)
    {
        return entry.enabled
               && Serializing::isParameterSelected (reflector.context, entry.holder->inPreset, entry.holder->inState);
    };

    if (reflector.isLoading())
        for (const auto& entry : params)
            if (isSelected (entry))
                Serializing::resetToDefault (*entry.holder->getParameter());

    for (auto& entry : lists)
        if (entry.enabled)
            reflector.addChild (entry.key.toStdString(), *entry.list);

    for (const auto& entry : params)
        if (isSelected (entry))
            Serializing::addParameterText (reflector, entry.key.toStdString(), *entry.holder->getParameter());
}
} // namespace Orv::Audio

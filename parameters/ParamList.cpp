#include "parameters/ParamList.h"

#include "core/ProcessorBase.h"
#include "parameters/ForwardingParameter.h"
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

    const juce::String hiddenProcessorName = "Hidden";
    // Ids join the key path with this; names show it as a blank.
    const juce::String pathSeparator = "-";
    const juce::String blank = " ";

    juce::String nameForId (const juce::String& id) { return id.replace (pathSeparator, blank); }

    std::unique_ptr<ForwardingParameter> makeFront (const juce::String& prefix, ParamHolderBase& holder)
    {
        auto front = std::make_unique<ForwardingParameter> (prefix + keyOf (holder), holder);
        front->displayName = nameForId (front->id);
        return front;
    }

    /** A group for a child list, filled depth first: its own parameters, then
        its child lists' groups. */
    std::unique_ptr<juce::AudioProcessorParameterGroup> makeGroup (const juce::String& prefix,
                                                                   const ParamList::ListEntry& entry)
    {
        const auto groupId = prefix + entry.key.replace (blank, pathSeparator);
        auto group = std::make_unique<juce::AudioProcessorParameterGroup> (groupId, entry.key, pathSeparator);
        const auto innerPrefix = groupId + pathSeparator;

        for (const auto& param : entry.list->params)
            if (param.enabled)
                group->addChild (makeFront (innerPrefix, *param.holder));

        for (const auto& child : entry.list->lists)
            if (child.enabled)
                group->addChild (makeGroup (innerPrefix, child));

        return group;
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

ForwardingParameter& ParamList::addForwarder (ParamHolderBase& target, const juce::String& id)
{
    auto holder = std::make_unique<ParamHolder<ForwardingParameter>> (id, target);
    auto& front = **holder;
    front.displayName = nameForId (id);
    ownedHolders.push_back (std::move (holder));
    return front;
}

void ParamList::attach (juce::AudioProcessor* processorToUse)
{
    jassert (processor == nullptr); // a list's fronts have one owner

    if (processorToUse == nullptr)
    {
        if (hiddenProcessor == nullptr)
            hiddenProcessor = std::make_unique<ProcessorBase> (hiddenProcessorName, ProcessorBase::makeStereoBuses(),
                                                               ProcessorBase::ParameterOwnerOnly {});
        processorToUse = hiddenProcessor.get();
    }

    processor = processorToUse;

    for (auto& holder : ownedHolders)
    {
        processor->addParameter (holder->getParameter());
        holder->adopted = true;
    }

    for (const auto& entry : params)
        if (entry.enabled)
            processor->addParameter (makeFront ({}, *entry.holder).release());

    for (const auto& entry : lists)
        if (entry.enabled)
            processor->addParameterGroup (makeGroup ({}, entry));
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

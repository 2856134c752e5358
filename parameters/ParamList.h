#pragma once

#include "parameters/ParamHolder.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <memory>
#include <vector>

namespace Orv
{
class Reflector;
}

namespace Orv::Audio
{
class ProcessorBase;
class ForwardingParameter;

/** A keyed tree of parameters: what presets and the host's state store,
    and, attached to a processor, what a host or a hidden processor owns.

    Lists are plain structs deriving from this class whose members are
    ParamHolders and child lists, registered in their constructor with
    addParam and addList. The list points at those members, so it can be
    neither copied nor moved. Built, attached and reflected on the message
    thread. */
class ParamList
{
public:
    /** A parameter under its key. */
    struct ParamEntry
    {
        juce::String key;
        ParamHolderBase* holder = nullptr;
        bool enabled = true;
    };

    /** A child list under its key. */
    struct ListEntry
    {
        juce::String key;
        ParamList* list = nullptr;
        bool enabled = true;
    };

    ParamList();
    virtual ~ParamList();

    ParamList (const ParamList&) = delete;
    ParamList& operator= (const ParamList&) = delete;

    /** Saves or loads the selected parameters as their display texts. A load
        first sets every selected parameter to its default, so a missing key
        gives the default; then come the enabled child lists by key, then
        each selected parameter's text. The pass's scope selects by inState
        (instance) or inPreset (preset). A load sets values without telling
        the host. Message thread. */
    virtual void reflect (Reflector& reflector);

    //==============================================================================
    /** Adds a parameter under its own id, or, when that key is already
        there, puts the holder in place of the old one (keeping its position)
        and enables the entry. Message thread, before attach. */
    void addParam (ParamHolderBase& holder);

    /** With a key: adds a child list, or replaces the one under that key in
        place. With an empty key: merges the list's parameters into this one,
        replacing holders of equal keys. Message thread, before attach. */
    void addList (const juce::String& key, ParamList& list);

    /** Makes a host-facing front for a parameter of another list, owned by
        this list, with the given id and that id with blanks for "-" as its
        name. Message thread, before attach. */
    ForwardingParameter& addForwarder (ParamHolderBase& target, const juce::String& id);

    /** Hands the list to a processor: the owned fronts as they are, then a
        front for each enabled parameter and a group for each child list,
        named after the key path. A null processor stands for a hidden one
        that this list makes and owns, which never runs. Once per list;
        message thread. */
    void attach (juce::AudioProcessor* processorToUse);

    //==============================================================================
    /** The processor that owns the list's fronts once attached, or null. */
    juce::AudioProcessor* processor = nullptr;
    /** The processor that owns them when attach was given none. */
    std::unique_ptr<ProcessorBase> hiddenProcessor;
    /** Parameters this list owns itself, outside any keyed tree: the fronts
        of addForwarder. */
    std::vector<std::unique_ptr<ParamHolderBase>> ownedHolders;
    std::vector<ParamEntry> params;
    std::vector<ListEntry> lists;
};
} // namespace Orv::Audio

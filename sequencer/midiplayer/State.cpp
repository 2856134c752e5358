#include "sequencer/midiplayer/State.h"

#include "core/Binaries.h"
#include "persistence/ReflectMembers.h"
#include "sequencer/midiplayer/ClipReader.h"

namespace Orv::Sequencer::MidiPlayer
{
namespace
{
    constexpr const char* midiExtensionPart = "mid";
} // namespace

State::State() { load(); }

//==============================================================================
void State::loadExternal (const juce::File& file)
{
    if (! file.getFileExtension().containsIgnoreCase (midiExtensionPart))
        return;

    // An unreadable file arrives as no bytes, and so plays as an empty clip.
    juce::MemoryBlock data;
    if (auto in = file.createInputStream())
        in->readIntoMemoryBlock (data, (ssize_t) ClipReader::maxFileBytes);

    loadExternalData (file.getFileName(), data);
}

void State::loadExternalData (const juce::String& name, const juce::MemoryBlock& data)
{
    setResourceAndLoad ({ name, Resources::Type::externalFile, data });
}

void State::loadBuiltIn (const juce::String& name) { setResourceAndLoad ({ name, Resources::Type::binary, {} }); }

void State::setResourceAndLoad (Resources::Resource newResource)
{
    {
        const juce::ScopedLock sl (lock);
        resource = std::move (newResource);
    }
    load();
}

void State::load()
{
    {
        const juce::ScopedLock sl (lock);

        try
        {
            const void* bytes = nullptr;
            size_t size = 0;

            if (resource.type == Resources::Type::externalFile)
            {
                bytes = resource.data.getData();
                size = resource.data.getSize();
            }
            else if (resource.isBuiltIn())
            {
                if (const auto* info = Binaries::find ({ clipGroup, resource.name }))
                {
                    bytes = info->data;
                    size = info->size;
                }
            }

            if (resource.type == Resources::Type::none)
            {
                // Nothing chosen yet: a bar of silence, as in a new state.
                noteList.events.clear();
                noteList.time.bars.assign (1, Modifiers::Bar());
            }
            else
            {
                ClipReader::read (bytes, size, noteList);
            }

            PatternData evaluated;
            noteList.evaluate (evaluated);
            slot.events = std::move (evaluated);
        }
        catch (...)
        {
            // Out of memory on a huge clip: it plays as nothing.
            noteList.events.clear();
            noteList.time.bars.clear();
            slot.events.clearLists();
            slot.events.length = 0.0;
        }

        slot.playing = true;
        slot.looping = true;
        slot.length = slot.events.length;
    }

    broadcaster.call();
}

//==============================================================================
Resources::Resource State::getResource() const
{
    const juce::ScopedLock sl (lock);
    return resource;
}

Modifiers::NoteList State::getNoteList() const
{
    const juce::ScopedLock sl (lock);
    return noteList;
}

PlaybackSlot State::getSlot() const
{
    const juce::ScopedLock sl (lock);
    return slot;
}

void State::setActive (bool shouldBeActive)
{
    if (active.exchange (shouldBeActive) != shouldBeActive)
        broadcaster.call();
}

void State::setPlaying (bool shouldPlay)
{
    if (playing.exchange (shouldPlay) != shouldPlay)
        broadcaster.call();
}

void State::reflect (Reflector& reflector)
{
    const auto loading = reflector.isLoading();
    bool resourceArrived = false;

    {
        const juce::ScopedLock sl (lock);
        reflector.addChild ("Resource", resource, [&resourceArrived] { resourceArrived = true; });
    }

    auto playingNow = isPlaying();
    auto activeNow = isActive();
    const auto playingArrived = addMember (reflector, "playing", playingNow);
    const auto activeArrived = addMember (reflector, "active", activeNow);

    if (! loading)
        return;

    if (resourceArrived)
        load();
    if (playingArrived)
        setPlaying (playingNow);
    if (activeArrived)
        setActive (activeNow);
}
} // namespace Orv::Sequencer::MidiPlayer

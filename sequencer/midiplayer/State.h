#pragma once

#include "core/Broadcaster.h"
#include "core/Resource.h"
#include "sequencer/PlaybackSlot.h"
#include "sequencer/modifiers/NoteList.h"

#include <juce_core/juce_core.h>

#include <atomic>

namespace Orv::Sequencer::MidiPlayer
{
/** The file player's side of the state: which clip it plays, its notes, and
    the two switches. The clip is a built-in file or a file from outside;
    either way it is read into a note list and evaluated into a slot, which
    the player's Processor hands to the audio thread.

    Loading happens on the message thread under the lock, and ends with the
    broadcaster, which is also told when a switch changes. The audio thread
    reads only the two switches. */
class State : public Events::HasBroadcaster
{
public:
    /** The name of the group of built-in clips in the embedded table. */
    static constexpr const char* clipGroup = "Clips";
    /** How long the slot runs before any clip is loaded, in quarter notes. */
    static constexpr double lengthBeforeLoad = 4.0;

    /** Message thread: nothing loaded, not active, playing. */
    State();

    //==============================================================================
    /** Message thread: plays a file from outside, if its extension contains
        "mid" (".mid", ".midi", ".smf.mid"); any other file is ignored. The
        whole file is kept with the clip, so a saved session keeps it too. A
        file that cannot be read plays as an empty clip. */
    void loadExternal (const juce::File& file);

    /** Message thread: plays bytes from outside as if they were a file of
        that name, for drops and for data that never was a file. */
    void loadExternalData (const juce::String& name, const juce::MemoryBlock& data);

    /** Message thread: plays the built-in clip of that file name; a name the
        table lacks gives an empty clip. */
    void loadBuiltIn (const juce::String& name);

    /** Message thread: a copy of the clip's record. */
    Resources::Resource getResource() const;
    /** Message thread: a copy of the clip's notes, as the file gave them. */
    Modifiers::NoteList getNoteList() const;
    /** Message thread: a copy of the evaluated clip. */
    PlaybackSlot getSlot() const;

    //==============================================================================
    /** Any thread: whether the player, rather than the keys, feeds the arp. */
    bool isActive() const noexcept { return active.load(); }
    /** Any thread: whether the player's own transport button is on. */
    bool isPlaying() const noexcept { return playing.load(); }

    /** Message thread: sets a switch and tells the broadcaster if it moved. */
    void setActive (bool shouldBeActive);
    void setPlaying (bool shouldPlay);

    /** "Resource", "playing", "active". A load that brings a resource reads
        its clip afresh, from the stored bytes for a file from outside.
        Message thread. */
    void reflect (Reflector& reflector);

    //==============================================================================
    /** Guards the resource, the note list and the slot. */
    juce::CriticalSection lock;

    /** The player is the source of notes; off in a new state. The block's
        clock also follows a stopped host while it is on. */
    std::atomic<bool> active { false };
    /** The player's own play button; on in a new state. */
    std::atomic<bool> playing { true };

    static_assert (std::atomic<bool>::is_always_lock_free);

private:
    void setResourceAndLoad (Resources::Resource newResource);
    void load();

    Resources::Resource resource;
    Modifiers::NoteList noteList;
    PlaybackSlot slot;
};
} // namespace Orv::Sequencer::MidiPlayer

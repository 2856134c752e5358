#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <array>

namespace Orv::Audio
{
/** Note tracking for the synth: JUCE's MPE instrument in legacy mode, told
    the same way and telling its listener the same things, but with its notes
    in storage sized at construction, so that notes coming and going allocate
    nothing on the audio thread.

    Only legacy mode is tracked (ordinary MIDI, every channel of the range a
    note channel, one bend per channel); the bend range and the channel range
    are the base's legacy settings. Pitch bend, pressure and timbre move the
    channel's most recently played note that is still held, as the base does
    by default; the base's other tracking modes and MPE zone layouts are not
    followed. A note's id is its channel times 128 plus its number, so a
    channel and key pair sounds at most once and 16 * 128 places always
    suffice.

    All note events and callbacks run on one thread, the audio thread once
    playing, and take no lock of their own: the synth calls in under its own.
    Calls made through the base's non-virtual functions (releaseAllNotes,
    getNote, ...) see the base's own, empty, note list, not these notes. */
class FixedNoteInstrument : public juce::MPEInstrument
{
public:
    static constexpr int numChannels = 16;
    static constexpr int numKeys = 128;
    static constexpr int maxNotes = numChannels * numKeys;

    /** Message thread: legacy mode with a bend range in semitones and the
        note channels (1 to 16, end exclusive). */
    FixedNoteInstrument (int pitchbendRange, juce::Range<int> channels);

    /** Message thread, before any event: the one listener told of notes;
        null tells no one. The base's listener list is not used. */
    void setListener (Listener* newListener) noexcept;

    /** The thread that plays the notes: releases every note, newest first,
        telling the listener of each. */
    void releaseAll();

    /** The thread that plays the notes: how many notes are held. */
    int getNumHeldNotes() const noexcept { return numNotes; }

    //==============================================================================
    /** The thread that plays the notes; never allocates, as all below. */
    void processNextMidiEvent (const juce::MidiMessage& message) override;
    void noteOn (int midiChannel, int midiNoteNumber, juce::MPEValue velocity) override;
    void noteOff (int midiChannel, int midiNoteNumber, juce::MPEValue velocity) override;
    void pitchbend (int midiChannel, juce::MPEValue value) override;
    void pressure (int midiChannel, juce::MPEValue value) override;
    void timbre (int midiChannel, juce::MPEValue value) override;
    void polyAftertouch (int midiChannel, int midiNoteNumber, juce::MPEValue value) override;
    void sustainPedal (int midiChannel, bool isDown) override;
    void sostenutoPedal (int midiChannel, bool isDown) override;

private:
    using Callback = void (Listener::*) (juce::MPENote);

    static constexpr int noLsb = -1;

    /** What a channel remembers for the notes that start on it. */
    struct ChannelState
    {
        juce::MPEValue pitchbend = juce::MPEValue::centreValue();
        juce::MPEValue pressure = juce::MPEValue::minValue();
        juce::MPEValue timbre = juce::MPEValue::centreValue();
        int pressureLsb = noLsb;
        int timbreLsb = noLsb;
        bool sustained = false;
    };

    /** Pitch bend, pressure or timbre: where the channel and a note keep it,
        and what the listener hears when it moves. */
    struct Dimension
    {
        juce::MPEValue ChannelState::*remembered;
        juce::MPEValue juce::MPENote::*ofNote;
        Callback callback;
    };

    bool isNoteChannel (int midiChannel) const noexcept;
    ChannelState* stateOf (int midiChannel) noexcept;
    int indexOf (int midiChannel, int midiNoteNumber) const noexcept;
    int lastPlayedIndex (int midiChannel) const noexcept;
    float semitonesOf (juce::MPEValue bend) const noexcept;

    void handleController (const juce::MidiMessage& message);
    void handlePedal (int midiChannel, bool isDown, bool isSustain);
    void moveLastPlayed (int midiChannel, Dimension dimension, juce::MPEValue value);
    void releaseChannel (int midiChannel);
    void releaseAt (int index);
    void removeAt (int index) noexcept;
    void tell (Callback callback, const juce::MPENote& note);

    // In the order they were played, oldest first: which note a bend moves
    // and the order of releases follow from it.
    std::array<juce::MPENote, maxNotes> notes;
    int numNotes = 0;
    std::array<ChannelState, numChannels> channelStates;
    Listener* listener = nullptr;
};
} // namespace Orv::Audio

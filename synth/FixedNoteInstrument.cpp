#include "synth/FixedNoteInstrument.h"

#include <algorithm>

namespace Orv::Audio
{
namespace
{
constexpr int sustainController = 64;
constexpr int sostenutoController = 66;
constexpr int pressureMsbController = 70;
constexpr int timbreMsbController = 74;
constexpr int pressureLsbController = 102;
constexpr int timbreLsbController = 106;
constexpr int bitsPerMidiByte = 7;

// A note ended without a velocity of its own (a note-on of velocity 0, a
// retaken key, all notes off) gets the middle one.
const juce::MPEValue defaultOffVelocity = juce::MPEValue::from7BitInt (64);

/** A note's key state after a pedal moves: the pedal holds keys that are
    down, and letting it go ends what it alone was holding. */
juce::MPENote::KeyState pedalled (juce::MPENote::KeyState state, bool isDown) noexcept
{
    if (state == juce::MPENote::keyDown && isDown)
        return juce::MPENote::keyDownAndSustained;
    if (state == juce::MPENote::sustained && ! isDown)
        return juce::MPENote::off;
    if (state == juce::MPENote::keyDownAndSustained && ! isDown)
        return juce::MPENote::keyDown;
    return state;
}

bool isKeyDown (juce::MPENote::KeyState state) noexcept
{
    return state == juce::MPENote::keyDown || state == juce::MPENote::keyDownAndSustained;
}
} // namespace

FixedNoteInstrument::FixedNoteInstrument (int pitchbendRange, juce::Range<int> channels)
{
    jassert (juce::Range<int> (1, numChannels + 1).contains (channels));
    enableLegacyMode (pitchbendRange, channels);
}

void FixedNoteInstrument::setListener (Listener* newListener) noexcept { listener = newListener; }

void FixedNoteInstrument::releaseAll()
{
    while (numNotes > 0)
        releaseAt (numNotes - 1);
}

//==============================================================================
void FixedNoteInstrument::processNextMidiEvent (const juce::MidiMessage& message)
{
    const auto channel = message.getChannel();

    if (message.isNoteOn (true))
    {
        if (message.getVelocity() == 0)
            noteOff (channel, message.getNoteNumber(), defaultOffVelocity);
        else
            noteOn (channel, message.getNoteNumber(), juce::MPEValue::from7BitInt (message.getVelocity()));
    }
    else if (message.isNoteOff (false))
    {
        noteOff (channel, message.getNoteNumber(), juce::MPEValue::from7BitInt (message.getVelocity()));
    }
    else if (message.isResetAllControllers() || message.isAllNotesOff())
    {
        releaseChannel (channel);
    }
    else if (message.isPitchWheel())
    {
        pitchbend (channel, juce::MPEValue::from14BitInt (message.getPitchWheelValue()));
    }
    else if (message.isChannelPressure())
    {
        pressure (channel, juce::MPEValue::from7BitInt (message.getChannelPressureValue()));
    }
    else if (message.isController())
    {
        handleController (message);
    }
    // Polyphonic aftertouch arrives only on an MPE master channel, and legacy
    // mode has none; polyAftertouch() is still there for direct calls.
}

void FixedNoteInstrument::noteOn (int midiChannel, int midiNoteNumber, juce::MPEValue velocity)
{
    // An out-of-range key would not have a place of its own.
    if (! isNoteChannel (midiChannel) || ! juce::isPositiveAndBelow (midiNoteNumber, numKeys))
        return;

    const auto& state = *stateOf (midiChannel);
    juce::MPENote note (midiChannel, midiNoteNumber, velocity, state.pitchbend, state.pressure, state.timbre,
                        state.sustained ? juce::MPENote::keyDownAndSustained : juce::MPENote::keyDown);
    note.totalPitchbendInSemitones = semitonesOf (note.pitchbend);

    // The same key struck again on its channel ends the note it was playing,
    // which keeps every id unique and the storage large enough.
    if (const auto index = indexOf (midiChannel, midiNoteNumber); index >= 0)
        releaseAt (index);

    jassert (numNotes < maxNotes);
    notes[(size_t) numNotes++] = note;
    tell (&Listener::noteAdded, note);
}

void FixedNoteInstrument::noteOff (int midiChannel, int midiNoteNumber, juce::MPEValue velocity)
{
    if (! isNoteChannel (midiChannel))
        return;

    const auto index = indexOf (midiChannel, midiNoteNumber);
    if (index < 0)
        return;

    // A second note-off ends a note that the pedal held, as a pedal-up would.
    auto& note = notes[(size_t) index];
    note.keyState = note.keyState == juce::MPENote::keyDownAndSustained ? juce::MPENote::sustained : juce::MPENote::off;
    note.noteOffVelocity = velocity;

    if (note.keyState == juce::MPENote::off)
    {
        tell (&Listener::noteReleased, note);
        removeAt (index);
    }
    else
    {
        tell (&Listener::noteKeyStateChanged, note);
    }
}

void FixedNoteInstrument::pitchbend (int midiChannel, juce::MPEValue value)
{
    moveLastPlayed (midiChannel, { &ChannelState::pitchbend, &juce::MPENote::pitchbend, &Listener::notePitchbendChanged }, value);
}

void FixedNoteInstrument::pressure (int midiChannel, juce::MPEValue value)
{
    moveLastPlayed (midiChannel, { &ChannelState::pressure, &juce::MPENote::pressure, &Listener::notePressureChanged }, value);
}

void FixedNoteInstrument::timbre (int midiChannel, juce::MPEValue value)
{
    moveLastPlayed (midiChannel, { &ChannelState::timbre, &juce::MPENote::timbre, &Listener::noteTimbreChanged }, value);
}

void FixedNoteInstrument::polyAftertouch (int midiChannel, int midiNoteNumber, juce::MPEValue value)
{
    const auto index = indexOf (midiChannel, midiNoteNumber);
    if (index < 0 || notes[(size_t) index].pressure == value)
        return;

    notes[(size_t) index].pressure = value;
    tell (&Listener::notePressureChanged, notes[(size_t) index]);
}

void FixedNoteInstrument::sustainPedal (int midiChannel, bool isDown) { handlePedal (midiChannel, isDown, true); }

void FixedNoteInstrument::sostenutoPedal (int midiChannel, bool isDown) { handlePedal (midiChannel, isDown, false); }

//==============================================================================
bool FixedNoteInstrument::isNoteChannel (int midiChannel) const noexcept
{
    return getLegacyModeChannelRange().contains (midiChannel);
}

FixedNoteInstrument::ChannelState* FixedNoteInstrument::stateOf (int midiChannel) noexcept
{
    return juce::isPositiveAndBelow (midiChannel - 1, numChannels) ? &channelStates[(size_t) (midiChannel - 1)] : nullptr;
}

int FixedNoteInstrument::indexOf (int midiChannel, int midiNoteNumber) const noexcept
{
    for (int i = 0; i < numNotes; ++i)
        if (notes[(size_t) i].midiChannel == midiChannel && notes[(size_t) i].initialNote == midiNoteNumber)
            return i;
    return -1;
}

int FixedNoteInstrument::lastPlayedIndex (int midiChannel) const noexcept
{
    for (int i = numNotes; --i >= 0;)
        if (notes[(size_t) i].midiChannel == midiChannel && isKeyDown (notes[(size_t) i].keyState))
            return i;
    return -1;
}

float FixedNoteInstrument::semitonesOf (juce::MPEValue bend) const noexcept
{
    return bend.asSignedFloat() * (float) getLegacyModePitchbendRange();
}

void FixedNoteInstrument::handleController (const juce::MidiMessage& message)
{
    const auto channel = message.getChannel();
    const auto value = message.getControllerValue();
    auto& state = *stateOf (channel);

    // A 14-bit value is sent low part first; the high part applies it, and
    // the low part stays for later high parts.
    const auto combined = [value] (int lsb) {
        return lsb == noLsb ? juce::MPEValue::from7BitInt (value) : juce::MPEValue::from14BitInt (lsb + (value << bitsPerMidiByte));
    };

    switch (message.getControllerNumber())
    {
        case sustainController: sustainPedal (channel, message.isSustainPedalOn()); break;
        case sostenutoController: sostenutoPedal (channel, message.isSostenutoPedalOn()); break;
        case pressureMsbController: pressure (channel, combined (state.pressureLsb)); break;
        case timbreMsbController: timbre (channel, combined (state.timbreLsb)); break;
        case pressureLsbController: state.pressureLsb = value; break;
        case timbreLsbController: state.timbreLsb = value; break;
        default: break;
    }
}

void FixedNoteInstrument::handlePedal (int midiChannel, bool isDown, bool isSustain)
{
    if (! isNoteChannel (midiChannel))
        return;

    // Newest first, so that releases come in the reverse order of playing.
    for (int i = numNotes; --i >= 0;)
    {
        auto& note = notes[(size_t) i];
        if (note.midiChannel != midiChannel)
            continue;

        note.keyState = pedalled (note.keyState, isDown);
        if (note.keyState == juce::MPENote::off)
        {
            tell (&Listener::noteReleased, note);
            removeAt (i);
        }
        else
        {
            tell (&Listener::noteKeyStateChanged, note);
        }
    }

    // Only the sustain pedal catches keys struck while it is down; sostenuto
    // holds just the keys that were down when it went down.
    if (isSustain)
        stateOf (midiChannel)->sustained = isDown;
}

void FixedNoteInstrument::moveLastPlayed (int midiChannel, Dimension dimension, juce::MPEValue value)
{
    auto* state = stateOf (midiChannel);
    if (state == nullptr)
        return;

    // Remembered even for a channel with no notes, so that the next note
    // starts where the wheel or the pressure already is.
    state->*dimension.remembered = value;

    if (! isNoteChannel (midiChannel))
        return;

    const auto index = lastPlayedIndex (midiChannel);
    if (index < 0)
        return;

    auto& note = notes[(size_t) index];
    if (note.*dimension.ofNote == value)
        return;

    note.*dimension.ofNote = value;
    if (dimension.ofNote == &juce::MPENote::pitchbend)
        note.totalPitchbendInSemitones = semitonesOf (value);
    tell (dimension.callback, note);
}

void FixedNoteInstrument::releaseChannel (int midiChannel)
{
    if (! isNoteChannel (midiChannel))
        return;

    for (int i = numNotes; --i >= 0;)
        if (notes[(size_t) i].midiChannel == midiChannel)
            releaseAt (i);
}

void FixedNoteInstrument::releaseAt (int index)
{
    auto& note = notes[(size_t) index];
    note.keyState = juce::MPENote::off;
    note.noteOffVelocity = defaultOffVelocity;
    tell (&Listener::noteReleased, note);
    removeAt (index);
}

void FixedNoteInstrument::removeAt (int index) noexcept
{
    std::move (notes.begin() + index + 1, notes.begin() + numNotes, notes.begin() + index);
    --numNotes;
}

void FixedNoteInstrument::tell (Callback callback, const juce::MPENote& note)
{
    if (listener != nullptr)
        (listener->*callback) (note);
}
} // namespace Orv::Audio

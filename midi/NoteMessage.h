#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <cstdint>

namespace Orv::Midi::NoteMessage
{
/** The few raw MIDI facts the block and the note path work with. Reading and writing the
    three bytes directly keeps the audio thread free of MidiMessage copies.
    All functions are pure and safe on any thread. */

constexpr int numChannels = 16;
constexpr int numNotes = 128;
constexpr int threeBytes = 3;

constexpr uint8_t statusMask = 0xf0;
constexpr uint8_t channelMask = 0x0f;
constexpr uint8_t dataMask = 0x7f;
constexpr uint8_t noteOffStatus = 0x80;
constexpr uint8_t noteOnStatus = 0x90;
constexpr uint8_t controllerStatus = 0xb0;

/** Status bytes from here up are system messages, which carry no channel. */
constexpr uint8_t firstSystemStatus = 0xf0;
/** Masks a status byte down to note-on and note-off alike (0x80). */
constexpr uint8_t noteOnOrOffMask = 0xe0;

constexpr int numberByte = 1;
constexpr int valueByte = 2;

constexpr uint8_t sustainPedalController = 64;
constexpr uint8_t allSoundOffController = 120;
constexpr uint8_t allNotesOffController = 123;

/** Room of the note path's MIDI buffers, as on the block path, so that
    ordinary spans never grow one. */
constexpr size_t bufferBytes = 1504;

/** A note-on or note-off of three raw bytes, on any channel. */
inline bool isNoteOnOrOff (const uint8_t* data) noexcept { return (data[0] & noteOnOrOffMask) == noteOffStatus; }

inline bool isNote (const juce::MidiMessageMetadata& m) noexcept
{
    if (m.numBytes < threeBytes)
        return false;
    const auto status = m.data[0] & statusMask;
    return status == noteOnStatus || status == noteOffStatus;
}

/** A note-on that starts a note: velocity above 0. */
inline bool isNoteOn (const juce::MidiMessageMetadata& m) noexcept
{
    return isNote (m) && (m.data[0] & statusMask) == noteOnStatus && m.data[2] > 0;
}

inline bool isController (const juce::MidiMessageMetadata& m, uint8_t number) noexcept
{
    return m.numBytes >= threeBytes && (m.data[0] & statusMask) == controllerStatus && m.data[1] == number;
}

inline int channelOf (const juce::MidiMessageMetadata& m) noexcept { return m.data[0] & channelMask; }
inline int noteOf (const juce::MidiMessageMetadata& m) noexcept { return m.data[1] & dataMask; }
inline int velocityOf (const juce::MidiMessageMetadata& m) noexcept { return m.data[2] & dataMask; }

/** `channel` is 0 to 15, the low nibble of the status byte. */
inline void addNoteOn (juce::MidiBuffer& buffer, int channel, int note, int velocity, int sample)
{
    const uint8_t bytes[threeBytes] = { (uint8_t) (noteOnStatus | (channel & channelMask)),
                                        (uint8_t) (note & dataMask),
                                        (uint8_t) (velocity & dataMask) };
    buffer.addEvent (bytes, threeBytes, sample);
}

inline void addNoteOff (juce::MidiBuffer& buffer, int channel, int note, int velocity, int sample)
{
    const uint8_t bytes[threeBytes] = { (uint8_t) (noteOffStatus | (channel & channelMask)),
                                        (uint8_t) (note & dataMask),
                                        (uint8_t) (velocity & dataMask) };
    buffer.addEvent (bytes, threeBytes, sample);
}

inline void addController (juce::MidiBuffer& buffer, int channel, int number, int value, int sample)
{
    const uint8_t bytes[threeBytes] = { (uint8_t) (controllerStatus | (channel & channelMask)),
                                        (uint8_t) (number & dataMask),
                                        (uint8_t) (value & dataMask) };
    buffer.addEvent (bytes, threeBytes, sample);
}
} // namespace Orv::Midi::NoteMessage

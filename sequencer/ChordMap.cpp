#include "sequencer/ChordMap.h"

#include <algorithm>

namespace Orv::Audio::Plugins::Halvane
{
namespace NoteMessage = Orv::Midi::NoteMessage;

namespace
{
constexpr int lowestNote = 0;
constexpr int highestNote = NoteMessage::numNotes - 1;

/** a / b rounded towards minus infinity, for b above 0. */
int floorDivide (int a, int b) noexcept { return a >= 0 ? a / b : -((-a + b - 1) / b); }
} // namespace

bool ChordMap::NoteList::contains (int32_t note) const noexcept
{
    return std::find (begin(), end(), note) != end();
}

void ChordMap::NoteList::add (int32_t note) noexcept
{
    if (count < maxEntries)
        notes[(size_t) count++] = note;
}

ChordMap::ChordMap() { setOctaveRange (defaultLowOctave, defaultHighOctave); }

//==============================================================================
void ChordMap::hold (int note) noexcept
{
    if (! heldNotes.contains (note))
        heldNotes.add (note);
}

void ChordMap::release (int note) noexcept
{
    auto* first = heldNotes.notes.data();
    heldNotes.count = (int32_t) (std::remove (first, first + heldNotes.count, note) - first);
}

void ChordMap::setOctaveRange (int lowOctave, int highOctave) noexcept
{
    noteRange.low = octave * lowOctave;
    noteRange.high = std::max (noteRange.low, octave * highOctave);
}

int ChordMap::fitIntoRange (int candidate) const noexcept
{
    // A range of a full octave or more can hold every pitch class: fold into
    // it, with the upper limit exclusive so that each class lands once. A
    // narrower range can't, so it clamps.
    if (noteRange.high - noteRange.low >= octave)
    {
        while (candidate < noteRange.low)
            candidate += octave;
        while (candidate > noteRange.high - 1)
            candidate -= octave;
        return candidate;
    }

    return juce::jlimit (noteRange.low, noteRange.high, candidate);
}

void ChordMap::rebuild() noexcept
{
    sortedNotes = heldNotes;
    std::sort (sortedNotes.notes.begin(), sortedNotes.notes.begin() + sortedNotes.count);

    for (auto& row : pitchTable)
        row.count = 0;

    const auto n = sortedNotes.count;
    if (n == 0)
        return;

    for (int k = 0; k < numRows; ++k)
    {
        const auto j = k - centreRow;
        const auto octaves = floorDivide (j, n);
        const auto index = j - octaves * n;
        const auto note = fitIntoRange (sortedNotes.notes[(size_t) index] + octave * octaves);

        auto& row = pitchTable[(size_t) k];
        if (note >= lowestNote && note <= highestNote && ! row.contains (note))
            row.add (note);
    }
}

//==============================================================================
void ChordMap::translate (const juce::MidiBuffer& rows, juce::MidiBuffer& out)
{
    for (const auto event : rows)
    {
        if (NoteMessage::isNoteOn (event))
            translateNoteOn (event, out);
        else if (NoteMessage::isNote (event))
            translateNoteOff (event, out);
        else
            out.addEvent (event.data, event.numBytes, event.samplePosition);
    }
}

void ChordMap::translateNoteOn (const juce::MidiMessageMetadata& event, juce::MidiBuffer& out)
{
    const auto row = NoteMessage::noteOf (event);
    const auto channel = NoteMessage::channelOf (event);
    const auto velocity = NoteMessage::velocityOf (event);

    scheduledScratch.count = 0;
    for (const auto target : pitchTable[(size_t) row])
        if (! scheduledScratch.contains (target))
            scheduledScratch.add (target);

    for (const auto target : scheduledScratch)
    {
        // Another row may sound this note already: end it first, so that the
        // note is on once and the newer row owns it.
        if (forgetTarget (target) > 0)
            NoteMessage::addNoteOff (out, channel, target, velocity, event.samplePosition);

        if (soundingCount < maxEntries)
            soundingMap[(size_t) soundingCount++] = { row, target };

        NoteMessage::addNoteOn (out, channel, target, velocity, event.samplePosition);
    }
}

void ChordMap::translateNoteOff (const juce::MidiMessageMetadata& event, juce::MidiBuffer& out)
{
    const auto row = NoteMessage::noteOf (event);
    const auto channel = NoteMessage::channelOf (event);
    const auto velocity = NoteMessage::velocityOf (event);

    // The notes this row started, whatever the table says now.
    scheduledScratch.count = 0;
    for (int i = 0; i < soundingCount; ++i)
        if (soundingMap[(size_t) i].row == row && ! scheduledScratch.contains (soundingMap[(size_t) i].target))
            scheduledScratch.add (soundingMap[(size_t) i].target);

    for (const auto target : scheduledScratch)
    {
        NoteMessage::addNoteOff (out, channel, target, velocity, event.samplePosition);
        forgetTarget (target);
    }
}

int ChordMap::forgetTarget (int target) noexcept
{
    auto* first = soundingMap.data();
    auto* last = std::remove_if (first,
                                 first + soundingCount,
                                 [target] (const SoundingNote& s) { return s.target == target; });
    const auto removed = (int) ((first + soundingCount) - last);
    soundingCount -= removed;
    return removed;
}
} // namespace Orv::Audio::Plugins::Halvane

#include "sequencer/NoteScheduler.h"

#include "sequencer/PulseRecord.h"

#include <algorithm>
#include <cmath>

namespace Orv::Sequencer
{
namespace
{
// The generator's 32 drawn bits scaled to [0, 1), kept below 1 so that a
// gain of 1 always plays.
constexpr float randomScale = 2.3283064e-10f;
constexpr float randomLimit = 0.9999999f;

// Velocities below the floor sound as the floor, so that a step never
// turns into a note-off.
constexpr float velocityFloor = 0.01f;
constexpr float floorMidiValue = 1.27f;
constexpr float midiVelocityScale = 127.0f;
constexpr long maxMidiVelocity = 127;
constexpr long minMidiVelocity = 1;

constexpr int lastChannel = Midi::NoteMessage::numChannels - 1;

size_t tableIndex (int channel, int note) noexcept
{
    return (size_t) channel * Midi::NoteMessage::numNotes + (size_t) note;
}

int channelOf (const NoteEvent& event) noexcept { return juce::jlimit (0, lastChannel, (int) event.channel); }
int rowOf (const NoteEvent& event) noexcept { return event.noteNum & Midi::NoteMessage::dataMask; }
} // namespace

NoteScheduler::NoteScheduler()
{
    activeSteps.reserve (reservedItems);
    activeHeads.reserve (reservedItems);
    activeExtra.reserve (reservedItems);
    runningHeads.reserve (reservedItems);
    outMidi.ensureSize (Midi::NoteMessage::bufferBytes);
    orderedMidi.ensureSize (Midi::NoteMessage::bufferBytes);
}

//==============================================================================
float NoteScheduler::nextRandom() noexcept
{
    const auto bits = (uint32_t) random.nextInt();
    return std::min ((float) bits * randomScale, randomLimit);
}

int NoteScheduler::midiVelocity (float velocity) noexcept
{
    const auto value = velocity < velocityFloor ? floorMidiValue : std::min (1.0f, velocity) * midiVelocityScale;
    const auto rounded = std::lround (value);

    if (rounded < minMidiVelocity)
        return 0;

    return (int) std::min (rounded, maxMidiVelocity);
}

int NoteScheduler::sampleOf (double t, const double* q, int m) noexcept
{
    for (int i = 0; i + 1 < m; ++i)
    {
        const auto a = q[i];
        const auto b = std::max (q[i + 1], a);

        if (a != b && a <= t && b > t)
            return i;
        if (a == b && t == a)
            return i;
    }

    return std::max (0, m - 1);
}

NoteScheduler::NoteTableState NoteScheduler::getNoteState (int channel, int note) const noexcept
{
    return (NoteTableState) noteTable[tableIndex (channel & Midi::NoteMessage::channelMask, note & Midi::NoteMessage::dataMask)].state;
}

//==============================================================================
void NoteScheduler::run (const Audio::PlayHeadTransportView& piece,
                         const PatternData& data,
                         std::vector<TriggerRecord>& triggers)
{
    outMidi.clear();

    count = piece.getCount();
    if (count <= 0)
        return;

    positions = piece.getPlayHead().getPositions().data() + piece.getStart();
    p0 = positions[0];
    p1 = std::max (positions[count - 1], p0);

    // A loop wrap or a host's jump back: whatever sounds belongs to a place
    // that is no longer played.
    if (p0 < lastPosition)
        endNotesOnTimeGoingBack();

    lastPosition = p0;

    const auto touches = [this] (const auto& record)
    {
        return record.enabled && ! (p0 >= record.getEnd()) && ! (record.getStart() >= p1);
    };

    activeSteps.clear();
    for (const auto& step : data.notes)
        if (touches (step))
            activeSteps.push_back (step);

    activeHeads.clear();
    for (const auto& head : data.heads)
        if (touches (head))
            activeHeads.push_back (head);

    activeExtra.clear();
    for (const auto& pulse : data.extra)
        if (touches (pulse))
            activeExtra.push_back (pulse);

    const auto lies = [this] (double t) { return p0 <= t && p1 > t; };

    for (const auto& step : activeSteps)
    {
        const auto start = step.getStart();
        if (lies (start))
            startNote (step.event, sampleOf (start, positions, count));

        auto& slot = slotFor (step.event);

        // A step that began before this piece, after a start, a jump or a
        // wrap, joins in at the piece's first sample.
        if (slot.state == off)
            startNote (step.event, sampleOf (p0, positions, count));
        else if (slot.state == onNotYetSeen)
            slot.state = onAndSeen;

        const auto end = step.getEnd();
        if (lies (end) && slot.state != off)
            endNote (slot, rowOf (step.event), sampleOf (end, positions, count));
    }

    sweepUnclaimedNotes();
    settleInTimeOrder();
    firePulses (data, triggers, piece.getStart());
    updateHeads (piece.isPlaying());
}

//==============================================================================
NoteScheduler::NoteSlot& NoteScheduler::slotFor (const NoteEvent& event) noexcept
{
    return noteTable[tableIndex (channelOf (event), rowOf (event))];
}

void NoteScheduler::startNote (const NoteEvent& event, int sample)
{
    auto& slot = slotFor (event);
    const auto note = rowOf (event);
    const auto channel = channelOf (event);

    // A new step on a sounding note cuts the old one.
    if (slot.state != off)
        endNote (slot, note, sample);

    // The gain is the note's chance to play. A note that doesn't play still
    // counts as claimed, so that a catch-up doesn't draw for it again.
    if (nextRandom() > event.gain)
    {
        slot.state = onAndSeen;
        slot.channel = channel;
        return;
    }

    const auto r = nextRandom();
    const auto low = event.randomVelocityLow;
    const auto high = event.randomVelocityHigh;
    const auto offset = low == high ? 0.0f : low + (high - low) * r;

    Midi::NoteMessage::addNoteOn (outMidi, channel, note, midiVelocity (event.velocity + offset), sample);
    slot.state = onAndSeen;
    slot.channel = channel;
}

void NoteScheduler::endNote (NoteSlot& slot, int note, int sample)
{
    Midi::NoteMessage::addNoteOff (outMidi, slot.channel, note, 0, sample);
    slot.state = off;
}

void NoteScheduler::endNotesOnTimeGoingBack()
{
    for (int channel = 0; channel < Midi::NoteMessage::numChannels; ++channel)
        for (int note = 0; note < sweepExemptNote; ++note)
            if (auto& slot = noteTable[tableIndex (channel, note)]; slot.state != off)
                endNote (slot, note, 0);
}

void NoteScheduler::sweepUnclaimedNotes()
{
    for (int channel = 0; channel < Midi::NoteMessage::numChannels; ++channel)
    {
        for (int note = 0; note < Midi::NoteMessage::numNotes; ++note)
        {
            auto& slot = noteTable[tableIndex (channel, note)];

            // Claimed in this piece: it must be claimed again in the next one.
            if (slot.state == onAndSeen)
                slot.state = onNotYetSeen;
            else if (slot.state == onNotYetSeen)
                endNote (slot, note, 0);
        }
    }
}

void NoteScheduler::settleInTimeOrder()
{
    // Steps are visited in list order, but the output is heard in time order:
    // overlapping steps on one row may end it in the list after starting it
    // in time. Replaying the output in time order, as a receiver will, keeps
    // exactly one note on per row, and the table is set to what the receiver
    // ends up with, so that a later end or sweep really ends it.
    orderedMidi.clear();

    for (const auto event : outMidi)
    {
        if (! Midi::NoteMessage::isNoteOnOrOff (event.data))
        {
            orderedMidi.addEvent (event.data, event.numBytes, event.samplePosition);
            continue;
        }

        const auto channel = Midi::NoteMessage::channelOf (event);
        const auto note = Midi::NoteMessage::noteOf (event);
        auto& on = sounding[tableIndex (channel, note)];

        if (Midi::NoteMessage::isNoteOn (event))
        {
            // A second start of a sounding row strikes it anew.
            if (on)
                Midi::NoteMessage::addNoteOff (orderedMidi, channel, note, 0, event.samplePosition);
            orderedMidi.addEvent (event.data, event.numBytes, event.samplePosition);
            on = true;
        }
        else if (on)
        {
            orderedMidi.addEvent (event.data, event.numBytes, event.samplePosition);
            on = false;
        }

        auto& slot = noteTable[tableIndex (channel, note)];
        if (! on)
            slot.state = off;
        else if (slot.state == off)
            slot.state = onNotYetSeen;
    }

    outMidi.swapWith (orderedMidi);
}

void NoteScheduler::firePulses (const PatternData& data, std::vector<TriggerRecord>& triggers, int pieceStart)
{
    for (const auto& record : data.extra)
    {
        // Every extra record is a pulse (see PulseRecord).
        auto* pulse = static_cast<PulseRecord*> (record.event.get());
        if (pulse == nullptr || pulse->fired)
            continue;

        const auto start = record.getStart();
        if (p1 > start && p0 < start + pulseTolerance)
        {
            pulse->fired = true;
            const auto sample = sampleOf (std::max (p0, start), positions, count);
            triggers.push_back ({ pulse->slot, pieceStart + sample, start });
        }
    }
}

void NoteScheduler::updateHeads (bool playing)
{
    for (const auto& record : runningHeads)
        if (record.event != nullptr && (! playing || p0 >= record.getEnd() || record.getStart() >= p1))
            record.event->setState (NoteState::notPlaying);

    runningHeads.clear();

    for (auto& record : activeHeads)
    {
        if (record.event == nullptr)
            continue;

        const auto start = record.getStart();
        const auto length = record.getEnd() - start;

        // A head without length has passed as soon as it is reached.
        record.event->setState (NoteState::playing);
        record.event->setProgress (length > 0.0 ? (p1 - start) / length : 1.0);
        runningHeads.push_back (std::move (record));
    }
}
} // namespace Orv::Sequencer

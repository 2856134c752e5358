#include "sequencer/MidiMetaSlot.h"

#include "midi/NoteMessage.h"

namespace Orv::Audio::Plugins::Halvane
{
namespace
{
    using Sequencer::LiveControl;

    int reduce (int slot, int numSlots) noexcept
    {
        const auto r = slot % numSlots;
        return r < 0 ? r + numSlots : r;
    }
} // namespace

MidiMetaSlot::MidiMetaSlot()
{
    const auto record = Sequencer::PulseRecord::create();
    pulse = record.get();

    // The timer holds no notes: it only marks the boundaries, by its one
    // pulse at pattern time 0. Its length is set to the quantize grid on
    // every run.
    timerSlot.playing = true;
    timerSlot.looping = true;
    timerSlot.length = LiveControl::defaultQuantize;
    timerSlot.events.length = LiveControl::defaultQuantize;
    timerSlot.events.extra.push_back ({ { 0.0, LiveControl::defaultQuantize }, record, true });

    outMidi.ensureSize (Midi::NoteMessage::bufferBytes);
    spanMidi.ensureSize (Midi::NoteMessage::bufferBytes);
}

void MidiMetaSlot::prepare (int samplesPerBlock)
{
    timerRunner.prepare (samplesPerBlock);
    patternRunner.prepare (samplesPerBlock);
}

int MidiMetaSlot::numSlotsOf (const Sequencer::LiveSlots& slots) noexcept
{
    return juce::jmax (1, (int) slots.slots.size());
}

//==============================================================================
void MidiMetaSlot::requestSlot (int slot, bool clockPlaying, const Sequencer::LiveSlots& slots) noexcept
{
    auto& live = *slots.live;

    if (clockPlaying)
    {
        pulse->slot = slot;
        pulse->fired = false;
        live.queued.store (slot);
        return;
    }

    live.active.store (reduce (slot, numSlotsOf (slots)));
    live.queued.store (LiveControl::noPattern);
    pulse->fired = true;
    pulse->slot = slot;
}

void MidiMetaSlot::run (const PlayHeadTransportView& view,
                        const Sequencer::LiveSlots& slots,
                        juce::MidiBuffer& messages)
{
    outMidi.clear();

    auto& live = *slots.live;

    // With the player off the pattern stands still: nothing new starts, and
    // what sounds is left to the gates.
    if (! live.enable.load())
        return;

    if (view.hasJumped())
    {
        pulse->fired = true;
        live.messages.clear();
        live.queued.store (LiveControl::noPattern);
    }

    const auto quantize = live.quantize.load();
    timerSlot.length = quantize;
    timerSlot.events.length = quantize;
    timerSlot.events.extra.front().time = { 0.0, quantize };

    live.messages.drainInto (messages, 0);

    // Three-byte messages live in the message's inline storage: no allocation.
    for (const auto event : messages)
    {
        const juce::MidiMessage message (event.data, event.numBytes, 0.0);
        if (matches (message))
            handle (message, outMidi, event.samplePosition);
    }

    runLiveSlots (view, slots);
}

void MidiMetaSlot::runLiveSlots (const PlayHeadTransportView& view, const Sequencer::LiveSlots& slots)
{
    auto& live = *slots.live;
    const auto numSamples = view.getCount();

    timerRunner.run (view, { &timerSlot.events, timerSlot.playing, timerSlot.looping, timerSlot.length });

    spanMidi.clear();
    int done = 0;

    // The timer has one pulse, and a pulse fires once per arming: at most one
    // switch falls in a span.
    for (const auto& trigger : timerRunner.getTriggers())
    {
        if (! view.isPlaying())
            continue;

        const auto at = juce::jlimit (done, numSamples, (int) trigger.sampleOffset);
        runActiveSlot (view, slots, done, at);

        live.active.store (reduce (trigger.slot, numSlotsOf (slots)));
        live.queued.store (LiveControl::noPattern);
        done = at;

        // The new slot starts from its beginning, with its origin at the
        // span's first sample rather than at the boundary: a boundary inside
        // a span moves the new pattern earlier by its offset in the span.
        patternRunner.restartAt (view.getPpqAt (0));
    }

    runActiveSlot (view, slots, done, numSamples);
    outMidi.addEvents (spanMidi, 0, -1, 0);
}

void MidiMetaSlot::runActiveSlot (const PlayHeadTransportView& view,
                                  const Sequencer::LiveSlots& slots,
                                  int from,
                                  int to)
{
    if (to <= from)
        return;

    auto& live = *slots.live;
    const auto numSlots = numSlotsOf (slots);
    auto active = live.active.load();

    if (active >= numSlots)
    {
        active = numSlots - 1;
        live.active.store (active);
        live.queued.store (LiveControl::noPattern);
    }

    // A slot that isn't there plays the runner's empty pattern, which ends
    // whatever sounded.
    Sequencer::RunnerSlot slot;
    if (active >= 0 && active < (int) slots.slots.size())
    {
        const auto& playback = slots.slots[(size_t) active];
        slot = { &playback.events, playback.playing, playback.looping, playback.length };
    }

    patternRunner.run (view.subView (from, to - from), slot);
    spanMidi.addEvents (patternRunner.getOutput(), 0, -1, from);
}
} // namespace Orv::Audio::Plugins::Halvane

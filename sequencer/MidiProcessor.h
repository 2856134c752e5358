#pragma once

#include "core/PlayHeadTransportView.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <cstdint>

namespace Orv::Audio::Plugins::Halvane
{
/** The whole note path, from the learned and filtered input to the arp's
    output. Audio thread only. */
class MidiProcessor
{
public:
    /** Message thread, before the first block. */
    void prepare (double sampleRate, int samplesPerBlock);

    /** Audio thread: runs the samples from `from` up to `to` of the block.
        `in` holds every event of the block that reached the note path so far,
        at block positions; the span's results are added to `out` at block
        positions. Returns the number of samples run. */
    int processChunk (int from,
                      int to,
                      const juce::MidiBuffer& in,
                      juce::MidiBuffer& out,
                      const PlayHeadTransportView& blockView);

    /** The value of getPendingSlot() when no slot is asked for. */
    static constexpr int noSlot = -1;

    /** Audio thread, from the keyswitch handlers: asks for a slot to be
        (re)started. */
    void setPendingSlot (int slot) noexcept { pendingSlot = slot; }

    /** Audio thread: the slot asked for and not yet taken up, or noSlot. */
    int getPendingSlot() const noexcept { return pendingSlot; }

private:
    int32_t pendingSlot = noSlot;
};
} // namespace Orv::Audio::Plugins::Halvane

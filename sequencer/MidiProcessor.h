#pragma once

#include "core/PlayHeadTransportView.h"

#include <juce_audio_basics/juce_audio_basics.h>

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
};
} // namespace Orv::Audio::Plugins::Halvane

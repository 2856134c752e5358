#include "sequencer/MidiProcessor.h"

namespace Orv::Audio::Plugins::Halvane
{
void MidiProcessor::prepare (double, int) {}

int MidiProcessor::processChunk (int from,
                                 int to,
                                 const juce::MidiBuffer& in,
                                 juce::MidiBuffer& out,
                                 const PlayHeadTransportView&)
{
    const auto count = to - from;
    if (count <= 0)
        return count;

    // Until the arp engine stands here, the span's own events pass through.
    // Earlier spans' events are still in `in` and must not pass twice.
    for (const auto metadata : in)
        if (metadata.samplePosition >= from && metadata.samplePosition < to)
            out.addEvent (metadata.data, metadata.numBytes, metadata.samplePosition);

    return count;
}
} // namespace Orv::Audio::Plugins::Halvane

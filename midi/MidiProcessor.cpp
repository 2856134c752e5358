#include "midi/MidiProcessor.h"

namespace Orv::Midi
{
MidiProcessor::MidiProcessor() { output.ensureSize (outputBytes); }

void MidiProcessor::process (juce::MidiBuffer& buffer)
{
    // After a swap the output may be the caller's smaller buffer: grow it once
    // here, so that later spans find the room.
    output.ensureSize (outputBytes);
    output.clear();

    // A three-byte message lives in the message's inline storage: the copy
    // made for each event does not allocate.
    for (const auto metadata : buffer)
        processEvent (metadata.getMessage(), metadata.samplePosition);

    buffer.swapWith (output);
}

void MidiProcessor::processEvent (const juce::MidiMessage&, int) {}
} // namespace Orv::Midi

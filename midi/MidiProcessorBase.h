#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

namespace Orv::Midi
{
/** One stage of the note chain: takes a buffer of events and leaves its own
    result in the same buffer. */
class MidiProcessorBase
{
public:
    virtual ~MidiProcessorBase() = default;

    /** Audio thread; never blocks, and allocates nothing once the stage's
        buffers have settled: replaces the events of `buffer` with the stage's
        output. */
    virtual void process (juce::MidiBuffer& buffer) = 0;
};
} // namespace Orv::Midi

#pragma once

#include "midi/MidiProcessorBase.h"

namespace Orv::Midi
{
/** A stage that looks at one event at a time: each event is offered to
    processEvent, which adds what it lets through, or makes of it, to the
    output buffer. The output is then swapped with the caller's buffer, so the
    storage of both travels back and forth and neither is copied. */
class MidiProcessor : public MidiProcessorBase
{
public:
    /** Room of the output buffer, as for every buffer of the block path. */
    static constexpr size_t outputBytes = 1504;

    /** Any thread, before use. */
    MidiProcessor();
    ~MidiProcessor() override = default;

    /** Audio thread; never blocks. Allocates only while the caller's buffer
        has less room than outputBytes, i.e. on the first spans. */
    void process (juce::MidiBuffer& buffer) override;

    /** Audio thread: handles one event at its sample position within the span.
        The default passes nothing on. */
    virtual void processEvent (const juce::MidiMessage& message, int sample);

protected:
    juce::MidiBuffer output;
};
} // namespace Orv::Midi

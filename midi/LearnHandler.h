#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

namespace Orv::Midi::Learn
{
/** Something that claims incoming events before they reach the note path: a
    keyswitch, a learned controller. Both operations run on the audio thread
    and must neither block nor allocate. */
class Handler
{
public:
    virtual ~Handler() = default;

    /** Audio thread: true if this handler claims the event. */
    virtual bool matches (const juce::MidiMessage& message) = 0;

    /** Audio thread: acts on a claimed event. */
    virtual void handle (const juce::MidiMessage& message) = 0;
};
} // namespace Orv::Midi::Learn

#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

namespace Orv::Sequencer
{
/** Something that steers pattern playback and may take messages meant for
    it out of the stream that reaches the playback engine. An interface of no
    data. Audio thread only. */
class PatternController
{
public:
    virtual ~PatternController() = default;

    /** Audio thread; never blocks: true if the message is this controller's
        to handle. */
    virtual bool matches (const juce::MidiMessage& message) = 0;

    /** Audio thread; never blocks or allocates: acts on a message that
        matched; may add events to `buffer` at `sample`. */
    virtual void handle (const juce::MidiMessage& message, juce::MidiBuffer& buffer, int sample) = 0;
};
} // namespace Orv::Sequencer

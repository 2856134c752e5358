#pragma once

#include "core/CallbackFunc.h"
#include "midi/LearnHandler.h"
#include "midi/LearnState.h"

#include <cstdint>
#include <functional>

namespace Orv::Audio::Plugins::Halvane
{
/** A keyswitch: claims both the note-on and the note-off of its note, so that
    neither reaches the held notes, and reports the press. */
class SlotHandler : public Orv::Midi::Learn::Handler
{
public:
    /** Message thread. */
    SlotHandler (int noteToClaim, Orv::CallbackFunc onPressToUse, Orv::CallbackFunc onReleaseToUse)
        : note (noteToClaim), onPress (std::move (onPressToUse)), onRelease (std::move (onReleaseToUse))
    {
    }

    /** Audio thread: true for a note-on or note-off of this note. */
    bool matches (const juce::MidiMessage& message) override;

    /** Audio thread: a note-on with velocity runs onPress, anything else
        onRelease. The callbacks must neither block nor allocate. */
    void handle (const juce::MidiMessage& message) override;

private:
    int32_t note;
    Orv::CallbackFunc onPress;
    Orv::CallbackFunc onRelease;
};

/** Message thread: adds to the state a keyswitch for `note` whose press calls
    `callback (slot)` on the audio thread, and tells the state's listeners. */
void createHandle (Orv::Midi::Learn::State& state, int note, int slot, std::function<void (int)> callback);
} // namespace Orv::Audio::Plugins::Halvane

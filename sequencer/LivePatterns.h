#pragma once

#include "persistence/OwningPointer.h"
#include "sequencer/LiveState.h"
#include "sequencer/Pattern.h"
#include "sequencer/RawMessageQueue.h"

#include <array>
#include <cstdint>

namespace Orv::Audio::Plugins::Halvane
{
/** The eight patterns, the slots they are rebuilt into, and the queue by
    which the GUI sends keyswitch notes to the audio thread.

    The patterns are made once and changed in place by every read, so that a
    pointer into one that the GUI holds stays good across a preset load as
    long as a file keeps eight of them. Message thread only, but for
    drainQueue. */
class LivePatterns : public Sequencer::LiveState
{
public:
    static constexpr int numPatterns = 8;
    static constexpr size_t maxQueuedMessages = 200;
    /** The note that selects each pattern: the white keys from 24 to 36. */
    static constexpr std::array<std::uint8_t, numPatterns> keyswitchNotes { 24, 26, 28, 29, 31, 33, 35, 36 };
    /** A keyswitch goes out as a note-on on the first channel at this velocity. */
    static constexpr std::uint8_t noteOnStatus = 0x90;
    static constexpr std::uint8_t keyswitchVelocity = 0x40;

    using Queue = Sequencer::RawMessageQueue<maxQueuedMessages>;

    /** Message thread: eight default patterns, already rebuilt into slots. */
    LivePatterns();

    /** Message thread: the patterns' finished slots made afresh. Every
        pattern's sequence takes the length that its time and multiply flag
        give, each slot plays its pattern through a reference, with every
        event bent by the present swing; then slotsBroadcaster and
        stateBroadcaster are told, in that order. */
    void rebuild();

    /** Message thread: asks the audio thread for pattern i by the same
        keyswitch note that a player would send; active is left alone. An
        index with no pattern, or a full queue, sends nothing. */
    void selectPattern (int index);

    /** The "Patterns" node: "Patterns", a list of "Pattern", and
        "Sequencer". The keys "Time" and "fitLoop" of old presets are neither
        read nor written. A read resizes the list to the file's, queues the
        keyswitch of the active pattern, tells stateBroadcaster and rebuilds.
        Message thread. */
    void reflect (Reflector& reflector);

    /** Audio thread; never blocks but for the queue's copy. Adds the waiting
        keyswitch notes to the buffer at sample 0, after any events already
        there, and empties the queue. Allocates nothing if the buffer has
        room. */
    void drainQueue (juce::MidiBuffer& midi) { queue.drainInto (midi, 0); }

    /** Any thread: the number of messages waiting. */
    size_t getNumQueued() const noexcept { return queue.size(); }

    OwnedVector<Pattern> patterns;

private:
    void queueKeyswitch (std::uint8_t note);
    void queueActiveKeyswitch();

    Queue queue;
};
} // namespace Orv::Audio::Plugins::Halvane

#pragma once

#include "sequencer/RawMessageQueue.h"

#include <atomic>
#include <cstdint>

namespace Orv
{
class Reflector;
}

namespace Orv::Sequencer
{
/** Which pattern plays and whether the player is on: the record that the GUI
    and the audio thread share, through every copy of the live slots. All
    words are atomic; the message list has its own spin lock.

    Held by shared pointers that the audio thread may drop; it is handed to
    the garbage collector when made (see LiveSlots). */
struct LiveControl
{
    static constexpr std::int32_t noPattern = -1;
    static constexpr double defaultQuantize = 4.0;
    static constexpr size_t maxMessages = 200;

    /** A pattern waiting for the next quantize boundary to start, or noPattern. */
    std::atomic<std::int32_t> queued { noPattern };
    /** The pattern that plays and that the editor shows, 0 to 7. */
    std::atomic<std::int32_t> active { 0 };
    /** The pattern player is on. */
    std::atomic<bool> enable { true };
    /** The grid in quarter notes on which a queued pattern starts. */
    std::atomic<double> quantize { defaultQuantize };
    /** Messages from the message thread that the audio thread takes. */
    RawMessageQueue<maxMessages> messages;

    /** "active", "enable", "quantize". Each may stand in a file as text: an
        integer's text for the first two (the switch is on from 1), a number's
        for the last. A negative "active" reads as 0, as no pattern lies
        before the first. Message thread. */
    void reflect (Reflector& reflector);
};
} // namespace Orv::Sequencer

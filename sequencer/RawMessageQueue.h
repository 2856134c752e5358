#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace Orv::Sequencer
{
/** Three-byte MIDI messages that one thread leaves for the audio thread, at
    most `capacity` of them; a message that does not fit is dropped. A byte
    spin lock guards the list and is held only for a copy, so both sides may
    take it: neither allocates nor waits on anything but the other's copy. */
template <size_t capacity>
class RawMessageQueue
{
public:
    static constexpr int messageBytes = 3;
    using Message = std::array<std::uint8_t, messageBytes>;

    /** Any thread; never allocates. False, and nothing queued, when full. */
    bool push (const Message& message) noexcept
    {
        const ScopedSpin spin (lockByte);

        if (count >= capacity)
            return false;

        messages[count++] = message;
        return true;
    }

    /** Any thread; never blocks but for a copy. Empties the queue and adds
        its messages to the buffer at the sample position, in the order they
        came, after any events the buffer already holds there. Allocates only
        if the buffer lacks room for them, so the audio thread reserves it. */
    void drainInto (juce::MidiBuffer& buffer, int samplePosition)
    {
        std::array<Message, capacity> taken;
        size_t numTaken = 0;

        {
            const ScopedSpin spin (lockByte);
            numTaken = count;
            for (size_t i = 0; i < numTaken; ++i)
                taken[i] = messages[i];
            count = 0;
        }

        for (size_t i = 0; i < numTaken; ++i)
            buffer.addEvent (taken[i].data(), messageBytes, samplePosition);
    }

    /** Any thread; never allocates: forgets every waiting message. */
    void clear() noexcept
    {
        const ScopedSpin spin (lockByte);
        count = 0;
    }

    /** Any thread: the number of waiting messages. */
    size_t size() const noexcept
    {
        const ScopedSpin spin (lockByte);
        return count;
    }

private:
    struct ScopedSpin
    {
        explicit ScopedSpin (std::atomic<std::uint8_t>& byteToUse) noexcept : byte (byteToUse)
        {
            while (byte.exchange (1, std::memory_order_acquire) != 0) {}
        }

        ~ScopedSpin() { byte.store (0, std::memory_order_release); }

        std::atomic<std::uint8_t>& byte;
    };

    mutable std::atomic<std::uint8_t> lockByte { 0 };
    size_t count = 0;
    std::array<Message, capacity> messages {};
};
} // namespace Orv::Sequencer

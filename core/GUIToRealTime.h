#pragma once

#include "core/CallbackFunc.h"

#include <array>
#include <atomic>
#include <cstdint>

namespace Orv
{
/** Hands whole values from the message thread (one writer) to the audio thread
    (one reader) without locks, allocation or copying on the reader's side.

    A ring of numEntries values. The writer fills the entry at writeIndex, or
    the one after it when the reader holds that one, and only then publishes it
    by moving writeIndex past it. So the entry just before writeIndex is always
    the newest complete value, and an entry in use is never written. The reader
    takes that entry at the start of a block and keeps it for the block. A
    writer that outruns the reader just overwrites entries that nobody holds.

    The ring's one assumption: the writer starts no more than numEntries - 2
    pushes while the reader is between the two atomic steps of acquire(). A
    message thread publishing edits is many orders of magnitude slower.
*/
template <typename T, int numEntries = 5>
class GUIToRealTime
{
public:
    static_assert (numEntries >= 3, "the reader holds one entry and the writer fills another");

    /** Publishes a default value, so that the reader always finds one. */
    GUIToRealTime() { push (T {}); }

    GUIToRealTime (const GUIToRealTime&) = delete;
    GUIToRealTime& operator= (const GUIToRealTime&) = delete;

    //==============================================================================
    /** Message thread (the one writer): copies the value into the ring and
        publishes it. May allocate as T's assignment does. */
    void push (const T& value)
    {
        // The entry the reader holds is skipped before writing rather than
        // after: skipping it after would leave the held, older entry just
        // before writeIndex, and acquire() would take that instead of this one.
        auto index = writeIndex.load();
        if (index == readIndex.load())
            index = next (index);

        entries[(size_t) index] = value;
        writeIndex.store (next (index));
    }

    /** Message thread: a callable holding a copy of the value that pushes it
        when called, e.g. through Threads::callOnMessageThreadAndBlock. It
        refers to this ring, which must outlive it. */
    CallbackFunc getPushFunc (const T& value)
    {
        return CallbackFunc ([this, value] { push (value); });
    }

    //==============================================================================
    /** Audio thread (the one reader), at the start of a block: takes the newest
        published value. The reference stays valid and unchanged until the next
        acquire(). Never blocks, allocates or copies. */
    const T& acquire() noexcept
    {
        const auto newest = writeIndex.load();
        const auto r = newest == 0 ? numEntries - 1 : newest - 1;
        readIndex.store (r);
        currentEntry = &entries[(size_t) r];
        return *currentEntry;
    }

    /** Audio thread: the value taken by the last acquire(). */
    const T& current() const noexcept { return *currentEntry; }

    //==============================================================================
    /** Any thread, for diagnostics: the entry to be written next, unless the reader holds it. */
    int32_t getWriteIndex() const noexcept { return writeIndex.load(); }

    /** Any thread, for diagnostics: the entry the reader holds, -1 before the first acquire(). */
    int32_t getReadIndex() const noexcept { return readIndex.load(); }

private:
    static constexpr int32_t next (int32_t index) noexcept { return (index + 1) % numEntries; }

    std::atomic<int32_t> writeIndex { 0 };
    std::atomic<int32_t> readIndex { -1 };
    std::array<T, (size_t) numEntries> entries {};
    const T* currentEntry = &entries[0];
};
} // namespace Orv

#pragma once

#include <atomic>
#include <type_traits>

namespace Orv
{
//==============================================================================
/** A value shared between threads. Every operation is sequentially consistent,
    and lock-free for the word-sized types the audio thread uses. Not copyable:
    copying an atomic is rarely what a shared value means (see CopyableAtomic). */
template <typename T>
class Atomic
{
public:
    static_assert (std::is_trivially_copyable_v<T>, "Atomic<T> needs a trivially copyable T");

    Atomic() noexcept : value (T {}) {}
    explicit Atomic (T initial) noexcept : value (initial) {}

    Atomic (const Atomic&) = delete;
    Atomic& operator= (const Atomic&) = delete;

    /** Any thread: the current value. */
    T get() const noexcept { return value.load(); }

    /** Any thread: replaces the value. */
    void set (T newValue) noexcept { value.store (newValue); }

    /** Any thread: replaces the value and returns the one it replaced, as one step. */
    T exchange (T newValue) noexcept { return value.exchange (newValue); }

    /** The underlying atomic, for code that watches it (AtomicListener). */
    const std::atomic<T>& getAtomic() const noexcept { return value; }

protected:
    std::atomic<T> value;
};

//==============================================================================
/** An Atomic that copies its value with the record that holds it, so records of
    settings can be copied as a whole. A copy is a load followed by a store, not
    one atomic step: copy a record only while nobody else writes to it. */
template <typename T>
class CopyableAtomic : public Atomic<T>
{
public:
    CopyableAtomic() noexcept = default;
    explicit CopyableAtomic (T initial) noexcept : Atomic<T> (initial) {}

    CopyableAtomic (const CopyableAtomic& other) noexcept : Atomic<T> (other.get()) {}

    CopyableAtomic& operator= (const CopyableAtomic& other) noexcept
    {
        this->set (other.get());
        return *this;
    }
};
} // namespace Orv

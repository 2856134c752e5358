#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace Orv::Midi
{
/** A set that keeps insertion order and lives in an inline array of
    `inlineCapacity` items, so that the audio thread can use it without
    allocating. Once the array is full it moves to a heap vector and stays
    there until it is emptied; the vector keeps its capacity afterwards, so
    an overflow allocates once, not each time. */
template <typename T, size_t inlineCapacity>
class SmallSet
{
public:
    SmallSet() = default;

    /** True if the item is in the set. */
    bool contains (T item) const noexcept { return std::find (begin(), end(), item) != end(); }

    /** Adds the item unless it is already there. Allocates only when the set
        outgrows its inline room. */
    void insert (T item)
    {
        if (contains (item))
            return;

        if (onHeap)
        {
            heapItems.push_back (item);
            return;
        }

        if (numInline < inlineCapacity)
        {
            inlineItems[numInline++] = item;
            return;
        }

        heapItems.assign (inlineItems.begin(), inlineItems.end());
        heapItems.push_back (item);
        onHeap = true;
    }

    /** Removes the item if present; the others keep their order. */
    void remove (T item) noexcept
    {
        if (onHeap)
        {
            heapItems.erase (std::remove (heapItems.begin(), heapItems.end(), item), heapItems.end());
            if (heapItems.empty())
                clear();
            return;
        }

        const auto last = std::remove (inlineItems.begin(), inlineItems.begin() + (std::ptrdiff_t) numInline, item);
        numInline = (size_t) (last - inlineItems.begin());
    }

    /** Empties the set and returns it to its inline array. Frees nothing. */
    void clear() noexcept
    {
        heapItems.clear();
        onHeap = false;
        numInline = 0;
    }

    size_t size() const noexcept { return onHeap ? heapItems.size() : numInline; }
    bool isEmpty() const noexcept { return size() == 0; }

    /** The items in the order in which they were added. */
    const T* begin() const noexcept { return onHeap ? heapItems.data() : inlineItems.data(); }
    const T* end() const noexcept { return begin() + size(); }

private:
    std::array<T, inlineCapacity> inlineItems {};
    size_t numInline = 0;
    std::vector<T> heapItems;
    bool onHeap = false;
};
} // namespace Orv::Midi

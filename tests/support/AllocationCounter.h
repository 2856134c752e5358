#pragma once

#include <cstdint>

namespace Orv::Testing
{
/** Counts heap allocations made by the calling thread while armed. The global
    allocation functions of the test binary are replaced (AllocationCounter.cpp)
    and report here; host tests export them so that a loaded plug-in's
    allocations are counted as well. */
class AllocationCounter
{
public:
    /** Arms counting on this thread and resets the count. */
    AllocationCounter();
    /** Disarms counting on this thread. */
    ~AllocationCounter();

    AllocationCounter (const AllocationCounter&) = delete;
    AllocationCounter& operator= (const AllocationCounter&) = delete;

    /** Allocations made on this thread since construction. */
    int64_t getCount() const;

    /** Called by the hooks; true while some counter is armed on this thread. */
    static void noteAllocation() noexcept;
};
} // namespace Orv::Testing

#include "support/AllocationCounter.h"

#include <cstdlib>
#include <new>

namespace Orv::Testing
{
namespace
{
    thread_local int armedDepth = 0;
    thread_local int64_t count = 0;
} // namespace

AllocationCounter::AllocationCounter()
{
    ++armedDepth;
    count = 0;
}

AllocationCounter::~AllocationCounter() { --armedDepth; }

int64_t AllocationCounter::getCount() const { return count; }

void AllocationCounter::noteAllocation() noexcept
{
    if (armedDepth > 0)
        ++count;
}
} // namespace Orv::Testing

//==============================================================================
// Replacements of the global allocation functions. Every form funnels into
// these few so that no allocation path escapes the count.
namespace
{
void* allocateOrThrow (std::size_t size)
{
    Orv::Testing::AllocationCounter::noteAllocation();
    if (auto* p = std::malloc (size == 0 ? 1 : size))
        return p;
    throw std::bad_alloc();
}

void* allocateAligned (std::size_t size, std::align_val_t alignment)
{
    Orv::Testing::AllocationCounter::noteAllocation();
    const auto align = static_cast<std::size_t> (alignment);
    const auto rounded = ((size == 0 ? 1 : size) + align - 1) / align * align;
    if (auto* p = std::aligned_alloc (align, rounded))
        return p;
    throw std::bad_alloc();
}
} // namespace

void* operator new (std::size_t size) { return allocateOrThrow (size); }
void* operator new[] (std::size_t size) { return allocateOrThrow (size); }
void* operator new (std::size_t size, const std::nothrow_t&) noexcept
{
    Orv::Testing::AllocationCounter::noteAllocation();
    return std::malloc (size == 0 ? 1 : size);
}
void* operator new[] (std::size_t size, const std::nothrow_t&) noexcept
{
    Orv::Testing::AllocationCounter::noteAllocation();
    return std::malloc (size == 0 ? 1 : size);
}
void* operator new (std::size_t size, std::align_val_t a) { return allocateAligned (size, a); }
void* operator new[] (std::size_t size, std::align_val_t a) { return allocateAligned (size, a); }

void operator delete (void* p) noexcept { std::free (p); }
void operator delete[] (void* p) noexcept { std::free (p); }
void operator delete (void* p, std::size_t) noexcept { std::free (p); }
void operator delete[] (void* p, std::size_t) noexcept { std::free (p); }
void operator delete (void* p, std::align_val_t) noexcept { std::free (p); }
void operator delete[] (void* p, std::align_val_t) noexcept { std::free (p); }
void operator delete (void* p, std::size_t, std::align_val_t) noexcept { std::free (p); }
void operator delete[] (void* p, std::size_t, std::align_val_t) noexcept { std::free (p); }

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
// The allocation functions of the test binary are replaced so that every heap
// allocation, C or C++, passes the counter: JUCE's containers allocate through
// malloc and realloc, not operator new. Host tests export these symbols so a
// loaded plug-in's allocations are counted too. The sanitizers bring their own
// allocator, so there only operator new is counted.
#if defined(__SANITIZE_ADDRESS__)
 #define HALVANE_HOOK_MALLOC 0
#elif defined(__has_feature)
 #if __has_feature(address_sanitizer)
  #define HALVANE_HOOK_MALLOC 0
 #endif
#endif
#ifndef HALVANE_HOOK_MALLOC
 #define HALVANE_HOOK_MALLOC 1
#endif

namespace
{
using Orv::Testing::AllocationCounter;

#if HALVANE_HOOK_MALLOC
extern "C" void* __libc_malloc (size_t);
extern "C" void* __libc_calloc (size_t, size_t);
extern "C" void* __libc_realloc (void*, size_t);
extern "C" void* __libc_memalign (size_t, size_t);
extern "C" void __libc_free (void*);

void* rawAllocate (std::size_t size) { return __libc_malloc (size); }
void* rawAllocateAligned (std::size_t align, std::size_t size) { return __libc_memalign (align, size); }
void rawFree (void* p) { __libc_free (p); }
#else
void* rawAllocate (std::size_t size) { return std::malloc (size); }
void* rawAllocateAligned (std::size_t align, std::size_t size)
{
    return std::aligned_alloc (align, (size + align - 1) / align * align);
}
void rawFree (void* p) { std::free (p); }
#endif

void* allocateOrThrow (std::size_t size)
{
    AllocationCounter::noteAllocation();
    if (auto* p = rawAllocate (size == 0 ? 1 : size))
        return p;
    throw std::bad_alloc();
}

void* allocateAlignedOrThrow (std::size_t size, std::align_val_t alignment)
{
    AllocationCounter::noteAllocation();
    if (auto* p = rawAllocateAligned (static_cast<std::size_t> (alignment), size == 0 ? 1 : size))
        return p;
    throw std::bad_alloc();
}

void* allocateNoThrow (std::size_t size) noexcept
{
    AllocationCounter::noteAllocation();
    return rawAllocate (size == 0 ? 1 : size);
}
} // namespace

#if HALVANE_HOOK_MALLOC
extern "C"
{
    void* malloc (size_t size)
    {
        AllocationCounter::noteAllocation();
        return __libc_malloc (size);
    }

    void* calloc (size_t n, size_t size)
    {
        AllocationCounter::noteAllocation();
        return __libc_calloc (n, size);
    }

    void* realloc (void* p, size_t size)
    {
        AllocationCounter::noteAllocation();
        return __libc_realloc (p, size);
    }

    void* aligned_alloc (size_t align, size_t size)
    {
        AllocationCounter::noteAllocation();
        return __libc_memalign (align, size);
    }

    void* memalign (size_t align, size_t size)
    {
        AllocationCounter::noteAllocation();
        return __libc_memalign (align, size);
    }

    int posix_memalign (void** out, size_t align, size_t size)
    {
        AllocationCounter::noteAllocation();
        *out = __libc_memalign (align, size);
        return *out != nullptr ? 0 : 12; // ENOMEM
    }

    void free (void* p) { __libc_free (p); }
}
#endif

void* operator new (std::size_t size) { return allocateOrThrow (size); }
void* operator new[] (std::size_t size) { return allocateOrThrow (size); }
void* operator new (std::size_t size, const std::nothrow_t&) noexcept { return allocateNoThrow (size); }
void* operator new[] (std::size_t size, const std::nothrow_t&) noexcept { return allocateNoThrow (size); }
void* operator new (std::size_t size, std::align_val_t a) { return allocateAlignedOrThrow (size, a); }
void* operator new[] (std::size_t size, std::align_val_t a) { return allocateAlignedOrThrow (size, a); }

void operator delete (void* p) noexcept { rawFree (p); }
void operator delete[] (void* p) noexcept { rawFree (p); }
void operator delete (void* p, std::size_t) noexcept { rawFree (p); }
void operator delete[] (void* p, std::size_t) noexcept { rawFree (p); }
void operator delete (void* p, std::align_val_t) noexcept { rawFree (p); }
void operator delete[] (void* p, std::align_val_t) noexcept { rawFree (p); }
void operator delete (void* p, std::size_t, std::align_val_t) noexcept { rawFree (p); }
void operator delete[] (void* p, std::size_t, std::align_val_t) noexcept { rawFree (p); }

#pragma once

#include <cstdlib>

// Counts what this program takes from the heap: its own `malloc` stands in front of the C library's, which everything
// else (operator new, Qt's strings and lists) comes down to. For the one source file of a test program.
namespace
{
[[maybe_unused]] std::size_t allocationCount = 0;
[[maybe_unused]] std::size_t allocatedBytes = 0;

void countAllocationOf(std::size_t size)
{
    ++allocationCount;
    allocatedBytes += size;
}
} // namespace

#if defined(__SANITIZE_ADDRESS__)
// Not every compiler comes with the header that declares this.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*allocated)(const volatile void *, std::size_t),
                                                         void (*released)(const volatile void *));
namespace
{
void countAllocation(const volatile void * /*memory*/, std::size_t size)
{
    countAllocationOf(size);
}
void ignoreRelease(const volatile void * /*memory*/) {}
[[maybe_unused]] const int installed = __sanitizer_install_malloc_and_free_hooks(countAllocation, ignoreRelease);
} // namespace
#else
extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *memory, std::size_t size);

__attribute__((visibility("default"))) void *malloc(std::size_t size)
{
    countAllocationOf(size);
    return __libc_malloc(size);
}

__attribute__((visibility("default"))) void *calloc(std::size_t count, std::size_t size)
{
    countAllocationOf(count * size);
    return __libc_calloc(count, size);
}

__attribute__((visibility("default"))) void *realloc(void *memory, std::size_t size)
{
    countAllocationOf(size);
    return __libc_realloc(memory, size);
}
}
#endif

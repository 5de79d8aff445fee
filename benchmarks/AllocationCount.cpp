#include "benchmarks/AllocationCount.h"

#include <atomic>
#include <cstddef>

namespace
{
std::atomic<std::uint64_t> count{0};
}

std::uint64_t allocationCount()
{
    return count.load(std::memory_order_relaxed);
}

// The program's own definitions stand before the C library's, which it keeps under these other names.
extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t number, std::size_t size);
void *__libc_realloc(void *memory, std::size_t size);

void *malloc(std::size_t size)
{
    count.fetch_add(1, std::memory_order_relaxed);
    return __libc_malloc(size);
}

void *calloc(std::size_t number, std::size_t size)
{
    count.fetch_add(1, std::memory_order_relaxed);
    return __libc_calloc(number, size);
}

void *realloc(void *memory, std::size_t size)
{
    count.fetch_add(1, std::memory_order_relaxed);
    return __libc_realloc(memory, size);
}
}

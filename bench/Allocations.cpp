// Stands before the C library's allocator, which C++ and FFmpeg both end at.

#include "Allocations.h"

#include <cerrno>
#include <cstdlib>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

thread_local long long t_allocations = 0;

}  // namespace

long long NorvexBench::CountAllocations() {
    return t_allocations;
}

// For the libraries too, and not for this program alone.
#pragma GCC visibility push(default)

extern "C" {

void* malloc(std::size_t size) noexcept {
    ++t_allocations;
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) noexcept {
    ++t_allocations;
    return __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) noexcept {
    ++t_allocations;
    return __libc_realloc(memory, size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) noexcept {
    ++t_allocations;
    *memory = __libc_memalign(alignment, size);
    return *memory != nullptr ? 0 : ENOMEM;
}
}

#pragma GCC visibility pop

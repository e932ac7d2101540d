#include "bench/Allocations.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

thread_local long t_allocations = 0;

} // namespace

void* operator new(std::size_t size)
{
    ++t_allocations;
    if (void* memory = std::malloc(size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

long fieldcore::bench::AllocationCount()
{
    return t_allocations;
}

#include "tests/support/Scarcity.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>

#include <dlfcn.h>
#include <pthread.h>

namespace fieldcore::testing {

namespace {

std::atomic<bool> isScarce = false;
std::atomic<Scarcity::Of> scarce = Scarcity::Of::Memory;
std::atomic<int> first = 0;
std::atomic<bool> isOnce = true;
std::atomic<int> count = 0;
std::atomic<long long> blocks = 0;
thread_local bool t_isCounted = false;

bool IsRefused(Scarcity::Of what)
{
    if (!isScarce || scarce != what || !t_isCounted || Spared::IsThisThread()) {
        return false;
    }
    const int n = ++count;
    return first > 0 && (isOnce ? n == first : n >= first);
}

void* Allocated(std::size_t size)
{
    void* const block = IsRefused(Scarcity::Of::Memory) ? nullptr : std::malloc(size + 1);
    blocks += block != nullptr ? 1 : 0;
    return block;
}

void Free(void* block)
{
    blocks -= block != nullptr ? 1 : 0;
    std::free(block);
}

struct Beginning
{
    void* (*run)(void*);
    void* argument;
};

void* Begin(void* at)
{
    const Beginning beginning = *static_cast<Beginning*>(at);
    std::free(at);
    t_isCounted = true;
    return beginning.run(beginning.argument);
}

} // namespace

Scarcity::Scarcity(Of what, int n, bool once)
{
    scarce = what;
    first = n;
    isOnce = once;
    count = 0;
    t_isCounted = true;
    isScarce = true;
}

Scarcity::~Scarcity()
{
    isScarce = false;
    t_isCounted = false;
}

int Scarcity::Count() const
{
    return count;
}

long long BlocksHeld()
{
    return blocks;
}

} // namespace fieldcore::testing

// Found before those of the libraries, by them that is, since they are the program's own. Those of
// arrays call these.
using fieldcore::testing::Allocated;
using fieldcore::testing::Free;

void* operator new(std::size_t size)
{
    void* const block = Allocated(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return Allocated(size);
}

void operator delete(void* block) noexcept
{
    Free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    Free(block);
}

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                              void* (*run)(void*), void* argument) noexcept
{
    using namespace fieldcore::testing;
    static auto* const next =
        reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    if (!t_isCounted || Spared::IsThisThread()) {
        return next(thread, attributes, run, argument);
    }
    auto* const beginning = static_cast<Beginning*>(std::malloc(sizeof(Beginning)));
    if (beginning == nullptr || IsRefused(Scarcity::Of::Threads)) {
        std::free(beginning);
        return EAGAIN;
    }
    *beginning = {run, argument};
    const int error = next(thread, attributes, Begin, beginning);
    if (error != 0) {
        std::free(beginning);
    }
    return error;
}

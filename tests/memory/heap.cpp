#include "heap.h"

#include <cstddef>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TESTS_ADDRESS_SANITIZER
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define TESTS_ADDRESS_SANITIZER
#endif

namespace
{

unsigned long askedFor = 0;
unsigned long held = 0;
unsigned long untilFailure = 0;

} // namespace

unsigned long blocksAskedFor()
{
    return askedFor;
}

unsigned long blocksHeld()
{
    return held;
}

void failAllocation(unsigned long number)
{
    untilFailure = number;
}

#if defined(TESTS_ADDRESS_SANITIZER)

#include <sanitizer/allocator_interface.h>

namespace
{

const bool installed = __sanitizer_install_malloc_and_free_hooks(
                           [](const volatile void*, std::size_t)
                           {
                               ++askedFor;
                               ++held;
                           },
                           [](const volatile void*) { --held; }) != 0;

} // namespace

#else

#include <cerrno>
#include <cstdlib>

// The C library's own, under the names that it has for this.
extern "C" void* __libc_malloc(std::size_t size);                          // NOLINT
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);       // NOLINT
extern "C" void* __libc_realloc(void* block, std::size_t size);            // NOLINT
extern "C" void* __libc_memalign(std::size_t alignment, std::size_t size); // NOLINT
extern "C" void __libc_free(void* block);                                  // NOLINT

namespace
{

// Whether the next allocation finds memory.
bool succeeds()
{
    ++askedFor;
    const bool isThere = untilFailure == 0 || --untilFailure != 0;
    held += isThere ? 1 : 0;
    return isThere;
}

} // namespace

extern "C" void* malloc(std::size_t size) noexcept
{
    return succeeds() ? __libc_malloc(size) : nullptr;
}

extern "C" void* calloc(std::size_t number, std::size_t size) noexcept
{
    return succeeds() ? __libc_calloc(number, size) : nullptr;
}

extern "C" void* realloc(void* block, std::size_t size) noexcept
{
    if (!succeeds())
    {
        return nullptr;
    }
    held -= block != nullptr ? 1 : 0;
    return __libc_realloc(block, size);
}

extern "C" void* memalign(std::size_t alignment, std::size_t size) noexcept
{
    return succeeds() ? __libc_memalign(alignment, size) : nullptr;
}

extern "C" void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept
{
    return memalign(alignment, size);
}

extern "C" int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept
{
    *block = memalign(alignment, size);
    return *block != nullptr ? 0 : ENOMEM;
}

extern "C" void free(void* block) noexcept
{
    held -= block != nullptr ? 1 : 0;
    __libc_free(block);
}

#endif

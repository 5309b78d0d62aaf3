#include "allocationCount.h"

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

unsigned long counted = 0;
unsigned int pauses = 0;

void count()
{
    counted += pauses == 0 ? 1 : 0;
}

} // namespace

unsigned long allocationCount()
{
    return counted;
}

Uncounted::Uncounted()
{
    ++pauses;
}

Uncounted::~Uncounted()
{
    --pauses;
}

#if defined(TESTS_ADDRESS_SANITIZER)

#include <sanitizer/allocator_interface.h>

namespace
{

const bool installed = __sanitizer_install_malloc_and_free_hooks(
                           [](const volatile void*, std::size_t) { count(); }, [](const volatile void*) {}) != 0;

} // namespace

#else

#include <cerrno>
#include <cstdlib>

// The C library's own, under the names that it has for this.
extern "C" void* __libc_malloc(std::size_t size);                          // NOLINT
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);       // NOLINT
extern "C" void* __libc_realloc(void* block, std::size_t size);            // NOLINT
extern "C" void* __libc_memalign(std::size_t alignment, std::size_t size); // NOLINT

extern "C" void* malloc(std::size_t size) noexcept
{
    count();
    return __libc_malloc(size);
}

extern "C" void* calloc(std::size_t number, std::size_t size) noexcept
{
    count();
    return __libc_calloc(number, size);
}

extern "C" void* realloc(void* block, std::size_t size) noexcept
{
    count();
    return __libc_realloc(block, size);
}

extern "C" void* memalign(std::size_t alignment, std::size_t size) noexcept
{
    count();
    return __libc_memalign(alignment, size);
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

#endif

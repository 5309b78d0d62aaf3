// Numbers in memory, most significant byte first.
#ifndef BCI_BYTE_ORDER_H
#define BCI_BYTE_ORDER_H

#include <bit>
#include <cstdint>

namespace bci
{

// The number whose bytes in memory are those of another in reverse, on hosts that need it.
template <typename T>
T bigEndian(T number)
{
    static_assert(sizeof(T) <= 2 || sizeof(T) == 4 || sizeof(T) == 8);
    if constexpr (std::endian::native == std::endian::big || sizeof(T) == 1)
    {
        return number;
    }
    else if constexpr (sizeof(T) == 2)
    {
        return static_cast<T>(__builtin_bswap16(static_cast<std::uint16_t>(number)));
    }
    else if constexpr (sizeof(T) == 4)
    {
        return static_cast<T>(__builtin_bswap32(static_cast<std::uint32_t>(number)));
    }
    else
    {
        return static_cast<T>(__builtin_bswap64(static_cast<std::uint64_t>(number)));
    }
}

} // namespace bci

#endif

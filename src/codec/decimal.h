// Numbers as decimal digits, written straight into a buffer.
#ifndef BCI_CODEC_DECIMAL_H
#define BCI_CODEC_DECIMAL_H

#include "scalarTypes.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <type_traits>

namespace bci::codec
{

// Two digits for each number below 100.
inline constexpr auto kDigitPairs = []
{
    std::array<char, 200> pairs = {};
    for (std::size_t i = 0; i < 100; ++i)
    {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

// Writes a number without terminating it, at most ten digits and a sign. Returns the place behind it.
inline char* putDecimal(char* to, U32 number)
{
    char digits[10];
    char* begin = digits + sizeof digits;
    while (number >= 100)
    {
        begin -= 2;
        std::memcpy(begin, &kDigitPairs[std::size_t{2} * (number % 100)], 2);
        number /= 100;
    }
    if (number >= 10)
    {
        begin -= 2;
        std::memcpy(begin, &kDigitPairs[std::size_t{2} * number], 2);
    }
    else
    {
        *--begin = static_cast<char>('0' + number);
    }
    const auto length = static_cast<std::size_t>(digits + sizeof digits - begin);
    std::memcpy(to, begin, length);
    return to + length;
}

template <typename T>
char* putDecimal(char* to, T number)
{
    if constexpr (std::is_signed_v<T>)
    {
        if (number < 0)
        {
            *to++ = '-';
            return putDecimal(to, U32{0} - static_cast<U32>(number));
        }
    }
    return putDecimal(to, static_cast<U32>(number));
}

} // namespace bci::codec

#endif

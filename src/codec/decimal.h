// Numbers as decimal digits, straight into and out of a buffer.
#ifndef BCI_CODEC_DECIMAL_H
#define BCI_CODEC_DECIMAL_H

#include "optimize.h"
#include "scalarTypes.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace bci::codec
{

// A number of any kind.
struct Number
{
    U32 magnitude;
    bool negative;
};

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

[[gnu::noinline]] inline unsigned int countDigits(U32 number)
{
    unsigned int count = 1;
    for (; number >= 10; number /= 10)
    {
        ++count;
    }
    return count;
}

// Writes the digits of a number, whose count is known. Returns the place behind them.
[[gnu::noinline]] inline char* putDigits(char* to, U32 number, unsigned int count)
{
    for (char* at = to + count; at != to; number /= 10)
    {
        *--at = static_cast<char>('0' + number % 10);
    }
    return to + count;
}

// Writes a number without terminating it, at most ten digits. Returns the place behind it.
BCI_INLINE char* putDecimal(char* to, U32 number)
{
    if (!kForSpeed)
    {
        return putDigits(to, number, countDigits(number));
    }
    const auto putPair = [](char* at, U32 pair) { std::memcpy(at, &kDigitPairs[std::size_t{2} * pair], 2); };
    const auto putShort = [&putPair](char* at, U32 pair)
    {
        if (pair < 10)
        {
            *at = static_cast<char>('0' + pair);
            return at + 1;
        }
        putPair(at, pair);
        return at + 2;
    };
    if (number < 100)
    {
        return putShort(to, number);
    }
    if (number < 10000)
    {
        to = putShort(to, number / 100);
        putPair(to, number % 100);
        return to + 2;
    }
    if (number < 100000000)
    {
        const U32 high = number / 10000;
        if (high < 100)
        {
            to = putShort(to, high);
        }
        else
        {
            to = putShort(to, high / 100);
            putPair(to, high % 100);
            to += 2;
        }
    }
    else
    {
        to = putShort(to, number / 100000000);
        const U32 high = number / 10000 % 10000;
        putPair(to, high / 100);
        putPair(to + 2, high % 100);
        to += 4;
    }
    const U32 low = number % 10000;
    putPair(to, low / 100);
    putPair(to + 2, low % 100);
    return to + 4;
}

BCI_INLINE char* putNumber(char* to, Number number)
{
    if (number.negative) [[unlikely]]
    {
        *to++ = '-';
    }
    return putDecimal(to, number.magnitude);
}

inline bool isDigit(char ch)
{
    return ch >= '0' && ch <= '9';
}

inline U32 digitOf(char ch)
{
    return static_cast<U32>(ch - '0');
}

// Adds up digits up to the first other character, which there has to be. Returns its place.
inline const char* getDigits(const char* from, U32& number)
{
    number = 0;
    for (U32 digit; (digit = static_cast<unsigned char>(*from) - U32{'0'}) < 10; ++from)
    {
        number = number * 10 + digit;
    }
    return from;
}

// Reads eight digits at once. Returns whether all of them are.
inline bool getEightDigits(const char* from, U32& number)
{
    std::uint64_t digits;
    std::memcpy(&digits, from, sizeof digits);
    if constexpr (std::endian::native == std::endian::big)
    {
        digits = __builtin_bswap64(digits); // COVERAGE_EXCLUDED: on big-endian hosts alone
    }
    digits -= 0x3030303030303030;
    if (((digits | (digits + 0x0606060606060606)) & 0xF0F0F0F0F0F0F0F0) != 0)
    {
        return false;
    }
    digits = digits * 10 + (digits >> 8); // pairs of digits, each in a byte
    constexpr std::uint64_t kPairs = 0x000000FF000000FF;
    number = static_cast<U32>(((digits & kPairs) * (100 + (std::uint64_t{1000000} << 32)) +
                               ((digits >> 16) & kPairs) * (1 + (std::uint64_t{10000} << 32))) >>
                              32);
    return true;
}

} // namespace bci::codec

#endif

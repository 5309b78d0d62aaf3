// The pieces of codecs as one would write them by hand for one message: what a codec can gain at all.
#ifndef BENCH_OPTIMUM_H
#define BENCH_OPTIMUM_H

#include "fields.h"

#include <array>
#include <bit>
#include <cstdint>
#include <limits>

namespace bench::optimum
{

// Numbers in binary.

template <typename T>
BENCH_INLINE T bigEndian(T number)
{
    if constexpr (std::endian::native == std::endian::big || sizeof(T) == 1)
    {
        return number;
    }
    else if constexpr (sizeof(T) == 2)
    {
        return static_cast<T>(__builtin_bswap16(static_cast<std::uint16_t>(number)));
    }
    else
    {
        return static_cast<T>(__builtin_bswap32(static_cast<std::uint32_t>(number)));
    }
}

// Numbers in text.

constexpr auto kPairs = []
{
    std::array<char, 200> pairs = {};
    for (std::size_t i = 0; i < 100; ++i)
    {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

BENCH_INLINE char* putPair(char* to, U32 number)
{
    std::memcpy(to, &kPairs[std::size_t{2} * number], 2);
    return to + 2;
}

// Below 100.
BENCH_INLINE char* putUpTo2(char* to, U32 number)
{
    if (number < 10)
    {
        *to = static_cast<char>('0' + number);
        return to + 1;
    }
    return putPair(to, number);
}

// Below 10000.
BENCH_INLINE char* putUpTo4(char* to, U32 number)
{
    if (number < 100)
    {
        return putUpTo2(to, number);
    }
    return putPair(putUpTo2(to, number / 100), number % 100);
}

BENCH_INLINE char* put4(char* to, U32 number)
{
    return putPair(putPair(to, number / 100), number % 100);
}

template <typename T>
BENCH_INLINE char* putNumber(char* to, T number)
{
    U32 magnitude = static_cast<U32>(number);
    if constexpr (std::is_signed_v<T>)
    {
        if (number < 0)
        {
            *to++ = '-';
            magnitude = 0 - magnitude;
        }
    }
    if constexpr (sizeof(T) == 1)
    {
        return putUpTo4(to, magnitude);
    }
    else
    {
        if (magnitude < 10000)
        {
            return putUpTo4(to, magnitude);
        }
        if (magnitude < 100000000)
        {
            return put4(putUpTo4(to, magnitude / 10000), magnitude % 10000);
        }
        to = putUpTo2(to, magnitude / 100000000);
        magnitude %= 100000000;
        return put4(put4(to, magnitude / 10000), magnitude % 10000);
    }
}

template <typename T>
constexpr std::size_t kLongestNumber = std::numeric_limits<T>::digits10 + 1 + std::is_signed_v<T>;

BENCH_INLINE bool isDigit(char ch)
{
    return static_cast<unsigned char>(ch - '0') < 10;
}

// Eight digits at once, on little-endian hosts. False if they are not all digits.
BENCH_INLINE bool get8(const char* from, U32& number)
{
    std::uint64_t digits;
    std::memcpy(&digits, from, sizeof digits);
    digits -= 0x3030303030303030;
    if (((digits | (digits + 0x0606060606060606)) & 0xF0F0F0F0F0F0F0F0) != 0)
    {
        return false;
    }
    digits = digits * 10 + (digits >> 8);
    number = static_cast<U32>((((digits & 0x000000FF000000FF) * 0x000F424000000064) +
                               (((digits >> 16) & 0x000000FF000000FF) * 0x0000271000000001)) >>
                              32);
    return true;
}

// Reads digits, at most so many, without looking where the data end; `from` moves behind them.
template <typename Wide, int digits>
BENCH_INLINE Wide getDigits(const char*& from)
{
    Wide magnitude = 0;
#pragma GCC unroll 10
    for (int i = 0; i < digits; ++i)
    {
        const auto digit = static_cast<unsigned char>(*from - '0');
        if (digit > 9)
        {
            break;
        }
        magnitude = magnitude * 10 + digit;
        ++from;
    }
    return magnitude;
}

// Reads a number that something follows. Null if there is none, or it is out of range.
template <typename T>
BENCH_INLINE const char* getNumber(const char* from, const char* end, T& number)
{
    constexpr int kDigits = std::numeric_limits<T>::digits10 + 1;
    using Wide = std::conditional_t<sizeof(T) == 4, std::uint64_t, U32>;
    bool negative = false;
    if constexpr (std::is_signed_v<T>)
    {
        if (from != end && *from == '-')
        {
            negative = true;
            ++from;
        }
    }
    const char* const begin = from;
    Wide magnitude = 0;
    if (end - from > kDigits)
    {
        if constexpr (sizeof(T) == 4 && !std::is_signed_v<T> && std::endian::native == std::endian::little)
        {
            if (U32 eight; get8(from, eight))
            {
                from += 8;
                const char* const more = from;
                const Wide rest = getDigits<Wide, kDigits - 8>(from);
                magnitude = from == more       ? eight
                            : from == more + 1 ? eight * Wide{10} + rest
                                               : eight * Wide{100} + rest;
            }
            else
            {
                magnitude = getDigits<Wide, kDigits>(from);
            }
        }
        else
        {
            magnitude = getDigits<Wide, kDigits>(from);
        }
    }
    else
    {
        while (from != end && isDigit(*from))
        {
            magnitude = magnitude * 10 + static_cast<Wide>(*from++ - '0');
        }
    }
    const Wide greatest = Wide{std::numeric_limits<T>::max()} + (negative ? 1U : 0U);
    if (from == begin || from == end || magnitude > greatest)
    {
        return nullptr;
    }
    number = static_cast<T>(negative ? Wide{0} - magnitude : magnitude);
    return from;
}

// Constant texts, with indexes in them.

struct Literal
{
    char text[64] = {};
    std::size_t size = 0;
    std::size_t first = 0; // where indexes stand; 0 if there is none
    std::size_t second = 0;

    consteval void append(std::string_view piece)
    {
        std::copy(piece.begin(), piece.end(), text + size);
        size += piece.size();
    }

    consteval void append(const Name& name)
    {
        first = name.first != 0 ? size + name.first : 0;
        second = name.second != 0 ? size + name.second : 0;
        append({name.text, name.size});
    }
};

template <typename Row>
consteval Literal opening()
{
    const bool bare = Row::kOddity == Oddity::bareOpening;
    Literal literal;
    literal.append(bare ? "<" : "\t<");
    literal.append(Row::kName);
    literal.append(bare ? ">\n\t   " : ">\n\t  ");
    return literal;
}

template <typename Row>
consteval Literal closing()
{
    Literal literal;
    literal.append("\n\t</");
    literal.append(Row::kName);
    literal.append(">\n");
    return literal;
}

template <typename Row>
constexpr Literal kOpening = opening<Row>();
template <typename Row>
constexpr Literal kClosing = closing<Row>();

template <const Literal& kLiteral>
BENCH_INLINE char* putLiteral(char* to, const unsigned int (&indexes)[2])
{
    std::memcpy(to, kLiteral.text, kLiteral.size);
    if constexpr (kLiteral.first != 0)
    {
        to[kLiteral.first] = static_cast<char>('0' + indexes[0]);
    }
    if constexpr (kLiteral.second != 0)
    {
        to[kLiteral.second] = static_cast<char>('0' + indexes[1]);
    }
    return to + kLiteral.size;
}

// What differs between a piece of a literal and what stands at a place.
template <typename Word, const Literal& kLiteral, std::size_t at>
BENCH_INLINE std::uint64_t difference(const char* from, const unsigned int (&indexes)[2])
{
    Word expected;
    Word word;
    std::memcpy(&expected, kLiteral.text + at, sizeof expected);
    std::memcpy(&word, from + at, sizeof word);
    // '0' has no bits in common with numbers below 10.
    const auto place = [&expected](std::size_t position, unsigned int index)
    {
        const std::size_t byte = position - at;
        if (position >= at && byte < sizeof(Word))
        {
            const std::size_t shift = std::endian::native == std::endian::little ? byte : sizeof(Word) - 1 - byte;
            expected = static_cast<Word>(expected | Word(Word(index) << (8 * shift)));
        }
    };
    if constexpr (kLiteral.first != 0)
    {
        place(kLiteral.first, indexes[0]);
    }
    if constexpr (kLiteral.second != 0)
    {
        place(kLiteral.second, indexes[1]);
    }
    return static_cast<std::uint64_t>(word ^ expected);
}

// Compares in whole words, the last of which overlaps the one before.
template <const Literal& kLiteral, std::size_t at = 0>
BENCH_INLINE std::uint64_t differences(const char* from, const unsigned int (&indexes)[2])
{
    constexpr std::size_t kSize = kLiteral.size;
    static_assert(kSize >= 8);
    if constexpr (at + 8 < kSize)
    {
        return difference<std::uint64_t, kLiteral, at>(from, indexes) |
               differences<kLiteral, (at + 16 <= kSize ? at + 8 : kSize - 8)>(from, indexes);
    }
    else
    {
        return difference<std::uint64_t, kLiteral, at>(from, indexes);
    }
}

// Whether a literal stands at a place. Returns the place behind it, or null.
template <const Literal& kLiteral>
BENCH_INLINE const char* getLiteral(const char* from, const char* end, const unsigned int (&indexes)[2])
{
    if (static_cast<std::size_t>(end - from) < kLiteral.size || differences<kLiteral>(from, indexes) != 0)
    {
        return nullptr;
    }
    return from + kLiteral.size;
}

// Texts. Most are short, so that calls of the C library would cost more than they do.

// Where the first such character is, at most `size`.
BENCH_INLINE std::size_t findCharacter(const char* from, std::size_t size, char character)
{
    std::size_t at = 0;
    if constexpr (std::endian::native == std::endian::little)
    {
        constexpr std::uint64_t kOnes = 0x0101010101010101;
        for (; at + 8 <= size; at += 8)
        {
            std::uint64_t word;
            std::memcpy(&word, from + at, sizeof word);
            word ^= kOnes * static_cast<unsigned char>(character);
            const std::uint64_t found = (word - kOnes) & ~word & (kOnes << 7);
            if (found != 0)
            {
                return at + static_cast<std::size_t>(std::countr_zero(found)) / 8;
            }
        }
    }
    while (at != size && from[at] != character)
    {
        ++at;
    }
    return at;
}

// Two blocks that may overlap.
template <std::size_t block>
BENCH_INLINE void copyTwo(char* to, const char* from, std::size_t size)
{
    char first[block];
    char last[block];
    std::memcpy(first, from, block);
    std::memcpy(last, from + size - block, block);
    std::memcpy(to, first, block);
    std::memcpy(to + size - block, last, block);
}

// At most so many characters.
template <std::size_t most>
BENCH_INLINE void copyShort(char* to, const char* from, std::size_t size)
{
    if (size < 4)
    {
        for (std::size_t i = 0; i < size; ++i)
        {
            to[i] = from[i];
        }
    }
    else if (most < 8 || size < 8)
    {
        copyTwo<4>(to, from, size);
    }
    else if constexpr (most >= 8)
    {
        if (most < 16 || size < 16)
        {
            copyTwo<8>(to, from, size);
        }
        else if constexpr (most >= 16)
        {
            if (size <= 32)
            {
                copyTwo<16>(to, from, size);
            }
            else
            {
                std::memcpy(to, from, hidden(size));
            }
        }
    }
}

constexpr std::size_t kShort = 32;

// Writes all of the array, of which only what stands in front of its first zero counts.
template <std::size_t N>
BENCH_INLINE char* putText(char* to, const U8 (&text)[N])
{
    const char* const from = reinterpret_cast<const char*>(text);
    std::memcpy(to, from, N);
    return to + (N <= kShort ? findCharacter(from, N, '\0') : strnlen(from, N));
}

// Reads a text up to a character, which may not be missing. Null if the text does not fit.
template <std::size_t N>
BENCH_INLINE const char* getText(const char* from, const char* end, char behind, U8 (&text)[N])
{
    const std::size_t left = std::min(static_cast<std::size_t>(end - from), N);
    std::size_t size;
    if constexpr (N <= kShort)
    {
        size = findCharacter(from, left, behind);
    }
    else
    {
        const void* const found = std::memchr(from, behind, left);
        size = found != nullptr ? static_cast<std::size_t>(static_cast<const char*>(found) - from) : left;
    }
    if (size == left)
    {
        return nullptr;
    }
    copyShort<N>(reinterpret_cast<char*>(text), from, size);
    text[size] = 0;
    return from + size;
}

} // namespace bench::optimum

#endif

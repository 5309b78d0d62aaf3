// Numbers as decimal digits: where their count changes, and at the ends of their range.

#include "codec/decimal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <set>
#include <string>

namespace
{

using namespace bci::codec;

// Every power of ten and its neighbours, and the ends of the range.
std::set<U32> numbers()
{
    std::set<U32> all = {0, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF, 100100100, 123456789, 1002003004};
    for (U32 power = 1;; power *= 10)
    {
        all.insert({power - 1, power, power + 1, 2 * power, 4 * power + 3, 42 * (power / 10)});
        if (power == 1000000000)
        {
            return all;
        }
    }
}

// What a function puts into a buffer, behind which nothing may be touched.
template <typename Put>
std::string put(Put put)
{
    char buffer[13];
    std::string text(12, '#');
    std::copy_n(text.data(), sizeof buffer - 1, buffer);
    const char* const end = put(buffer);
    EXPECT_EQ(*end, '#');
    return {buffer, static_cast<std::size_t>(end - buffer)};
}

TEST(Decimal, PutsEveryNumberOfDigits)
{
    for (const U32 number : numbers())
    {
        const std::string digits = std::to_string(number);
        EXPECT_EQ(put([number](char* to) { return putDecimal(to, number); }), digits);
        EXPECT_EQ(put([number](char* to) { return putNumber(to, {number, false}); }), digits);
        EXPECT_EQ(put([number](char* to) { return putNumber(to, {number, true}); }), "-" + digits);
        EXPECT_EQ(countDigits(number), digits.size());
        EXPECT_EQ(put([&](char* to) { return putDigits(to, number, static_cast<unsigned int>(digits.size())); }),
                  digits);
    }
}

TEST(Decimal, PutsEveryPairOfDigitsInEveryPlace)
{
    for (const U32 unit : {1U, 100U, 10000U, 1000000U})
    {
        for (U32 pair = 0; pair < 100; ++pair)
        {
            for (const U32 others : {0U, 11111111U, 100000000U, 4200000000U})
            {
                const U32 number = others - others / unit % 100 * unit + pair * unit;
                EXPECT_EQ(put([number](char* to) { return putDecimal(to, number); }), std::to_string(number));
            }
        }
    }
}

TEST(Decimal, PutsTheLowestSignedNumber)
{
    EXPECT_EQ(put([](char* to) { return putNumber(to, {0x80000000, true}); }), "-2147483648");
}

TEST(Decimal, GetsDigitsUpToTheFirstOtherCharacter)
{
    for (const U32 number : numbers())
    {
        for (const char* behind : {"", ":", "/", " 1", "-1", "a", "\xB0", "\n"})
        {
            const std::string text = std::to_string(number) + behind;
            U32 read = 77;
            EXPECT_EQ(getDigits(text.c_str(), read), text.c_str() + std::to_string(number).size()) << text;
            EXPECT_EQ(read, number);
        }
    }
    const char* const none = "-1";
    U32 read = 77;
    EXPECT_EQ(getDigits(none, read), none);
    EXPECT_EQ(read, 0U);
    EXPECT_EQ(*getDigits("0004294967297:", read), ':');
    EXPECT_EQ(read, 1U) << "modulo 2^32";
}

TEST(Decimal, TakesTenCharactersForDigits)
{
    for (int ch = -128; ch < 128; ++ch)
    {
        const std::size_t found = std::string("0123456789").find(static_cast<char>(ch));
        EXPECT_EQ(isDigit(static_cast<char>(ch)), found != std::string::npos) << ch;
        if (found != std::string::npos)
        {
            EXPECT_EQ(digitOf(static_cast<char>(ch)), found);
        }
    }
}

TEST(Decimal, GetsEightDigits)
{
    for (const char* text : {"00000000", "00000001", "10000000", "12345678", "87654321", "99999999", "90909090",
                             "09090909", "00990099", "99009900", "10203040"})
    {
        U32 number = 77;
        EXPECT_TRUE(getEightDigits(text, number));
        EXPECT_EQ(number, std::stoul(text)) << text;
    }
    for (std::size_t place = 0; place < 8; ++place)
    {
        for (char digit = '0'; digit <= '9'; ++digit)
        {
            std::string text = "00000000";
            text[place] = digit;
            U32 number = 77;
            EXPECT_TRUE(getEightDigits(text.c_str(), number));
            EXPECT_EQ(number, std::stoul(text)) << text;
        }
    }
}

TEST(Decimal, GetsNoEightDigitsWhereOneIsNone)
{
    for (const char* digits : {"00000000", "99999999", "12345678"})
    {
        for (std::size_t place = 0; place < 8; ++place)
        {
            for (int ch = -128; ch < 128; ++ch)
            {
                std::string text = digits;
                text[place] = static_cast<char>(ch);
                U32 number = 77;
                EXPECT_EQ(getEightDigits(text.c_str(), number), ch >= '0' && ch <= '9') << place << " " << ch;
                EXPECT_EQ(number == 77, ch < '0' || ch > '9') << "left alone";
            }
        }
    }
}

// What one subtraction borrows, or one addition carries, must not make up for its neighbour.
TEST(Decimal, GetsNoEightDigitsWhereTwoAreNone)
{
    for (std::size_t first = 0; first < 8; ++first)
    {
        for (std::size_t second = 0; second < first; ++second)
        {
            for (const char one : {'/', ':', '@', '\0', '\xFF', '\x80', '\x2F', '\xAF', '\xB0', '\xB9', '\xBA'})
            {
                for (const char other :
                     {'/', ':', '@', '\0', '\xFF', '\x80', '\x2F', '\xAF', '\xB0', '\xB9', '\xBA'})
                {
                    std::string text = "05905905";
                    text[first] = one;
                    text[second] = other;
                    U32 number = 77;
                    EXPECT_FALSE(getEightDigits(text.c_str(), number)) << testing::PrintToString(text);
                }
            }
        }
    }
}

} // namespace

#include "stream.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <string>
#include <vector>

using commonStream::BEG;
using commonStream::ostream_text;
using commonStream::ostreambase;

namespace
{

const unsigned int eofBit = 1;
const unsigned int failBit = 2;

struct Outcome
{
    std::string bytes; // the whole buffer, '#' where nothing was written
    unsigned int status;
    unsigned int position;
    unsigned int length;

    bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Outcome& outcome)
{
    return out << testing::PrintToString(outcome.bytes) << " status " << outcome.status << " position "
               << outcome.position << " length " << outcome.length;
}

Outcome outcomeOf(const ostream_text& stream, const std::string& bytes = "")
{
    EXPECT_FALSE(stream.fail());
    return {bytes, stream.status(), stream.tellp(), stream.length()};
}

// A stream over a buffer of its own, exactly as large as asked for.
class Output
{
public:
    explicit Output(unsigned int size) : m_buffer(size, '#')
    {
        stream.attachBuffer(m_buffer.data(), size);
    }

    Outcome outcome() const
    {
        return outcomeOf(stream, {m_buffer.begin(), m_buffer.end()});
    }

    ostream_text stream;

private:
    std::vector<char> m_buffer;
};

template <typename T>
void expectRendering(T value, const std::string& text)
{
    SCOPED_TRACE(text);
    Output output(24);
    EXPECT_EQ(&(output.stream << value), &output.stream);
    const unsigned int length = static_cast<unsigned int>(text.size());
    EXPECT_EQ(output.outcome(), (Outcome{text + std::string(24 - length, '#'), 0, length, length}));
}

// What a conversion writes into a buffer of the documented size.
template <typename Convert, typename... Arguments>
std::string converted(Convert convert, Arguments... arguments)
{
    std::vector<char> output(22, '#');
    convert(output.data(), arguments...);
    return output.data();
}

template <typename T>
concept Renderable = requires(ostream_text& stream, T value)
{
    stream << value;
};

TEST(TextOutput, AddsNoDataToTheOutputBase)
{
    EXPECT_EQ(sizeof(ostream_text), sizeof(ostreambase));
}

TEST(TextOutput, RendersABoolAsOneOrZero)
{
    expectRendering(true, "1");
    expectRendering(false, "0");
}

TEST(TextOutput, RendersACharAsItself)
{
    expectRendering('A', "A");
    expectRendering(':', ":");
    expectRendering(' ', " ");
    expectRendering('7', "7");
    expectRendering('\xff', "\xff");
}

TEST(TextOutput, IgnoresTheZeroCharacter)
{
    Output output(4);
    EXPECT_EQ(&(output.stream << '\0'), &output.stream);
    EXPECT_EQ(output.outcome(), (Outcome{"####", 0, 0, 0}));
    EXPECT_EQ(&output.stream.put('\0'), &output.stream);
    EXPECT_EQ(output.outcome(), (Outcome{"####", 0, 0, 0}));
}

TEST(TextOutput, IgnoresTheZeroCharacterOnAFullBuffer)
{
    Output output(1);
    output.stream.put('a');
    output.stream.setgood();
    output.stream << '\0';
    output.stream.put('\0');
    EXPECT_EQ(output.outcome(), (Outcome{"a", 0, 1, 1}));
}

TEST(TextOutput, IgnoresTheZeroCharacterWithoutABuffer)
{
    ostream_text stream;
    stream.status(4);
    stream << '\0';
    stream.put('\0');
    EXPECT_EQ(outcomeOf(stream), (Outcome{"", 4, 0, 0}));
}

TEST(TextOutput, RendersAnUnsignedCharAsANumber)
{
    using T = unsigned char;
    expectRendering(T{0}, "0");
    expectRendering(T{9}, "9");
    expectRendering(T{10}, "10");
    expectRendering(T{65}, "65");
    expectRendering(T{200}, "200");
    expectRendering(T{255}, "255");
}

TEST(TextOutput, RendersAShort)
{
    using T = short;
    expectRendering(T{0}, "0");
    expectRendering(T{1}, "1");
    expectRendering(T{-1}, "-1");
    expectRendering(T{100}, "100");
    expectRendering(T{32767}, "32767");
    expectRendering(T{-32768}, "-32768");
}

TEST(TextOutput, RendersAnUnsignedShort)
{
    using T = unsigned short;
    expectRendering(T{0}, "0");
    expectRendering(T{32768}, "32768");
    expectRendering(T{65535}, "65535");
}

TEST(TextOutput, RendersAnInt)
{
    expectRendering(0, "0");
    expectRendering(-5, "-5");
    expectRendering(2147483647, "2147483647");
    expectRendering(std::numeric_limits<int>::min(), "-2147483648");
}

TEST(TextOutput, RendersAnUnsignedInt)
{
    expectRendering(0U, "0");
    expectRendering(1234567890U, "1234567890");
    expectRendering(2147483648U, "2147483648");
    expectRendering(4294967295U, "4294967295");
}

TEST(TextOutput, RendersALong)
{
    expectRendering(0L, "0");
    expectRendering(-5L, "-5");
    expectRendering(1000000000L, "1000000000");
    expectRendering(2147483647L, "2147483647");
    expectRendering(-2147483647L, "-2147483647");
    expectRendering(-2147483647L - 1L, "-2147483648");
}

TEST(TextOutput, RendersAnUnsignedLong)
{
    expectRendering(0UL, "0");
    expectRendering(2147483648UL, "2147483648");
    expectRendering(4294967295UL, "4294967295");
}

TEST(TextOutput, RendersTheLow32BitsOfALong)
{
    expectRendering(static_cast<long>(4294967295LL), "-1");
    expectRendering(static_cast<long>(4294967301LL), "5");
    expectRendering(static_cast<long>(2147483648LL), "-2147483648");
    expectRendering(static_cast<long>(-4294967291LL), "5");
}

TEST(TextOutput, RendersTheLow32BitsOfAnUnsignedLong)
{
    expectRendering(static_cast<unsigned long>(4294967296ULL), "0");
    expectRendering(static_cast<unsigned long>(4294967301ULL), "5");
    expectRendering(static_cast<unsigned long>(18446744073709551615ULL), "4294967295");
}

TEST(TextOutput, RendersAnUnsignedLongLong)
{
    expectRendering(0ULL, "0");
    expectRendering(4294967296ULL, "4294967296");
    expectRendering(9223372036854775808ULL, "9223372036854775808");
    expectRendering(10000000000000000000ULL, "10000000000000000000");
    expectRendering(18446744073709551615ULL, "18446744073709551615");
}

TEST(TextOutput, RefusesPointers)
{
    EXPECT_TRUE(Renderable<unsigned int>);
    EXPECT_FALSE(Renderable<const char*>);
    EXPECT_FALSE(Renderable<char*>);
    EXPECT_FALSE(Renderable<int*>);
}

TEST(TextOutput, WritesNothingBetweenValues)
{
    Output output(24);
    output.stream << 12L << ':' << true << static_cast<unsigned char>(34) << static_cast<short>(-5) << 'x' << 6ULL;
    output.stream.put('y').put("z", 1) << 7U;
    EXPECT_EQ(output.outcome(), (Outcome{"12:134-5x6yz7###########", 0, 13, 13}));
}

TEST(TextOutput, PutsACharacter)
{
    Output output(3);
    EXPECT_EQ(&output.stream.put('a'), &output.stream);
    EXPECT_EQ(output.outcome(), (Outcome{"a##", 0, 1, 1}));
    output.stream.put('\n');
    EXPECT_EQ(output.outcome(), (Outcome{"a\n#", 0, 2, 2}));
}

TEST(TextOutput, ReachesEofWithTheCharacterThatFillsTheBuffer)
{
    Output output(2);
    output.stream.put('a').put('b');
    EXPECT_EQ(output.outcome(), (Outcome{"ab", eofBit, 2, 2}));
}

TEST(TextOutput, DropsACharacterThatDoesNotFit)
{
    Output output(2);
    output.stream.put('a').put('b').put('c');
    EXPECT_EQ(output.outcome(), (Outcome{"ab", eofBit | failBit, 2, 2}));
    output.stream << 'd';
    EXPECT_EQ(output.outcome(), (Outcome{"ab", eofBit | failBit, 2, 2}));
}

TEST(TextOutput, SetsFailAloneForACharacterThatDoesNotFit)
{
    Output output(1);
    output.stream.put('a');
    output.stream.setgood();
    output.stream.put('b');
    EXPECT_EQ(output.outcome(), (Outcome{"a", failBit, 1, 1}));
}

TEST(TextOutput, PutsAText)
{
    Output output(6);
    EXPECT_EQ(&output.stream.put("abcd", 4), &output.stream);
    EXPECT_EQ(output.outcome(), (Outcome{"abcd##", 0, 4, 4}));
}

TEST(TextOutput, PutsNoMoreThanTheCountOfAText)
{
    Output output(6);
    output.stream.put("abcd", 2);
    EXPECT_EQ(output.outcome(), (Outcome{"ab####", 0, 2, 2}));
}

TEST(TextOutput, PutsATextThatHasNoTerminator)
{
    const std::vector<char> text{'a', 'b', 'c'};
    Output output(6);
    output.stream.put(text.data(), 3);
    EXPECT_EQ(output.outcome(), (Outcome{"abc###", 0, 3, 3}));
}

TEST(TextOutput, FillsAShortTextWithZeroBytes)
{
    const std::vector<char> text{'a', 'b', '\0'};
    Output output(6);
    output.stream.put(text.data(), 4);
    EXPECT_EQ(output.outcome(), (Outcome{{'a', 'b', '\0', '\0', '#', '#'}, 0, 4, 4}));
}

TEST(TextOutput, PutsNothingFromBehindTheTerminator)
{
    const std::vector<char> text{'a', '\0', 'c', 'd'};
    Output output(6);
    output.stream.put(text.data(), 4);
    EXPECT_EQ(output.outcome(), (Outcome{{'a', '\0', '\0', '\0', '#', '#'}, 0, 4, 4}));
}

TEST(TextOutput, PutsAnEmptyTextAsZeroBytes)
{
    Output output(3);
    output.stream.put("", 2);
    EXPECT_EQ(output.outcome(), (Outcome{{'\0', '\0', '#'}, 0, 2, 2}));
}

TEST(TextOutput, PutsNothingForACountOfZero)
{
    Output output(3);
    output.stream.put("abc", 0);
    EXPECT_EQ(output.outcome(), (Outcome{"###", 0, 0, 0}));
}

TEST(TextOutput, ReachesEofAgainWithACountOfZeroOnAFullBuffer)
{
    Output output(1);
    output.stream.put('a');
    output.stream.setgood();
    output.stream.put("bc", 0);
    EXPECT_EQ(output.outcome(), (Outcome{"a", eofBit, 1, 1}));
}

TEST(TextOutput, ReachesEofWithTheTextThatFillsTheBuffer)
{
    Output output(3);
    output.stream.put("abc", 3);
    EXPECT_EQ(output.outcome(), (Outcome{"abc", eofBit, 3, 3}));
}

TEST(TextOutput, CutsATextToTheRoomLeft)
{
    Output output(5);
    output.stream.put("ab", 2).put("cdefg", 5);
    EXPECT_EQ(output.outcome(), (Outcome{"abcde", eofBit | failBit, 5, 5}));
}

TEST(TextOutput, CutsATextThatIsLongerThanTheBuffer)
{
    Output output(3);
    output.stream.put("abcdefgh", 8);
    EXPECT_EQ(output.outcome(), (Outcome{"abc", eofBit | failBit, 3, 3}));
}

TEST(TextOutput, CutsTheZeroBytesOfAShortTextToTheRoomLeft)
{
    Output output(4);
    output.stream.put('x').put("a", 9);
    EXPECT_EQ(output.outcome(), (Outcome{{'x', 'a', '\0', '\0'}, eofBit | failBit, 4, 4}));
}

TEST(TextOutput, CutsTheLargestCount)
{
    Output output(4);
    output.stream.put('x').put("abcdefgh", 4294967295U);
    EXPECT_EQ(output.outcome(), (Outcome{"xabc", eofBit | failBit, 4, 4}));
}

TEST(TextOutput, PutsNothingOfATextIntoAFullBuffer)
{
    Output output(2);
    output.stream.put("ab", 2).put("cd", 2);
    EXPECT_EQ(output.outcome(), (Outcome{"ab", eofBit | failBit, 2, 2}));
}

TEST(TextOutput, SetsFailAndEofForATextOnAFullBuffer)
{
    Output output(2);
    output.stream.put("ab", 2);
    output.stream.setgood();
    output.stream.put("c", 1);
    EXPECT_EQ(output.outcome(), (Outcome{"ab", eofBit | failBit, 2, 2}));
}

TEST(TextOutput, ReachesEofWithTheNumberThatFillsTheBuffer)
{
    Output output(3);
    output.stream << 123UL;
    EXPECT_EQ(output.outcome(), (Outcome{"123", eofBit, 3, 3}));
}

TEST(TextOutput, CutsANumberToTheRoomLeft)
{
    Output output(5);
    output.stream.put("ab", 2) << 12345UL;
    EXPECT_EQ(output.outcome(), (Outcome{"ab123", eofBit | failBit, 5, 5}));
}

template <typename T>
void expectCutToTwo(T value, const char* bytes)
{
    SCOPED_TRACE(bytes);
    Output output(2);
    output.stream << value;
    EXPECT_EQ(output.outcome(), (Outcome{bytes, eofBit | failBit, 2, 2}));
}

TEST(TextOutput, CutsNumbersOfEveryType)
{
    expectCutToTwo(static_cast<unsigned char>(200), "20");
    expectCutToTwo(static_cast<short>(-123), "-1");
    expectCutToTwo(static_cast<unsigned short>(65535), "65");
    expectCutToTwo(-789, "-7");
    expectCutToTwo(4294967295U, "42");
    expectCutToTwo(-2147483647L, "-2");
    expectCutToTwo(987UL, "98");
    expectCutToTwo(18446744073709551615ULL, "18");
}

TEST(TextOutput, DropsWhatFollowsACutNumber)
{
    Output output(2);
    output.stream << 123L << ':' << 4L << true;
    EXPECT_EQ(output.outcome(), (Outcome{"12", eofBit | failBit, 2, 2}));
}

TEST(TextOutput, WritesWhateverTheStatus)
{
    for (const unsigned int status : {1U, 2U, 3U, 4U})
    {
        SCOPED_TRACE(status);
        Output output(12);
        output.stream.status(status);
        output.stream.put('a').put("bc", 2) << 'd' << true << 12L << 3ULL;
        EXPECT_EQ(output.outcome(), (Outcome{"abcd1123####", status, 8, 8}));
    }
}

TEST(TextOutput, OverwritesWithoutLoweringTheLength)
{
    Output output(8);
    output.stream.put("abcdef", 6).seekp(BEG, 1);
    output.stream << 'X' << 12U;
    EXPECT_EQ(output.outcome(), (Outcome{"aX12ef##", 0, 4, 6}));
    output.stream.put("YZ", 2);
    EXPECT_EQ(output.outcome(), (Outcome{"aX12YZ##", 0, 6, 6}));
}

TEST(TextOutput, RaisesTheLengthBeyondWhatWasOverwritten)
{
    Output output(8);
    output.stream.put("abcd", 4).seekp(3);
    output.stream << 123U;
    EXPECT_EQ(output.outcome(), (Outcome{"abc123##", 0, 6, 6}));
}

TEST(TextOutput, RaisesTheLengthToThePositionAfterAReset)
{
    Output output(8);
    output.stream.put("abc", 3);
    output.stream.streambase::reset();
    EXPECT_EQ(output.outcome(), (Outcome{"abc#####", 0, 3, 0}));
    output.stream.put('d');
    EXPECT_EQ(output.outcome(), (Outcome{"abcd####", 0, 4, 4}));
}

TEST(TextOutput, WritesNothingWithoutABuffer)
{
    ostream_text stream;
    EXPECT_EQ(stream.status(), eofBit | failBit);
    stream.put('a').put("bc", 2) << 'd' << true << 12L << 34ULL;
    EXPECT_EQ(outcomeOf(stream), (Outcome{"", eofBit | failBit, 0, 0}));
}

TEST(TextOutput, WritesNothingIntoANullBuffer)
{
    ostream_text stream;
    stream.attachBuffer(nullptr, 10);
    stream.put('a').put("bc", 2) << 'd' << true << 12L << 34ULL;
    EXPECT_EQ(outcomeOf(stream), (Outcome{"", eofBit | failBit, 0, 0}));
}

TEST(TextOutput, WritesNothingAfterDetaching)
{
    Output output(4);
    output.stream.put('a');
    output.stream.detachBuffer();
    output.stream.put('b').put("cd", 2) << 5L;
    EXPECT_EQ(output.outcome(), (Outcome{"a###", eofBit | failBit, 0, 0}));
}

TEST(TextOutput, WritesNothingWithoutABufferThoughMadeGood)
{
    ostream_text stream;
    stream.setgood();
    stream.put('a');
    EXPECT_EQ(outcomeOf(stream), (Outcome{"", failBit, 0, 0}));
    stream.setgood();
    stream << 12L;
    EXPECT_EQ(outcomeOf(stream), (Outcome{"", eofBit | failBit, 0, 0}));
}

TEST(TextOutput, ConvertsAMagnitudeAndASign)
{
    EXPECT_EQ(converted(ostream_text::intToAscii, 0UL, false), "0");
    EXPECT_EQ(converted(ostream_text::intToAscii, 0UL, true), "-0");
    EXPECT_EQ(converted(ostream_text::intToAscii, 7UL, false), "7");
    EXPECT_EQ(converted(ostream_text::intToAscii, 1020UL, true), "-1020");
    EXPECT_EQ(converted(ostream_text::intToAscii, 4294967295UL, false), "4294967295");
    EXPECT_EQ(converted(ostream_text::intToAscii, 4294967295UL, true), "-4294967295");
}

TEST(TextOutput, ConvertsAMagnitudeModulo32Bits)
{
    const unsigned long value = static_cast<unsigned long>(4294967298ULL);
    EXPECT_EQ(converted(ostream_text::intToAscii, value, false), "2");
    EXPECT_EQ(converted(ostream_text::intToAscii, value, true), "-2");
}

TEST(TextOutput, ConvertsAnUnsignedNumber)
{
    EXPECT_EQ(converted(ostream_text::unsignedToAscii, 0UL), "0");
    EXPECT_EQ(converted(ostream_text::unsignedToAscii, 90UL), "90");
    EXPECT_EQ(converted(ostream_text::unsignedToAscii, 2147483648UL), "2147483648");
    EXPECT_EQ(converted(ostream_text::unsignedToAscii, 4294967295UL), "4294967295");
    EXPECT_EQ(converted(ostream_text::unsignedToAscii, static_cast<unsigned long>(4294967298ULL)), "2");
}

TEST(TextOutput, ConvertsASignedNumber)
{
    EXPECT_EQ(converted(ostream_text::signedToAscii, 0L), "0");
    EXPECT_EQ(converted(ostream_text::signedToAscii, 15L), "15");
    EXPECT_EQ(converted(ostream_text::signedToAscii, -15L), "-15");
    EXPECT_EQ(converted(ostream_text::signedToAscii, 2147483647L), "2147483647");
    EXPECT_EQ(converted(ostream_text::signedToAscii, -2147483647L - 1L), "-2147483648");
}

TEST(TextOutput, ConvertsASignedNumberModulo32Bits)
{
    EXPECT_EQ(converted(ostream_text::signedToAscii, static_cast<long>(4294967295LL)), "-1");
    EXPECT_EQ(converted(ostream_text::signedToAscii, static_cast<long>(-4294967295LL)), "1");
    EXPECT_EQ(converted(ostream_text::signedToAscii, static_cast<long>(2147483648LL)), "-2147483648");
}

TEST(TextOutput, ConvertsA64BitMagnitudeAndASign)
{
    EXPECT_EQ(converted(ostream_text::longLongToAscii, 0ULL, false), "0");
    EXPECT_EQ(converted(ostream_text::longLongToAscii, 0ULL, true), "-0");
    EXPECT_EQ(converted(ostream_text::longLongToAscii, 4294967296ULL, false), "4294967296");
    EXPECT_EQ(converted(ostream_text::longLongToAscii, 4294967296ULL, true), "-4294967296");
    EXPECT_EQ(converted(ostream_text::longLongToAscii, 18446744073709551615ULL, false), "18446744073709551615");
}

TEST(TextOutput, ConvertsTheLongestNumberWithinTheDocumentedRoom)
{
    EXPECT_EQ(converted(ostream_text::longLongToAscii, 18446744073709551615ULL, true), "-18446744073709551615");
}

TEST(TextOutput, ConvertsAnUnsigned64BitNumber)
{
    EXPECT_EQ(converted(ostream_text::unsignedLongLongToAscii, 0ULL), "0");
    EXPECT_EQ(converted(ostream_text::unsignedLongLongToAscii, 10000000000ULL), "10000000000");
    EXPECT_EQ(converted(ostream_text::unsignedLongLongToAscii, 18446744073709551615ULL), "18446744073709551615");
}

TEST(TextOutput, ConvertsASigned64BitNumber)
{
    const long long most = std::numeric_limits<long long>::max();
    EXPECT_EQ(converted(ostream_text::signedLongLongToAscii, 0LL), "0");
    EXPECT_EQ(converted(ostream_text::signedLongLongToAscii, 61LL), "61");
    EXPECT_EQ(converted(ostream_text::signedLongLongToAscii, -4294967296LL), "-4294967296");
    EXPECT_EQ(converted(ostream_text::signedLongLongToAscii, most), "9223372036854775807");
    EXPECT_EQ(converted(ostream_text::signedLongLongToAscii, -most - 1), "-9223372036854775808");
}

} // namespace

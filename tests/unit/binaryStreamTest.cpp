#include "stream.h"

#include <gtest/gtest.h>

#include <bit>
#include <climits>
#include <cstddef>
#include <ostream>
#include <type_traits>
#include <utility>
#include <vector>

using namespace commonStream;

namespace
{

using Bytes = std::vector<unsigned char>;

constexpr unsigned int eofBit = 1;
constexpr unsigned int failBit = 2;

// What a buffer or a target holds before it is used.
constexpr unsigned char old = 0xEE;
constexpr char oldChar = '\xEE';

constexpr bool isBigEndian = std::endian::native == std::endian::big;

template <typename Target>
concept Writes = requires(ostream_binary& stream, Target value)
{
    stream << value;
};

static_assert(!Writes<const char*> && !Writes<char*> && !Writes<const void*> && !Writes<std::nullptr_t>);
static_assert(Writes<bool> && Writes<char> && Writes<unsigned long long>);
static_assert(std::is_same_v<decltype(std::declval<ostream_binary&>() << 'a'), ostream_binary&>);
static_assert(std::is_same_v<decltype(std::declval<ostream_binary&>().put('a')), ostream_binary&>);
static_assert(std::is_same_v<decltype(std::declval<ostream_binary&>().put("a", 1)), ostream_binary&>);
static_assert(std::is_same_v<decltype(std::declval<istream_binary&>() >> std::declval<char&>()), istream_binary&>);
static_assert(
    std::is_same_v<decltype(std::declval<istream_binary&>().get(std::declval<char&>())), istream_binary&>);
static_assert(std::is_same_v<decltype(std::declval<istream_binary&>().get(nullptr, 0U)), istream_binary&>);
static_assert(std::is_same_v<decltype(std::declval<istream_binary&>().get(nullptr, 0U, ':')), istream_binary&>);

// Pointers to protected members, to put a stream where no sequence of small writes gets it.
struct BaseMembers : streambase
{
    static constexpr unsigned int streambase::*length = &BaseMembers::m_length;
};

struct OutputMembers : ostreambase
{
    static constexpr unsigned int ostreambase::*position = &OutputMembers::m_currentWritePosition;
};

// What an output shows.
struct Written
{
    Bytes bytes;
    unsigned int status;
    unsigned int position;
    unsigned int length;

    bool operator==(const Written&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Written& written)
{
    return out << testing::PrintToString(written.bytes) << ", status " << written.status << ", position "
               << written.position << ", length " << written.length;
}

Bytes toBytes(const std::vector<char>& characters)
{
    return Bytes(characters.begin(), characters.end());
}

std::vector<char> toChars(const Bytes& bytes)
{
    return std::vector<char>(bytes.begin(), bytes.end());
}

// An output to a buffer of exactly the given size.
class Output
{
public:
    explicit Output(unsigned int size) : m_buffer(size, oldChar)
    {
        stream.attachBuffer(m_buffer.data(), size);
    }

    // The same with some bytes written, all '.'.
    Output(unsigned int size, unsigned int written) : Output(size)
    {
        stream.put(std::vector<char>(written, '.').data(), written);
    }

    Written state() const
    {
        EXPECT_EQ(stream.getBuffer(), m_buffer.data());
        EXPECT_EQ(stream.getBufferLength(), m_buffer.size());
        return {toBytes(m_buffer), stream.status(), stream.tellp(), stream.length()};
    }

    ostream_binary stream;

private:
    std::vector<char> m_buffer;
};

// What an input shows.
struct Progress
{
    unsigned int status;
    unsigned int position;
    unsigned int length;

    bool operator==(const Progress&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Progress& progress)
{
    return out << "status " << progress.status << ", position " << progress.position << ", length "
               << progress.length;
}

// An input from a buffer that holds exactly the given bytes.
class Input
{
public:
    explicit Input(const Bytes& bytes, unsigned int position = 0) : m_buffer(toChars(bytes)), m_bytes(bytes)
    {
        stream.attachBuffer(m_buffer.data(), static_cast<unsigned int>(m_buffer.size()));
        stream.seekg(position);
    }

    Progress state() const
    {
        EXPECT_EQ(stream.getBuffer(), m_buffer.data());
        EXPECT_EQ(stream.getBufferLength(), m_buffer.size());
        EXPECT_EQ(toBytes(m_buffer), m_bytes);
        return {stream.status(), stream.tellg(), stream.length()};
    }

    istream_binary stream;

private:
    std::vector<char> m_buffer;
    Bytes m_bytes;
};

Bytes join(Bytes first, const Bytes& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

// Calls check(value, its bytes) with one number of every type. The bytes of each are all alike, so that
// the order in which they are written does not matter.
template <typename Check>
void forEveryType(Check check)
{
    const auto checkType = [&check](const char* type, auto value, const Bytes& bytes)
    {
        SCOPED_TRACE(type);
        check(value, bytes);
    };
    checkType("bool", true, Bytes(1, 0x01));
    checkType("char", '\x5A', Bytes(1, 0x5A));
    checkType("unsigned char", static_cast<unsigned char>(0x5A), Bytes(1, 0x5A));
    checkType("short", static_cast<short>(0x5A5A), Bytes(2, 0x5A));
    checkType("unsigned short", static_cast<unsigned short>(0x5A5A), Bytes(2, 0x5A));
    checkType("int", 0x5A5A5A5A, Bytes(4, 0x5A));
    checkType("unsigned int", 0x5A5A5A5AU, Bytes(4, 0x5A));
    checkType("long", 0x5A5A5A5AL, Bytes(4, 0x5A));
    checkType("unsigned long", 0x5A5A5A5AUL, Bytes(4, 0x5A));
    checkType("unsigned long long", 0x5A5A5A5A5A5A5A5AULL, Bytes(8, 0x5A));
}

// ---- Writing numbers ----

// Writes a number behind one other byte.
template <typename T>
Bytes written(T value)
{
    Output out(9, 1);
    EXPECT_EQ(&(out.stream << value), &out.stream);

    Bytes bytes = out.state().bytes;
    const unsigned int end = out.stream.tellp();
    EXPECT_EQ(out.stream.length(), end);
    EXPECT_EQ(out.stream.status(), end == 9 ? eofBit : 0);
    EXPECT_EQ(bytes[0], '.');
    EXPECT_EQ(Bytes(bytes.begin() + end, bytes.end()), Bytes(9 - end, old));
    return Bytes(bytes.begin() + 1, bytes.begin() + end);
}

TEST(BinaryOutput, WritesABoolAsOneOrZero)
{
    EXPECT_EQ(written(true), (Bytes{1}));
    EXPECT_EQ(written(false), (Bytes{0}));
}

TEST(BinaryOutput, WritesACharAsItsByte)
{
    EXPECT_EQ(written('A'), (Bytes{0x41}));
    EXPECT_EQ(written('\0'), (Bytes{0x00}));
    EXPECT_EQ(written('\xFE'), (Bytes{0xFE}));
}

TEST(BinaryOutput, WritesAnUnsignedCharAsItsByte)
{
    EXPECT_EQ(written(static_cast<unsigned char>(0)), (Bytes{0x00}));
    EXPECT_EQ(written(static_cast<unsigned char>(65)), (Bytes{0x41}));
    EXPECT_EQ(written(static_cast<unsigned char>(255)), (Bytes{0xFF}));
}

TEST(BinaryOutput, WritesAShortMostSignificantByteFirst)
{
    EXPECT_EQ(written(static_cast<short>(0x1234)), (Bytes{0x12, 0x34}));
    EXPECT_EQ(written(static_cast<short>(-2)), (Bytes{0xFF, 0xFE}));
    EXPECT_EQ(written(static_cast<short>(32767)), (Bytes{0x7F, 0xFF}));
    EXPECT_EQ(written(static_cast<short>(-32768)), (Bytes{0x80, 0x00}));
}

TEST(BinaryOutput, WritesAnUnsignedShortMostSignificantByteFirst)
{
    EXPECT_EQ(written(static_cast<unsigned short>(0x1234)), (Bytes{0x12, 0x34}));
    EXPECT_EQ(written(static_cast<unsigned short>(0)), (Bytes{0x00, 0x00}));
    EXPECT_EQ(written(static_cast<unsigned short>(0x8001)), (Bytes{0x80, 0x01}));
    EXPECT_EQ(written(static_cast<unsigned short>(65535)), (Bytes{0xFF, 0xFF}));
}

TEST(BinaryOutput, WritesAnIntMostSignificantByteFirst)
{
    EXPECT_EQ(written(0x01020304), (Bytes{0x01, 0x02, 0x03, 0x04}));
    EXPECT_EQ(written(-2), (Bytes{0xFF, 0xFF, 0xFF, 0xFE}));
    EXPECT_EQ(written(INT_MAX), (Bytes{0x7F, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(written(INT_MIN), (Bytes{0x80, 0x00, 0x00, 0x00}));
}

TEST(BinaryOutput, WritesAnUnsignedIntMostSignificantByteFirst)
{
    EXPECT_EQ(written(0x01020304U), (Bytes{0x01, 0x02, 0x03, 0x04}));
    EXPECT_EQ(written(0U), (Bytes{0x00, 0x00, 0x00, 0x00}));
    EXPECT_EQ(written(0x80FF7F01U), (Bytes{0x80, 0xFF, 0x7F, 0x01}));
    EXPECT_EQ(written(0xFFFFFFFFU), (Bytes{0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(BinaryOutput, WritesALongInFourBytesMostSignificantByteFirst)
{
    EXPECT_EQ(written(0x01020304L), (Bytes{0x01, 0x02, 0x03, 0x04}));
    EXPECT_EQ(written(-2L), (Bytes{0xFF, 0xFF, 0xFF, 0xFE}));
    EXPECT_EQ(written(2147483647L), (Bytes{0x7F, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(written(-2147483647L - 1), (Bytes{0x80, 0x00, 0x00, 0x00}));
}

TEST(BinaryOutput, WritesAnUnsignedLongInFourBytesMostSignificantByteFirst)
{
    EXPECT_EQ(written(0x01020304UL), (Bytes{0x01, 0x02, 0x03, 0x04}));
    EXPECT_EQ(written(0UL), (Bytes{0x00, 0x00, 0x00, 0x00}));
    EXPECT_EQ(written(0x80FF7F01UL), (Bytes{0x80, 0xFF, 0x7F, 0x01}));
    EXPECT_EQ(written(0xFFFFFFFFUL), (Bytes{0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(BinaryOutput, WritesTheLowBitsOfALongThatIsWider)
{
    EXPECT_EQ(written(static_cast<long>(0x1122334455667788LL)), (Bytes{0x55, 0x66, 0x77, 0x88}));
    EXPECT_EQ(written(static_cast<unsigned long>(0x1122334455667788ULL)), (Bytes{0x55, 0x66, 0x77, 0x88}));
    EXPECT_EQ(written(static_cast<long>(0x100000000LL)), (Bytes{0x00, 0x00, 0x00, 0x00}));
    EXPECT_EQ(written(static_cast<unsigned long>(0xFFFFFFFF00000001ULL)), (Bytes{0x00, 0x00, 0x00, 0x01}));
}

TEST(BinaryOutput, WritesAnUnsignedLongLongMostSignificantByteFirst)
{
    EXPECT_EQ(written(1ULL), (Bytes{0, 0, 0, 0, 0, 0, 0, 1}));
    EXPECT_EQ(written(0x0102030405060708ULL), (Bytes{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(written(0x8000000000000000ULL), (Bytes{0x80, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(written(0xFFFFFFFFFFFFFFFFULL), Bytes(8, 0xFF));
}

TEST(BinaryOutput, PutsOneByte)
{
    Output out(3, 1);

    EXPECT_EQ(&out.stream.put('\0'), &out.stream);
    EXPECT_EQ(out.state(), (Written{{'.', 0x00, old}, 0, 2, 2}));
    EXPECT_EQ(&out.stream.put('\xFE'), &out.stream);
    EXPECT_EQ(out.state(), (Written{{'.', 0x00, 0xFE}, eofBit, 3, 3}));
}

TEST(BinaryOutput, WritesAnUnsignedShortAtPositionTwo)
{
    Output out(5, 2);

    out.stream << static_cast<unsigned short>(0x1234);

    EXPECT_EQ(out.state(), (Written{{'.', '.', 0x12, 0x34, old}, 0, 4, 4}));
}

TEST(BinaryOutput, WritesALongAtPositionFour)
{
    Output out(9, 4);

    out.stream << -2L;

    EXPECT_EQ(out.state(), (Written{{'.', '.', '.', '.', 0xFF, 0xFF, 0xFF, 0xFE, old}, 0, 8, 8}));
}

TEST(BinaryOutput, WritesAllTypesInAChain)
{
    Output out(37);

    out.stream << true << 'a' << static_cast<unsigned char>(0xB1) << static_cast<short>(-3)
               << static_cast<unsigned short>(0xC1C2) << 0x11121314 << 0x21222324U << -4L << 0x31323334UL
               << 0x4142434445464748ULL;
    out.stream.put('p').put("qr", 2);

    EXPECT_EQ(out.state(), (Written{{0x01, 'a',  0xB1, 0xFF, 0xFD, 0xC1, 0xC2, 0x11, 0x12, 0x13, 0x14, 0x21, 0x22,
                                     0x23, 0x24, 0xFF, 0xFF, 0xFF, 0xFC, 0x31, 0x32, 0x33, 0x34, 0x41, 0x42, 0x43,
                                     0x44, 0x45, 0x46, 0x47, 0x48, 'p',  'q',  'r',  old,  old,  old},
                                    0,
                                    34,
                                    34}));
}

// ---- Position 0 ----

template <typename T>
Bytes writtenFirst(T value)
{
    Output out(8);
    out.stream << value;

    Bytes bytes = out.state().bytes;
    bytes.resize(out.stream.tellp());
    EXPECT_EQ(out.state().status, bytes.size() == 8 ? eofBit : 0);
    EXPECT_EQ(out.stream.length(), bytes.size());
    return bytes;
}

TEST(BinaryOutput, WritesUnsignedWordsAtPositionZeroInHostOrder)
{
    const Bytes expected = isBigEndian ? Bytes{0x01, 0x02, 0x03, 0x04} : Bytes{0x04, 0x03, 0x02, 0x01};

    EXPECT_EQ(writtenFirst(0x01020304U), expected);
    EXPECT_EQ(writtenFirst(0x01020304UL), expected);
}

TEST(BinaryOutput, WritesTheLowBitsOfAWiderUnsignedLongAtPositionZeroInHostOrder)
{
    const Bytes expected = isBigEndian ? Bytes{0x55, 0x66, 0x77, 0x88} : Bytes{0x88, 0x77, 0x66, 0x55};

    EXPECT_EQ(writtenFirst(static_cast<unsigned long>(0x1122334455667788ULL)), expected);
}

TEST(BinaryOutput, WritesAllElseAtPositionZeroMostSignificantByteFirst)
{
    EXPECT_EQ(writtenFirst(true), (Bytes{1}));
    EXPECT_EQ(writtenFirst('\x12'), (Bytes{0x12}));
    EXPECT_EQ(writtenFirst(static_cast<unsigned char>(0x12)), (Bytes{0x12}));
    EXPECT_EQ(writtenFirst(static_cast<short>(0x1234)), (Bytes{0x12, 0x34}));
    EXPECT_EQ(writtenFirst(static_cast<unsigned short>(0x1234)), (Bytes{0x12, 0x34}));
    EXPECT_EQ(writtenFirst(0x01020304), (Bytes{0x01, 0x02, 0x03, 0x04}));
    EXPECT_EQ(writtenFirst(0x01020304L), (Bytes{0x01, 0x02, 0x03, 0x04}));
    EXPECT_EQ(writtenFirst(1ULL), (Bytes{0, 0, 0, 0, 0, 0, 0, 1}));
}

TEST(BinaryOutput, WritesUnsignedWordsInHostOrderAtNoOtherPosition)
{
    for (const unsigned int position : {1U, 2U, 3U, 4U, 5U, 8U})
    {
        SCOPED_TRACE(position);
        const Bytes expected = join(Bytes(position, '.'), {0x01, 0x02, 0x03, 0x04, old});
        Output forInt(position + 5, position);
        Output forLong(position + 5, position);

        forInt.stream << 0x01020304U;
        forLong.stream << 0x01020304UL;

        EXPECT_EQ(forInt.state(), (Written{expected, 0, position + 4, position + 4}));
        EXPECT_EQ(forLong.state(), (Written{expected, 0, position + 4, position + 4}));
    }
}

TEST(BinaryOutput, WritesOnlyTheFirstOfTwoWordsInHostOrder)
{
    Output out(9);

    out.stream << 0x01020304UL << 0x01020304UL;

    const Bytes expected = isBigEndian ? Bytes{1, 2, 3, 4, 1, 2, 3, 4, old} : Bytes{4, 3, 2, 1, 1, 2, 3, 4, old};
    EXPECT_EQ(out.state(), (Written{expected, 0, 8, 8}));
}

TEST(BinaryOutput, WritesInHostOrderAgainAfterSeekingBack)
{
    Output out(7, 6);

    out.stream.seekp(0U);
    out.stream << 0x01020304U;

    const Bytes expected = isBigEndian ? Bytes{1, 2, 3, 4, '.', '.', old} : Bytes{4, 3, 2, 1, '.', '.', old};
    EXPECT_EQ(out.state(), (Written{expected, 0, 4, 6}));
}

TEST(BinaryOutput, FillsABufferOfFourBytesWithAnUnsignedWord)
{
    const Bytes expected = isBigEndian ? Bytes{1, 2, 3, 4} : Bytes{4, 3, 2, 1};
    Output forInt(4);
    Output forLong(4);

    forInt.stream << 0x01020304U;
    forLong.stream << 0x01020304UL;

    EXPECT_EQ(forInt.state(), (Written{expected, eofBit, 4, 4}));
    EXPECT_EQ(forLong.state(), (Written{expected, eofBit, 4, 4}));
}

TEST(BinaryOutput, RefusesAnUnsignedWordAtPositionZeroThatDoesNotFit)
{
    Output out(3);

    out.stream << 0x01020304U;
    EXPECT_EQ(out.state(), (Written{{old, old, old}, failBit, 0, 0}));
    out.stream << 0x01020304UL;
    EXPECT_EQ(out.state(), (Written{{old, old, old}, failBit, 0, 0}));
}

// ---- Room for numbers ----

TEST(BinaryOutput, RefusesANumberThatDoesNotFit)
{
    forEveryType(
        [](auto value, const Bytes& bytes)
        {
            const auto width = static_cast<unsigned int>(bytes.size());
            for (const unsigned int position : {0U, 1U, 3U})
            {
                for (unsigned int room = position == 0 ? 1 : 0; room < width; ++room)
                {
                    SCOPED_TRACE(testing::Message() << room << " bytes of room at position " << position);
                    Output out(position + room, position);
                    out.stream.setgood();

                    EXPECT_EQ(&(out.stream << value), &out.stream);

                    const Bytes unchanged = join(Bytes(position, '.'), Bytes(room, old));
                    EXPECT_EQ(out.state(), (Written{unchanged, failBit, position, position}));
                }
            }
        });
}

TEST(BinaryOutput, SetsEofWhenANumberFillsTheBuffer)
{
    forEveryType(
        [](auto value, const Bytes& bytes)
        {
            const auto width = static_cast<unsigned int>(bytes.size());
            for (const unsigned int position : {0U, 1U, 3U})
            {
                SCOPED_TRACE(position);
                Output out(position + width, position);

                out.stream << value;

                EXPECT_EQ(out.state(), (Written{join(Bytes(position, '.'), bytes), eofBit, position + width,
                                                position + width}));
            }
        });
}

TEST(BinaryOutput, StaysGoodWhenOneByteOfRoomRemains)
{
    forEveryType(
        [](auto value, const Bytes& bytes)
        {
            const auto width = static_cast<unsigned int>(bytes.size());
            for (const unsigned int position : {0U, 1U, 3U})
            {
                SCOPED_TRACE(position);
                Output out(position + width + 1, position);

                out.stream << value;

                EXPECT_EQ(out.state(), (Written{join(join(Bytes(position, '.'), bytes), {old}), 0,
                                                position + width, position + width}));
            }
        });
}

TEST(BinaryOutput, RefusesAByteToPutIntoAFullBuffer)
{
    Output out(2, 2);
    EXPECT_EQ(out.state(), (Written{{'.', '.'}, eofBit, 2, 2}));

    out.stream.put('a');
    EXPECT_EQ(out.state(), (Written{{'.', '.'}, eofBit | failBit, 2, 2}));

    out.stream.setgood();
    EXPECT_EQ(&out.stream.put('a'), &out.stream);
    EXPECT_EQ(out.state(), (Written{{'.', '.'}, failBit, 2, 2}));
}

TEST(BinaryOutput, RefusesAnyNumberOnceTheBufferIsFull)
{
    forEveryType(
        [](auto value, const Bytes&)
        {
            Output out(3, 3);

            out.stream << value;

            EXPECT_EQ(out.state(), (Written{{'.', '.', '.'}, eofBit | failBit, 3, 3}));
        });
}

TEST(BinaryOutput, GoesOnAfterARefusalWithWhatFits)
{
    Output out(5, 2);

    out.stream << 0x01020304;
    EXPECT_EQ(out.state(), (Written{{'.', '.', old, old, old}, failBit, 2, 2}));
    out.stream << static_cast<short>(0x1234);
    EXPECT_EQ(out.state(), (Written{{'.', '.', 0x12, 0x34, old}, failBit, 4, 4}));
    out.stream << static_cast<short>(0x5678);
    EXPECT_EQ(out.state(), (Written{{'.', '.', 0x12, 0x34, old}, failBit, 4, 4}));
    out.stream << '\x9A';
    EXPECT_EQ(out.state(), (Written{{'.', '.', 0x12, 0x34, 0x9A}, eofBit | failBit, 5, 5}));
}

TEST(BinaryOutput, WritesWhateverTheStatus)
{
    forEveryType(
        [](auto value, const Bytes& bytes)
        {
            const auto width = static_cast<unsigned int>(bytes.size());
            for (const unsigned int status : {1U, 2U, 3U, 4U, 0x80000000U})
            {
                SCOPED_TRACE(status);
                Output out(width + 1);
                out.stream.status(status);

                out.stream << value;

                EXPECT_EQ(out.state(), (Written{join(bytes, {old}), status, width, width}));
            }
        });
}

TEST(BinaryOutput, PutsWhateverTheStatus)
{
    for (const unsigned int status : {1U, 2U, 3U, 4U, 0x80000000U})
    {
        SCOPED_TRACE(status);
        Output out(4);
        out.stream.status(status);

        out.stream.put('a').put("bc", 2);

        EXPECT_EQ(out.state(), (Written{{'a', 'b', 'c', old}, status, 3, 3}));
    }
}

TEST(BinaryOutput, KeepsItsLengthWhenRewriting)
{
    forEveryType(
        [](auto value, const Bytes& bytes)
        {
            const auto width = static_cast<unsigned int>(bytes.size());
            Output out(12, 10);
            out.stream.seekp(1U);

            out.stream << value;

            const Bytes expected = join(join(join({'.'}, bytes), Bytes(9 - width, '.')), {old, old});
            EXPECT_EQ(out.state(), (Written{expected, 0, 1 + width, 10}));
        });
}

TEST(BinaryOutput, RaisesItsLengthWhenRewritingGoesBeyondIt)
{
    Output out(8, 5);
    out.stream.seekp(4U);

    out.stream << static_cast<unsigned short>(0x1234);

    EXPECT_EQ(out.state(), (Written{{'.', '.', '.', '.', 0x12, 0x34, old, old}, 0, 6, 6}));
}

TEST(BinaryOutput, RefusesANumberWhereItsEndWrapsAround)
{
    forEveryType(
        [](auto value, const Bytes&)
        {
            std::vector<char> buffer(8, oldChar);
            ostream_binary stream;
            stream.attachBuffer(buffer.data(), 8);
            stream.*OutputMembers::position = 0xFFFFFFFF;

            stream << value;

            EXPECT_EQ(buffer, std::vector<char>(8, oldChar));
            EXPECT_EQ(stream.status(), failBit);
            EXPECT_EQ(stream.tellp(), 0xFFFFFFFFU);
            EXPECT_EQ(stream.length(), 0U);
        });
}

// ---- Writing byte strings ----

TEST(BinaryOutput, PutsAByteStringWithItsZeroBytesAndNoTerminator)
{
    Output out(6, 1);
    const std::vector<char> bytes = {'a', '\0', '\xFE'};

    EXPECT_EQ(&out.stream.put(bytes.data(), 3), &out.stream);

    EXPECT_EQ(out.state(), (Written{{'.', 'a', 0x00, 0xFE, old, old}, 0, 4, 4}));
}

TEST(BinaryOutput, PutsNoMoreThanTheGivenCount)
{
    Output out(6);

    out.stream.put("abcde", 2);

    EXPECT_EQ(out.state(), (Written{{'a', 'b', old, old, old, old}, 0, 2, 2}));
}

TEST(BinaryOutput, PutsAnEmptyByteString)
{
    Output out(3, 1);

    EXPECT_EQ(&out.stream.put("abc", 0), &out.stream);

    EXPECT_EQ(out.state(), (Written{{'.', old, old}, 0, 1, 1}));
}

TEST(BinaryOutput, SetsEofWhenAByteStringFillsTheBuffer)
{
    Output fromStart(3);
    fromStart.stream.put("abc", 3);
    EXPECT_EQ(fromStart.state(), (Written{{'a', 'b', 'c'}, eofBit, 3, 3}));

    Output fromTheMiddle(3, 1);
    fromTheMiddle.stream.put("ab", 2);
    EXPECT_EQ(fromTheMiddle.state(), (Written{{'.', 'a', 'b'}, eofBit, 3, 3}));
}

TEST(BinaryOutput, CutsAByteStringToTheRoomLeft)
{
    Output out(5, 2);

    EXPECT_EQ(&out.stream.put("abcde", 5), &out.stream);

    EXPECT_EQ(out.state(), (Written{{'.', '.', 'a', 'b', 'c'}, eofBit | failBit, 5, 5}));
}

TEST(BinaryOutput, CutsAByteStringByOneByte)
{
    Output fromStart(3);
    fromStart.stream.put("abcd", 4);
    EXPECT_EQ(fromStart.state(), (Written{{'a', 'b', 'c'}, eofBit | failBit, 3, 3}));

    Output fromTheMiddle(3, 1);
    fromTheMiddle.stream.put("abc", 3);
    EXPECT_EQ(fromTheMiddle.state(), (Written{{'.', 'a', 'b'}, eofBit | failBit, 3, 3}));
}

TEST(BinaryOutput, ReadsNoMoreOfAByteStringThanItWrites)
{
    const std::vector<char> bytes = {'a', 'b'};
    Output out(3, 1);

    out.stream.put(bytes.data(), UINT_MAX);

    EXPECT_EQ(out.state(), (Written{{'.', 'a', 'b'}, eofBit | failBit, 3, 3}));
}

TEST(BinaryOutput, PutsNothingIntoAFullBuffer)
{
    Output out(2, 2);
    out.stream.setgood();

    out.stream.put("abc", 1);

    EXPECT_EQ(out.state(), (Written{{'.', '.'}, eofBit | failBit, 2, 2}));
}

TEST(BinaryOutput, SetsEofAloneForAnEmptyByteStringInAFullBuffer)
{
    Output out(2, 2);
    out.stream.setgood();

    out.stream.put("abc", 0);

    EXPECT_EQ(out.state(), (Written{{'.', '.'}, eofBit, 2, 2}));
}

TEST(BinaryOutput, KeepsItsLengthWhenRewritingWithAByteString)
{
    Output out(6, 5);
    out.stream.seekp(1U);

    out.stream.put("ab", 2);

    EXPECT_EQ(out.state(), (Written{{'.', 'a', 'b', '.', '.', old}, 0, 3, 5}));
}

TEST(BinaryOutput, RaisesItsLengthWhenAByteStringGoesBeyondIt)
{
    Output out(6, 3);
    out.stream.seekp(2U);

    out.stream.put("ab", 2);

    EXPECT_EQ(out.state(), (Written{{'.', '.', 'a', 'b', old, old}, 0, 4, 4}));
}

// ---- Output: unusable buffers and positions out of step with them ----

TEST(BinaryOutput, WritesNothingWithoutABuffer)
{
    forEveryType(
        [](auto value, const Bytes&)
        {
            ostream_binary stream;

            EXPECT_EQ(&(stream << value), &stream);

            EXPECT_EQ(stream.status(), eofBit | failBit);
            EXPECT_EQ(stream.tellp(), 0U);
            EXPECT_EQ(stream.length(), 0U);
        });
}

TEST(BinaryOutput, RefusesNumbersForANullBufferEvenIfMadeGood)
{
    forEveryType(
        [](auto value, const Bytes&)
        {
            ostream_binary stream;
            stream.attachBuffer(nullptr, 16);
            stream.setgood();

            stream << value;

            EXPECT_EQ(stream.status(), failBit);
            EXPECT_EQ(stream.tellp(), 0U);
            EXPECT_EQ(stream.length(), 0U);
        });
}

TEST(BinaryOutput, PutsNothingIntoANullBufferEvenIfMadeGood)
{
    ostream_binary stream;
    stream.attachBuffer(nullptr, 16);

    stream.setgood();
    stream.put('a');
    EXPECT_EQ(stream.status(), failBit);

    stream.setgood();
    stream.put("abc", 3);
    EXPECT_EQ(stream.status(), eofBit | failBit);

    stream.setgood();
    stream.put("abc", 0);
    EXPECT_EQ(stream.status(), eofBit);
    EXPECT_EQ(stream.tellp(), 0U);
    EXPECT_EQ(stream.length(), 0U);
}

TEST(BinaryOutput, WritesNothingIntoABufferOfLengthZero)
{
    char byte = oldChar;
    ostream_binary stream;
    stream.attachBuffer(&byte, 0);
    stream.setgood();

    stream << 'a';
    EXPECT_EQ(stream.status(), failBit);
    stream.put("a", 1);
    EXPECT_EQ(stream.status(), eofBit | failBit);
    EXPECT_EQ(stream.tellp(), 0U);
    EXPECT_EQ(stream.length(), 0U);
    EXPECT_EQ(byte, oldChar);
}

TEST(BinaryOutput, WritesIntoABufferAttachedToItsBase)
{
    std::vector<char> buffer(5, oldChar);
    ostream_binary stream;

    stream.streambase::attachBuffer(buffer.data(), 5);
    stream << static_cast<short>(0x1234);
    stream.put("abcd", 4);

    EXPECT_EQ(toBytes(buffer), (Bytes{0x12, 0x34, 'a', 'b', 'c'}));
    EXPECT_EQ(stream.status(), eofBit | failBit);
    EXPECT_EQ(stream.tellp(), 5U);
    EXPECT_EQ(stream.length(), 5U);
}

TEST(BinaryOutput, RefusesNumbersAtAPositionBeyondTheBuffer)
{
    forEveryType(
        [](auto value, const Bytes&)
        {
            Output out(8, 6);
            std::vector<char> shorter(4, oldChar);
            out.stream.streambase::attachBuffer(shorter.data(), 4);

            out.stream << value;

            EXPECT_EQ(shorter, std::vector<char>(4, oldChar));
            EXPECT_EQ(out.stream.status(), failBit);
            EXPECT_EQ(out.stream.tellp(), 6U);
            EXPECT_EQ(out.stream.length(), 6U);
        });
}

TEST(BinaryOutput, PutsNothingAtAPositionBeyondTheBuffer)
{
    Output out(8, 6);
    std::vector<char> shorter(4, oldChar);
    out.stream.streambase::attachBuffer(shorter.data(), 4);

    out.stream.put("abc", 0);
    EXPECT_EQ(out.stream.status(), 0U);
    out.stream.put("abc", 1);
    EXPECT_EQ(out.stream.status(), failBit);
    out.stream.setgood();
    out.stream.put("abcdefgh", 8);
    EXPECT_EQ(out.stream.status(), failBit);
    out.stream.setgood();
    out.stream.put('a');
    EXPECT_EQ(out.stream.status(), failBit);

    EXPECT_EQ(shorter, std::vector<char>(4, oldChar));
    EXPECT_EQ(out.stream.tellp(), 6U);
    EXPECT_EQ(out.stream.length(), 6U);
}

TEST(BinaryOutput, WritesNothingAfterItsBaseLostTheBuffer)
{
    Output out(8, 3);
    out.stream.streambase::attachBuffer(nullptr, 8);
    out.stream.setgood();

    out.stream << 1U;
    EXPECT_EQ(out.stream.status(), failBit);
    out.stream.setgood();
    out.stream.put("ab", 2);
    EXPECT_EQ(out.stream.status(), failBit);
    EXPECT_EQ(out.stream.tellp(), 3U);
    EXPECT_EQ(out.stream.length(), 3U);
}

TEST(BinaryOutput, GoesOnAtItsPositionAfterItsBaseWasReset)
{
    Output out(8, 4);
    out.stream.streambase::reset();

    out.stream << static_cast<unsigned short>(0x1234);

    EXPECT_EQ(out.state(), (Written{{'.', '.', '.', '.', 0x12, 0x34, old, old}, 0, 6, 6}));
}

TEST(BinaryOutput, StartsOverAfterItsReset)
{
    Output out(4, 4);
    out.stream.reset();

    out.stream << static_cast<unsigned short>(0x1234);

    EXPECT_EQ(out.state(), (Written{{0x12, 0x34, '.', '.'}, 0, 2, 2}));
}

// ---- Reading numbers ----

// Reads a number that stands behind one other byte, and in front of a last one.
template <typename T>
T readFrom(const Bytes& bytes, T before)
{
    Input in(join(join({'.'}, bytes), {'.'}), 1);
    EXPECT_EQ(&(in.stream >> before), &in.stream);

    const auto width = static_cast<unsigned int>(bytes.size());
    EXPECT_EQ(in.state(), (Progress{0, 1 + width, 2 + width}));
    return before;
}

TEST(BinaryInput, ReadsABoolAsTrueUnlessTheByteIsZero)
{
    EXPECT_EQ(readFrom({0x00}, true), false);
    EXPECT_EQ(readFrom({0x00}, false), false);
    EXPECT_EQ(readFrom({0x01}, false), true);
    EXPECT_EQ(readFrom({0x02}, false), true);
    EXPECT_EQ(readFrom({0x80}, false), true);
    EXPECT_EQ(readFrom({0xFF}, true), true);
}

TEST(BinaryInput, ReadsACharFromItsByte)
{
    EXPECT_EQ(readFrom({0x41}, oldChar), 'A');
    EXPECT_EQ(readFrom({0x00}, oldChar), '\0');
    EXPECT_EQ(readFrom({0xFE}, '\0'), '\xFE');
}

TEST(BinaryInput, ReadsAnUnsignedCharFromItsByte)
{
    EXPECT_EQ(readFrom<unsigned char>({0x00}, old), 0);
    EXPECT_EQ(readFrom<unsigned char>({0x41}, old), 65);
    EXPECT_EQ(readFrom<unsigned char>({0xFF}, 0), 255);
}

TEST(BinaryInput, ReadsAShort)
{
    EXPECT_EQ(readFrom<short>({0x12, 0x34}, -1), 0x1234);
    EXPECT_EQ(readFrom<short>({0xFF, 0xFE}, 0), -2);
    EXPECT_EQ(readFrom<short>({0x7F, 0xFF}, -1), 32767);
    EXPECT_EQ(readFrom<short>({0x80, 0x00}, -1), -32768);
}

TEST(BinaryInput, ReadsAnUnsignedShort)
{
    EXPECT_EQ(readFrom<unsigned short>({0x12, 0x34}, 0xFFFF), 0x1234);
    EXPECT_EQ(readFrom<unsigned short>({0xFF, 0xFE}, 0), 65534);
    EXPECT_EQ(readFrom<unsigned short>({0x00, 0x00}, 0xFFFF), 0);
}

TEST(BinaryInput, ReadsAnInt)
{
    EXPECT_EQ(readFrom({0x01, 0x02, 0x03, 0x04}, -1), 0x01020304);
    EXPECT_EQ(readFrom({0xFF, 0xFF, 0xFF, 0xFE}, 0), -2);
    EXPECT_EQ(readFrom({0x7F, 0xFF, 0xFF, 0xFF}, -1), INT_MAX);
    EXPECT_EQ(readFrom({0x80, 0x00, 0x00, 0x00}, -1), INT_MIN);
}

TEST(BinaryInput, ReadsAnUnsignedInt)
{
    EXPECT_EQ(readFrom({0x01, 0x02, 0x03, 0x04}, UINT_MAX), 0x01020304U);
    EXPECT_EQ(readFrom({0x80, 0xFF, 0x7F, 0x01}, UINT_MAX), 0x80FF7F01U);
    EXPECT_EQ(readFrom({0x00, 0x00, 0x00, 0x00}, UINT_MAX), 0U);
    EXPECT_EQ(readFrom({0xFF, 0xFF, 0xFF, 0xFE}, 0U), 4294967294U);
}

TEST(BinaryInput, ReadsALongSignExtended)
{
    EXPECT_EQ(readFrom({0x01, 0x02, 0x03, 0x04}, -1L), 0x01020304L);
    EXPECT_EQ(readFrom({0xFF, 0xFF, 0xFF, 0xFE}, 0L), -2L);
    EXPECT_EQ(readFrom({0x7F, 0xFF, 0xFF, 0xFF}, -1L), 2147483647L);
    EXPECT_EQ(readFrom({0x80, 0x00, 0x00, 0x00}, 0L), -2147483647L - 1);
    EXPECT_EQ(readFrom({0x00, 0x00, 0x00, 0x00}, -1L), 0L);
}

TEST(BinaryInput, ReadsAnUnsignedLongWithoutItsSignExtended)
{
    EXPECT_EQ(readFrom({0x01, 0x02, 0x03, 0x04}, ULONG_MAX), 0x01020304UL);
    EXPECT_EQ(readFrom({0x80, 0xFF, 0x7F, 0x01}, ULONG_MAX), 0x80FF7F01UL);
    EXPECT_EQ(readFrom({0x00, 0x00, 0x00, 0x00}, ULONG_MAX), 0UL);
    EXPECT_EQ(readFrom({0xFF, 0xFF, 0xFF, 0xFE}, 0UL), 4294967294UL);
}

TEST(BinaryInput, ReadsAnUnsignedLongLong)
{
    EXPECT_EQ(readFrom({0, 0, 0, 0, 0, 0, 0, 1}, ULLONG_MAX), 1ULL);
    EXPECT_EQ(readFrom({1, 2, 3, 4, 5, 6, 7, 8}, ULLONG_MAX), 0x0102030405060708ULL);
    EXPECT_EQ(readFrom({0x80, 0, 0, 0, 0, 0, 0, 0}, ULLONG_MAX), 0x8000000000000000ULL);
    EXPECT_EQ(readFrom(Bytes(8, 0xFF), 0ULL), ULLONG_MAX);
}

TEST(BinaryInput, GetsOneByte)
{
    Input in({'a', 0x00, 0xFE});
    char value = oldChar;

    EXPECT_EQ(&in.stream.get(value), &in.stream);
    EXPECT_EQ(value, 'a');
    EXPECT_EQ(in.state(), (Progress{0, 1, 3}));
    in.stream.get(value);
    EXPECT_EQ(value, '\0');
    EXPECT_EQ(in.state(), (Progress{0, 2, 3}));
    in.stream.get(value);
    EXPECT_EQ(value, '\xFE');
    EXPECT_EQ(in.state(), (Progress{eofBit, 3, 3}));
}

// ---- Position 0 ----

template <typename T>
T readFirst(const Bytes& bytes, T before)
{
    Input in(join(bytes, {'.'}));
    in.stream >> before;

    const auto width = static_cast<unsigned int>(bytes.size());
    EXPECT_EQ(in.state(), (Progress{0, width, width + 1}));
    return before;
}

TEST(BinaryInput, ReadsUnsignedWordsAtPositionZeroInHostOrder)
{
    EXPECT_EQ(readFirst({0x01, 0x02, 0x03, 0x04}, UINT_MAX), isBigEndian ? 0x01020304U : 0x04030201U);
    EXPECT_EQ(readFirst({0x01, 0x02, 0x03, 0x04}, ULONG_MAX), isBigEndian ? 0x01020304UL : 0x04030201UL);
    EXPECT_EQ(readFirst({0xFF, 0x00, 0x00, 0xFE}, 0UL), isBigEndian ? 0xFF0000FEUL : 0xFE0000FFUL);
}

TEST(BinaryInput, ReadsAllElseAtPositionZeroMostSignificantByteFirst)
{
    EXPECT_EQ(readFirst({0x80}, false), true);
    EXPECT_EQ(readFirst({0x12}, oldChar), '\x12');
    EXPECT_EQ(readFirst<unsigned char>({0x12}, old), 0x12);
    EXPECT_EQ(readFirst<short>({0x12, 0x34}, -1), 0x1234);
    EXPECT_EQ(readFirst<unsigned short>({0x12, 0x34}, 0xFFFF), 0x1234);
    EXPECT_EQ(readFirst({0x01, 0x02, 0x03, 0x04}, -1), 0x01020304);
    EXPECT_EQ(readFirst({0x01, 0x02, 0x03, 0x04}, -1L), 0x01020304L);
    EXPECT_EQ(readFirst({0, 0, 0, 0, 0, 0, 0, 1}, ULLONG_MAX), 1ULL);
}

TEST(BinaryInput, ReadsUnsignedWordsInHostOrderAtNoOtherPosition)
{
    for (const unsigned int position : {1U, 2U, 3U, 4U, 5U, 8U})
    {
        SCOPED_TRACE(position);
        const Bytes bytes = join(Bytes(position, '.'), {0x01, 0x02, 0x03, 0x04, '.'});
        Input forInt(bytes, position);
        Input forLong(bytes, position);
        unsigned int intValue = UINT_MAX;
        unsigned long longValue = ULONG_MAX;

        forInt.stream >> intValue;
        forLong.stream >> longValue;

        EXPECT_EQ(intValue, 0x01020304U);
        EXPECT_EQ(longValue, 0x01020304UL);
        EXPECT_EQ(forInt.state(), (Progress{0, position + 4, position + 5}));
        EXPECT_EQ(forLong.state(), (Progress{0, position + 4, position + 5}));
    }
}

TEST(BinaryInput, ReadsOnlyTheFirstOfTwoWordsInHostOrder)
{
    Input in({1, 2, 3, 4, 1, 2, 3, 4});
    unsigned long first = ULONG_MAX;
    unsigned long second = ULONG_MAX;

    in.stream >> first >> second;

    EXPECT_EQ(first, isBigEndian ? 0x01020304UL : 0x04030201UL);
    EXPECT_EQ(second, 0x01020304UL);
    EXPECT_EQ(in.state(), (Progress{eofBit, 8, 8}));
}

TEST(BinaryInput, ReadsInHostOrderAgainAfterSeekingBack)
{
    Input in({1, 2, 3, 4, 5}, 5);
    unsigned int value = UINT_MAX;

    in.stream.seekg(0U);
    in.stream >> value;

    EXPECT_EQ(value, isBigEndian ? 0x01020304U : 0x04030201U);
    EXPECT_EQ(in.state(), (Progress{0, 4, 5}));
}

TEST(BinaryInput, RefusesAnUnsignedWordAtPositionZeroThatIsNotWholeThere)
{
    Input forInt({1, 2, 3});
    Input forLong({1, 2, 3});
    unsigned int intValue = 77;
    unsigned long longValue = 77;

    forInt.stream >> intValue;
    forLong.stream >> longValue;

    EXPECT_EQ(intValue, 77U);
    EXPECT_EQ(longValue, 77UL);
    EXPECT_EQ(forInt.state(), (Progress{failBit, 0, 3}));
    EXPECT_EQ(forLong.state(), (Progress{failBit, 0, 3}));
}

// ---- End of the data ----

// A value of the type that differs from the one that is read.
template <typename T>
constexpr T other = static_cast<T>(3);
template <>
constexpr bool other<bool> = false;

TEST(BinaryInput, RefusesANumberThatIsNotWholeThere)
{
    forEveryType(
        [](auto value, const Bytes& bytes)
        {
            using Number = decltype(value);
            const auto width = static_cast<unsigned int>(bytes.size());
            for (const unsigned int position : {0U, 1U, 3U})
            {
                for (unsigned int left = 1; left < width; ++left)
                {
                    SCOPED_TRACE(testing::Message() << left << " bytes left at position " << position);
                    Input in(Bytes(position + left, 0x5A), position);
                    Number target = other<Number>;

                    EXPECT_EQ(&(in.stream >> target), &in.stream);

                    EXPECT_EQ(target, other<Number>);
                    EXPECT_EQ(in.state(), (Progress{failBit, position, position + left}));
                }
            }
        });
}

TEST(BinaryInput, RefusesANumberAtTheEndWithEofAndFailIfMadeGood)
{
    forEveryType(
        [](auto value, const Bytes&)
        {
            using Number = decltype(value);
            Input in(Bytes(3, 0x5A), 3);
            in.stream.setgood();
            Number target = other<Number>;

            in.stream >> target;

            EXPECT_EQ(target, other<Number>);
            EXPECT_EQ(in.state(), (Progress{eofBit | failBit, 3, 3}));
        });
}

TEST(BinaryInput, SetsEofWhenANumberEndsTheData)
{
    forEveryType(
        [](auto value, const Bytes& bytes)
        {
            using Number = decltype(value);
            const auto width = static_cast<unsigned int>(bytes.size());
            for (const unsigned int position : {0U, 1U, 3U})
            {
                SCOPED_TRACE(position);
                Input in(join(Bytes(position, '.'), bytes), position);
                Number target = other<Number>;

                EXPECT_EQ(&(in.stream >> target), &in.stream);

                EXPECT_EQ(target, value);
                EXPECT_EQ(in.state(), (Progress{eofBit, position + width, position + width}));
            }
        });
}

TEST(BinaryInput, StaysGoodWhenOneByteIsLeft)
{
    forEveryType(
        [](auto value, const Bytes& bytes)
        {
            using Number = decltype(value);
            const auto width = static_cast<unsigned int>(bytes.size());
            for (const unsigned int position : {0U, 1U, 3U})
            {
                SCOPED_TRACE(position);
                Input in(join(join(Bytes(position, '.'), bytes), {'.'}), position);
                Number target = other<Number>;

                in.stream >> target;

                EXPECT_EQ(target, value);
                EXPECT_EQ(in.state(), (Progress{0, position + width, position + width + 1}));
            }
        });
}

TEST(BinaryInput, SkipsAReadAfterARefusedOne)
{
    Input in({0x12, 0x34});
    int number = 77;
    char byte = oldChar;

    in.stream >> number;
    in.stream >> byte;

    EXPECT_EQ(number, 77);
    EXPECT_EQ(byte, oldChar);
    EXPECT_EQ(in.state(), (Progress{failBit, 0, 2}));
}

TEST(BinaryInput, SkipsAReadAfterTheEnd)
{
    Input in({0x12});
    char first = oldChar;
    char second = oldChar;

    in.stream >> first;
    in.stream >> second;

    EXPECT_EQ(first, '\x12');
    EXPECT_EQ(second, oldChar);
    EXPECT_EQ(in.state(), (Progress{eofBit, 1, 1}));
}

TEST(BinaryInput, ReadsNoNumberUnlessGood)
{
    forEveryType(
        [](auto value, const Bytes&)
        {
            using Number = decltype(value);
            for (const unsigned int status : {1U, 2U, 3U, 4U, 8U, 0x80000000U})
            {
                SCOPED_TRACE(status);
                Input in(Bytes(9, 0x5A));
                in.stream.status(status);
                Number target = other<Number>;

                EXPECT_EQ(&(in.stream >> target), &in.stream);

                EXPECT_EQ(target, other<Number>);
                EXPECT_EQ(in.state(), (Progress{status, 0, 9}));
            }
        });
}

TEST(BinaryInput, SetsNoFailForANumberThatIsNotThereUnlessGood)
{
    forEveryType(
        [](auto value, const Bytes&)
        {
            using Number = decltype(value);
            Input in({'a', 'b', 'c'}, 3);
            Number target = other<Number>;

            in.stream >> target;

            EXPECT_EQ(target, other<Number>);
            EXPECT_EQ(in.state(), (Progress{eofBit, 3, 3}));
        });
}

TEST(BinaryInput, SetsNoEofForANumberUnlessGood)
{
    Input in({'a', 'b', 'c'}, 3);
    in.stream.status(failBit);
    int target = 77;

    in.stream >> target;

    EXPECT_EQ(target, 77);
    EXPECT_EQ(in.state(), (Progress{failBit, 3, 3}));
}

TEST(BinaryInput, GetsNothingUnlessGood)
{
    for (const unsigned int status : {1U, 2U, 3U, 4U, 8U, 0x80000000U})
    {
        SCOPED_TRACE(status);
        Input in({'a', 'b', 'c', ':'}, 1);
        in.stream.status(status);
        char byte = oldChar;
        std::vector<char> target(5, oldChar);

        EXPECT_EQ(&in.stream.get(byte), &in.stream);
        EXPECT_EQ(&in.stream.get(target.data(), 2), &in.stream);
        EXPECT_EQ(&in.stream.get(target.data(), 5), &in.stream);
        EXPECT_EQ(&in.stream.get(target.data(), 2, ':'), &in.stream);
        EXPECT_EQ(&in.stream.get(target.data(), 5, ':'), &in.stream);

        EXPECT_EQ(byte, oldChar);
        EXPECT_EQ(target, std::vector<char>(5, oldChar));
        EXPECT_EQ(in.state(), (Progress{status, 1, 4}));
    }
}

TEST(BinaryInput, SetsNoEofForAGetUnlessGood)
{
    Input in({'a'}, 1);
    in.stream.status(failBit);
    char byte = oldChar;

    in.stream.get(byte);
    in.stream.get(&byte, 1);
    in.stream.get(&byte, 1, ':');

    EXPECT_EQ(byte, oldChar);
    EXPECT_EQ(in.state(), (Progress{failBit, 1, 1}));
}

TEST(BinaryInput, RefusesAByteToGetAtTheEndIfMadeGood)
{
    Input in({'a'}, 1);
    in.stream.setgood();
    char byte = oldChar;

    in.stream.get(byte);

    EXPECT_EQ(byte, oldChar);
    EXPECT_EQ(in.state(), (Progress{eofBit | failBit, 1, 1}));
}

TEST(BinaryInput, RefusesANumberWhereItsEndWrapsAround)
{
    forEveryType(
        [](auto value, const Bytes& bytes)
        {
            using Number = decltype(value);
            const auto width = static_cast<unsigned int>(bytes.size());
            if (width == 1)
            {
                return;
            }
            std::vector<char> buffer(8, 'x');
            istream_binary stream;
            stream.attachBuffer(buffer.data(), 8);
            stream.*BaseMembers::length = 0xFFFFFFFF;
            stream.seekg(0xFFFFFFFE);
            Number target = other<Number>;

            stream >> target;

            EXPECT_EQ(target, other<Number>);
            EXPECT_EQ(stream.status(), failBit);
            EXPECT_EQ(stream.tellg(), 0xFFFFFFFEU);
        });
}

// ---- Reading byte strings ----

// A target of exactly the given size for a byte string.
std::vector<char> target(unsigned int size)
{
    return std::vector<char>(size, oldChar);
}

TEST(BinaryInput, GetsAByteStringWithItsZeroBytesAndNoTerminator)
{
    Input in({'.', 'a', 0x00, 0xFE, '.'}, 1);
    std::vector<char> text = target(4);

    EXPECT_EQ(&in.stream.get(text.data(), 3), &in.stream);

    EXPECT_EQ(toBytes(text), (Bytes{'a', 0x00, 0xFE, old}));
    EXPECT_EQ(in.state(), (Progress{0, 4, 5}));
}

TEST(BinaryInput, SetsEofWhenAByteStringEndsTheData)
{
    Input fromStart({'a', 'b', 'c'});
    std::vector<char> text = target(3);
    fromStart.stream.get(text.data(), 3);
    EXPECT_EQ(toBytes(text), (Bytes{'a', 'b', 'c'}));
    EXPECT_EQ(fromStart.state(), (Progress{eofBit, 3, 3}));

    Input fromTheMiddle({'a', 'b', 'c'}, 1);
    text = target(2);
    fromTheMiddle.stream.get(text.data(), 2);
    EXPECT_EQ(toBytes(text), (Bytes{'b', 'c'}));
    EXPECT_EQ(fromTheMiddle.state(), (Progress{eofBit, 3, 3}));
}

TEST(BinaryInput, GetsWhatIsLeftOfAByteStringThatIsLongerThanTheData)
{
    Input in({'a', 'b', 'c'});
    std::vector<char> text = target(4);

    EXPECT_EQ(&in.stream.get(text.data(), 4), &in.stream);

    EXPECT_EQ(toBytes(text), (Bytes{'a', 'b', 'c', old}));
    EXPECT_EQ(in.state(), (Progress{eofBit | failBit, 3, 3}));
}

TEST(BinaryInput, GetsWhatIsLeftOfAByteStringThatIsLongerThanTheRest)
{
    Input in({'a', 'b', 'c'}, 1);
    std::vector<char> text = target(3);

    in.stream.get(text.data(), 3);

    EXPECT_EQ(toBytes(text), (Bytes{'b', 'c', old}));
    EXPECT_EQ(in.state(), (Progress{eofBit | failBit, 3, 3}));
}

TEST(BinaryInput, GetsNoMoreOfAByteStringThanIsLeft)
{
    Input in({'a', 'b', 'c'}, 1);
    std::vector<char> text = target(2);

    in.stream.get(text.data(), UINT_MAX);

    EXPECT_EQ(toBytes(text), (Bytes{'b', 'c'}));
    EXPECT_EQ(in.state(), (Progress{eofBit | failBit, 3, 3}));
}

TEST(BinaryInput, GetsAnEmptyByteString)
{
    Input in({'a', 'b', 'c'}, 1);
    std::vector<char> text = target(1);

    EXPECT_EQ(&in.stream.get(text.data(), 0), &in.stream);

    EXPECT_EQ(text, target(1));
    EXPECT_EQ(in.state(), (Progress{0, 1, 3}));
}

TEST(BinaryInput, SetsEofAloneForAnEmptyByteStringAtTheEndIfMadeGood)
{
    Input in({'a'}, 1);
    in.stream.setgood();
    std::vector<char> text = target(1);

    in.stream.get(text.data(), 0);

    EXPECT_EQ(text, target(1));
    EXPECT_EQ(in.state(), (Progress{eofBit, 1, 1}));
}

TEST(BinaryInput, GetsNoByteStringAtTheEndIfMadeGood)
{
    Input in({'a'}, 1);
    in.stream.setgood();
    std::vector<char> text = target(1);

    in.stream.get(text.data(), 1);

    EXPECT_EQ(text, target(1));
    EXPECT_EQ(in.state(), (Progress{eofBit | failBit, 1, 1}));
}

// ---- Reading up to a delimiter ----

TEST(BinaryInput, StopsBeforeADelimiterAndWritesNoTerminator)
{
    Input in({'a', 'b', ':', 'c', 'd'});
    std::vector<char> text = target(10);

    EXPECT_EQ(&in.stream.get(text.data(), 10, ':'), &in.stream);

    EXPECT_EQ(toBytes(text), (Bytes{'a', 'b', old, old, old, old, old, old, old, old}));
    EXPECT_EQ(in.state(), (Progress{0, 2, 5}));
}

TEST(BinaryInput, LeavesTheDelimiterAsTheNextByte)
{
    Input in({'a', ':', 'c'});
    std::vector<char> text = target(1);
    char delimiter = oldChar;

    in.stream.get(text.data(), 3, ':').get(delimiter);

    EXPECT_EQ(text[0], 'a');
    EXPECT_EQ(delimiter, ':');
    EXPECT_EQ(in.state(), (Progress{0, 2, 3}));
}

TEST(BinaryInput, StopsAtTheFirstOfSeveralDelimiters)
{
    Input in({'.', 'a', ':', 'b', ':'}, 1);
    std::vector<char> text = target(4);

    in.stream.get(text.data(), 4, ':');

    EXPECT_EQ(toBytes(text), (Bytes{'a', old, old, old}));
    EXPECT_EQ(in.state(), (Progress{0, 2, 5}));
}

TEST(BinaryInput, GetsNothingInFrontOfADelimiterThatComesFirst)
{
    Input in({'.', ':', 'b'}, 1);
    std::vector<char> text = target(2);

    in.stream.get(text.data(), 2, ':');

    EXPECT_EQ(text, target(2));
    EXPECT_EQ(in.state(), (Progress{0, 1, 3}));
}

TEST(BinaryInput, StopsBeforeADelimiterThatIsTheLastByte)
{
    Input in({'a', 'b', ':'});
    std::vector<char> text = target(3);

    in.stream.get(text.data(), 3, ':');

    EXPECT_EQ(toBytes(text), (Bytes{'a', 'b', old}));
    EXPECT_EQ(in.state(), (Progress{0, 2, 3}));
}

TEST(BinaryInput, StopsBeforeALastDelimiterWithoutFailAlsoIfMoreIsWanted)
{
    Input in({'a', 'b', ':'});
    std::vector<char> text = target(4);

    in.stream.get(text.data(), 4, ':');

    EXPECT_EQ(toBytes(text), (Bytes{'a', 'b', old, old}));
    EXPECT_EQ(in.state(), (Progress{0, 2, 3}));
}

TEST(BinaryInput, GetsTheWholeCountInFrontOfADelimiter)
{
    Input in({'a', 'b', ':', 'c'});
    std::vector<char> text = target(2);

    in.stream.get(text.data(), 2, ':');

    EXPECT_EQ(toBytes(text), (Bytes{'a', 'b'}));
    EXPECT_EQ(in.state(), (Progress{0, 2, 4}));
}

TEST(BinaryInput, GetsNoMoreThanTheCountWithoutADelimiter)
{
    Input in({'a', 'b', 'c', 'd'});
    std::vector<char> text = target(3);

    in.stream.get(text.data(), 3, ':');

    EXPECT_EQ(toBytes(text), (Bytes{'a', 'b', 'c'}));
    EXPECT_EQ(in.state(), (Progress{0, 3, 4}));
}

TEST(BinaryInput, SetsEofAloneWhenTheCountIsWhatIsLeftWithoutADelimiter)
{
    Input in({'.', 'a', 'b', 'c'}, 1);
    std::vector<char> text = target(3);

    in.stream.get(text.data(), 3, ':');

    EXPECT_EQ(toBytes(text), (Bytes{'a', 'b', 'c'}));
    EXPECT_EQ(in.state(), (Progress{eofBit, 4, 4}));
}

TEST(BinaryInput, SetsEofAndFailWhenTheCountIsMoreThanIsLeftWithoutADelimiter)
{
    Input fromStart({'a', 'b', 'c'});
    std::vector<char> text = target(4);
    fromStart.stream.get(text.data(), 4, ':');
    EXPECT_EQ(toBytes(text), (Bytes{'a', 'b', 'c', old}));
    EXPECT_EQ(fromStart.state(), (Progress{eofBit | failBit, 3, 3}));

    Input fromTheMiddle({'a', 'b', 'c'}, 1);
    text = target(3);
    fromTheMiddle.stream.get(text.data(), 3, ':');
    EXPECT_EQ(toBytes(text), (Bytes{'b', 'c', old}));
    EXPECT_EQ(fromTheMiddle.state(), (Progress{eofBit | failBit, 3, 3}));
}

TEST(BinaryInput, GetsNoMoreThanIsLeftWithoutADelimiter)
{
    Input in({'a', 'b', 'c'}, 1);
    std::vector<char> text = target(2);

    in.stream.get(text.data(), UINT_MAX, ':');

    EXPECT_EQ(toBytes(text), (Bytes{'b', 'c'}));
    EXPECT_EQ(in.state(), (Progress{eofBit | failBit, 3, 3}));
}

TEST(BinaryInput, TakesAnyByteAsADelimiter)
{
    Input forZero({'a', 0x00, 'b'});
    std::vector<char> text = target(3);
    forZero.stream.get(text.data(), 3, '\0');
    EXPECT_EQ(toBytes(text), (Bytes{'a', old, old}));
    EXPECT_EQ(forZero.state(), (Progress{0, 1, 3}));

    Input forHighByte({'a', 0x00, 0xFF, 'b'});
    text = target(4);
    forHighByte.stream.get(text.data(), 4, '\xFF');
    EXPECT_EQ(toBytes(text), (Bytes{'a', 0x00, old, old}));
    EXPECT_EQ(forHighByte.state(), (Progress{0, 2, 4}));
}

TEST(BinaryInput, GetsNothingForACountOfZeroWithADelimiter)
{
    Input in({'a', 'b'}, 1);
    std::vector<char> text = target(1);

    EXPECT_EQ(&in.stream.get(text.data(), 0, ':'), &in.stream);

    EXPECT_EQ(text, target(1));
    EXPECT_EQ(in.state(), (Progress{0, 1, 2}));
}

TEST(BinaryInput, SetsEofAloneForADelimitedGetAtTheEndIfMadeGood)
{
    for (const unsigned int count : {0U, 1U, 2U})
    {
        SCOPED_TRACE(count);
        Input in({'a'}, 1);
        in.stream.setgood();
        std::vector<char> text = target(2);

        in.stream.get(text.data(), count, ':');

        EXPECT_EQ(text, target(2));
        EXPECT_EQ(in.state(), (Progress{eofBit, 1, 1}));
    }
}

// ---- Input: unusable buffers and positions out of step with them ----

// Reads in every way from a stream that is made good before each, and expects nothing to be delivered.
void expectNothingToRead(istream_binary& stream, unsigned int scalarStatus, unsigned int delimitedStatus)
{
    const unsigned int position = stream.tellg();
    const unsigned int length = stream.length();
    forEveryType(
        [&](auto value, const Bytes&)
        {
            using Number = decltype(value);
            stream.setgood();
            Number number = other<Number>;
            stream >> number;
            EXPECT_EQ(number, other<Number>);
            EXPECT_EQ(stream.status(), scalarStatus);
        });

    std::vector<char> text = target(4);
    stream.setgood();
    stream.get(text[0]);
    EXPECT_EQ(stream.status(), scalarStatus);
    stream.setgood();
    stream.get(text.data(), 4);
    EXPECT_EQ(stream.status(), scalarStatus);
    stream.setgood();
    stream.get(text.data(), 4, ':');
    EXPECT_EQ(stream.status(), delimitedStatus);

    EXPECT_EQ(text, target(4));
    EXPECT_EQ(stream.tellg(), position);
    EXPECT_EQ(stream.length(), length);
}

TEST(BinaryInput, ReadsNothingWithoutABuffer)
{
    istream_binary stream;
    int number = 77;
    std::vector<char> text = target(2);

    stream >> number;
    stream.get(text[0]).get(text.data(), 2).get(text.data(), 2, ':');

    EXPECT_EQ(number, 77);
    EXPECT_EQ(text, target(2));
    EXPECT_EQ(stream.status(), eofBit | failBit);
    EXPECT_EQ(stream.tellg(), 0U);
}

TEST(BinaryInput, ReadsNothingFromANullBufferEvenIfMadeGood)
{
    istream_binary stream;
    stream.attachBuffer(nullptr, 16);

    expectNothingToRead(stream, eofBit | failBit, eofBit);
}

TEST(BinaryInput, ReadsNothingFromABufferOfLengthZeroEvenIfMadeGood)
{
    char byte = 'a';
    istream_binary stream;
    stream.attachBuffer(&byte, 0);

    expectNothingToRead(stream, eofBit | failBit, eofBit);
}

TEST(BinaryInput, ReadsNothingFromABufferAttachedToItsBase)
{
    std::vector<char> buffer(16, 'a');
    istream_binary stream;
    stream.streambase::attachBuffer(buffer.data(), 16);

    expectNothingToRead(stream, eofBit | failBit, eofBit);
}

TEST(BinaryInput, ReadsNothingAtAPositionBeyondItsLength)
{
    Input in(Bytes(16, 'a'), 6);
    in.stream.streambase::reset();
    ASSERT_EQ(in.state(), (Progress{0, 6, 0}));

    expectNothingToRead(in.stream, failBit, 0);
}

TEST(BinaryInput, ReadsNothingAtAPositionOneBeyondItsLength)
{
    Input in(Bytes(16, 'a'), 6);
    in.stream.*BaseMembers::length = 5;

    expectNothingToRead(in.stream, failBit, 0);
}

TEST(BinaryInput, GetsAnEmptyByteStringAtAPositionBeyondItsLength)
{
    Input in(Bytes(16, 'a'), 6);
    in.stream.streambase::reset();
    std::vector<char> text = target(1);

    in.stream.get(text.data(), 0);

    EXPECT_EQ(text, target(1));
    EXPECT_EQ(in.state(), (Progress{0, 6, 0}));
}

TEST(BinaryInput, ReadsNothingAfterItsReset)
{
    Input in(Bytes(16, 'a'), 6);
    in.stream.reset();

    expectNothingToRead(in.stream, eofBit | failBit, eofBit);
}

TEST(BinaryInput, ReadsNothingAfterItsBaseLostTheBuffer)
{
    Input in(Bytes(16, 'a'), 6);
    in.stream.streambase::attachBuffer(nullptr, 16);

    expectNothingToRead(in.stream, failBit, 0);
}

TEST(BinaryInput, GoesOnInAnotherBufferAttachedToItsBase)
{
    Input in({'a', 'b', 'c', 'd'}, 2);
    std::vector<char> another = {'w', 'x', 'y', 'z'};
    in.stream.streambase::attachBuffer(another.data(), 4);
    char value = oldChar;

    in.stream.get(value);

    EXPECT_EQ(value, 'y');
    EXPECT_EQ(in.stream.status(), 0U);
    EXPECT_EQ(in.stream.tellg(), 3U);
    EXPECT_EQ(in.stream.length(), 4U);
}

// ---- Both directions ----

TEST(BinaryStreams, ReturnWhatWasWrittenIntoASharedBuffer)
{
    std::vector<char> buffer(36, oldChar);
    ostream_binary out;
    istream_binary in;
    out.attachBuffer(buffer.data(), 36);
    in.attachBuffer(buffer.data(), 36);

    out << 0xFEDCBA98UL << true << 'a' << static_cast<unsigned char>(200) << static_cast<short>(-12345)
        << static_cast<unsigned short>(54321) << -1234567890 << 4123456789U << -2000000000L
        << 12345678901234567890ULL;
    out.put('\0').put("xyz", 4);
    ASSERT_EQ(out.status(), eofBit);

    unsigned long first = 0;
    bool boolValue = false;
    char charValue = oldChar;
    unsigned char byteValue = 0;
    short shortValue = 0;
    unsigned short unsignedShortValue = 0;
    int intValue = 0;
    unsigned int unsignedIntValue = 0;
    long longValue = 0;
    unsigned long long longLongValue = 0;
    char put = oldChar;
    std::vector<char> text = target(4);
    in >> first >> boolValue >> charValue >> byteValue >> shortValue >> unsignedShortValue >> intValue >>
        unsignedIntValue >> longValue >> longLongValue;
    in.get(put).get(text.data(), 4);

    EXPECT_EQ(first, 0xFEDCBA98UL);
    EXPECT_EQ(boolValue, true);
    EXPECT_EQ(charValue, 'a');
    EXPECT_EQ(byteValue, 200);
    EXPECT_EQ(shortValue, -12345);
    EXPECT_EQ(unsignedShortValue, 54321);
    EXPECT_EQ(intValue, -1234567890);
    EXPECT_EQ(unsignedIntValue, 4123456789U);
    EXPECT_EQ(longValue, -2000000000L);
    EXPECT_EQ(longLongValue, 12345678901234567890ULL);
    EXPECT_EQ(put, '\0');
    EXPECT_EQ(toBytes(text), (Bytes{'x', 'y', 'z', 0}));
    EXPECT_EQ(in.status(), eofBit);
    EXPECT_EQ(in.tellg(), 36U);
}

TEST(BinaryStreams, NeverReportFail)
{
    Output out(1);
    Input in({'a'});
    int number = 77;

    out.stream << number;
    in.stream >> number;

    EXPECT_EQ(out.stream.status(), failBit);
    EXPECT_FALSE(out.stream.fail());
    EXPECT_EQ(in.stream.status(), failBit);
    EXPECT_FALSE(in.stream.fail());
}

} // namespace

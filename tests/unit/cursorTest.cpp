// Going through a stream's buffer with a cursor leaves the stream as its own operations do.

#include "codec/cursor.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <ostream>
#include <string>
#include <tuple>
#include <type_traits>

namespace
{

using namespace bci::codec;
using commonStream::istream_binary;
using commonStream::istream_text;
using commonStream::ostream_binary;
using commonStream::ostream_text;

// An output stream over eight bytes and two more behind them, which it must leave alone, as an operation finds it.
template <typename Stream>
class Output
{
public:
    explicit Output(unsigned int size = 8)
    {
        m_stream.attachBuffer(m_bytes.data(), size);
    }

    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    Stream& stream()
    {
        return m_stream;
    }

    const char* bytes() const
    {
        return m_bytes.data();
    }

    auto state() const
    {
        return std::tuple(std::string(m_bytes.data(), m_bytes.size()), m_stream.tellp(), m_stream.length(),
                          m_stream.status());
    }

private:
    std::array<char, 10> m_bytes = {'#', '#', '#', '#', '#', '#', '#', '#', '#', '#'};
    Stream m_stream;
};

template <typename Stream>
class Input
{
public:
    explicit Input(unsigned int size = 8)
    {
        m_stream.attachBuffer(m_bytes.data(), size);
    }

    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    Stream& stream()
    {
        return m_stream;
    }

    const char* bytes() const
    {
        return m_bytes.data();
    }

    auto state() const
    {
        return std::tuple(m_stream.tellg(), m_stream.length(), m_stream.status());
    }

private:
    std::array<char, 10> m_bytes = {'0', '1', '2', '3', '4', '5', '6', '7', '8', '9'};
    Stream m_stream;
};

// What streams can be found as, each with a name.
struct Situation
{
    const char* name;
    unsigned int size;
    void (*prepare)(commonStream::ostreambase&);
    std::size_t left;
};

void nothing(commonStream::ostreambase& /*stream*/) {}

template <unsigned int count>
void writeSome(commonStream::ostreambase& stream)
{
    static_cast<ostream_text&>(stream).put("........", count);
}

constexpr Situation kSituations[] = {
    {"fresh", 8, nothing, 8},
    {"written to", 8, writeSome<3>, 5},
    {"almost full", 8, writeSome<7>, 1},
    {"full", 8, writeSome<8>, 0},
    {"full and made good", 8,
     [](commonStream::ostreambase& stream)
     {
         writeSome<8>(stream);
         stream.setgood();
     },
     0},
    {"set back", 8,
     [](commonStream::ostreambase& stream)
     {
         writeSome<6>(stream);
         stream.seekp(1);
     },
     7},
    {"failed", 8,
     [](commonStream::ostreambase& stream)
     {
         writeSome<2>(stream);
         stream.setfail();
         stream.setbad();
     },
     6},
    {"without room", 0, nothing, 0},
    {"detached", 8, [](commonStream::ostreambase& stream) { stream.detachBuffer(); }, 0},
    {"detached in the middle", 8,
     [](commonStream::ostreambase& stream)
     {
         writeSome<5>(stream);
         stream.streambase::attachBuffer(nullptr, 0);
     },
     0},
    {"behind its end", 8,
     [](commonStream::ostreambase& stream)
     {
         writeSome<5>(stream);
         stream.streambase::attachBuffer(stream.getBuffer(), 3);
     },
     0},
};

// Both kinds of cursor; each test does the same with each.
template <template <typename> typename Kind>
struct CursorKind
{
    template <typename Stream>
    using Over = Kind<Stream>;
};

template <typename Kind>
class Cursors : public testing::Test
{
};

class NameOfCursor
{
public:
    template <typename Kind>
    static std::string GetName(int index) // NOLINT: the name that the test framework asks for
    {
        return index == 0 ? "Cursor" : "DirectCursor";
    }
};

using CursorKinds = testing::Types<CursorKind<Cursor>, CursorKind<DirectCursor>>;
TYPED_TEST_SUITE(Cursors, CursorKinds, NameOfCursor);

TYPED_TEST(Cursors, ShowWhereAStreamCanBeWritten)
{
    using Writer = typename TypeParam::template Over<ostream_text>;
    for (const Situation& situation : kSituations)
    {
        SCOPED_TRACE(situation.name);
        Output<ostream_text> output(situation.size);
        situation.prepare(output.stream());
        const auto before = output.state();
        {
            Writer out(output.stream());
            EXPECT_EQ(out.left(), situation.left);
            if (situation.left != 0)
            {
                EXPECT_EQ(static_cast<std::size_t>(out.end() - out.at()), situation.left);
                EXPECT_EQ(out.at(), output.bytes() + output.stream().tellp());
                EXPECT_EQ(out.isAtStart(), output.stream().tellp() == 0);
            }
            EXPECT_EQ(output.state(), before);
        }
        EXPECT_EQ(output.state(), before) << "without a move nothing changes";
    }
}

TYPED_TEST(Cursors, MoveAStreamLikeWriting)
{
    using Writer = typename TypeParam::template Over<ostream_text>;
    for (const Situation& situation : kSituations)
    {
        for (unsigned int count = 1; count <= situation.left; ++count)
        {
            SCOPED_TRACE(situation.name);
            Output<ostream_text> expected(situation.size);
            situation.prepare(expected.stream());
            expected.stream().put("abcdefgh", count);

            Output<ostream_text> output(situation.size);
            situation.prepare(output.stream());
            {
                Writer out(output.stream());
                std::memcpy(out.at(), "abcdefgh", count);
                out.moveTo(out.at() + count);
                EXPECT_EQ(out.left(), situation.left - count);
                EXPECT_FALSE(out.isAtStart());
            }
            EXPECT_EQ(output.state(), expected.state()) << count;
        }
    }
}

TYPED_TEST(Cursors, MoveAStreamInSeveralSteps)
{
    using Writer = typename TypeParam::template Over<ostream_binary>;
    Output<ostream_binary> output;
    {
        Writer out(output.stream());
        EXPECT_TRUE(out.isAtStart());
        for (const char ch : {'a', 'b', 'c'})
        {
            *out.at() = ch;
            out.moveTo(out.at() + 1);
        }
        EXPECT_EQ(out.left(), 5U);
        EXPECT_EQ(out.at(), output.bytes() + 3);
        EXPECT_EQ(out.end(), output.bytes() + 8);
    }
    EXPECT_EQ(output.state(), std::tuple("abc#######", 3U, 3U, 0U));
}

TYPED_TEST(Cursors, HandTheStreamOverInBetween)
{
    using Writer = typename TypeParam::template Over<ostream_text>;
    Output<ostream_text> output;
    {
        Writer out(output.stream());
        out.through([&](ostream_text& stream)
                    { EXPECT_EQ(output.state(), std::tuple("##########", 0U, 0U, 0U)) << &stream; });
        *out.at() = 'a';
        out.moveTo(out.at() + 1);
        out.through(
            [&](ostream_text& stream)
            {
                EXPECT_EQ(&stream, &output.stream());
                EXPECT_EQ(output.state(), std::tuple("a#########", 1U, 1U, 0U));
                stream.put("bcd", 3);
            });
        EXPECT_EQ(out.at(), output.bytes() + 4);
        EXPECT_EQ(out.left(), 4U);
        std::memcpy(out.at(), "efgh", 4);
        out.moveTo(out.at() + 4);
        EXPECT_EQ(out.left(), 0U);
        out.through([](ostream_text& stream) { EXPECT_EQ(stream.status(), 1U); });
        out.through([](ostream_text& stream) { stream.put('i'); });
    }
    EXPECT_EQ(output.state(), std::tuple("abcdefgh##", 8U, 8U, 3U));
}

TYPED_TEST(Cursors, FollowAStreamThatIsGivenAnotherBufferInBetween)
{
    using Writer = typename TypeParam::template Over<ostream_text>;
    Output<ostream_text> output;
    std::array<char, 3> other = {'#', '#', '#'};
    {
        Writer out(output.stream());
        *out.at() = 'a';
        out.moveTo(out.at() + 1);
        out.through([&other](ostream_text& stream) { stream.attachBuffer(other.data(), 2); });
        EXPECT_TRUE(out.isAtStart());
        EXPECT_EQ(out.left(), 2U);
        *out.at() = 'b';
        out.moveTo(out.at() + 1);
    }
    EXPECT_EQ(output.state(), std::tuple("a#########", 1U, 1U, 0U));
    EXPECT_EQ(other, (std::array<char, 3>{'b', '#', '#'}));
}

TYPED_TEST(Cursors, ShowWhatAStreamHasLeftToRead)
{
    using Reader = typename TypeParam::template Over<istream_binary>;
    const auto left = [](auto prepare, unsigned int size = 8)
    {
        Input<istream_binary> input(size);
        prepare(input.stream());
        const auto before = input.state();
        std::size_t number;
        {
            Reader in(input.stream());
            number = in.left();
            if (number != 0)
            {
                EXPECT_EQ(static_cast<std::size_t>(in.end() - in.at()), number);
                EXPECT_EQ(in.at(), input.bytes() + input.stream().tellg());
                EXPECT_EQ(in.isAtStart(), input.stream().tellg() == 0);
            }
        }
        EXPECT_EQ(input.state(), before) << "without a move nothing changes";
        return number;
    };
    using Stream = istream_binary;
    EXPECT_EQ(left([](Stream&) {}), 8U);
    EXPECT_EQ(left([](Stream& stream) { stream.seekg(3); }), 5U);
    EXPECT_EQ(left([](Stream& stream) { stream.seekg(7); }), 1U);
    EXPECT_EQ(left([](Stream& stream) { stream.seekg(8); }), 0U);
    EXPECT_EQ(left(
                  [](Stream& stream)
                  {
                      stream.seekg(8);
                      stream.setgood();
                  }),
              0U);
    EXPECT_EQ(left([](Stream&) {}, 0), 0U);
    EXPECT_EQ(left([](Stream& stream) { stream.detachBuffer(); }), 0U);

    // Nothing can be read from a stream that is not good.
    EXPECT_EQ(left([](Stream& stream) { stream.seteof(); }), 0U);
    EXPECT_EQ(left([](Stream& stream) { stream.setfail(); }), 0U);
    EXPECT_EQ(left(
                  [](Stream& stream)
                  {
                      stream.seekg(2);
                      stream.setbad();
                  }),
              0U);

    // The data longer than the buffer, the position behind it, or the buffer longer than the data.
    EXPECT_EQ(left([](Stream& stream) { stream.streambase::attachBuffer(stream.getBuffer(), 5); }), 5U);
    EXPECT_EQ(left(
                  [](Stream& stream)
                  {
                      stream.seekg(6);
                      stream.streambase::attachBuffer(stream.getBuffer(), 5);
                  }),
              0U);
    EXPECT_EQ(left([](Stream& stream) { stream.streambase::attachBuffer(stream.getBuffer(), 9); }), 8U);
    EXPECT_EQ(left([](Stream& stream) { stream.streambase::reset(); }), 0U);
    EXPECT_EQ(left(
                  [](Stream& stream)
                  {
                      stream.seekg(4);
                      stream.streambase::attachBuffer(nullptr, 0);
                      stream.setgood();
                  }),
              0U);
}

TYPED_TEST(Cursors, MoveAStreamLikeReading)
{
    using Reader = typename TypeParam::template Over<istream_binary>;
    for (unsigned int start = 0; start < 8; ++start)
    {
        for (unsigned int count = 1; count <= 8 - start; ++count)
        {
            for (const unsigned int size : {8U, 9U})
            {
                char bytes[8];
                Input<istream_binary> expected;
                expected.stream().streambase::attachBuffer(expected.stream().getBuffer(), size);
                expected.stream().seekg(start);
                expected.stream().get(bytes, count);

                Input<istream_binary> input;
                input.stream().streambase::attachBuffer(input.stream().getBuffer(), size);
                input.stream().seekg(start);
                {
                    Reader in(input.stream());
                    EXPECT_EQ(*in.at(), bytes[0]);
                    in.moveTo(in.at() + count);
                }
                EXPECT_EQ(input.state(), expected.state()) << start << " " << count;
            }
        }
    }
}

// The last thing that a field of text reads is one character, its delimiter.
TYPED_TEST(Cursors, CountOneCharacterAsReadFromText)
{
    using Reader = typename TypeParam::template Over<istream_text>;
    for (const unsigned int count : {1U, 3U, 8U})
    {
        Input<istream_text> expected;
        char bytes[8];
        char delimiter;
        expected.stream().get(bytes, count - 1, '#');
        expected.stream().get(delimiter);

        Input<istream_text> input;
        {
            Reader in(input.stream());
            in.moveTo(in.at() + count);
        }
        EXPECT_EQ(input.state(), expected.state());
        EXPECT_EQ(input.stream().gcount(), 1U);
        EXPECT_EQ(input.stream().gcount(), expected.stream().gcount());
    }
    Input<istream_text> untouched;
    {
        Reader in(untouched.stream());
        in.moveTo(in.at());
    }
    EXPECT_EQ(untouched.stream().gcount(), 0U);
}

// The streams stay as they were or take note of the whole: what `putBytes` and its like do not do is left to them.

TEST(CursorBytes, ArePutWhereAllOfThemFit)
{
    for (unsigned int start = 0; start <= 8; ++start)
    {
        for (unsigned int count = 0; count <= 9 - start; ++count)
        {
            for (const unsigned int status : {0U, 2U, 4U})
            {
                const bool fits = kForSpeed && count != 0 && start + count <= 8;
                Output<ostream_binary> expected;
                expected.stream().put("........", start);
                expected.stream().status(status);
                if (fits)
                {
                    expected.stream().put("abcdefghi", count);
                }
                Output<ostream_binary> output;
                output.stream().put("........", start);
                output.stream().status(status);
                {
                    BinaryWriter out(output.stream());
                    EXPECT_EQ(putBytes(out, "abcdefghi", count), fits) << start << " " << count;
                }
                EXPECT_EQ(output.state(), expected.state()) << start << " " << count;
            }
        }
    }
}

TEST(CursorBytes, ArePutToStreamsOfText)
{
    for (unsigned int count = 0; count <= 9; ++count)
    {
        const bool fits = kForSpeed && count != 0 && count <= 8;
        Output<ostream_text> output;
        {
            TextWriter out(output.stream());
            EXPECT_EQ(putBytes(out, "abcdefghi", count), fits);
        }
        Output<ostream_text> expected;
        if (fits)
        {
            expected.stream().put("abcdefghi", count);
        }
        EXPECT_EQ(output.state(), expected.state()) << count;
    }
}

TEST(CursorBytes, AreZerosWhereAllOfThemFit)
{
    for (unsigned int start = 0; start <= 8; ++start)
    {
        for (unsigned int count = 0; count <= 9 - start; ++count)
        {
            const bool fits = kForSpeed && start + count <= 8;
            Output<ostream_binary> expected;
            expected.stream().put("........", start);
            if (fits)
            {
                for (unsigned int i = 0; i < count; ++i)
                {
                    expected.stream().put('\0');
                }
            }
            Output<ostream_binary> output;
            output.stream().put("........", start);
            {
                BinaryWriter out(output.stream());
                EXPECT_EQ(putZeros(out, count), fits) << start << " " << count;
            }
            EXPECT_EQ(output.state(), expected.state()) << start << " " << count;
        }
    }
    ostream_binary none;
    BinaryWriter out(none);
    EXPECT_EQ(putZeros(out, 0), kForSpeed);
    EXPECT_FALSE(putZeros(out, 1));
}

TEST(CursorBytes, ArePassedOverWhereAllOfThemAreThere)
{
    for (unsigned int start = 0; start <= 8; ++start)
    {
        for (unsigned int count = 0; count <= 9 - start; ++count)
        {
            const bool areThere = kForSpeed && start + count <= 8;
            char bytes[8];
            Input<istream_binary> expected;
            expected.stream().get(bytes, start);
            if (areThere)
            {
                expected.stream().get(bytes, count);
            }
            Input<istream_binary> input;
            input.stream().get(bytes, start);
            {
                BinaryReader in(input.stream());
                EXPECT_EQ(skip(in, count), areThere) << start << " " << count;
            }
            EXPECT_EQ(input.state(), expected.state()) << start << " " << count;
        }
    }
    Input<istream_binary> failed;
    failed.stream().setfail();
    BinaryReader in(failed.stream());
    EXPECT_FALSE(skip(in, 1));
}

// The build's own kind serves for every function's argument.
TEST(CursorArgument, LeadsBackToTheSameStream)
{
    Output<ostream_text> output;
    {
        TextWriter out(output.stream());
        auto&& same = cursorFor(out.argument());
        *same.at() = 'a';
        same.moveTo(same.at() + 1);
        EXPECT_EQ(out.at(), output.bytes() + 1);
    }
    EXPECT_EQ(output.state(), std::tuple("a#########", 1U, 1U, 0U));
    static_assert(std::is_same_v<TextWriter, Cursor<ostream_text>> == kForSpeed);
    static_assert(std::is_same_v<TextWriter, DirectCursor<ostream_text>> != kForSpeed);

    Cursor<ostream_text> cursor(output.stream());
    EXPECT_EQ(&cursorFor(cursor.argument()), &cursor);
    DirectCursor<ostream_text> direct(output.stream());
    EXPECT_EQ(&direct.argument(), &output.stream());
    EXPECT_EQ(cursorFor(direct.argument()).at(), output.bytes() + 1);
}

} // namespace

#include "stream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <ostream>
#include <type_traits>
#include <utility>
#include <vector>

using namespace commonStream;

namespace
{

constexpr unsigned int eofBit = 1;
constexpr unsigned int failBit = 2;
constexpr unsigned int badBit = 4;

// Pointers to the protected members, so that a test can look into any stream and put it into any state.
struct BaseMembers : streambase
{
    static constexpr char* streambase::*buffer = &BaseMembers::m_bufferPtr;
    static constexpr unsigned int streambase::*bufferLength = &BaseMembers::m_bufferLength;
    static constexpr unsigned int streambase::*length = &BaseMembers::m_length;
    static constexpr unsigned int streambase::*status = &BaseMembers::m_statusFlags;
};

struct InputMembers : istreambase
{
    static constexpr unsigned int istreambase::*position = &InputMembers::m_currentReadPosition;
};

struct OutputMembers : ostreambase
{
    static constexpr unsigned int ostreambase::*position = &OutputMembers::m_currentWritePosition;
};

// An input and an output in one object.
struct InputAndOutput : istream_binary, ostream_binary
{
};

template <typename From, typename To>
concept CastsDown = requires(From* from)
{
    static_cast<To*>(from);
};

// A class can be cast down to from its plain bases, but not from a virtual one.
static_assert(std::is_convertible_v<istreambase*, streambase*> && !CastsDown<streambase, istreambase>);
static_assert(std::is_convertible_v<ostreambase*, streambase*> && !CastsDown<streambase, ostreambase>);
static_assert(std::is_convertible_v<istream_binary*, istreambase*> && CastsDown<istreambase, istream_binary>);
static_assert(std::is_convertible_v<istream_text*, istreambase*> && CastsDown<istreambase, istream_text>);
static_assert(std::is_convertible_v<ostream_binary*, ostreambase*> && CastsDown<ostreambase, ostream_binary>);
static_assert(std::is_convertible_v<ostream_text*, ostreambase*> && CastsDown<ostreambase, ostream_text>);
static_assert(!std::is_base_of_v<ostreambase, istreambase> && !std::is_base_of_v<istreambase, ostreambase>);
static_assert(std::is_convertible_v<InputAndOutput*, streambase*>);

// Only the text input adds data to its base.
static_assert(sizeof(istream_binary) == sizeof(istreambase));
static_assert(sizeof(ostream_binary) == sizeof(ostreambase));
static_assert(sizeof(ostream_text) == sizeof(ostreambase));

static_assert(std::has_virtual_destructor_v<streambase> && std::has_virtual_destructor_v<istreambase>);
static_assert(std::has_virtual_destructor_v<ostreambase> && std::has_virtual_destructor_v<istream_binary>);
static_assert(std::has_virtual_destructor_v<ostream_binary> && std::has_virtual_destructor_v<istream_text>);
static_assert(std::has_virtual_destructor_v<ostream_text>);

// Streams are copied as their members are; their members are theirs and their derived classes'.
static_assert(std::is_copy_constructible_v<istream_text> && std::is_copy_assignable_v<istream_text>);
static_assert(std::is_copy_constructible_v<ostream_binary> && std::is_copy_assignable_v<ostream_binary>);
template <typename Stream>
concept ShowsItsStatus = requires(Stream& stream)
{
    stream.m_statusFlags;
};
static_assert(!ShowsItsStatus<istream_text>);

static_assert(std::is_same_v<decltype(std::declval<istreambase&>().seekg(BEG, 0)), istreambase&>);
static_assert(std::is_same_v<decltype(std::declval<istreambase&>().seekg(0U)), istreambase&>);
static_assert(std::is_same_v<decltype(std::declval<ostreambase&>().seekp(BEG, 0)), ostreambase&>);
static_assert(std::is_same_v<decltype(std::declval<ostreambase&>().seekp(0U)), ostreambase&>);
static_assert(sizeof(unsigned int) == 4 && sizeof(seekdir) == 4);

// Everything that a stream shows.
struct State
{
    const char* buffer;
    unsigned int bufferLength;
    unsigned int length;
    unsigned int status;
    unsigned int position;

    bool operator==(const State&) const = default;
};

std::ostream& operator<<(std::ostream& out, const State& state)
{
    return out << "buffer " << static_cast<const void*>(state.buffer) << " of " << state.bufferLength
               << ", length " << state.length << ", status " << state.status << ", position " << state.position;
}

State stateOf(const streambase& stream, unsigned int position)
{
    return {stream.getBuffer(), stream.getBufferLength(), stream.length(), stream.status(), position};
}

State stateOf(const streambase& stream)
{
    return stateOf(stream, 0);
}

State stateOf(const istreambase& stream)
{
    return stateOf(stream, stream.tellg());
}

State stateOf(const ostreambase& stream)
{
    return stateOf(stream, stream.tellp());
}

const State detached = {nullptr, 0, 0, eofBit | failBit, 0};

void moveTo(istreambase& stream, unsigned int position)
{
    stream.*InputMembers::position = position;
}

void moveTo(ostreambase& stream, unsigned int position)
{
    stream.*OutputMembers::position = position;
}

// Memory for one stream, none of it zero: a member that is not set shows.
template <typename Stream>
class Storage
{
public:
    Storage()
    {
        std::fill_n(m_bytes, sizeof m_bytes, static_cast<unsigned char>(0xA5));
    }

    Stream* construct()
    {
        return new (m_bytes) Stream;
    }

    template <typename T>
    std::ptrdiff_t offsetOf(const T& member) const
    {
        return reinterpret_cast<const unsigned char*>(&member) - m_bytes;
    }

    // What the memory holds, whether or not there is still a stream in it.
    template <typename T>
    T at(std::ptrdiff_t offset) const
    {
        T value;
        std::memcpy(&value, m_bytes + offset, sizeof value);
        return value;
    }

private:
    alignas(Stream) unsigned char m_bytes[sizeof(Stream)];
};

// Tells of its destruction.
template <typename Stream>
class Watched : public Stream
{
public:
    explicit Watched(bool& isDestroyed) : m_isDestroyed(isDestroyed) {}

    ~Watched() override
    {
        m_isDestroyed = true;
    }

private:
    bool& m_isDestroyed;
};

// ---- Construction and destruction ----

template <typename Stream>
class AnyStream : public testing::Test
{
protected:
    ~AnyStream() override
    {
        if (m_constructed)
        {
            m_stream->~Stream();
        }
    }

    void destroy()
    {
        m_constructed = false;
        m_stream->~Stream();
    }

    Storage<Stream> m_storage;
    Stream* m_stream = m_storage.construct();

private:
    bool m_constructed = true;
};

using AllClasses = testing::Types<streambase, istreambase, ostreambase, istream_binary, ostream_binary,
                                  istream_text, ostream_text>;
TYPED_TEST_SUITE(AnyStream, AllClasses, );

TYPED_TEST(AnyStream, StartsWithoutABuffer)
{
    streambase& base = *this->m_stream;

    EXPECT_EQ(base.*BaseMembers::buffer, nullptr);
    EXPECT_EQ(base.*BaseMembers::bufferLength, 0U);
    EXPECT_EQ(base.*BaseMembers::length, 0U);
    EXPECT_EQ(base.*BaseMembers::status, 3U);
    EXPECT_EQ(stateOf(*this->m_stream), detached);
}

TYPED_TEST(AnyStream, IsNotGoodWithoutABufferYetDoesNotReportFail)
{
    EXPECT_FALSE(this->m_stream->good());
    EXPECT_FALSE(this->m_stream->fail());
}

TYPED_TEST(AnyStream, ZeroesItsBaseWhenDestroyed)
{
    streambase& base = *this->m_stream;
    std::vector<char> buffer(6, 'x');
    this->m_stream->attachBuffer(buffer.data(), 6);
    base.*BaseMembers::length = 6;
    base.status(7);
    const std::ptrdiff_t bufferAt = this->m_storage.offsetOf(base.*BaseMembers::buffer);
    const std::ptrdiff_t bufferLengthAt = this->m_storage.offsetOf(base.*BaseMembers::bufferLength);
    const std::ptrdiff_t lengthAt = this->m_storage.offsetOf(base.*BaseMembers::length);
    const std::ptrdiff_t statusAt = this->m_storage.offsetOf(base.*BaseMembers::status);
    ASSERT_EQ(this->m_storage.template at<unsigned int>(statusAt), 7U);
    EXPECT_LT(bufferAt, bufferLengthAt) << "members stand in their order of declaration";
    EXPECT_LT(bufferLengthAt, lengthAt);
    EXPECT_LT(lengthAt, statusAt);

    this->destroy();

    EXPECT_EQ(this->m_storage.template at<char*>(bufferAt), nullptr);
    EXPECT_EQ(this->m_storage.template at<unsigned int>(bufferLengthAt), 0U);
    EXPECT_EQ(this->m_storage.template at<unsigned int>(lengthAt), 0U);
    EXPECT_EQ(this->m_storage.template at<unsigned int>(statusAt), 0U);
}

TYPED_TEST(AnyStream, LeavesTheBufferAloneWhenDestroyed)
{
    std::vector<char> buffer = {'a', '\0', 'c'};
    this->m_stream->attachBuffer(buffer.data(), 3);

    this->destroy();

    EXPECT_EQ(buffer, (std::vector<char>{'a', '\0', 'c'}));
}

TYPED_TEST(AnyStream, IsDestroyedWholeThroughItsBase)
{
    bool isDestroyed = false;
    std::unique_ptr<streambase> base = std::make_unique<Watched<TypeParam>>(isDestroyed);

    base.reset();

    EXPECT_TRUE(isDestroyed);
}

TYPED_TEST(AnyStream, LeavesTheBufferAloneWhenAttachedAndReset)
{
    std::vector<char> buffer = {'a', '\0', 'c'};

    this->m_stream->attachBuffer(buffer.data(), 3);
    this->m_stream->reset();

    EXPECT_EQ(buffer, (std::vector<char>{'a', '\0', 'c'}));
}

TEST(InputStream, KeepsItsPositionInMemoryWhenDestroyed)
{
    Storage<istream_text> storage;
    istreambase* stream = storage.construct();
    const std::ptrdiff_t positionAt = storage.offsetOf(stream->*InputMembers::position);
    moveTo(*stream, 5);

    stream->~istreambase();

    EXPECT_EQ(storage.at<unsigned int>(positionAt), 5U);
}

TEST(OutputStream, KeepsItsPositionInMemoryWhenDestroyed)
{
    Storage<ostream_text> storage;
    ostreambase* stream = storage.construct();
    const std::ptrdiff_t positionAt = storage.offsetOf(stream->*OutputMembers::position);
    moveTo(*stream, 5);

    stream->~ostreambase();

    EXPECT_EQ(storage.at<unsigned int>(positionAt), 5U);
}

TEST(TextInput, StartsWithNothingDelivered)
{
    Storage<istream_text> storage;
    istream_text* stream = storage.construct();

    EXPECT_EQ(stream->gcount(), 0U);

    stream->~istream_text();
}

TEST(StreamBase, ExistsOnceInAnObjectThatIsInputAndOutput)
{
    InputAndOutput both;
    istream_binary& input = both;
    ostream_binary& output = both;
    char byte = 'x';

    output.attachBuffer(&byte, 1);
    output.put('a');

    EXPECT_EQ(static_cast<streambase*>(&input), static_cast<streambase*>(&output));
    EXPECT_EQ(stateOf(static_cast<istreambase&>(both)), (State{&byte, 1, 1, eofBit, 0}));
    EXPECT_EQ(stateOf(static_cast<ostreambase&>(both)), (State{&byte, 1, 1, eofBit, 1}));
}

TEST(SeekDirection, HasFixedValues)
{
    EXPECT_EQ(static_cast<int>(BEG), 0);
    EXPECT_EQ(static_cast<int>(CUR), 1);
    EXPECT_EQ(static_cast<int>(END), 2);
}

// ---- Status word ----

TEST(Status, IsReplacedAsAWhole)
{
    streambase stream;
    for (const unsigned int word : {0U, 1U, 2U, 3U, 4U, 7U, 8U, 0x80000000U, 0xFFFFFFFFU})
    {
        stream.status(word);
        EXPECT_EQ(stream.status(), word);
        EXPECT_EQ(stream.*BaseMembers::status, word);
    }
}

TEST(Status, IsGoodOnlyWhenTheWholeWordIsZero)
{
    streambase stream;
    const streambase& observed = stream;
    stream.status(0);
    EXPECT_TRUE(observed.good());
    for (const unsigned int word : {1U, 2U, 3U, 4U, 8U, 0x10000U, 0x80000000U, 0xFFFFFFFFU})
    {
        SCOPED_TRACE(word);
        stream.status(word);
        EXPECT_FALSE(observed.good());
        EXPECT_EQ(observed.status(), word);
    }
}

TEST(Status, NeverReportsFail)
{
    streambase stream;
    const streambase& observed = stream;
    for (const unsigned int word : {0U, 1U, 2U, 3U, 4U, 6U, 7U, 0x80000000U, 0xFFFFFFFFU})
    {
        SCOPED_TRACE(word);
        stream.status(word);
        EXPECT_FALSE(observed.fail());
        EXPECT_EQ(observed.status(), word);
    }
}

TEST(Status, ReportsEofForTheEofBitAlone)
{
    streambase stream;
    for (const unsigned int word : {1U, 3U, 5U, 0xFFFFFFFFU})
    {
        SCOPED_TRACE(word);
        stream.status(word);
        EXPECT_TRUE(stream.eof());
        EXPECT_EQ(stream.status(), word);
    }
    for (const unsigned int word : {0U, 2U, 4U, 6U, 0xFFFFFFFEU})
    {
        SCOPED_TRACE(word);
        stream.status(word);
        EXPECT_FALSE(stream.eof());
    }
}

TEST(Status, ReportsBadForTheBadBitAlone)
{
    streambase stream;
    for (const unsigned int word : {4U, 5U, 6U, 0xFFFFFFFFU})
    {
        SCOPED_TRACE(word);
        stream.status(word);
        EXPECT_TRUE(stream.bad());
        EXPECT_EQ(stream.status(), word);
    }
    for (const unsigned int word : {0U, 1U, 2U, 3U, 8U, 0xFFFFFFFBU})
    {
        SCOPED_TRACE(word);
        stream.status(word);
        EXPECT_FALSE(stream.bad());
    }
}

TEST(Status, SetsEachBitBesidesTheOthers)
{
    streambase stream;
    stream.status(0x100);

    stream.seteof();
    EXPECT_EQ(stream.status(), 0x101U);
    stream.setbad();
    EXPECT_EQ(stream.status(), 0x105U);
    stream.setfail();
    EXPECT_EQ(stream.status(), 0x107U);
}

TEST(Status, KeepsABitThatIsSetAgain)
{
    streambase stream;
    stream.status(7);

    stream.seteof();
    stream.setfail();
    stream.setbad();

    EXPECT_EQ(stream.status(), 7U);
}

TEST(Status, IsClearedWholeBySetgood)
{
    streambase stream;
    stream.status(0xFFFFFFFF);

    stream.setgood();

    EXPECT_EQ(stream.status(), 0U);
    EXPECT_TRUE(stream.good());
}

TEST(Status, ChangesNothingElse)
{
    std::vector<char> buffer(8);
    istreambase stream;
    stream.attachBuffer(buffer.data(), 8);
    moveTo(stream, 3);

    stream.seteof();
    stream.setfail();
    stream.setbad();
    EXPECT_EQ(stateOf(stream), (State{buffer.data(), 8, 8, 7, 3}));
    stream.setgood();
    EXPECT_EQ(stateOf(stream), (State{buffer.data(), 8, 8, 0, 3}));
    stream.status(9);
    EXPECT_EQ(stateOf(stream), (State{buffer.data(), 8, 8, 9, 3}));
}

// ---- Queries ----

TEST(StreamBase, AnswersEachQueryFromItsOwnMember)
{
    char byte = 'x';
    streambase stream;
    stream.*BaseMembers::buffer = &byte;
    stream.*BaseMembers::bufferLength = 11;
    stream.*BaseMembers::length = 22;
    stream.*BaseMembers::status = 44;
    const streambase& observed = stream;

    EXPECT_EQ(observed.getBuffer(), &byte);
    EXPECT_EQ(observed.getBufferLength(), 11U);
    EXPECT_EQ(observed.getLength(), 22U);
    EXPECT_EQ(observed.length(), 22U);
    EXPECT_EQ(observed.status(), 44U);
}

TEST(InputStream, TellsItsReadPosition)
{
    istreambase stream;
    moveTo(stream, 33);
    const istreambase& observed = stream;

    EXPECT_EQ(observed.tellg(), 33U);
}

TEST(OutputStream, TellsItsWritePosition)
{
    ostreambase stream;
    moveTo(stream, 33);
    const ostreambase& observed = stream;

    EXPECT_EQ(observed.tellp(), 33U);
}

// ---- Attaching ----

TEST(StreamBase, BecomesGoodWithABuffer)
{
    std::vector<char> buffer(5, 'x');
    streambase stream;
    stream.status(0xFFFFFFFF);

    stream.attachBuffer(buffer.data(), 5);

    EXPECT_EQ(stateOf(stream), (State{buffer.data(), 5, 0, 0, 0}));
    EXPECT_TRUE(stream.good());
}

TEST(StreamBase, KeepsItsLengthWhenABufferIsAttached)
{
    std::vector<char> buffer(5, 'x');
    streambase stream;
    stream.*BaseMembers::length = 4;

    stream.attachBuffer(buffer.data(), 5);

    EXPECT_EQ(stateOf(stream), (State{buffer.data(), 5, 4, 0, 0}));
}

TEST(StreamBase, TakesABufferOfLengthZeroAsNone)
{
    char byte = 'x';
    streambase stream;
    stream.status(0);

    stream.attachBuffer(&byte, 0);

    EXPECT_EQ(stateOf(stream), (State{&byte, 0, 0, eofBit | failBit, 0}));
}

TEST(StreamBase, TakesANullBufferAsOneOfLengthZero)
{
    streambase stream;
    stream.status(0);

    stream.attachBuffer(nullptr, 10);

    EXPECT_EQ(stateOf(stream), detached);
}

TEST(StreamBase, AddsEofAndFailToItsStatusWhenNoUsableBufferIsAttached)
{
    char byte = 'x';
    streambase stream;

    stream.status(badBit);
    stream.attachBuffer(nullptr, 0);
    EXPECT_EQ(stream.status(), 7U);

    stream.status(0x100);
    stream.attachBuffer(nullptr, 10);
    EXPECT_EQ(stream.status(), 0x103U);

    stream.status(0x200);
    stream.attachBuffer(&byte, 0);
    EXPECT_EQ(stream.status(), 0x203U);
}

TEST(StreamBase, IsAttachedToABufferOfOneByte)
{
    char byte = 'x';
    streambase stream;

    stream.attachBuffer(&byte, 1);

    EXPECT_EQ(stateOf(stream), (State{&byte, 1, 0, 0, 0}));
}

TEST(InputStream, TakesAllOfABufferAsData)
{
    std::vector<char> buffer(5, 'x');
    istreambase stream;

    stream.attachBuffer(buffer.data(), 5);

    EXPECT_EQ(stateOf(stream), (State{buffer.data(), 5, 5, 0, 0}));
}

TEST(InputStream, StartsOverWithAnotherBuffer)
{
    std::vector<char> first(5, 'x');
    std::vector<char> second(9, 'y');
    istreambase stream;
    stream.attachBuffer(first.data(), 5);
    moveTo(stream, 5);
    stream.status(0x107);

    stream.attachBuffer(second.data(), 9);

    EXPECT_EQ(stateOf(stream), (State{second.data(), 9, 9, 0, 0}));
}

TEST(InputStream, HasNoDataInANullBuffer)
{
    std::vector<char> buffer(5, 'x');
    istreambase stream;
    stream.attachBuffer(buffer.data(), 5);
    moveTo(stream, 3);

    stream.attachBuffer(nullptr, 10);

    EXPECT_EQ(stateOf(stream), detached);
}

TEST(InputStream, HasNoDataInABufferOfLengthZero)
{
    std::vector<char> buffer(5, 'x');
    istreambase stream;
    stream.attachBuffer(buffer.data(), 5);
    moveTo(stream, 3);

    stream.attachBuffer(buffer.data(), 0);

    EXPECT_EQ(stateOf(stream), (State{buffer.data(), 0, 0, eofBit | failBit, 0}));
}

TEST(InputStream, IsAsNewWhenDetached)
{
    std::vector<char> buffer = {'a', 'b', 'c'};
    istreambase stream;
    stream.attachBuffer(buffer.data(), 3);
    moveTo(stream, 2);

    stream.detachBuffer();

    EXPECT_EQ(stateOf(stream), detached);
    EXPECT_EQ(buffer, (std::vector<char>{'a', 'b', 'c'}));
}

TEST(InputStream, KeepsOtherStatusBitsWhenDetached)
{
    std::vector<char> buffer(3, 'x');
    istreambase stream;
    stream.attachBuffer(buffer.data(), 3);
    stream.status(0x104);

    stream.detachBuffer();

    EXPECT_EQ(stream.status(), 0x107U);
}

TEST(InputStream, ReadsTheBufferWhereItIs)
{
    std::vector<char> buffer = {'a', 'b'};
    istream_binary stream;
    stream.attachBuffer(buffer.data(), 2);
    char value = 'x';

    buffer[0] = 'z';
    stream.get(value);

    EXPECT_EQ(value, 'z');
}

TEST(InputStream, KeepsLengthAndPositionWhenABufferIsAttachedToItsBase)
{
    std::vector<char> first(9, 'x');
    std::vector<char> second(12, 'y');
    istreambase stream;
    stream.attachBuffer(first.data(), 9);
    moveTo(stream, 4);
    stream.status(7);
    streambase& base = stream;

    base.attachBuffer(second.data(), 12);

    EXPECT_EQ(stateOf(stream), (State{second.data(), 12, 9, 0, 4}));
}

TEST(OutputStream, HasNothingWrittenInANewBuffer)
{
    std::vector<char> buffer(5, 'x');
    ostreambase stream;

    stream.attachBuffer(buffer.data(), 5);

    EXPECT_EQ(stateOf(stream), (State{buffer.data(), 5, 0, 0, 0}));
}

TEST(OutputStream, StartsOverWithAnotherBuffer)
{
    std::vector<char> first(2, 'x');
    std::vector<char> second(9, 'y');
    ostream_binary stream;
    stream.attachBuffer(first.data(), 2);
    stream.put("ab", 2);
    stream.status(0x107);

    stream.attachBuffer(second.data(), 9);

    EXPECT_EQ(stateOf(stream), (State{second.data(), 9, 0, 0, 0}));
    EXPECT_EQ(first, (std::vector<char>{'a', 'b'}));
}

TEST(OutputStream, HasNoRoomInANullBuffer)
{
    std::vector<char> buffer(5, 'x');
    ostream_binary stream;
    stream.attachBuffer(buffer.data(), 5);
    stream.put("ab", 2);

    stream.attachBuffer(nullptr, 10);

    EXPECT_EQ(stateOf(stream), detached);
}

TEST(OutputStream, HasNoRoomInABufferOfLengthZero)
{
    std::vector<char> buffer(5, 'x');
    ostream_binary stream;
    stream.attachBuffer(buffer.data(), 5);
    stream.put("ab", 2);

    stream.attachBuffer(buffer.data(), 0);

    EXPECT_EQ(stateOf(stream), (State{buffer.data(), 0, 0, eofBit | failBit, 0}));
}

TEST(OutputStream, IsAsNewWhenDetached)
{
    std::vector<char> buffer(3, 'x');
    ostream_binary stream;
    stream.attachBuffer(buffer.data(), 3);
    stream.put("ab", 2);

    stream.detachBuffer();

    EXPECT_EQ(stateOf(stream), detached);
    EXPECT_EQ(buffer, (std::vector<char>{'a', 'b', 'x'}));
}

TEST(OutputStream, KeepsOtherStatusBitsWhenDetached)
{
    std::vector<char> buffer(3, 'x');
    ostreambase stream;
    stream.attachBuffer(buffer.data(), 3);
    stream.status(0x104);

    stream.detachBuffer();

    EXPECT_EQ(stream.status(), 0x107U);
}

TEST(OutputStream, WritesIntoTheBufferWhereItIs)
{
    std::vector<char> buffer = {'a', 'b'};
    ostream_binary stream;
    stream.attachBuffer(buffer.data(), 2);

    stream.put('z');

    EXPECT_EQ(buffer, (std::vector<char>{'z', 'b'}));
}

TEST(OutputStream, KeepsLengthAndPositionWhenABufferIsAttachedToItsBase)
{
    std::vector<char> first(9, 'x');
    std::vector<char> second(12, 'y');
    ostream_binary stream;
    stream.attachBuffer(first.data(), 9);
    stream.put("abcd", 4);
    stream.status(7);
    streambase& base = stream;

    base.attachBuffer(second.data(), 12);

    EXPECT_EQ(stateOf(stream), (State{second.data(), 12, 4, 0, 4}));
}

// ---- Reset ----

TEST(StreamBase, ClearsLengthAndStatusOnResetWithABuffer)
{
    std::vector<char> buffer(5, 'x');
    streambase stream;
    stream.attachBuffer(buffer.data(), 5);
    stream.*BaseMembers::length = 4;
    stream.status(0xFFFFFFFF);

    stream.reset();

    EXPECT_EQ(stateOf(stream), (State{buffer.data(), 5, 0, 0, 0}));
}

TEST(StreamBase, ClearsTheLengthAloneOnResetWithoutABuffer)
{
    for (const unsigned int status : {0U, 3U, 7U, 0x100U})
    {
        SCOPED_TRACE(status);
        streambase stream;
        stream.*BaseMembers::length = 4;
        stream.status(status);

        stream.reset();

        EXPECT_EQ(stateOf(stream), (State{nullptr, 0, 0, status, 0}));
    }
}

TEST(StreamBase, KeepsItsStatusOnResetWithABufferOfLengthZero)
{
    char byte = 'x';
    streambase stream;
    stream.attachBuffer(&byte, 0);

    stream.reset();

    EXPECT_EQ(stateOf(stream), (State{&byte, 0, 0, 3, 0}));
}

TEST(StreamBase, KeepsItsStatusOnResetWithANullBuffer)
{
    streambase stream;
    stream.attachBuffer(nullptr, 10);

    stream.reset();

    EXPECT_EQ(stateOf(stream), detached);
}

TEST(InputStream, KeepsItsPositionWhenItsBaseIsReset)
{
    std::vector<char> buffer(9, 'x');
    istreambase stream;
    stream.attachBuffer(buffer.data(), 9);
    moveTo(stream, 4);
    stream.status(7);
    streambase& base = stream;

    base.reset();

    EXPECT_EQ(stateOf(stream), (State{buffer.data(), 9, 0, 0, 4}));
}

TEST(InputStream, GoesToItsStartOnReset)
{
    std::vector<char> buffer(9, 'x');
    istreambase stream;
    stream.attachBuffer(buffer.data(), 9);
    moveTo(stream, 4);
    stream.status(7);

    stream.reset();

    EXPECT_EQ(stateOf(stream), (State{buffer.data(), 9, 0, 0, 0}));
}

TEST(InputStream, KeepsItsStatusOnResetWithoutABuffer)
{
    istreambase stream;
    moveTo(stream, 4);

    stream.reset();

    EXPECT_EQ(stateOf(stream), detached);
}

TEST(OutputStream, KeepsItsPositionWhenItsBaseIsReset)
{
    std::vector<char> buffer(9, 'x');
    ostream_binary stream;
    stream.attachBuffer(buffer.data(), 9);
    stream.put("abcd", 4);
    stream.status(7);
    streambase& base = stream;

    base.reset();

    EXPECT_EQ(stateOf(stream), (State{buffer.data(), 9, 0, 0, 4}));
}

TEST(OutputStream, GoesToItsStartOnReset)
{
    std::vector<char> buffer(9, 'x');
    ostream_binary stream;
    stream.attachBuffer(buffer.data(), 9);
    stream.put("abcd", 4);
    stream.status(7);

    stream.reset();

    EXPECT_EQ(stateOf(stream), (State{buffer.data(), 9, 0, 0, 0}));
}

TEST(OutputStream, KeepsItsStatusOnResetWithoutABuffer)
{
    ostreambase stream;
    moveTo(stream, 4);

    stream.reset();

    EXPECT_EQ(stateOf(stream), detached);
}

// ---- Seeking ----

struct Outcome
{
    unsigned int status;
    unsigned int position;

    bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Outcome& outcome)
{
    return out << "status " << outcome.status << ", position " << outcome.position;
}

// An input of 10 bytes.
class InputSide
{
public:
    InputSide()
    {
        stream.attachBuffer(m_buffer.data(), 10);
    }

    template <typename... Target>
    bool seek(Target... target)
    {
        return &stream.seekg(target...) == &stream;
    }

    bool isUntouched() const
    {
        return stream.getBuffer() == m_buffer.data() && stream.getBufferLength() == 10 &&
               m_buffer == std::vector<char>(10, 'x');
    }

    istreambase stream;

private:
    std::vector<char> m_buffer = std::vector<char>(10, 'x');
};

// An output with 10 of 16 bytes written.
class OutputSide
{
public:
    OutputSide()
    {
        stream.attachBuffer(m_buffer.data(), 16);
        stream.put("0123456789", 10);
        m_written = m_buffer;
    }

    template <typename... Target>
    bool seek(Target... target)
    {
        return &stream.seekp(target...) == &stream;
    }

    bool isUntouched() const
    {
        return stream.getBuffer() == m_buffer.data() && stream.getBufferLength() == 16 && m_buffer == m_written;
    }

    ostream_binary stream;

private:
    std::vector<char> m_buffer = std::vector<char>(16, 'x');
    std::vector<char> m_written;
};

// Both sides seek alike: within the 10 bytes, whatever the buffer's size.
template <typename Side>
class Seek : public testing::Test
{
public:
    // Puts the stream into a state in which it then seeks.
    Seek& from(unsigned int position, unsigned int status = 0, unsigned int length = 10)
    {
        moveTo(m_side.stream, position);
        m_side.stream.status(status);
        m_side.stream.*BaseMembers::length = length;
        return *this;
    }

    template <typename... Target>
    Outcome to(Target... target)
    {
        const unsigned int length = m_side.stream.length();
        EXPECT_TRUE(m_side.seek(target...)) << "another stream was returned";
        EXPECT_TRUE(m_side.isUntouched());
        EXPECT_EQ(m_side.stream.length(), length);
        return {m_side.stream.status(), stateOf(m_side.stream).position};
    }

private:
    Side m_side;
};

using Sides = testing::Types<InputSide, OutputSide>;
TYPED_TEST_SUITE(Seek, Sides, );

TYPED_TEST(Seek, CountsFromTheStart)
{
    EXPECT_EQ(this->from(5).to(BEG, 0), (Outcome{0, 0}));
    EXPECT_EQ(this->from(5).to(BEG, 1), (Outcome{0, 1}));
    EXPECT_EQ(this->from(5).to(BEG, 9), (Outcome{0, 9}));
}

TYPED_TEST(Seek, CountsFromThePosition)
{
    EXPECT_EQ(this->from(5).to(CUR, 0), (Outcome{0, 5}));
    EXPECT_EQ(this->from(5).to(CUR, 4), (Outcome{0, 9}));
    EXPECT_EQ(this->from(5).to(CUR, -5), (Outcome{0, 0}));
}

TYPED_TEST(Seek, CountsFromTheLength)
{
    EXPECT_EQ(this->from(5).to(END, -1), (Outcome{0, 9}));
    EXPECT_EQ(this->from(5).to(END, -10), (Outcome{0, 0}));
}

TYPED_TEST(Seek, TakesAPosition)
{
    EXPECT_EQ(this->from(5).to(0U), (Outcome{0, 0}));
    EXPECT_EQ(this->from(5).to(3U), (Outcome{0, 3}));
    EXPECT_EQ(this->from(5).to(9U), (Outcome{0, 9}));
}

TYPED_TEST(Seek, SetsEofAtTheLength)
{
    EXPECT_EQ(this->from(5).to(BEG, 10), (Outcome{eofBit, 10}));
    EXPECT_EQ(this->from(5).to(CUR, 5), (Outcome{eofBit, 10}));
    EXPECT_EQ(this->from(5).to(END, 0), (Outcome{eofBit, 10}));
    EXPECT_EQ(this->from(5).to(10U), (Outcome{eofBit, 10}));
}

TYPED_TEST(Seek, FailsBeyondTheLengthAndStays)
{
    EXPECT_EQ(this->from(5).to(BEG, 11), (Outcome{failBit, 5}));
    EXPECT_EQ(this->from(5).to(CUR, 6), (Outcome{failBit, 5}));
    EXPECT_EQ(this->from(5).to(END, 1), (Outcome{failBit, 5}));
    EXPECT_EQ(this->from(5).to(11U), (Outcome{failBit, 5}));
    EXPECT_EQ(this->from(5).to(0xFFFFFFFFU), (Outcome{failBit, 5}));
}

TYPED_TEST(Seek, FailsBeforeTheStartAndStays)
{
    EXPECT_EQ(this->from(5).to(BEG, -1), (Outcome{failBit, 5}));
    EXPECT_EQ(this->from(5).to(CUR, -6), (Outcome{failBit, 5}));
    EXPECT_EQ(this->from(5).to(END, -11), (Outcome{failBit, 5}));
}

TYPED_TEST(Seek, FailsInADirectionThatDoesNotExist)
{
    for (const int direction : {3, 4, 255, -1, INT_MAX, INT_MIN})
    {
        for (const int offset : {0, 1, 5, -1})
        {
            SCOPED_TRACE(testing::Message() << "direction " << direction << ", offset " << offset);
            EXPECT_EQ(this->from(5).to(static_cast<seekdir>(direction), offset), (Outcome{failBit, 5}));
        }
    }
}

TYPED_TEST(Seek, ClearsEofAloneAwayFromTheLength)
{
    EXPECT_EQ(this->from(10, eofBit).to(BEG, 0), (Outcome{0, 0}));
    EXPECT_EQ(this->from(10, eofBit).to(9U), (Outcome{0, 9}));
    EXPECT_EQ(this->from(4, eofBit).to(CUR, 0), (Outcome{0, 4}));
    EXPECT_EQ(this->from(4, eofBit | failBit).to(CUR, 0), (Outcome{failBit, 4}));
    EXPECT_EQ(this->from(10, 0xFFFFFFFF).to(CUR, -1), (Outcome{0xFFFFFFFE, 9}));
    EXPECT_EQ(this->from(10, 0xFFFFFFFF).to(2U), (Outcome{0xFFFFFFFE, 2}));
}

TYPED_TEST(Seek, ClearsEofAlsoWhenItFails)
{
    EXPECT_EQ(this->from(4, eofBit).to(END, 1), (Outcome{failBit, 4}));
    EXPECT_EQ(this->from(4, eofBit).to(11U), (Outcome{failBit, 4}));
    EXPECT_EQ(this->from(4, eofBit | badBit).to(static_cast<seekdir>(3), 0), (Outcome{failBit | badBit, 4}));
}

TYPED_TEST(Seek, SetsEofAlsoWhenItFailsAtTheLength)
{
    EXPECT_EQ(this->from(10).to(BEG, -1), (Outcome{eofBit | failBit, 10}));
    EXPECT_EQ(this->from(10).to(CUR, 1), (Outcome{eofBit | failBit, 10}));
    EXPECT_EQ(this->from(10).to(11U), (Outcome{eofBit | failBit, 10}));
}

TYPED_TEST(Seek, KeepsTheStatusBitsThatItDoesNotSet)
{
    EXPECT_EQ(this->from(5, failBit).to(BEG, 3), (Outcome{failBit, 3}));
    EXPECT_EQ(this->from(5, failBit).to(END, 0), (Outcome{eofBit | failBit, 10}));
    EXPECT_EQ(this->from(5, badBit).to(3U), (Outcome{badBit, 3}));
    EXPECT_EQ(this->from(5, 0x100).to(11U), (Outcome{0x102, 5}));
}

TYPED_TEST(Seek, StaysWhereAPositionBeyondTheLengthFollowsAValidOne)
{
    this->from(0);

    EXPECT_EQ(this->to(3U), (Outcome{0, 3}));
    EXPECT_EQ(this->to(12U), (Outcome{failBit, 3}));
}

TYPED_TEST(Seek, ReachesTheLargestSignedTarget)
{
    EXPECT_EQ(this->from(5, 0, 0x7FFFFFFF).to(BEG, INT_MAX), (Outcome{eofBit, 0x7FFFFFFF}));
    EXPECT_EQ(this->from(5, 0, 0x7FFFFFFF).to(END, 0), (Outcome{eofBit, 0x7FFFFFFF}));
    EXPECT_EQ(this->from(5, 0, 0x7FFFFFFF).to(CUR, INT_MAX - 6), (Outcome{0, 0x7FFFFFFE}));
}

TYPED_TEST(Seek, FailsWhereTheTargetWrapsToANegativeOne)
{
    EXPECT_EQ(this->from(5).to(CUR, INT_MAX), (Outcome{failBit, 5}));
    EXPECT_EQ(this->from(5).to(END, INT_MAX), (Outcome{failBit, 5}));
    EXPECT_EQ(this->from(5, 0, 0x7FFFFFFF).to(END, 1), (Outcome{failBit, 5}));
    EXPECT_EQ(this->from(0x7FFFFFFF, 0, 0x7FFFFFFF).to(CUR, 1), (Outcome{eofBit | failBit, 0x7FFFFFFF}));
}

TYPED_TEST(Seek, FailsForTheSmallestOffset)
{
    EXPECT_EQ(this->from(5).to(BEG, INT_MIN), (Outcome{failBit, 5}));
    EXPECT_EQ(this->from(5).to(CUR, INT_MIN), (Outcome{failBit, 5}));
    EXPECT_EQ(this->from(5).to(END, INT_MIN), (Outcome{failBit, 5}));
}

TYPED_TEST(Seek, WrapsIntoTheDataFromAPositionFarBeyondIt)
{
    EXPECT_EQ(this->from(0xFFFFFFFE).to(CUR, 5), (Outcome{0, 3}));
    EXPECT_EQ(this->from(0x80000001).to(CUR, INT_MIN), (Outcome{0, 1}));
}

TYPED_TEST(Seek, WithAnOffsetFailsWhereTheLengthIsNegativeAsASignedNumber)
{
    EXPECT_EQ(this->from(5, 0, 0x80000000).to(BEG, 0), (Outcome{failBit, 5}));
    EXPECT_EQ(this->from(5, 0, 0x80000000).to(CUR, 1), (Outcome{failBit, 5}));
    EXPECT_EQ(this->from(5, 0, 0x80000000).to(END, INT_MIN), (Outcome{failBit, 5}));
    EXPECT_EQ(this->from(5, 0, 0xFFFFFFFF).to(END, 1), (Outcome{failBit, 5}));
}

TYPED_TEST(Seek, WithAPositionComparesUnsigned)
{
    EXPECT_EQ(this->from(5, 0, 0x80000000).to(0x7FFFFFFFU), (Outcome{0, 0x7FFFFFFF}));
    EXPECT_EQ(this->from(5, 0, 0x80000000).to(0x80000000U), (Outcome{eofBit, 0x80000000}));
    EXPECT_EQ(this->from(5, 0, 0x80000000).to(0x80000001U), (Outcome{failBit, 5}));
    EXPECT_EQ(this->from(5, 0, 0xFFFFFFFF).to(0xFFFFFFFFU), (Outcome{eofBit, 0xFFFFFFFF}));
}

TYPED_TEST(Seek, GoesBackFromAPositionBeyondTheLength)
{
    EXPECT_EQ(this->from(6, 0, 0).to(CUR, 0), (Outcome{failBit, 6}));
    EXPECT_EQ(this->from(6, 0, 4).to(CUR, -1), (Outcome{failBit, 6}));
    EXPECT_EQ(this->from(6, 0, 4).to(CUR, -2), (Outcome{eofBit, 4}));
    EXPECT_EQ(this->from(6, 0, 4).to(CUR, -3), (Outcome{0, 3}));
}

TEST(InputStream, SeeksToItsStartWithoutABuffer)
{
    istreambase stream;
    EXPECT_EQ(stateOf(stream.seekg(BEG, 0)), detached);
    EXPECT_EQ(stateOf(stream.seekg(0U)), detached);

    stream.status(0);
    EXPECT_EQ(stateOf(stream.seekg(END, 0)), (State{nullptr, 0, 0, eofBit, 0}));
    EXPECT_EQ(stateOf(stream.seekg(1U)), detached);
}

TEST(OutputStream, SeeksToItsStartWithoutABuffer)
{
    ostreambase stream;
    EXPECT_EQ(stateOf(stream.seekp(BEG, 0)), detached);
    EXPECT_EQ(stateOf(stream.seekp(0U)), detached);

    stream.status(0);
    EXPECT_EQ(stateOf(stream.seekp(END, 0)), (State{nullptr, 0, 0, eofBit, 0}));
    EXPECT_EQ(stateOf(stream.seekp(1U)), detached);
}

TEST(OutputStream, SeeksNoFurtherThanItHasWritten)
{
    std::vector<char> buffer(16, 'x');
    ostream_binary stream;
    stream.attachBuffer(buffer.data(), 16);
    stream.put("abcd", 4);

    EXPECT_EQ(stateOf(stream.seekp(BEG, 4)), (State{buffer.data(), 16, 4, eofBit, 4}));
    EXPECT_EQ(stateOf(stream.seekp(BEG, 5)), (State{buffer.data(), 16, 4, eofBit | failBit, 4}));
}

TEST(OutputStream, SeeksBackAndRewrites)
{
    std::vector<char> buffer(6, 'x');
    ostream_binary stream;
    stream.attachBuffer(buffer.data(), 6);
    stream.put("abcd", 4);

    stream.seekp(1U);
    stream.put("BC", 2);

    EXPECT_EQ(stateOf(stream), (State{buffer.data(), 6, 4, 0, 3}));
    EXPECT_EQ(buffer, (std::vector<char>{'a', 'B', 'C', 'd', 'x', 'x'}));
}

TEST(InputStream, IsUsedFromAttachingToDetaching)
{
    std::vector<char> buffer = {'a', 'b'};
    istream_binary stream;
    char value = 'x';

    stream.attachBuffer(buffer.data(), 2);
    stream.get(value);
    EXPECT_EQ(stateOf(stream), (State{buffer.data(), 2, 2, 0, 1}));
    stream.get(value);
    EXPECT_EQ(stateOf(stream), (State{buffer.data(), 2, 2, eofBit, 2}));
    EXPECT_EQ(value, 'b');
    stream.detachBuffer();
    EXPECT_EQ(stateOf(stream), detached);
}

TEST(OutputStream, IsUsedFromAttachingToDetaching)
{
    std::vector<char> buffer(2, 'x');
    ostream_binary stream;

    stream.attachBuffer(buffer.data(), 2);
    stream.put('a');
    EXPECT_EQ(stateOf(stream), (State{buffer.data(), 2, 1, 0, 1}));
    stream.put('b');
    EXPECT_EQ(stateOf(stream), (State{buffer.data(), 2, 2, eofBit, 2}));
    stream.put('c');
    EXPECT_EQ(stateOf(stream), (State{buffer.data(), 2, 2, eofBit | failBit, 2}));
    stream.detachBuffer();
    EXPECT_EQ(stateOf(stream), detached);
    EXPECT_EQ(buffer, (std::vector<char>{'a', 'b'}));
}

} // namespace

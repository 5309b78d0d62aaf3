#include "bciAuditMsg.h"
#include "bciMessage.h"
#include "message.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

// A message with nothing of its own: what it answers comes from the base classes.
class PlainMessage : public BciMessageBase
{
public:
    using BciMessageBase::BciMessageBase;

    SIGSELECT getSigNo() const override
    {
        return 0;
    }

    VornNodeCommonAddressInfoS getAddressInfo() const override
    {
        return {0, 0};
    }

    unsigned int getMaxBinaryBufferSize() override
    {
        return 0;
    }

    bool serializeBciMsgToText(commonStream::ostream_text&) const override
    {
        return true;
    }

    bool serializeBciMsgToBinary(commonStream::ostream_binary&) const override
    {
        return true;
    }

    bool serializeBciMsgToXml(commonStream::ostream_text&) const override
    {
        return true;
    }

    bool deserializeBciMsgFromText(commonStream::istream_text&) override
    {
        return true;
    }

    bool deserializeBciMsgFromBinary(commonStream::istream_binary&) override
    {
        return true;
    }

    bool deserializeBciMsgFromXml(commonStream::istream_text&) override
    {
        return true;
    }

    virtual void oneMoreVirtual() {}

    char* message() const
    {
        return m_bciMessagePtr;
    }

    unsigned short messageSize() const
    {
        return m_bciMessageSize;
    }

    std::ptrdiff_t offsetOfMessage() const
    {
        return reinterpret_cast<const char*>(&m_bciMessagePtr) - reinterpret_cast<const char*>(this);
    }

    std::ptrdiff_t offsetOfSize() const
    {
        return reinterpret_cast<const char*>(&m_bciMessageSize) - reinterpret_cast<const char*>(this);
    }

    static_assert(std::is_same_v<decltype(m_bciMessagePtr), char*>);
    static_assert(std::is_same_v<decltype(m_bciMessageSize), unsigned short>);
    static_assert(std::is_same_v<decltype(MAX_BUFFER_LEN_FOR_LONGLONG), const unsigned int>);
    static_assert(std::is_same_v<decltype(MAX_BUFFER_LEN_FOR_ULONGLONG), const unsigned int>);
    static_assert(std::is_same_v<decltype(MAX_BUFFER_LEN_FOR_LONG), const unsigned int>);
    static_assert(std::is_same_v<decltype(MAX_BUFFER_LEN_FOR_ULONG), const unsigned int>);
    static_assert(std::is_same_v<decltype(MAX_BUFFER_LEN_FOR_SHORT), const unsigned int>);
    static_assert(std::is_same_v<decltype(MAX_BUFFER_LEN_FOR_USHORT), const unsigned int>);
    static_assert(std::is_same_v<decltype(MAX_BUFFER_LEN_FOR_UCHAR), const unsigned int>);
    static_assert(std::is_same_v<decltype(MAX_BUFFER_LEN_FOR_CHAR), const unsigned int>);

    // Widths of the text form: long long, long, short and char, each signed and then unsigned.
    static std::array<unsigned int, 8> textWidths()
    {
        return {MAX_BUFFER_LEN_FOR_LONGLONG, MAX_BUFFER_LEN_FOR_ULONGLONG, MAX_BUFFER_LEN_FOR_LONG,
                MAX_BUFFER_LEN_FOR_ULONG,    MAX_BUFFER_LEN_FOR_SHORT,     MAX_BUFFER_LEN_FOR_USHORT,
                MAX_BUFFER_LEN_FOR_CHAR,     MAX_BUFFER_LEN_FOR_UCHAR};
    }
};

// A message of some other interface, straight from the root.
class ForeignMessage : public MessageBase
{
public:
    using MessageBase::MessageBase;

    SIGSELECT getSigNo() const override
    {
        return 0;
    }

    VornNodeCommonAddressInfoS getAddressInfo() const override
    {
        return {0, 0};
    }

    char* getMsg() const override
    {
        return nullptr;
    }

    void setMsg(const char*) override {}

    unsigned int getMaxBinaryBufferSize() override
    {
        return 0;
    }

    unsigned int getMaxTextBufferSize() override
    {
        return 0;
    }

    virtual void oneMoreVirtual() {}
};

// A pointer to a member function holds two words. The first is the function's address or the offset of its entry
// in the virtual table. Which one it is says the lowest bit of that word, and on ARM, where addresses may be odd,
// of the other.
template <typename Method>
std::array<std::ptrdiff_t, 2> wordsOf(Method method)
{
    std::array<std::ptrdiff_t, 2> words;
    static_assert(sizeof method == sizeof words);
    std::memcpy(words.data(), &method, sizeof words);
    return words;
}

#ifdef __arm__
constexpr std::size_t kWordOfKind = 1;
#else
constexpr std::size_t kWordOfKind = 0;
#endif

template <typename Method>
bool isVirtual(Method method)
{
    return wordsOf(method)[kWordOfKind] % 2 == 1;
}

template <typename Method>
std::ptrdiff_t slotOf(Method method)
{
    EXPECT_TRUE(isVirtual(method));
    const std::ptrdiff_t offset = wordsOf(method)[0] - (kWordOfKind == 0 ? 1 : 0);
    return offset / static_cast<std::ptrdiff_t>(sizeof(void*));
}

// Renders an audit confirm with these references into a buffer of `size` bytes.
std::string textOf(SIGSELECT sigNo, S32 clientRef, S32 serverRef, unsigned int size)
{
    BciAuditCfm message(sigNo);
    message.m_auditCfm = {sigNo, {clientRef, serverRef}, 0};
    std::vector<char> buffer(size);
    EXPECT_TRUE(message.serializeToText(buffer.data(), size));
    return {buffer.data(), size};
}

std::string xmlOf(SIGSELECT sigNo, S32 clientRef, S32 serverRef, unsigned int size)
{
    BciAuditCfm message(sigNo);
    message.m_auditCfm = {sigNo, {clientRef, serverRef}, 0};
    std::vector<char> buffer(size);
    EXPECT_TRUE(message.serializeToXml(buffer.data(), size));
    return {buffer.data(), size};
}

} // namespace

// A copy's pointer would designate the structure of its original.
static_assert(!std::is_copy_constructible_v<PlainMessage> && !std::is_copy_assignable_v<PlainMessage>);

template <typename Message>
concept ShowsItsStructure = requires(Message& message)
{
    message.m_bciMessagePtr;
};
template <typename Message>
concept ShowsItsWidths = requires
{
    Message::MAX_BUFFER_LEN_FOR_LONG;
};
static_assert(!ShowsItsStructure<PlainMessage> && !ShowsItsWidths<PlainMessage>);

// Types

TEST(MessageTypes, ScalarsHaveTheTypesOfTheKernel)
{
    using FourBytesUnsigned = std::conditional_t<sizeof(long) == 4, unsigned long, unsigned int>;
    using FourBytesSigned = std::conditional_t<sizeof(long) == 4, long, int>;

    EXPECT_TRUE((std::is_same_v<U8, unsigned char>));
    EXPECT_TRUE((std::is_same_v<U16, unsigned short>));
    EXPECT_TRUE((std::is_same_v<S16, short>));
    EXPECT_TRUE((std::is_same_v<U32, FourBytesUnsigned>));
    EXPECT_TRUE((std::is_same_v<S32, FourBytesSigned>));
    EXPECT_TRUE((std::is_same_v<SIGSELECT, U32>));
}

TEST(MessageTypes, AddressInfoIsTwoReferencesInEightBytes)
{
    EXPECT_EQ(sizeof(VornNodeCommonAddressInfoS), 8U);
    EXPECT_EQ(offsetof(VornNodeCommonAddressInfoS, clientRef), 0U);
    EXPECT_EQ(offsetof(VornNodeCommonAddressInfoS, serverRef), 4U);
    EXPECT_TRUE((std::is_same_v<decltype(VornNodeCommonAddressInfoS::clientRef), S32>));
    EXPECT_TRUE((std::is_same_v<decltype(VornNodeCommonAddressInfoS::serverRef), S32>));
}

TEST(MessageTypes, HeaderTakesTheFirstTwelveBytes)
{
    EXPECT_EQ(offsetof(VornBcAuditCfmS, sigNo), 0U);
    EXPECT_EQ(offsetof(VornBcAuditCfmS, addressInfo), 4U);
    EXPECT_EQ(offsetof(VornBcAuditCfmS, mainState), 12U);
    EXPECT_TRUE((std::is_same_v<decltype(VornBcAuditCfmS::sigNo), SIGSELECT>));
    EXPECT_TRUE((std::is_same_v<decltype(VornBcAuditCfmS::addressInfo), VornNodeCommonAddressInfoS>));
}

// Constants

TEST(MessageConstants, DelimiterIsTheColon)
{
    EXPECT_EQ(MessageBase::DELIM, ':');
    EXPECT_EQ(MessageBase::DELIM, 58);
    EXPECT_TRUE((std::is_same_v<decltype(MessageBase::DELIM), const char>));
}

TEST(MessageConstants, EveryMessageAnswersWithTheDelimiter)
{
    const PlainMessage plain(nullptr, 0, 1);
    const BciAuditCfm auditCfm(1);

    EXPECT_EQ(plain.getDelim(), ':');
    EXPECT_EQ(auditCfm.getDelim(), ':');
}

TEST(MessageConstants, DerivedClassesSeeTheTextWidths)
{
    EXPECT_EQ(PlainMessage::textWidths(), (std::array<unsigned int, 8>{21, 21, 11, 10, 6, 5, 4, 3}));
}

TEST(MessageConstants, HeaderTakesAtMost35CharactersOfText)
{
    PlainMessage message(nullptr, 0, 1);

    EXPECT_EQ(message.getMaxTextBufferSize(), 35U);
}

TEST(MessageConstants, DerivedClassCanAskForTheHeadersShare)
{
    BciAuditCfm message(1);

    EXPECT_EQ(message.BciMessageBase::getMaxTextBufferSize(), 35U);
}

// Layout

TEST(MessageLayout, RootHoldsTheVirtualTablePointerAlone)
{
    EXPECT_EQ(sizeof(MessageBase), sizeof(void*));
    EXPECT_EQ(sizeof(ForeignMessage), sizeof(void*));
}

TEST(MessageLayout, BaseHoldsPointerAndThenSize)
{
    const PlainMessage message(nullptr, 0, 1);

    EXPECT_EQ(message.offsetOfMessage(), static_cast<std::ptrdiff_t>(sizeof(void*)));
    EXPECT_EQ(message.offsetOfSize(), static_cast<std::ptrdiff_t>(2 * sizeof(void*)));
    EXPECT_EQ(sizeof(BciMessageBase), 3 * sizeof(void*));
}

TEST(MessageLayout, BothBasesAreAbstractAndDestroyedVirtually)
{
    EXPECT_TRUE(std::is_abstract_v<MessageBase>);
    EXPECT_TRUE(std::is_abstract_v<BciMessageBase>);
    EXPECT_TRUE(std::has_virtual_destructor_v<MessageBase>);
    EXPECT_TRUE(std::has_virtual_destructor_v<BciMessageBase>);
    EXPECT_TRUE((std::is_convertible_v<BciMessageBase*, MessageBase*>));
}

// The destructor takes the first two entries of the table.
TEST(MessageLayout, VirtualTableOfTheRootBeginsWithTheDestructorAndKeepsItsOrder)
{
    EXPECT_EQ(slotOf(&MessageBase::getSigNo), 2);
    EXPECT_EQ(slotOf(&MessageBase::getAddressInfo), 3);
    EXPECT_EQ(slotOf(&MessageBase::getMsg), 4);
    EXPECT_EQ(slotOf(&MessageBase::setMsg), 5);
    EXPECT_EQ(slotOf(&MessageBase::getMaxBinaryBufferSize), 6);
    EXPECT_EQ(slotOf(&MessageBase::getMaxTextBufferSize), 7);
}

TEST(MessageLayout, VirtualTableOfTheBaseGoesOnWithTheCodec)
{
    EXPECT_EQ(slotOf(&BciMessageBase::getMsg), 4);
    EXPECT_EQ(slotOf(&BciMessageBase::setMsg), 5);
    EXPECT_EQ(slotOf(&BciMessageBase::getMaxTextBufferSize), 7);
    EXPECT_EQ(slotOf(&BciMessageBase::serializeBciMsgToText), 8);
    EXPECT_EQ(slotOf(&BciMessageBase::serializeBciMsgToBinary), 9);
    EXPECT_EQ(slotOf(&BciMessageBase::serializeBciMsgToXml), 10);
    EXPECT_EQ(slotOf(&BciMessageBase::deserializeBciMsgFromText), 11);
    EXPECT_EQ(slotOf(&BciMessageBase::deserializeBciMsgFromBinary), 12);
    EXPECT_EQ(slotOf(&BciMessageBase::deserializeBciMsgFromXml), 13);
}

TEST(MessageLayout, VirtualTablesHoldNothingElse)
{
    EXPECT_EQ(slotOf(&ForeignMessage::oneMoreVirtual), 8);
    EXPECT_EQ(slotOf(&PlainMessage::oneMoreVirtual), 14);
}

TEST(MessageLayout, DelimiterAndEntryPointsAreNotVirtual)
{
    EXPECT_FALSE(isVirtual(&BciMessageBase::getDelim));
    EXPECT_FALSE(isVirtual(&BciMessageBase::serializeToText));
    EXPECT_FALSE(isVirtual(&BciMessageBase::serializeToBinary));
    EXPECT_FALSE(isVirtual(&BciMessageBase::serializeToXml));
    EXPECT_FALSE(isVirtual(&BciMessageBase::deserializeFromText));
    EXPECT_FALSE(isVirtual(&BciMessageBase::deserializeFromBinary));
    EXPECT_FALSE(isVirtual(&BciMessageBase::deserializeFromXml));
}

// Life of a message

TEST(MessageStorage, ConstructorNotesPointerAndSizeAndLeavesTheStructureAlone)
{
    std::vector<char> storage(16, 'p');

    const PlainMessage message(storage.data(), 16, 0x01020304);

    EXPECT_EQ(message.message(), storage.data());
    EXPECT_EQ(message.messageSize(), 16);
    EXPECT_EQ(storage, std::vector<char>(16, 'p'));
}

TEST(MessageStorage, SizeGoesUpTo65535)
{
    std::vector<char> storage(1);

    const PlainMessage message(storage.data(), 65535, 1);

    EXPECT_EQ(message.messageSize(), 65535);
}

TEST(MessageStorage, RootConstructorLeavesTheStructureAlone)
{
    std::vector<char> storage(16, 'p');

    const ForeignMessage message(storage.data(), 16, 0x01020304);

    EXPECT_EQ(message.getMsg(), nullptr);
    EXPECT_EQ(storage, std::vector<char>(16, 'p'));
}

TEST(MessageStorage, DestructorNeitherFreesNorChangesTheStructure)
{
    std::vector<char> storage(16, 'p');

    delete static_cast<MessageBase*>(new PlainMessage(storage.data(), 16, 1));

    EXPECT_EQ(storage, std::vector<char>(16, 'p'));
}

TEST(MessageStorage, GetMsgGivesTheStructureItself)
{
    std::vector<char> storage(4, 'p');
    const PlainMessage message(storage.data(), 4, 1);

    message.getMsg()[2] = 'q';

    EXPECT_EQ(message.getMsg(), storage.data());
    EXPECT_EQ(storage, (std::vector<char>{'p', 'p', 'q', 'p'}));
}

TEST(MessageStorage, GetMsgOfAMessageWithoutStructureIsNull)
{
    const PlainMessage message(nullptr, 0, 1);

    EXPECT_EQ(message.getMsg(), nullptr);
}

TEST(MessageStorage, SetMsgCopiesAsManyBytesAsTheStructureHas)
{
    std::vector<char> storage(6, 'p');
    PlainMessage message(storage.data(), 4, 1);
    const std::vector<char> source{'a', '\0', 'c', 'd'};

    message.setMsg(source.data());

    EXPECT_EQ(storage, (std::vector<char>{'a', '\0', 'c', 'd', 'p', 'p'}));
    EXPECT_EQ(message.getMsg(), storage.data());
}

TEST(MessageStorage, SetMsgOverwritesWhatWasSetBefore)
{
    std::vector<char> storage(4, 'p');
    PlainMessage message(storage.data(), 4, 1);

    message.setMsg("abcd");
    message.setMsg("wxyz");

    EXPECT_EQ(storage, (std::vector<char>{'w', 'x', 'y', 'z'}));
}

TEST(MessageStorage, SetMsgWorksThroughTheRoot)
{
    std::vector<char> storage(4, 'p');
    PlainMessage message(storage.data(), 4, 1);
    MessageBase& root = message;

    root.setMsg("abcd");

    EXPECT_EQ(std::string(root.getMsg(), 4), "abcd");
}

// Header

TEST(MessageHeader, TextIsEachNumberAndADelimiter)
{
    EXPECT_EQ(textOf(23430145, 1, 2, 13), "23430145:1:2:");
}

TEST(MessageHeader, TextOfANegativeReferenceHasASign)
{
    EXPECT_EQ(textOf(23430145, -1, 2, 14), "23430145:-1:2:");
    EXPECT_EQ(textOf(23430145, 1, -1, 14), "23430145:1:-1:");
}

TEST(MessageHeader, LongestTextFillsItsShareExactly)
{
    const std::string longest = "4294967295:-2147483648:-2147483648:";

    EXPECT_EQ(longest.size(), 35U);
    EXPECT_EQ(textOf(4294967295U, -2147483647 - 1, -2147483647 - 1, 35), longest);
}

TEST(MessageHeader, XmlElementHasTwoBlanksBeforeItsValue)
{
    EXPECT_EQ(xmlOf(5, 1, 2, 24), "\t<sigNo>\n\t  5\n\t</sigNo>\n");
}

TEST(MessageHeader, XmlElementsFollowOneAnother)
{
    EXPECT_EQ(xmlOf(5, -1, 2, 89), "\t<sigNo>\n\t  5\n\t</sigNo>\n"
                                   "\t<clientRef>\n\t  -1\n\t</clientRef>\n"
                                   "\t<serverRef>\n\t  2\n\t</serverRef>\n");
}

// What an operation finds in the buffer, and what it leaves unwritten

// A message of a user, which looks at its buffer before it writes some characters. It writes through its stream
// alone if it says so; otherwise some more past it.
class WritingMessage : public BciMessageBase
{
public:
    WritingMessage(unsigned int count, bool writesThroughStream)
        : BciMessageBase(nullptr, 0, 1), m_count(count), m_pastTheStream(!writesThroughStream)
    {
        if (writesThroughStream)
        {
            m_writesThroughStream = 1;
        }
    }

    SIGSELECT getSigNo() const override
    {
        return 1;
    }

    VornNodeCommonAddressInfoS getAddressInfo() const override
    {
        return {0, 0};
    }

    unsigned int getMaxBinaryBufferSize() override
    {
        return 0;
    }

    bool serializeBciMsgToText(commonStream::ostream_text& stream) const override
    {
        return write(stream);
    }

    bool serializeBciMsgToBinary(commonStream::ostream_binary& stream) const override
    {
        return write(stream);
    }

    bool serializeBciMsgToXml(commonStream::ostream_text& stream) const override
    {
        return write(stream);
    }

    bool deserializeBciMsgFromText(commonStream::istream_text& /*stream*/) override
    {
        return true;
    }

    bool deserializeBciMsgFromBinary(commonStream::istream_binary& /*stream*/) override
    {
        return true;
    }

    bool deserializeBciMsgFromXml(commonStream::istream_text& /*stream*/) override
    {
        return true;
    }

    unsigned short writesThroughStream() const
    {
        return m_writesThroughStream;
    }

    // What stood in the buffer beforehand.
    const std::string& found() const
    {
        return m_found;
    }

private:
    template <typename Stream>
    bool write(Stream& stream) const
    {
        m_found.assign(stream.getBuffer(), stream.getBufferLength());
        for (unsigned int i = 0; i < m_count; ++i)
        {
            stream.put('w');
        }
        if (m_pastTheStream && stream.getBufferLength() > m_count + 1)
        {
            stream.getBuffer()[stream.getBufferLength() - 1] = 'p';
        }
        return true;
    }

    unsigned int m_count;
    bool m_pastTheStream;
    mutable std::string m_found;
};

using Serialize = bool (BciMessageBase::*)(char*, unsigned int&) const;
constexpr Serialize kSerialize[] = {&BciMessageBase::serializeToText, &BciMessageBase::serializeToBinary,
                                    &BciMessageBase::serializeToXml};

// Renders into a buffer of a size that holds rubbish; returns it with two more characters from behind it.
std::string rendered(const WritingMessage& message, Serialize serialize, unsigned int size, unsigned int count)
{
    std::string buffer(size + 2, '#');
    unsigned int length = size;
    EXPECT_TRUE((message.*serialize)(buffer.data(), length));
    EXPECT_EQ(length, std::min(size, count));
    return buffer;
}

TEST(MessageBuffer, IsClearedForAMessageThatSaysNothing)
{
    EXPECT_EQ(WritingMessage(0, false).writesThroughStream(), 0);
    for (const Serialize serialize : kSerialize)
    {
        for (unsigned int size = 0; size <= 20; ++size)
        {
            for (const unsigned int count : {0U, 1U, 5U, 20U})
            {
                const WritingMessage message(count, false);
                std::string expected = std::string(std::min(size, count), 'w');
                expected.resize(size);
                if (size > count + 1)
                {
                    expected.back() = 'p';
                }
                EXPECT_EQ(rendered(message, serialize, size, count), expected + "##") << size << " " << count;
                EXPECT_EQ(message.found(), std::string(size, '\0'));
            }
        }
    }
}

TEST(MessageBuffer, IsZeroWhereAMessageThatWritesThroughItsStreamWritesNothing)
{
    for (const Serialize serialize : kSerialize)
    {
        for (unsigned int size = 0; size <= 30; ++size)
        {
            for (unsigned int count = 0; count <= size + 1; ++count)
            {
                const WritingMessage message(count, true);
                std::string expected = std::string(std::min(size, count), 'w');
                expected.resize(size);
                EXPECT_EQ(rendered(message, serialize, size, count), expected + "##") << size << " " << count;
                EXPECT_EQ(message.found(), std::string(size, BCI_OPTIMIZE_SPEED ? '#' : '\0'));
            }
        }
    }
}

TEST(MessageBuffer, MayBeNull)
{
    for (const bool writesThroughStream : {false, true})
    {
        const WritingMessage message(3, writesThroughStream);
        for (const Serialize serialize : kSerialize)
        {
            unsigned int length = 10;
            EXPECT_TRUE((message.*serialize)(nullptr, length));
            EXPECT_EQ(length, 0U);
        }
    }
}

// Array subscripts

TEST(ArraySubscripts, BothAreInsertedCountedFromTheEnd)
{
    std::string text = "snid__";

    insertArraySubscripts(text, 1, 0, "1", "3");

    EXPECT_EQ(text, "snid_1_3");
}

TEST(ArraySubscripts, AreInsertedInsideAnOpeningText)
{
    std::string text = "\t<snid__>\n\t   ";

    insertArraySubscripts(text, 7, 6, "0", "9");

    EXPECT_EQ(text, "\t<snid_0_9>\n\t   ");
}

TEST(ArraySubscripts, MayHaveSeveralDigits)
{
    std::string text = "snid__";

    insertArraySubscripts(text, 1, 0, "10", "123");

    EXPECT_EQ(text, "snid_10_123");
}

TEST(ArraySubscripts, SecondPositionCountsTheTextAfterTheFirstInsertion)
{
    std::string text = "ab";

    insertArraySubscripts(text, 0, 3, "cd", "-");

    EXPECT_EQ(text, "a-bcd");
}

TEST(ArraySubscripts, SecondOneMayLandInsideTheFirst)
{
    std::string text = "ab";

    insertArraySubscripts(text, 2, 3, "XY", "-");

    EXPECT_EQ(text, "X-Yab");
}

TEST(ArraySubscripts, AtTheSamePositionTheSecondStandsBehindTheFirst)
{
    std::string text = "ab";

    insertArraySubscripts(text, 1, 1, "1", "2");

    EXPECT_EQ(text, "a12b");
}

TEST(ArraySubscripts, EmptyOnesChangeNothing)
{
    std::string text = "snid__";

    insertArraySubscripts(text, 1, 0, "", "");

    EXPECT_EQ(text, "snid__");
}

TEST(ArraySubscripts, PositionOfTheWholeLengthIsTheStart)
{
    std::string text = "ab";

    insertArraySubscripts(text, 2, 3, "1", "2");

    EXPECT_EQ(text, "21ab");
}

TEST(ArraySubscripts, PositionBeforeTheStartCountsAsTheStart)
{
    std::string first = "ab";
    std::string second = "ab";
    std::string both = "ab";

    insertArraySubscripts(first, 3, 0, "1", "2");
    insertArraySubscripts(second, 0, 4, "1", "2");
    insertArraySubscripts(both, 65535, 65535, "1", "2");

    EXPECT_EQ(first, "1ab2");
    EXPECT_EQ(second, "2ab1");
    EXPECT_EQ(both, "21ab");
}

TEST(ArraySubscripts, AnEmptyTextTakesThemInOrder)
{
    std::string text;

    insertArraySubscripts(text, 1, 0, "1", "2");

    EXPECT_EQ(text, "12");
}

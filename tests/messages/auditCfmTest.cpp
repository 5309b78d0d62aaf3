#include "bciAuditMsg.h"
#include "bciMsgRegistration.h"
#include "logCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <map>
#include <memory>
#include <new>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using namespace std::string_literals;
using commonStream::istream_binary;
using commonStream::istream_text;
using commonStream::ostream_binary;
using commonStream::ostream_text;

struct Fields
{
    SIGSELECT sigNo;
    S32 clientRef;
    S32 serverRef;
    int mainState;

    bool operator==(const Fields&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Fields& fields)
{
    return out << "{" << fields.sigNo << ", " << fields.clientRef << ", " << fields.serverRef << ", "
               << fields.mainState << "}";
}

const S32 LOWEST = -2147483647 - 1;

const Fields EXAMPLE{23430145, 1, 2, 3};
const Fields BEFORE{77, 88, 99, 11}; // what a message holds before it reads

Fields fieldsOf(const BciAuditCfm& message)
{
    const VornBcAuditCfmS& wire = message.m_auditCfm;
    return {wire.sigNo, wire.addressInfo.clientRef, wire.addressInfo.serverRef, wire.mainState};
}

struct Message : BciAuditCfm
{
    explicit Message(const Fields& fields) : BciAuditCfm(fields.sigNo)
    {
        m_auditCfm = {fields.sigNo, {fields.clientRef, fields.serverRef}, static_cast<S16>(fields.mainState)};
    }
};

std::string bytes(const std::vector<int>& values)
{
    std::string result;
    for (const int value : values)
    {
        result.push_back(static_cast<char>(value));
    }
    return result;
}

// The signal number at the start of a binary rendering; everywhere else it is as in bigEndian.
std::string firstWord(const std::vector<int>& bigEndian)
{
    std::string word = bytes(bigEndian);
    if (std::endian::native == std::endian::little)
    {
        std::reverse(word.begin(), word.end());
    }
    return word;
}

const std::string SIG_NO = firstWord({0x01, 0x65, 0x84, 0x01});
const std::string CLIENT_REF = bytes({0x00, 0x00, 0x00, 0x01});
const std::string SERVER_REF = bytes({0x00, 0x00, 0x00, 0x02});
const std::string MAIN_STATE = bytes({0x00, 0x03});

const std::string EXAMPLE_TEXT = "23430145:1:2:3:";
const std::string EXAMPLE_BINARY = SIG_NO + CLIENT_REF + SERVER_REF + MAIN_STATE;
const std::string EXAMPLE_XML = "\t<sigNo>\n\t  23430145\n\t</sigNo>\n"
                                "\t<clientRef>\n\t  1\n\t</clientRef>\n"
                                "\t<serverRef>\n\t  2\n\t</serverRef>\n"
                                "\t<mainState>\n\t  3\n\t</mainState>\n";

// What a writing codec operation leaves behind.
struct Written
{
    bool result;
    std::string buffer; // all of it; '#' where nothing was written
    unsigned int status;
    unsigned int position;
    unsigned int length;

    bool operator==(const Written&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Written& written)
{
    return out << written.result << ' ' << testing::PrintToString(written.buffer) << " status " << written.status
               << " position " << written.position << " length " << written.length;
}

template <typename Stream>
using Serialize = bool (BciAuditCfm::*)(Stream&) const;

template <typename Stream>
Written write(const Fields& fields, Serialize<Stream> operation, std::size_t capacity)
{
    const Message message(fields);
    std::vector<char> buffer(capacity, '#');
    Stream stream;
    stream.attachBuffer(buffer.data(), static_cast<unsigned int>(capacity));

    const bool result = (message.*operation)(stream);

    EXPECT_EQ(fieldsOf(message), fields);
    return {result, std::string(buffer.begin(), buffer.end()), stream.status(), stream.tellp(), stream.length()};
}

Written writeText(const Fields& fields, std::size_t capacity)
{
    return write<ostream_text>(fields, &BciAuditCfm::serializeBciMsgToText, capacity);
}

Written writeBinary(const Fields& fields, std::size_t capacity)
{
    return write<ostream_binary>(fields, &BciAuditCfm::serializeBciMsgToBinary, capacity);
}

Written writeXml(const Fields& fields, std::size_t capacity)
{
    return write<ostream_text>(fields, &BciAuditCfm::serializeBciMsgToXml, capacity);
}

// What a reading codec operation leaves behind in a message that held BEFORE.
struct Read
{
    bool result;
    Fields fields;
    unsigned int status;
    unsigned int position;

    bool operator==(const Read&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Read& read)
{
    return out << read.result << ' ' << read.fields << " status " << read.status << " position " << read.position;
}

template <typename Stream>
using Deserialize = bool (BciAuditCfm::*)(Stream&);

template <typename Stream>
Read read(const std::string& data, std::size_t length, Deserialize<Stream> operation)
{
    Message message(BEFORE);
    std::vector<char> buffer(data.begin(), data.end());
    Stream stream;
    stream.attachBuffer(buffer.data(), static_cast<unsigned int>(length));

    const bool result = (message.*operation)(stream);

    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), data);
    EXPECT_EQ(stream.length(), length);
    return {result, fieldsOf(message), stream.status(), stream.tellg()};
}

Read readText(const std::string& text)
{
    return read<istream_text>(text, text.size(), &BciAuditCfm::deserializeBciMsgFromText);
}

Read readBinary(const std::string& data)
{
    return read<istream_binary>(data, data.size(), &BciAuditCfm::deserializeBciMsgFromBinary);
}

// The terminator stands just behind the attached data.
Read readXml(const std::string& document)
{
    return read<istream_text>(document + '\0', document.size(), &BciAuditCfm::deserializeBciMsgFromXml);
}

std::string element(const std::string& tag, const std::string& content)
{
    return "\t<" + tag + ">\n\t  " + content + "\n\t</" + tag + ">\n";
}

std::string document(const std::string& sigNo, const std::string& clientRef, const std::string& serverRef,
                     const std::string& mainState)
{
    return element("sigNo", sigNo) + element("clientRef", clientRef) + element("serverRef", serverRef) +
           element("mainState", mainState);
}

const Log NO_SIG_NO{{6, "[src/bciAuditMsg:98] tag %s not found", {"sigNo"}}};
const Log NO_CLIENT_REF{{6, "[src/bciAuditMsg:105] tag tag %s not found", {"clientRef"}}};
const Log NO_SERVER_REF{{6, "[src/bciAuditMsg:112] tag %s not found", {"serverRef"}}};
const Log NO_MAIN_STATE{{6, "[src/bciAuditMsg:119] tag %s not found", {"mainState"}}};

// Has the audit confirm registered and nothing else.
class AuditCfmFactory : public testing::Test
{
protected:
    AuditCfmFactory() : m_saved(BciMessageBase::s_bciRegistrationMap)
    {
        BciMessageBase::s_bciRegistrationMap = {{BCI_AUDIT_CFM, &BciAuditCfm::instantiateBciMsg}};
    }

    ~AuditCfmFactory() override
    {
        BciMessageBase::s_bciRegistrationMap = m_saved;
    }

    // What the created message holds. There is no run-time type information, so its bytes are copied.
    Fields created() const
    {
        VornBcAuditCfmS wire;
        std::memcpy(&wire, m_message->getMsg(), sizeof wire);
        return {wire.sigNo, wire.addressInfo.clientRef, wire.addressInfo.serverRef, wire.mainState};
    }

    bool fromText(std::string text, unsigned int& length)
    {
        return take(BciMessageBase::instantiateBciMsgFromText, text, length);
    }

    bool fromBinary(std::string data, unsigned int& length)
    {
        return take(BciMessageBase::instantiateBciMsgFromBinary, data, length);
    }

    bool fromXml(std::string text, unsigned int& length)
    {
        return take(BciMessageBase::instantiateBciMsgFromXml, text, length);
    }

    std::unique_ptr<BciMessageBase> m_message;

private:
    bool take(bool (*instantiate)(char*, unsigned int&, BciMessageBase*&), std::string& data, unsigned int& length)
    {
        BciMessageBase* message = nullptr;
        const bool result = instantiate(data.data(), length, message);
        m_message.reset(message);
        return result;
    }

    std::map<SIGSELECT, BciMsgFactory> m_saved;
};

} // namespace

// Structure and class

TEST(AuditCfm, WireStructureHasTheLayoutOfTheSignal)
{
    EXPECT_EQ(sizeof(VornBcAuditCfmS), 16U);
    EXPECT_EQ(offsetof(VornBcAuditCfmS, sigNo), 0U);
    EXPECT_EQ(offsetof(VornBcAuditCfmS, addressInfo.clientRef), 4U);
    EXPECT_EQ(offsetof(VornBcAuditCfmS, addressInfo.serverRef), 8U);
    EXPECT_EQ(offsetof(VornBcAuditCfmS, mainState), 12U);
    EXPECT_TRUE((std::is_same_v<decltype(VornBcAuditCfmS::mainState), VornBcStateHandlingMainStatesE>));
    EXPECT_TRUE((std::is_same_v<VornBcStateHandlingMainStatesE, S16>));
}

TEST(AuditCfm, SignalNumberHasAName)
{
    EXPECT_EQ(BCI_AUDIT_CFM, 0x1658401U);
    EXPECT_EQ(BCI_AUDIT_CFM, 23430145U);
}

TEST(AuditCfm, ConstructorLeavesTheStorageAsItWas)
{
    alignas(BciAuditCfm) unsigned char storage[sizeof(BciAuditCfm)];
    std::memset(storage, 0x5A, sizeof storage);

    BciAuditCfm* const message = new (storage) BciAuditCfm(23430145);

    EXPECT_EQ(std::string(message->getMsg(), 16), std::string(16, '\x5A'));
    EXPECT_EQ(message->getSigNo(), 0x5A5A5A5AU);
    message->~BciAuditCfm();
}

TEST(AuditCfm, NewMessageWritesWhatItsStorageHeld)
{
    alignas(BciAuditCfm) unsigned char storage[sizeof(BciAuditCfm)];
    std::memset(storage, 0x5A, sizeof storage);
    BciAuditCfm* const message = new (storage) BciAuditCfm(23430145);
    std::vector<char> buffer(42);
    unsigned int length = 42;

    EXPECT_TRUE(message->serializeToText(buffer.data(), length));

    EXPECT_EQ(std::string(buffer.data(), length), "1515870810:1515870810:1515870810:23130:");
    message->~BciAuditCfm();
}

TEST(AuditCfm, HoldsItsStructureItself)
{
    BciAuditCfm message(23430145);

    EXPECT_EQ(message.getMsg(), reinterpret_cast<char*>(&message.m_auditCfm));
}

TEST(AuditCfm, FactoryMakesANewMessage)
{
    const std::unique_ptr<BciMessageBase> first(BciAuditCfm::instantiateBciMsg(23430145));
    const std::unique_ptr<BciMessageBase> second(BciAuditCfm::instantiateBciMsg(5));

    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first, second);
    EXPECT_NE(first->getMsg(), second->getMsg());
    EXPECT_EQ(first->getMaxTextBufferSize(), 42U);
    EXPECT_EQ(first->getMaxBinaryBufferSize(), 16U);
}

TEST(AuditCfm, BufferSizesAreThoseOfTextAndStructure)
{
    BciAuditCfm message(23430145);

    EXPECT_EQ(message.getMaxTextBufferSize(), 42U);
    EXPECT_EQ(message.getMaxBinaryBufferSize(), 16U);
}

TEST(AuditCfm, DelimiterIsTheColon)
{
    const BciAuditCfm message(23430145);

    EXPECT_EQ(message.getDelim(), ':');
}

TEST(AuditCfm, AccessorsAnswerFromTheStructure)
{
    const Message message({4294967295U, LOWEST, 2147483647, 3});

    EXPECT_EQ(message.getSigNo(), 4294967295U);
    EXPECT_EQ(message.getAddressInfo().clientRef, LOWEST);
    EXPECT_EQ(message.getAddressInfo().serverRef, 2147483647);
}

TEST(AuditCfm, AddressInfoIsACopy)
{
    const Message message(EXAMPLE);

    VornNodeCommonAddressInfoS copy = message.getAddressInfo();
    copy.clientRef = 100;

    EXPECT_EQ(copy.serverRef, 2);
    EXPECT_EQ(fieldsOf(message), EXAMPLE);
}

TEST(AuditCfm, SetMsgAndGetMsgCarryTheAlignmentToo)
{
    const std::string source = "abcdefghijklmnop";
    Message message(BEFORE);

    message.setMsg(source.data());

    EXPECT_EQ(std::string(message.getMsg(), 16), source);
    EXPECT_EQ(message.getMsg(), reinterpret_cast<char*>(&message.m_auditCfm));
}

TEST(AuditCfm, SetMsgFillsTheFields)
{
    const VornBcAuditCfmS source{23430145, {1, -7}, -1};
    Message message(BEFORE);

    message.setMsg(reinterpret_cast<const char*>(&source));

    EXPECT_EQ(fieldsOf(message), (Fields{23430145, 1, -7, -1}));
}

TEST(AuditCfm, ReadingLeavesTheAlignmentAlone)
{
    const std::string alignment = "op";
    std::string text = EXAMPLE_TEXT;
    std::string binary = EXAMPLE_BINARY;
    std::string xml = EXAMPLE_XML;
    unsigned int textLength = 15;
    unsigned int binaryLength = 14;
    unsigned int xmlLength = 127;
    Message message(BEFORE);
    message.setMsg("abcdefghijklmnop");

    EXPECT_TRUE(message.deserializeFromText(text.data(), textLength));
    EXPECT_EQ(std::string(message.getMsg() + 14, 2), alignment);
    EXPECT_TRUE(message.deserializeFromBinary(binary.data(), binaryLength));
    EXPECT_EQ(std::string(message.getMsg() + 14, 2), alignment);
    EXPECT_TRUE(message.deserializeFromXml(xml.data(), xmlLength));
    EXPECT_EQ(std::string(message.getMsg() + 14, 2), alignment);
}

// Text form, writing

TEST(AuditCfmText, WritesEachFieldAndADelimiter)
{
    EXPECT_EQ(writeText(EXAMPLE, 20), (Written{true, "23430145:1:2:3:#####", 0, 15, 15}));
}

TEST(AuditCfmText, WritesNegativeNumbersWithTheirSign)
{
    EXPECT_EQ(writeText({23430145, 1, -7, -1}, 17), (Written{true, "23430145:1:-7:-1:", 1, 17, 17}));
}

TEST(AuditCfmText, WritesZeros)
{
    EXPECT_EQ(writeText({0, 0, 0, 0}, 9), (Written{true, "0:0:0:0:#", 0, 8, 8}));
}

TEST(AuditCfmText, LongestTextTakes42Characters)
{
    EXPECT_EQ(writeText({4294967295U, LOWEST, LOWEST, -32768}, 42),
              (Written{true, "4294967295:-2147483648:-2147483648:-32768:", 1, 42, 42}));
}

TEST(AuditCfmText, WritesAnyMainState)
{
    EXPECT_EQ(writeText({5, 1, 2, 32767}, 12), (Written{true, "5:1:2:32767:", 1, 12, 12}));
    EXPECT_EQ(writeText({5, 1, 2, -32768}, 13), (Written{true, "5:1:2:-32768:", 1, 13, 13}));
}

TEST(AuditCfmText, ShortBufferTakesTheBeginningAndTheResultIsTrue)
{
    for (unsigned int size = 0; size < 15; ++size)
    {
        SCOPED_TRACE(size);
        EXPECT_EQ(writeText(EXAMPLE, size), (Written{true, EXAMPLE_TEXT.substr(0, size), 3, size, size}));
    }
}

TEST(AuditCfmText, BufferOfExactlyTheTextIsFullWithoutFailure)
{
    EXPECT_EQ(writeText(EXAMPLE, 15), (Written{true, EXAMPLE_TEXT, 1, 15, 15}));
    EXPECT_EQ(writeText(EXAMPLE, 16), (Written{true, EXAMPLE_TEXT + "#", 0, 15, 15}));
}

TEST(AuditCfmText, WritesToAStreamThatHasFailed)
{
    const Message message(EXAMPLE);
    std::vector<char> buffer(16, '#');
    ostream_text stream;
    stream.attachBuffer(buffer.data(), 16);
    stream.setfail();

    EXPECT_TRUE(message.serializeBciMsgToText(stream));

    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), "23430145:1:2:3:#");
    EXPECT_EQ(stream.status(), 2U);
}

TEST(AuditCfmText, WritesFromTheStreamsPositionOn)
{
    const Message message(EXAMPLE);
    std::vector<char> buffer(31, '#');
    ostream_text stream;
    stream.attachBuffer(buffer.data(), 31);

    EXPECT_TRUE(message.serializeBciMsgToText(stream));
    EXPECT_TRUE(message.serializeBciMsgToText(stream));

    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), "23430145:1:2:3:23430145:1:2:3:#");
    EXPECT_EQ(stream.tellp(), 30U);
}

// Text form, reading

TEST(AuditCfmText, ReadsWhatItWrites)
{
    EXPECT_EQ(readText("23430145:1:2:3:"), (Read{true, EXAMPLE, 1, 15}));
    EXPECT_EQ(readText("23430145:1:-7:-1:"), (Read{true, {23430145, 1, -7, -1}, 1, 17}));
}

TEST(AuditCfmText, LeavesWhatFollowsTheLastDelimiterUnread)
{
    EXPECT_EQ(readText("23430145:1:2:3:4:"), (Read{true, EXAMPLE, 0, 15}));
    EXPECT_EQ(readText("23430145:1:2:3:\0\0\0"s), (Read{true, EXAMPLE, 0, 15}));
}

TEST(AuditCfmText, ReadsExtremeNumbers)
{
    EXPECT_EQ(readText("4294967295:2147483647:-2147483647:32767:"),
              (Read{true, {4294967295U, 2147483647, -2147483647, 32767}, 1, 40}));
    EXPECT_EQ(readText("0:0:-0:-32768:"), (Read{true, {0, 0, 0, -32768}, 1, 14}));
}

TEST(AuditCfmText, AnyCharacterPassesAsADelimiter)
{
    EXPECT_EQ(readText("23430145;1 2|3\n"), (Read{true, EXAMPLE, 1, 15}));
    EXPECT_EQ(readText("23430145\0"
                       "1<2z3_"s),
              (Read{true, EXAMPLE, 1, 15}));
}

TEST(AuditCfmText, NumbersMayHaveAPlusAndLeadingZeros)
{
    EXPECT_EQ(readText("+023430145:+1:002:+03:"), (Read{true, EXAMPLE, 1, 22}));
}

TEST(AuditCfmText, SignalNumberIsTakenModulo)
{
    EXPECT_EQ(readText("4294967301:1:2:3:"), (Read{true, {5, 1, 2, 3}, 1, 17}));
}

TEST(AuditCfmText, MainStateBelowItsRangeIsTruncated)
{
    EXPECT_EQ(readText("23430145:1:2:-40000:"), (Read{true, {23430145, 1, 2, 25536}, 1, 20}));
    EXPECT_EQ(readText("23430145:1:2:-32769:"), (Read{true, {23430145, 1, 2, 32767}, 1, 20}));
}

TEST(AuditCfmText, MainStateAboveItsRangeIsNotStored)
{
    EXPECT_EQ(readText("23430145:1:2:32768:"), (Read{true, {23430145, 1, 2, 11}, 2, 18}));
}

// Once the stream is not good, nothing more is read. The result is true all the same.
TEST(AuditCfmText, FieldsBehindADamagedOneKeepTheirValues)
{
    const struct
    {
        std::string text;
        Read expected;
    } rows[] = {
        {"?:1:2:3:", {true, {77, 88, 99, 11}, 2, 0}},
        {" 5:1:2:3:", {true, {77, 88, 99, 11}, 2, 0}},
        {"-5:1:2:3:", {true, {5, 88, 99, 11}, 2, 2}},
        {"5-3:1:2:3:", {true, {77, 88, 99, 11}, 2, 1}},
        {"5::2:3:", {true, {5, 88, 99, 11}, 2, 2}},
        {"5:?:2:3:", {true, {5, 88, 99, 11}, 2, 2}},
        {"5:2147483648:2:3:", {true, {5, 88, 99, 11}, 2, 12}},
        {"5:-2147483648:2:3:", {true, {5, 88, 99, 11}, 2, 13}},
        {"5:1-1:2:3:", {true, {5, 0, 99, 11}, 2, 3}},
        {"5:1F:2:3:", {true, {5, 88, 99, 11}, 2, 4}},
        {"5:1:?:3:", {true, {5, 1, 99, 11}, 2, 4}},
        {"5:1:0x2:3:", {true, {5, 1, 0, 11}, 2, 5}},
        {"5:1:2:?:", {true, {5, 1, 2, 11}, 2, 6}},
        {"5:1:2:3+:", {true, {5, 1, 2, 0}, 2, 7}},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(readText(row.text), row.expected);
    }
}

// A number at the very end of the data is not converted: the signal number keeps its value, the others
// become 0. With the delimiter behind it missing, the stream has failed.
TEST(AuditCfmText, ReadsAsFarAsAShortTextGoes)
{
    const Read rows[] = {
        {true, {77, 88, 99, 11}, 3, 0},       // ""
        {true, {77, 88, 99, 11}, 3, 1},       // "2"
        {true, {77, 88, 99, 11}, 3, 2},       // "23"
        {true, {77, 88, 99, 11}, 3, 3},       // "234"
        {true, {77, 88, 99, 11}, 3, 4},       // "2343"
        {true, {77, 88, 99, 11}, 3, 5},       // "23430"
        {true, {77, 88, 99, 11}, 3, 6},       // "234301"
        {true, {77, 88, 99, 11}, 3, 7},       // "2343014"
        {true, {77, 88, 99, 11}, 3, 8},       // "23430145"
        {true, {23430145, 88, 99, 11}, 3, 9}, // "23430145:"
        {true, {23430145, 0, 99, 11}, 3, 10}, // "23430145:1"
        {true, {23430145, 1, 99, 11}, 3, 11}, // "23430145:1:"
        {true, {23430145, 1, 0, 11}, 3, 12},  // "23430145:1:2"
        {true, {23430145, 1, 2, 11}, 3, 13},  // "23430145:1:2:"
        {true, {23430145, 1, 2, 0}, 3, 14},   // "23430145:1:2:3"
        {true, {23430145, 1, 2, 3}, 1, 15},   // "23430145:1:2:3:"
    };
    for (unsigned int length = 0; length <= 15; ++length)
    {
        SCOPED_TRACE(length);
        EXPECT_EQ(readText(EXAMPLE_TEXT.substr(0, length)), rows[length]);
    }
}

TEST(AuditCfmText, ReadsNothingFromAStreamThatIsNotGood)
{
    std::string text = EXAMPLE_TEXT;
    Message message(BEFORE);
    istream_text stream;
    stream.attachBuffer(text.data(), 15);
    stream.seteof();

    EXPECT_TRUE(message.deserializeBciMsgFromText(stream));

    EXPECT_EQ(fieldsOf(message), BEFORE);
    EXPECT_EQ(stream.status(), 3U);
    EXPECT_EQ(stream.tellg(), 0U);
}

TEST(AuditCfmText, ReadsFromTheStreamsPositionOn)
{
    std::string text = "5:6:7:8:23430145:1:2:3:";
    Message message(BEFORE);
    istream_text stream;
    stream.attachBuffer(text.data(), 23);

    EXPECT_TRUE(message.deserializeBciMsgFromText(stream));
    EXPECT_EQ(fieldsOf(message), (Fields{5, 6, 7, 8}));
    EXPECT_TRUE(message.deserializeBciMsgFromText(stream));
    EXPECT_EQ(fieldsOf(message), EXAMPLE);
    EXPECT_EQ(stream.tellg(), 23U);
}

// Text form, entry points

TEST(AuditCfmText, EntryPointLeavesZerosBehindTheText)
{
    const Message message(EXAMPLE);
    std::vector<char> buffer(100, '#');
    unsigned int length = 100;

    EXPECT_TRUE(message.serializeToText(buffer.data(), length));

    EXPECT_EQ(length, 15U);
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), "23430145:1:2:3:" + std::string(85, '\0'));
}

TEST(AuditCfmText, EntryPointSucceedsWithAShortBuffer)
{
    const Message message(EXAMPLE);
    for (unsigned int size = 0; size <= 15; ++size)
    {
        SCOPED_TRACE(size);
        std::vector<char> buffer(size, '#');
        unsigned int length = size;

        EXPECT_TRUE(message.serializeToText(buffer.data(), length));

        EXPECT_EQ(length, size);
        EXPECT_EQ(std::string(buffer.begin(), buffer.end()), EXAMPLE_TEXT.substr(0, size));
    }
}

TEST(AuditCfmText, EntryPointReportsTheCharactersConsumed)
{
    std::string text = "23430145:1:2:3:" + std::string(85, '\0');
    unsigned int length = 100;
    Message message(BEFORE);

    EXPECT_TRUE(message.deserializeFromText(text.data(), length));

    EXPECT_EQ(length, 15U);
    EXPECT_EQ(fieldsOf(message), EXAMPLE);
}

TEST(AuditCfmText, EntryPointSucceedsWithoutTheLastDelimiter)
{
    std::string text = "23430145:1:2:3";
    unsigned int length = 14;
    Message message(BEFORE);

    EXPECT_TRUE(message.deserializeFromText(text.data(), length));

    EXPECT_EQ(length, 14U);
    EXPECT_EQ(fieldsOf(message), (Fields{23430145, 1, 2, 0}));
}

TEST(AuditCfmText, EntryPointSucceedsWithADamagedNumber)
{
    std::string text = "23430145:?:2:3:";
    unsigned int length = 15;
    Message message(BEFORE);

    EXPECT_TRUE(message.deserializeFromText(text.data(), length));

    EXPECT_EQ(length, 9U);
    EXPECT_EQ(fieldsOf(message), (Fields{23430145, 88, 99, 11}));
}

// Binary form, writing

TEST(AuditCfmBinary, WritesFourteenBytes)
{
    const std::string expected =
        std::endian::native == std::endian::big
            ? bytes({0x01, 0x65, 0x84, 0x01, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x02, 0x00, 0x03})
            : bytes({0x01, 0x84, 0x65, 0x01, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x02, 0x00, 0x03});

    EXPECT_EQ(writeBinary(EXAMPLE, 14), (Written{true, expected, 1, 14, 14}));
    EXPECT_EQ(writeBinary(EXAMPLE, 16), (Written{true, expected + "##", 0, 14, 14}));
}

TEST(AuditCfmBinary, WritesNegativeNumbersInTwosComplement)
{
    const std::string expected = firstWord({0xFF, 0xFF, 0xFF, 0xFE}) + bytes({0xFF, 0xFF, 0xFF, 0xFE}) +
                                 bytes({0x80, 0x00, 0x00, 0x00}) + bytes({0xFF, 0xFF});

    EXPECT_EQ(writeBinary({4294967294U, -2, LOWEST, -1}, 14), (Written{true, expected, 1, 14, 14}));
}

TEST(AuditCfmBinary, WritesAnyMainState)
{
    const std::string header = SIG_NO + CLIENT_REF + SERVER_REF;

    EXPECT_EQ(writeBinary({23430145, 1, 2, 32767}, 14), (Written{true, header + bytes({0x7F, 0xFF}), 1, 14, 14}));
    EXPECT_EQ(writeBinary({23430145, 1, 2, -32768}, 14), (Written{true, header + bytes({0x80, 0x00}), 1, 14, 14}));
    EXPECT_EQ(writeBinary({23430145, 1, 2, 0x1234}, 14), (Written{true, header + bytes({0x12, 0x34}), 1, 14, 14}));
}

// A number that does not fit is left out; a shorter one behind it may still fit.
TEST(AuditCfmBinary, ShortBufferTakesWhatFitsAndTheResultIsTrue)
{
    const struct
    {
        std::string buffer;
        unsigned int status;
        unsigned int position;
    } rows[] = {
        {"", 3, 0},
        {"#", 2, 0},
        {MAIN_STATE, 3, 2},
        {MAIN_STATE + "#", 2, 2},
        {SIG_NO, 3, 4},
        {SIG_NO + "#", 2, 4},
        {SIG_NO + MAIN_STATE, 3, 6},
        {SIG_NO + MAIN_STATE + "#", 2, 6},
        {SIG_NO + CLIENT_REF, 3, 8},
        {SIG_NO + CLIENT_REF + "#", 2, 8},
        {SIG_NO + CLIENT_REF + MAIN_STATE, 3, 10},
        {SIG_NO + CLIENT_REF + MAIN_STATE + "#", 2, 10},
        {SIG_NO + CLIENT_REF + SERVER_REF, 3, 12},
        {SIG_NO + CLIENT_REF + SERVER_REF + "#", 2, 12},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.buffer.size());
        EXPECT_EQ(writeBinary(EXAMPLE, row.buffer.size()),
                  (Written{true, row.buffer, row.status, row.position, row.position}));
    }
}

TEST(AuditCfmBinary, SignalNumberBehindTheStartIsMostSignificantByteFirst)
{
    const Message message(EXAMPLE);
    std::vector<char> buffer(28, '#');
    ostream_binary stream;
    stream.attachBuffer(buffer.data(), 28);

    EXPECT_TRUE(message.serializeBciMsgToBinary(stream));
    EXPECT_TRUE(message.serializeBciMsgToBinary(stream));

    EXPECT_EQ(std::string(buffer.begin(), buffer.end()),
              EXAMPLE_BINARY + bytes({0x01, 0x65, 0x84, 0x01}) + CLIENT_REF + SERVER_REF + MAIN_STATE);
    EXPECT_EQ(stream.status(), 1U);
}

// Binary form, reading

TEST(AuditCfmBinary, ReadsWhatItWrites)
{
    EXPECT_EQ(readBinary(EXAMPLE_BINARY), (Read{true, EXAMPLE, 1, 14}));
}

TEST(AuditCfmBinary, LeavesWhatFollowsUnread)
{
    EXPECT_EQ(readBinary(EXAMPLE_BINARY + "##"), (Read{true, EXAMPLE, 0, 14}));
}

TEST(AuditCfmBinary, ReadsExtremeNumbers)
{
    const std::string lowest = firstWord({0xFF, 0xFF, 0xFF, 0xFE}) + bytes({0xFF, 0xFF, 0xFF, 0xFE}) +
                               bytes({0x80, 0x00, 0x00, 0x00}) + bytes({0x80, 0x00});
    const std::string highest = firstWord({0x00, 0x00, 0x00, 0x00}) + bytes({0x7F, 0xFF, 0xFF, 0xFF}) +
                                bytes({0x12, 0x34, 0x56, 0x78}) + bytes({0x7F, 0xFF});

    EXPECT_EQ(readBinary(lowest), (Read{true, {4294967294U, -2, LOWEST, -32768}, 1, 14}));
    EXPECT_EQ(readBinary(highest), (Read{true, {0, 2147483647, 0x12345678, 32767}, 1, 14}));
}

// A field of which all bytes are there is read; the first one that is cut sets fail, unless nothing of it
// is there.
TEST(AuditCfmBinary, ReadsAsFarAsAShortBufferGoes)
{
    const Read rows[] = {
        {true, {77, 88, 99, 11}, 3, 0},       {true, {77, 88, 99, 11}, 2, 0},
        {true, {77, 88, 99, 11}, 2, 0},       {true, {77, 88, 99, 11}, 2, 0},
        {true, {23430145, 88, 99, 11}, 1, 4}, {true, {23430145, 88, 99, 11}, 2, 4},
        {true, {23430145, 88, 99, 11}, 2, 4}, {true, {23430145, 88, 99, 11}, 2, 4},
        {true, {23430145, 1, 99, 11}, 1, 8},  {true, {23430145, 1, 99, 11}, 2, 8},
        {true, {23430145, 1, 99, 11}, 2, 8},  {true, {23430145, 1, 99, 11}, 2, 8},
        {true, {23430145, 1, 2, 11}, 1, 12},  {true, {23430145, 1, 2, 11}, 2, 12},
        {true, {23430145, 1, 2, 3}, 1, 14},
    };
    for (unsigned int length = 0; length <= 14; ++length)
    {
        SCOPED_TRACE(length);
        EXPECT_EQ(readBinary(EXAMPLE_BINARY.substr(0, length)), rows[length]);
    }
}

TEST(AuditCfmBinary, SignalNumberBehindTheStartIsReadMostSignificantByteFirst)
{
    std::string data = EXAMPLE_BINARY + bytes({0x01, 0x02, 0x03, 0x04}) + SERVER_REF + CLIENT_REF + MAIN_STATE;
    Message message(BEFORE);
    istream_binary stream;
    stream.attachBuffer(data.data(), 28);

    EXPECT_TRUE(message.deserializeBciMsgFromBinary(stream));
    EXPECT_EQ(fieldsOf(message), EXAMPLE);
    EXPECT_TRUE(message.deserializeBciMsgFromBinary(stream));
    EXPECT_EQ(fieldsOf(message), (Fields{0x01020304, 2, 1, 3}));
    EXPECT_EQ(stream.status(), 1U);
}

TEST(AuditCfmBinary, ReadsNothingFromAStreamThatIsNotGood)
{
    std::string data = EXAMPLE_BINARY;
    Message message(BEFORE);
    istream_binary stream;
    stream.attachBuffer(data.data(), 14);
    stream.setfail();

    EXPECT_TRUE(message.deserializeBciMsgFromBinary(stream));

    EXPECT_EQ(fieldsOf(message), BEFORE);
    EXPECT_EQ(stream.status(), 2U);
    EXPECT_EQ(stream.tellg(), 0U);
}

// Binary form, entry points

TEST(AuditCfmBinary, EntryPointLeavesZerosBehindTheFourteenBytes)
{
    const Message message(EXAMPLE);
    std::vector<char> buffer(16, '#');
    unsigned int length = 16;

    EXPECT_TRUE(message.serializeToBinary(buffer.data(), length));

    EXPECT_EQ(length, 14U);
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), EXAMPLE_BINARY + std::string(2, '\0'));
}

TEST(AuditCfmBinary, EntryPointSucceedsWithAShortBuffer)
{
    const Message message(EXAMPLE);
    const std::string expected[] = {
        "",
        "\0"s,
        MAIN_STATE,
        MAIN_STATE + "\0"s,
        SIG_NO,
        SIG_NO + "\0"s,
        SIG_NO + MAIN_STATE,
        SIG_NO + MAIN_STATE + "\0"s,
        SIG_NO + CLIENT_REF,
        SIG_NO + CLIENT_REF + "\0"s,
        SIG_NO + CLIENT_REF + MAIN_STATE,
        SIG_NO + CLIENT_REF + MAIN_STATE + "\0"s,
        SIG_NO + CLIENT_REF + SERVER_REF,
        SIG_NO + CLIENT_REF + SERVER_REF + "\0"s,
        EXAMPLE_BINARY,
    };
    const unsigned int lengths[] = {0, 0, 2, 2, 4, 4, 6, 6, 8, 8, 10, 10, 12, 12, 14};
    for (unsigned int size = 0; size <= 14; ++size)
    {
        SCOPED_TRACE(size);
        std::vector<char> buffer(size, '#');
        unsigned int length = size;

        EXPECT_TRUE(message.serializeToBinary(buffer.data(), length));

        EXPECT_EQ(length, lengths[size]);
        EXPECT_EQ(std::string(buffer.begin(), buffer.end()), expected[size]);
    }
}

TEST(AuditCfmBinary, EntryPointReportsTheBytesConsumed)
{
    std::string data = EXAMPLE_BINARY + "##";
    unsigned int length = 16;
    Message message(BEFORE);

    EXPECT_TRUE(message.deserializeFromBinary(data.data(), length));

    EXPECT_EQ(length, 14U);
    EXPECT_EQ(fieldsOf(message), EXAMPLE);
}

TEST(AuditCfmBinary, EntryPointSucceedsWithACutField)
{
    std::string data = EXAMPLE_BINARY.substr(0, 7);
    unsigned int length = 7;
    Message message(BEFORE);

    EXPECT_TRUE(message.deserializeFromBinary(data.data(), length));

    EXPECT_EQ(length, 4U);
    EXPECT_EQ(fieldsOf(message), (Fields{23430145, 88, 99, 11}));
}

// XML form, writing

TEST(AuditCfmXml, WritesAnElementForEachField)
{
    EXPECT_EQ(writeXml(EXAMPLE, 130), (Written{true,
                                               "\t<sigNo>\n\t  23430145\n\t</sigNo>\n"
                                               "\t<clientRef>\n\t  1\n\t</clientRef>\n"
                                               "\t<serverRef>\n\t  2\n\t</serverRef>\n"
                                               "\t<mainState>\n\t  3\n\t</mainState>\n###",
                                               0, 127, 127}));
}

TEST(AuditCfmXml, WritesExtremeNumbers)
{
    EXPECT_EQ(writeXml({4294967295U, LOWEST, 2147483647, -32768}, 154),
              (Written{true,
                       "\t<sigNo>\n\t  4294967295\n\t</sigNo>\n"
                       "\t<clientRef>\n\t  -2147483648\n\t</clientRef>\n"
                       "\t<serverRef>\n\t  2147483647\n\t</serverRef>\n"
                       "\t<mainState>\n\t  -32768\n\t</mainState>\n#",
                       0, 153, 153}));
}

TEST(AuditCfmXml, WritesTheHighestMainState)
{
    EXPECT_EQ(writeXml({5, 1, 2, 32767}, 124),
              (Written{true,
                       element("sigNo", "5") + element("clientRef", "1") + element("serverRef", "2") +
                           "\t<mainState>\n\t  32767\n\t</mainState>\n",
                       1, 124, 124}));
}

TEST(AuditCfmXml, ShortBufferTakesTheBeginningAndTheResultIsTrue)
{
    for (unsigned int size = 0; size < 127; ++size)
    {
        SCOPED_TRACE(size);
        EXPECT_EQ(writeXml(EXAMPLE, size), (Written{true, EXAMPLE_XML.substr(0, size), 3, size, size}));
    }
}

TEST(AuditCfmXml, BufferOfExactlyTheDocumentIsFullWithoutFailure)
{
    EXPECT_EQ(writeXml(EXAMPLE, 127), (Written{true, EXAMPLE_XML, 1, 127, 127}));
    EXPECT_EQ(writeXml(EXAMPLE, 128), (Written{true, EXAMPLE_XML + "#", 0, 127, 127}));
}

// XML form, reading

TEST(AuditCfmXml, ReadsWhatItWritesWithoutMovingTheStream)
{
    EXPECT_EQ(readXml(EXAMPLE_XML), (Read{true, EXAMPLE, 0, 0}));
}

TEST(AuditCfmXml, ReadsFromTheStartWhateverPositionAndStatus)
{
    std::string xml = EXAMPLE_XML;
    Message message(BEFORE);
    istream_text stream;
    stream.attachBuffer(xml.data(), 127);
    stream.seekg(100U);
    stream.setfail();

    EXPECT_TRUE(message.deserializeBciMsgFromXml(stream));

    EXPECT_EQ(fieldsOf(message), EXAMPLE);
    EXPECT_EQ(stream.tellg(), 100U);
    EXPECT_EQ(stream.status(), 2U);
}

TEST(AuditCfmXml, ReadsNothingFromAStreamWithoutBuffer)
{
    Message message(BEFORE);
    istream_text stream;

    EXPECT_FALSE(message.deserializeBciMsgFromXml(stream));

    EXPECT_EQ(fieldsOf(message), BEFORE);
    EXPECT_EQ(stream.status(), 3U);
    EXPECT_EQ(takeLog(), NO_SIG_NO);
}

TEST(AuditCfmXml, MissingSigNoLeavesAllFieldsAlone)
{
    EXPECT_EQ(readXml(element("clientRef", "1") + element("serverRef", "2") + element("mainState", "3")),
              (Read{false, {77, 88, 99, 11}, 0, 0}));
    EXPECT_EQ(takeLog(), NO_SIG_NO);
}

TEST(AuditCfmXml, MissingClientRefLeavesSigNoSet)
{
    EXPECT_EQ(readXml(element("sigNo", "23430145") + element("serverRef", "2") + element("mainState", "3")),
              (Read{false, {23430145, 88, 99, 11}, 0, 0}));
    EXPECT_EQ(takeLog(), NO_CLIENT_REF);
}

TEST(AuditCfmXml, MissingServerRefLeavesTheFieldsBeforeItSet)
{
    EXPECT_EQ(readXml(element("sigNo", "23430145") + element("clientRef", "1") + element("mainState", "3")),
              (Read{false, {23430145, 1, 99, 11}, 0, 0}));
    EXPECT_EQ(takeLog(), NO_SERVER_REF);
}

TEST(AuditCfmXml, MissingMainStateLeavesTheHeaderSet)
{
    EXPECT_EQ(readXml(element("sigNo", "23430145") + element("clientRef", "1") + element("serverRef", "2")),
              (Read{false, {23430145, 1, 2, 11}, 0, 0}));
    EXPECT_EQ(takeLog(), NO_MAIN_STATE);
}

TEST(AuditCfmXml, OnlyTheFirstMissingElementIsLogged)
{
    EXPECT_EQ(readXml(element("sigNo", "23430145")), (Read{false, {23430145, 88, 99, 11}, 0, 0}));
    EXPECT_EQ(takeLog(), NO_CLIENT_REF);
    EXPECT_EQ(readXml("\n"), (Read{false, {77, 88, 99, 11}, 0, 0}));
    EXPECT_EQ(takeLog(), NO_SIG_NO);
}

TEST(AuditCfmXml, EmptyDocumentHoldsNoElement)
{
    EXPECT_EQ(readXml(""), (Read{false, {77, 88, 99, 11}, 3, 0}));
    EXPECT_EQ(takeLog(), NO_SIG_NO);
}

// An element is complete with the '>' of its closing tag; the line end behind it does not matter.
TEST(AuditCfmXml, ReadsTheElementsThatAShortDocumentHolds)
{
    for (unsigned int length = 1; length <= 127; ++length)
    {
        SCOPED_TRACE(length);
        const Read outcome = readXml(EXAMPLE_XML.substr(0, length));
        const Log log = takeLog();
        if (length < 30)
        {
            EXPECT_EQ(outcome, (Read{false, {77, 88, 99, 11}, 0, 0}));
            EXPECT_EQ(log, NO_SIG_NO);
        }
        else if (length < 62)
        {
            EXPECT_EQ(outcome, (Read{false, {23430145, 88, 99, 11}, 0, 0}));
            EXPECT_EQ(log, NO_CLIENT_REF);
        }
        else if (length < 94)
        {
            EXPECT_EQ(outcome, (Read{false, {23430145, 1, 99, 11}, 0, 0}));
            EXPECT_EQ(log, NO_SERVER_REF);
        }
        else if (length < 126)
        {
            EXPECT_EQ(outcome, (Read{false, {23430145, 1, 2, 11}, 0, 0}));
            EXPECT_EQ(log, NO_MAIN_STATE);
        }
        else
        {
            EXPECT_EQ(outcome, (Read{true, EXAMPLE, 0, 0}));
            EXPECT_EQ(log, Log{});
        }
    }
}

TEST(AuditCfmXml, DamagedElementCountsAsMissing)
{
    for (const char* damaged :
         {"<clientRef>1", "1</clientRef>", "</clientRef>1<clientRef>", "<clientRef 1</clientRef>",
          "<clientRef >1</clientRef>", "<ClientRef>1</ClientRef>", "<clientRef>1<clientRef>",
          "<clientRef>1</clientref>", "<clientRefX>1</clientRefX>", "<XclientRef>1</XclientRef>",
          "<clientRef>1</ clientRef>", "<clientRef/>", "clientRef: 1"})
    {
        SCOPED_TRACE(damaged);
        EXPECT_EQ(readXml(element("sigNo", "23430145") + damaged + element("serverRef", "2") +
                          element("mainState", "3")),
                  (Read{false, {23430145, 88, 99, 11}, 0, 0}));
        EXPECT_EQ(takeLog(), NO_CLIENT_REF);
    }
}

TEST(AuditCfmXml, DocumentEndsAtItsTerminator)
{
    EXPECT_EQ(readXml(element("sigNo", "23430145") + element("clientRef", "1") + '\0' + element("serverRef", "2") +
                      element("mainState", "3")),
              (Read{false, {23430145, 1, 99, 11}, 0, 0}));
    EXPECT_EQ(takeLog(), NO_SERVER_REF);
}

TEST(AuditCfmXml, OrderOfTheElementsDoesNotMatter)
{
    EXPECT_EQ(readXml(element("mainState", "3") + element("serverRef", "2") + element("clientRef", "1") +
                      element("sigNo", "23430145")),
              (Read{true, EXAMPLE, 0, 0}));
}

TEST(AuditCfmXml, FirstOfTwoElementsCounts)
{
    EXPECT_EQ(readXml(EXAMPLE_XML + document("9", "9", "9", "9")), (Read{true, EXAMPLE, 0, 0}));
}

TEST(AuditCfmXml, LayoutDoesNotMatter)
{
    EXPECT_EQ(readXml("<sigNo>23430145</sigNo><clientRef> 1 </clientRef><serverRef>\r\n    2\r\n</serverRef>"
                      "\t<mainState>\n\t   3\n\t</mainState>\n"),
              (Read{true, EXAMPLE, 0, 0}));
}

TEST(AuditCfmXml, EnclosingAndForeignElementsDoNotMatter)
{
    EXPECT_EQ(readXml("<?xml version=\"1.0\"?>\n<auditCfm>\n" + element("mainStateX", "9") + EXAMPLE_XML +
                      "</auditCfm>\n"),
              (Read{true, EXAMPLE, 0, 0}));
}

TEST(AuditCfmXml, NumbersAreConvertedLeniently)
{
    const struct
    {
        std::string content;
        S32 clientRef;
    } rows[] = {
        {"0", 0},
        {"-0", 0},
        {"+12", 12},
        {"-12", -12},
        {"007", 7},
        {" \t\n\v\f\r12", 12},
        {" \t\n\v\f\r-12", -12},
        {"12 ", 12},
        {"1 2", 1},
        {"12.9", 12},
        {"12abc", 12},
        {"12-", 12},
        {"abc", 0},
        {"F", 0},
        {"0x1F", 0},
        {"x12", 0},
        {"", 0},
        {" ", 0},
        {"+", 0},
        {"-", 0},
        {"+-12", 0},
        {"-+12", 0},
        {"--12", 0},
        {"- 12", 0},
        {"12<b>3</b>", 12},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(testing::PrintToString(row.content));
        EXPECT_EQ(readXml(document("23430145", row.content, "2", "3")),
                  (Read{true, {23430145, row.clientRef, 2, 3}, 0, 0}));
    }
}

TEST(AuditCfmXml, NumbersSaturateAt32Bits)
{
    const struct
    {
        std::string content;
        S32 serverRef;
    } rows[] = {
        {"2147483646", 2147483646},
        {"2147483647", 2147483647},
        {"2147483648", 2147483647},
        {"4000000000", 2147483647},
        {"4294967295", 2147483647},
        {"4294967296", 2147483647},
        {"4294967301", 2147483647},
        {"9223372036854775807", 2147483647},
        {"9223372036854775808", 2147483647},
        {"18446744073709551616", 2147483647},
        {"99999999999999999999999999999999999999999", 2147483647},
        {"-2147483647", -2147483647},
        {"-2147483648", LOWEST},
        {"-2147483649", LOWEST},
        {"-4294967296", LOWEST},
        {"-9223372036854775809", LOWEST},
        {"-99999999999999999999999999999999999999999", LOWEST},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.content);
        EXPECT_EQ(readXml(document("23430145", "1", row.content, "3")),
                  (Read{true, {23430145, 1, row.serverRef, 3}, 0, 0}));
    }
}

TEST(AuditCfmXml, LongContentIsConvertedAsAWhole)
{
    const std::string zeros(500, '0');
    const std::string blanks(500, ' ');

    EXPECT_EQ(readXml(document(zeros + "23430145", zeros + "1", blanks + "2", "-" + zeros + "3")),
              (Read{true, {23430145, 1, 2, -3}, 0, 0}));
}

TEST(AuditCfmXml, SigNoIsConvertedAsASignedNumber)
{
    EXPECT_EQ(readXml(document("4000000000", "1", "2", "3")), (Read{true, {2147483647, 1, 2, 3}, 0, 0}));
    EXPECT_EQ(readXml(document("-1", "1", "2", "3")), (Read{true, {4294967295U, 1, 2, 3}, 0, 0}));
    EXPECT_EQ(readXml(document("-2147483648", "1", "2", "3")), (Read{true, {2147483648U, 1, 2, 3}, 0, 0}));
}

TEST(AuditCfmXml, MainStateIsTruncatedTo16Bits)
{
    const struct
    {
        std::string content;
        int mainState;
    } rows[] = {
        {"32767", 32767},   {"-32768", -32768}, {"32768", -32768},  {"-32769", 32767},  {"65535", -1},
        {"65536", 0},       {"65539", 3},       {"-65533", 3},      {"2147483647", -1}, {"4000000000", -1},
        {"-2147483648", 0}, {"-3000000000", 0}, {"-2147483647", 1},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.content);
        EXPECT_EQ(readXml(document("23430145", "1", "2", row.content)),
                  (Read{true, {23430145, 1, 2, row.mainState}, 0, 0}));
    }
}

TEST(AuditCfmXml, ContentThatIsNoNumberIsASuccess)
{
    EXPECT_EQ(readXml(document("abc", "abc", "abc", "abc")), (Read{true, {0, 0, 0, 0}, 0, 0}));
}

// XML form, entry points

TEST(AuditCfmXml, EntryPointLeavesZerosBehindTheDocument)
{
    const Message message(EXAMPLE);
    std::vector<char> buffer(200, '#');
    unsigned int length = 200;

    EXPECT_TRUE(message.serializeToXml(buffer.data(), length));

    EXPECT_EQ(length, 127U);
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), EXAMPLE_XML + std::string(73, '\0'));
}

TEST(AuditCfmXml, EntryPointSucceedsWithAShortBuffer)
{
    const Message message(EXAMPLE);
    for (unsigned int size = 0; size <= 127; ++size)
    {
        SCOPED_TRACE(size);
        std::vector<char> buffer(size, '#');
        unsigned int length = size;

        EXPECT_TRUE(message.serializeToXml(buffer.data(), length));

        EXPECT_EQ(length, size);
        EXPECT_EQ(std::string(buffer.begin(), buffer.end()), EXAMPLE_XML.substr(0, size));
    }
}

TEST(AuditCfmXml, EntryPointReportsLengthZero)
{
    std::string xml = EXAMPLE_XML;
    unsigned int length = 127;
    Message message(BEFORE);

    EXPECT_TRUE(message.deserializeFromXml(xml.data(), length));

    EXPECT_EQ(length, 0U);
    EXPECT_EQ(fieldsOf(message), EXAMPLE);
}

TEST(AuditCfmXml, EntryPointReadsUpToTheTerminatorWhateverTheLength)
{
    for (const unsigned int given : {0U, 1U, 50U})
    {
        SCOPED_TRACE(given);
        std::string xml = EXAMPLE_XML;
        unsigned int length = given;
        Message message(BEFORE);

        EXPECT_TRUE(message.deserializeFromXml(xml.data(), length));

        EXPECT_EQ(length, 0U);
        EXPECT_EQ(fieldsOf(message), EXAMPLE);
    }
}

TEST(AuditCfmXml, EntryPointReportsAMissingElement)
{
    std::string xml = element("sigNo", "23430145") + element("serverRef", "2") + element("mainState", "3");
    unsigned int length = 95;
    Message message(BEFORE);

    EXPECT_FALSE(message.deserializeFromXml(xml.data(), length));

    EXPECT_EQ(length, 0U);
    EXPECT_EQ(fieldsOf(message), (Fields{23430145, 88, 99, 11}));
    EXPECT_EQ(takeLog(), NO_CLIENT_REF);
}

TEST(AuditCfmXml, NullDocumentHoldsNoElement)
{
    unsigned int length = 10;
    Message message(BEFORE);

    EXPECT_FALSE(message.deserializeFromXml(nullptr, length));

    EXPECT_EQ(length, 0U);
    EXPECT_EQ(fieldsOf(message), BEFORE);
    EXPECT_EQ(takeLog(), NO_SIG_NO);
}

TEST(AuditCfmXml, SignalNumberAboveTheSignedRangeDoesNotSurvive)
{
    const Message sender({4000000000U, 1, 2, 3});
    Message receiver(BEFORE);
    std::vector<char> buffer(200);
    unsigned int length = 200;

    EXPECT_TRUE(sender.serializeToXml(buffer.data(), length));
    EXPECT_TRUE(receiver.deserializeFromXml(buffer.data(), length));

    EXPECT_EQ(fieldsOf(receiver), (Fields{2147483647, 1, 2, 3}));
}

// Creation from a rendering

TEST_F(AuditCfmFactory, CreatesFromText)
{
    unsigned int length = 15;

    ASSERT_TRUE(fromText(EXAMPLE_TEXT, length));

    EXPECT_EQ(created(), EXAMPLE);
    EXPECT_EQ(length, 15U);
}

TEST_F(AuditCfmFactory, CreatesFromBinary)
{
    unsigned int length = 14;

    ASSERT_TRUE(fromBinary(EXAMPLE_BINARY, length));

    EXPECT_EQ(created(), EXAMPLE);
    EXPECT_EQ(length, 14U);
}

TEST_F(AuditCfmFactory, CreatesFromXml)
{
    unsigned int length = 127;

    ASSERT_TRUE(fromXml(EXAMPLE_XML, length));

    EXPECT_EQ(created(), EXAMPLE);
    EXPECT_EQ(length, 0U);
}

TEST_F(AuditCfmFactory, CreatedMessageIsAnAuditCfm)
{
    unsigned int length = 15;

    ASSERT_TRUE(fromText(EXAMPLE_TEXT, length));

    EXPECT_EQ(m_message->getSigNo(), 23430145U);
    EXPECT_EQ(m_message->getAddressInfo().clientRef, 1);
    EXPECT_EQ(m_message->getAddressInfo().serverRef, 2);
    EXPECT_EQ(m_message->getMaxTextBufferSize(), 42U);
    EXPECT_EQ(m_message->getMaxBinaryBufferSize(), 16U);
}

TEST_F(AuditCfmFactory, XmlWithAMissingElementLeavesAPartlyFilledMessage)
{
    unsigned int length = 64;

    EXPECT_FALSE(fromXml(element("mainState", "3") + element("sigNo", "23430145"), length));

    ASSERT_NE(m_message, nullptr);
    EXPECT_EQ(m_message->getSigNo(), 23430145U);
    EXPECT_EQ(length, 0U);
    EXPECT_EQ(takeLog(), NO_CLIENT_REF);
}

TEST_F(AuditCfmFactory, DamagedTextStillMakesAMessage)
{
    unsigned int length = 15;

    EXPECT_TRUE(fromText("23430145:?:2:3:", length));

    ASSERT_NE(m_message, nullptr);
    EXPECT_EQ(m_message->getSigNo(), 23430145U);
    EXPECT_EQ(length, 9U);
}

TEST_F(AuditCfmFactory, CutBinaryStillMakesAMessage)
{
    unsigned int length = 10;

    EXPECT_TRUE(fromBinary(EXAMPLE_BINARY.substr(0, 10), length));

    ASSERT_NE(m_message, nullptr);
    EXPECT_EQ(m_message->getSigNo(), 23430145U);
    EXPECT_EQ(m_message->getAddressInfo().clientRef, 1);
    EXPECT_EQ(length, 8U);
}

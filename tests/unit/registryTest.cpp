#include "bciMessage.h"
#include "logCapture.h"

#include <gtest/gtest.h>

#include <bit>
#include <functional>
#include <map>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using commonStream::istream_binary;
using commonStream::istream_text;
using commonStream::ostream_binary;
using commonStream::ostream_text;
using Numbers = std::vector<SIGSELECT>;

// What a codec operation found in its stream.
struct Call
{
    std::string operation;
    const char* buffer;
    std::string content; // the attached buffer, capacity included
    unsigned int length;
    unsigned int status;
    unsigned int position;

    bool operator==(const Call&) const = default;
};

using Calls = std::vector<Call>;

std::ostream& operator<<(std::ostream& out, const Call& call)
{
    return out << call.operation << " buffer " << static_cast<const void*>(call.buffer) << " content "
               << testing::PrintToString(call.content) << " length " << call.length << " status " << call.status
               << " position " << call.position;
}

// What the codec operations of ScriptedMessage do.
struct Script
{
    bool result = true;
    std::string output;         // serializers write this,
    unsigned int stepsBack = 0; // and move the write position back
    unsigned int consumed = 0;  // deserializers move the read position here
    bool setsFail = false;      // leaves the stream failed
};

// The factories are plain functions, so what they and their messages share lives here.
Script script;
Calls calls;
Numbers created;
Numbers createdByOther;
unsigned int destroyed;

class ScriptedMessage : public BciMessageBase
{
public:
    explicit ScriptedMessage(SIGSELECT sigNo) : BciMessageBase(nullptr, 0, sigNo) {}

    ~ScriptedMessage() override
    {
        ++destroyed;
    }

    SIGSELECT getSigNo() const override
    {
        return 0;
    }

    VornNodeCommonAddressInfoS getAddressInfo() const override
    {
        return {0, 0};
    }

    // The bounds are advice: entry points that looked at them would refuse every buffer.
    unsigned int getMaxBinaryBufferSize() override
    {
        return 1000000;
    }

    unsigned int getMaxTextBufferSize() override
    {
        return 1000000;
    }

    bool serializeBciMsgToText(ostream_text& stream) const override
    {
        return write("to text", stream);
    }

    bool serializeBciMsgToBinary(ostream_binary& stream) const override
    {
        return write("to binary", stream);
    }

    bool serializeBciMsgToXml(ostream_text& stream) const override
    {
        return write("to xml", stream);
    }

    bool deserializeBciMsgFromText(istream_text& stream) override
    {
        return read("from text", stream);
    }

    bool deserializeBciMsgFromBinary(istream_binary& stream) override
    {
        return read("from binary", stream);
    }

    bool deserializeBciMsgFromXml(istream_text& stream) override
    {
        return read("from xml", stream);
    }

private:
    static void record(const char* operation, const commonStream::streambase& stream, unsigned int position)
    {
        const std::string content(stream.getBuffer() == nullptr ? "" : stream.getBuffer(),
                                  stream.getBufferLength());
        calls.push_back({operation, stream.getBuffer(), content, stream.length(), stream.status(), position});
    }

    template <typename Stream>
    static bool finish(Stream& stream)
    {
        if (script.setsFail)
        {
            stream.setfail();
        }
        return script.result;
    }

    template <typename Stream>
    static bool write(const char* operation, Stream& stream)
    {
        record(operation, stream, stream.tellp());
        stream.put(script.output.data(), static_cast<unsigned int>(script.output.size()));
        stream.seekp(commonStream::CUR, -static_cast<int>(script.stepsBack));
        return finish(stream);
    }

    template <typename Stream>
    static bool read(const char* operation, Stream& stream)
    {
        record(operation, stream, stream.tellg());
        stream.seekg(script.consumed);
        return finish(stream);
    }
};

BciMessageBase* makeScripted(SIGSELECT sigNo)
{
    created.push_back(sigNo);
    return new ScriptedMessage(sigNo);
}

BciMessageBase* makeOther(SIGSELECT sigNo)
{
    createdByOther.push_back(sigNo);
    return new ScriptedMessage(sigNo);
}

BciMessageBase* makeNothing(SIGSELECT sigNo)
{
    created.push_back(sigNo);
    return nullptr;
}

// Runs while the program is loading, possibly before other static objects are made.
const bool registeredWhileLoading = []
{
    BciMessageBase::registerBciMsgClass(0xF00D, makeNothing);
    return BciMessageBase::s_bciRegistrationMap.erase(0xF00D) == 1;
}();

Log cannotFind(const char* number)
{
    return {{6, "[src/bciMessage:83] cannot find sigNo %u", {number}}};
}

const Log NO_MESSAGE{{6, "[src/bciMessage:98] msgPtr is null", {}}};
const Log NO_SIG_NO_TAG{{6, "[src/bciMessage:197] tag %s not found", {"sigNo"}}};

// Runs each test on an empty registry.
class RegistryFixture : public testing::Test
{
protected:
    RegistryFixture() : m_saved(BciMessageBase::s_bciRegistrationMap), m_untouched(0), msg(&m_untouched)
    {
        BciMessageBase::s_bciRegistrationMap.clear();
        script = {};
        calls.clear();
        created.clear();
        createdByOther.clear();
        destroyed = 0;
    }

    ~RegistryFixture() override
    {
        BciMessageBase::s_bciRegistrationMap = m_saved;
    }

    bool msgIsUntouched() const
    {
        return msg == &m_untouched;
    }

    // Deletes the created message, as a caller does.
    void deleteMsg()
    {
        ASSERT_FALSE(msgIsUntouched());
        delete msg;
        msg = nullptr;
    }

    std::map<SIGSELECT, BciMsgFactory> m_saved;
    ScriptedMessage m_untouched;
    BciMessageBase* msg; // where the factories put their message
};

struct Writer
{
    const char* operation;
    bool (BciMessageBase::*write)(char*, unsigned int&) const;
};

const Writer WRITERS[] = {{"to text", &BciMessageBase::serializeToText},
                          {"to binary", &BciMessageBase::serializeToBinary},
                          {"to xml", &BciMessageBase::serializeToXml}};

struct Reader
{
    const char* operation;
    bool (BciMessageBase::*read)(char*, unsigned int&);
};

const Reader READERS[] = {{"from text", &BciMessageBase::deserializeFromText},
                          {"from binary", &BciMessageBase::deserializeFromBinary},
                          {"from xml", &BciMessageBase::deserializeFromXml}};

std::string bytes(const std::vector<int>& values)
{
    std::string result;
    for (const int value : values)
    {
        result.push_back(static_cast<char>(value));
    }
    return result;
}

// A binary rendering: the number in the host's order, then "rest".
std::string binaryOf(const std::vector<int>& bigEndian, const std::vector<int>& littleEndian)
{
    return bytes(std::endian::native == std::endian::big ? bigEndian : littleEndian) + "rest";
}

struct Factory
{
    const char* operation;
    bool (*instantiate)(char*, unsigned int&, BciMessageBase*&);
    std::string rendering; // of signal number 5
};

const Factory FROM_TEXT{"from text", BciMessageBase::instantiateBciMsgFromText, "5:rest"};
const Factory FROM_BINARY{"from binary", BciMessageBase::instantiateBciMsgFromBinary,
                          binaryOf({0, 0, 0, 5}, {5, 0, 0, 0})};
const Factory FROM_XML{"from xml", BciMessageBase::instantiateBciMsgFromXml, "<sigNo>5</sigNo>"};
const Factory FACTORIES[] = {FROM_TEXT, FROM_BINARY, FROM_XML};

// A rendering in a buffer of its own, which no operation may change.
class Rendering
{
public:
    explicit Rendering(const std::string& content)
        : length(static_cast<unsigned int>(content.size())), m_content(content),
          m_buffer(content.c_str(), content.c_str() + content.size() + 1)
    {
    }

    ~Rendering()
    {
        EXPECT_EQ(std::string(m_buffer.data(), m_content.size()), m_content);
    }

    Rendering(const Rendering&) = delete;
    Rendering& operator=(const Rendering&) = delete;

    char* data()
    {
        return m_buffer.data();
    }

    unsigned int length;

private:
    std::string m_content;
    std::vector<char> m_buffer;
};

class MessageRegistration : public RegistryFixture
{
};

class MessageCreation : public RegistryFixture
{
};

class MessageWriting : public RegistryFixture
{
protected:
    ScriptedMessage message{5};
};

class MessageReading : public RegistryFixture
{
protected:
    ScriptedMessage message{5};
};

class MessageFactory : public RegistryFixture
{
protected:
    // Expects that a rendering is looked up under a number that is not registered.
    void expectLookup(const Factory& form, const std::string& content, const char* number)
    {
        SCOPED_TRACE(testing::PrintToString(content));
        msg = &m_untouched;
        Rendering rendering(content);
        const unsigned int length = rendering.length;

        EXPECT_FALSE(form.instantiate(rendering.data(), rendering.length, msg));

        EXPECT_EQ(takeLog(), cannotFind(number));
        EXPECT_TRUE(msgIsUntouched());
        EXPECT_EQ(rendering.length, length);
    }

    // Expects that a message of this number is created.
    void expectCreation(const Factory& form, const std::string& content, SIGSELECT number)
    {
        SCOPED_TRACE(testing::PrintToString(content));
        BciMessageBase::s_bciRegistrationMap = {{number, makeScripted}};
        created.clear();
        Rendering rendering(content);

        ASSERT_TRUE(form.instantiate(rendering.data(), rendering.length, msg));

        EXPECT_EQ(created, Numbers{number});
        deleteMsg();
    }
};

} // namespace

// Registration

TEST_F(MessageRegistration, MapIsOrderedByNumberAndHoldsFactories)
{
    EXPECT_TRUE((std::is_same_v<BciMsgFactory, BciMessageBase* (*)(SIGSELECT)>));
    EXPECT_TRUE((std::is_same_v<decltype(BciMessageBase::s_bciRegistrationMap),
                                std::map<SIGSELECT, BciMsgFactory, std::less<SIGSELECT>>>));
}

TEST_F(MessageRegistration, WorksWhileTheProgramIsStillLoading)
{
    EXPECT_TRUE(registeredWhileLoading);
}

TEST_F(MessageRegistration, PutsTheFactoryIntoTheMap)
{
    EXPECT_TRUE(BciMessageBase::registerBciMsgClass(5, makeScripted));
    EXPECT_TRUE(BciMessageBase::registerBciMsgClass(4294967295U, makeOther));

    const std::map<SIGSELECT, BciMsgFactory> expected{{5, makeScripted}, {4294967295U, makeOther}};
    EXPECT_EQ(BciMessageBase::s_bciRegistrationMap, expected);
    EXPECT_EQ(created, Numbers{});
}

TEST_F(MessageRegistration, KeepsTheFirstFactoryOfANumber)
{
    EXPECT_TRUE(BciMessageBase::registerBciMsgClass(5, makeScripted));
    EXPECT_TRUE(BciMessageBase::registerBciMsgClass(5, makeOther));

    EXPECT_TRUE(BciMessageBase::instantiateBciMsg(5, msg));
    deleteMsg();
    EXPECT_EQ(created, Numbers{5});
    EXPECT_EQ(createdByOther, Numbers{});
    EXPECT_EQ(BciMessageBase::s_bciRegistrationMap.size(), 1U);
}

TEST_F(MessageRegistration, KeepsANullFactoryToo)
{
    EXPECT_TRUE(BciMessageBase::registerBciMsgClass(5, nullptr));
    EXPECT_TRUE(BciMessageBase::registerBciMsgClass(5, makeScripted));

    EXPECT_FALSE(BciMessageBase::instantiateBciMsg(5, msg));
    EXPECT_EQ(created, Numbers{});
}

TEST_F(MessageRegistration, OneFactoryMayServeSeveralNumbers)
{
    BciMessageBase::registerBciMsgClass(5, makeScripted);
    BciMessageBase::registerBciMsgClass(6, makeScripted);

    EXPECT_TRUE(BciMessageBase::instantiateBciMsg(6, msg));
    deleteMsg();
    EXPECT_TRUE(BciMessageBase::instantiateBciMsg(5, msg));
    deleteMsg();
    EXPECT_EQ(created, (Numbers{6, 5}));
}

TEST_F(MessageRegistration, NothingIsRegisteredInAnEmptyMap)
{
    EXPECT_FALSE(BciMessageBase::isMsgClassRegistered(0));
    EXPECT_FALSE(BciMessageBase::isMsgClassRegistered(5));
}

TEST_F(MessageRegistration, ExactlyTheGivenNumbersAreRegistered)
{
    BciMessageBase::registerBciMsgClass(5, makeScripted);
    BciMessageBase::registerBciMsgClass(4294967295U, makeScripted);

    EXPECT_TRUE(BciMessageBase::isMsgClassRegistered(5));
    EXPECT_TRUE(BciMessageBase::isMsgClassRegistered(4294967295U));
    EXPECT_FALSE(BciMessageBase::isMsgClassRegistered(0));
    EXPECT_FALSE(BciMessageBase::isMsgClassRegistered(4));
    EXPECT_FALSE(BciMessageBase::isMsgClassRegistered(6));
    EXPECT_FALSE(BciMessageBase::isMsgClassRegistered(4294967294U));
}

TEST_F(MessageRegistration, ANumberWithANullFactoryIsRegistered)
{
    BciMessageBase::registerBciMsgClass(5, nullptr);

    EXPECT_TRUE(BciMessageBase::isMsgClassRegistered(5));
}

TEST_F(MessageRegistration, AskingRegistersNothing)
{
    EXPECT_FALSE(BciMessageBase::isMsgClassRegistered(5));
    EXPECT_FALSE(BciMessageBase::instantiateBciMsg(5, msg));

    EXPECT_TRUE(BciMessageBase::s_bciRegistrationMap.empty());
    EXPECT_EQ(takeLog(), cannotFind("5"));
}

// Creation by number

TEST_F(MessageCreation, HandsTheNumberToTheFactoryAndReturnsItsMessage)
{
    BciMessageBase::registerBciMsgClass(4294967295U, makeScripted);

    EXPECT_TRUE(BciMessageBase::instantiateBciMsg(4294967295U, msg));

    ASSERT_NE(msg, nullptr);
    EXPECT_FALSE(msgIsUntouched());
    EXPECT_EQ(created, Numbers{4294967295U});
    EXPECT_EQ(calls, Calls{});
    EXPECT_EQ(destroyed, 0U);
    EXPECT_EQ(takeLog(), Log{});
    deleteMsg();
}

TEST_F(MessageCreation, MessageIsDestroyedAsWhatItIs)
{
    BciMessageBase::registerBciMsgClass(5, makeScripted);
    ASSERT_TRUE(BciMessageBase::instantiateBciMsg(5, msg));

    MessageBase* const root = msg;
    delete root;

    EXPECT_EQ(destroyed, 1U);
}

TEST_F(MessageCreation, LogsANumberThatIsNotRegistered)
{
    BciMessageBase::registerBciMsgClass(5, makeScripted);

    EXPECT_FALSE(BciMessageBase::instantiateBciMsg(23430145, msg));

    EXPECT_TRUE(msgIsUntouched());
    EXPECT_EQ(created, Numbers{});
    EXPECT_EQ(takeLog(), cannotFind("23430145"));
}

TEST_F(MessageCreation, LogsTheNumberUnsigned)
{
    EXPECT_FALSE(BciMessageBase::instantiateBciMsg(4294967295U, msg));

    EXPECT_TRUE(msgIsUntouched());
    EXPECT_EQ(takeLog(), cannotFind("4294967295"));
}

TEST_F(MessageCreation, LogsEachFailure)
{
    EXPECT_FALSE(BciMessageBase::instantiateBciMsg(7, msg));
    EXPECT_FALSE(BciMessageBase::instantiateBciMsg(7, msg));

    EXPECT_EQ(takeLog().size(), 2U);
}

TEST_F(MessageCreation, SaysNothingAboutANullFactory)
{
    BciMessageBase::registerBciMsgClass(5, nullptr);

    EXPECT_FALSE(BciMessageBase::instantiateBciMsg(5, msg));

    EXPECT_TRUE(msgIsUntouched());
    EXPECT_EQ(takeLog(), Log{});
}

TEST_F(MessageCreation, LogsAFactoryThatReturnsNull)
{
    BciMessageBase::registerBciMsgClass(5, makeNothing);

    EXPECT_FALSE(BciMessageBase::instantiateBciMsg(5, msg));

    EXPECT_EQ(msg, nullptr);
    EXPECT_EQ(created, Numbers{5});
    EXPECT_EQ(takeLog(), NO_MESSAGE);
}

// Writing

TEST_F(MessageWriting, ClearsTheBufferBeforeTheCodecSeesIt)
{
    for (const Writer& writer : WRITERS)
    {
        SCOPED_TRACE(writer.operation);
        calls.clear();
        std::vector<char> buffer(10, '#');
        unsigned int length = 10;

        EXPECT_TRUE((message.*writer.write)(buffer.data(), length));

        EXPECT_EQ(calls, (Calls{{writer.operation, buffer.data(), std::string(10, '\0'), 0, 0, 0}}));
        EXPECT_EQ(buffer, std::vector<char>(10, '\0'));
        EXPECT_EQ(length, 0U);
    }
}

TEST_F(MessageWriting, ReturnsTheWrittenLengthAndLeavesZerosBehind)
{
    script.output = "abcd";
    for (const Writer& writer : WRITERS)
    {
        SCOPED_TRACE(writer.operation);
        std::vector<char> buffer(7, '#');
        unsigned int length = 7;

        EXPECT_TRUE((message.*writer.write)(buffer.data(), length));

        EXPECT_EQ(length, 4U);
        EXPECT_EQ(buffer, (std::vector<char>{'a', 'b', 'c', 'd', '\0', '\0', '\0'}));
    }
}

TEST_F(MessageWriting, TouchesNothingBehindTheGivenLength)
{
    script.output = "abcdefgh";
    for (const Writer& writer : WRITERS)
    {
        SCOPED_TRACE(writer.operation);
        std::vector<char> buffer(8, '#');
        unsigned int length = 5;

        EXPECT_TRUE((message.*writer.write)(buffer.data(), length));

        EXPECT_EQ(length, 5U);
        EXPECT_EQ(std::string(buffer.data(), 8), "abcde###");
    }
}

TEST_F(MessageWriting, SucceedsWithABufferThatIsTooShort)
{
    script.output = "abcd";
    for (const Writer& writer : WRITERS)
    {
        SCOPED_TRACE(writer.operation);
        std::vector<char> buffer(3, '#');
        unsigned int length = 3;

        EXPECT_TRUE((message.*writer.write)(buffer.data(), length));

        EXPECT_EQ(length, 3U);
        EXPECT_EQ(std::string(buffer.data(), 3), "abc");
        EXPECT_EQ(takeLog(), Log{});
    }
}

TEST_F(MessageWriting, LengthIsWhatWasWrittenNotWhereThePositionIs)
{
    script.output = "abcd";
    script.stepsBack = 3;
    for (const Writer& writer : WRITERS)
    {
        SCOPED_TRACE(writer.operation);
        std::vector<char> buffer(7, '#');
        unsigned int length = 7;

        EXPECT_TRUE((message.*writer.write)(buffer.data(), length));

        EXPECT_EQ(length, 4U);
    }
}

TEST_F(MessageWriting, CodecsFailureClearsTheBufferAndSetsTheLengthAllTheSame)
{
    script.result = false;
    script.output = "ab";
    for (const Writer& writer : WRITERS)
    {
        SCOPED_TRACE(writer.operation);
        std::vector<char> buffer(6, '#');
        unsigned int length = 6;

        EXPECT_FALSE((message.*writer.write)(buffer.data(), length));

        EXPECT_EQ(length, 2U);
        EXPECT_EQ(buffer, (std::vector<char>{'a', 'b', '\0', '\0', '\0', '\0'}));
        EXPECT_EQ(takeLog(), Log{});
    }
}

TEST_F(MessageWriting, FailedStreamIsNoFailure)
{
    script.output = "ab";
    script.setsFail = true;
    for (const Writer& writer : WRITERS)
    {
        SCOPED_TRACE(writer.operation);
        std::vector<char> buffer(6, '#');
        unsigned int length = 6;

        EXPECT_TRUE((message.*writer.write)(buffer.data(), length));

        EXPECT_EQ(length, 2U);
    }
}

TEST_F(MessageWriting, NullBufferIsNotTouched)
{
    script.output = "abcd";
    for (const Writer& writer : WRITERS)
    {
        SCOPED_TRACE(writer.operation);
        calls.clear();
        unsigned int length = 10;

        EXPECT_TRUE((message.*writer.write)(nullptr, length));

        EXPECT_EQ(calls, (Calls{{writer.operation, nullptr, "", 0, 3, 0}}));
        EXPECT_EQ(length, 0U);
    }
}

TEST_F(MessageWriting, NullBufferDoesNotHideTheCodecsFailure)
{
    script.result = false;
    for (const Writer& writer : WRITERS)
    {
        SCOPED_TRACE(writer.operation);
        unsigned int length = 10;

        EXPECT_FALSE((message.*writer.write)(nullptr, length));

        EXPECT_EQ(length, 0U);
    }
}

TEST_F(MessageWriting, EmptyBufferIsNotTouched)
{
    script.output = "abcd";
    for (const Writer& writer : WRITERS)
    {
        SCOPED_TRACE(writer.operation);
        calls.clear();
        std::vector<char> buffer(2, '#');
        unsigned int length = 0;

        EXPECT_TRUE((message.*writer.write)(buffer.data(), length));

        EXPECT_EQ(calls, (Calls{{writer.operation, buffer.data(), "", 0, 3, 0}}));
        EXPECT_EQ(length, 0U);
        EXPECT_EQ(std::string(buffer.data(), 2), "##");
    }
}

TEST_F(MessageWriting, EachCallStartsAfresh)
{
    script.output = "abcd";
    for (const Writer& writer : WRITERS)
    {
        SCOPED_TRACE(writer.operation);
        std::vector<char> buffer(6, '#');
        unsigned int first = 3;
        unsigned int second = 6;

        EXPECT_TRUE((message.*writer.write)(buffer.data(), first));
        EXPECT_TRUE((message.*writer.write)(buffer.data(), second));

        EXPECT_EQ(second, 4U);
        EXPECT_EQ(buffer, (std::vector<char>{'a', 'b', 'c', 'd', '\0', '\0'}));
        EXPECT_EQ(calls.back(), (Call{writer.operation, buffer.data(), std::string(6, '\0'), 0, 0, 0}));
    }
}

// Reading

TEST_F(MessageReading, GivesTheCodecTheWholeBufferFromItsStart)
{
    for (const Reader& reader : READERS)
    {
        SCOPED_TRACE(reader.operation);
        calls.clear();
        Rendering rendering("rendering");

        EXPECT_TRUE((message.*reader.read)(rendering.data(), rendering.length));

        EXPECT_EQ(calls, (Calls{{reader.operation, rendering.data(), "rendering", 9, 0, 0}}));
        EXPECT_EQ(rendering.length, 0U);
    }
}

TEST_F(MessageReading, ReturnsTheReadPosition)
{
    script.consumed = 4;
    for (const Reader& reader : READERS)
    {
        SCOPED_TRACE(reader.operation);
        Rendering rendering("rendering");

        EXPECT_TRUE((message.*reader.read)(rendering.data(), rendering.length));

        EXPECT_EQ(rendering.length, 4U);
    }
}

TEST_F(MessageReading, GivesTheCodecNoMoreThanTheLength)
{
    for (const Reader& reader : READERS)
    {
        SCOPED_TRACE(reader.operation);
        calls.clear();
        Rendering rendering("rendering");
        unsigned int length = 6;

        EXPECT_TRUE((message.*reader.read)(rendering.data(), length));

        EXPECT_EQ(calls, (Calls{{reader.operation, rendering.data(), "render", 6, 0, 0}}));
    }
}

TEST_F(MessageReading, CodecsFailureSetsTheLengthAllTheSame)
{
    script.result = false;
    script.consumed = 4;
    for (const Reader& reader : READERS)
    {
        SCOPED_TRACE(reader.operation);
        Rendering rendering("rendering");

        EXPECT_FALSE((message.*reader.read)(rendering.data(), rendering.length));

        EXPECT_EQ(rendering.length, 4U);
        EXPECT_EQ(takeLog(), Log{});
    }
    EXPECT_EQ(destroyed, 0U);
}

TEST_F(MessageReading, FailedStreamIsNoFailure)
{
    script.setsFail = true;
    script.consumed = 4;
    for (const Reader& reader : READERS)
    {
        SCOPED_TRACE(reader.operation);
        Rendering rendering("rendering");

        EXPECT_TRUE((message.*reader.read)(rendering.data(), rendering.length));

        EXPECT_EQ(rendering.length, 4U);
        EXPECT_EQ(takeLog(), Log{});
    }
}

TEST_F(MessageReading, NullBufferCountsAsEmpty)
{
    for (const Reader& reader : READERS)
    {
        SCOPED_TRACE(reader.operation);
        calls.clear();
        unsigned int length = 10;

        EXPECT_TRUE((message.*reader.read)(nullptr, length));

        EXPECT_EQ(calls, (Calls{{reader.operation, nullptr, "", 0, 3, 0}}));
        EXPECT_EQ(length, 0U);
    }
}

TEST_F(MessageReading, NullBufferDoesNotHideTheCodecsFailure)
{
    script.result = false;
    for (const Reader& reader : READERS)
    {
        SCOPED_TRACE(reader.operation);
        unsigned int length = 10;

        EXPECT_FALSE((message.*reader.read)(nullptr, length));

        EXPECT_EQ(length, 0U);
    }
}

TEST_F(MessageReading, EmptyBufferStillReachesTheCodec)
{
    for (const Reader& reader : READERS)
    {
        SCOPED_TRACE(reader.operation);
        calls.clear();
        Rendering rendering("x");
        unsigned int length = 0;

        EXPECT_TRUE((message.*reader.read)(rendering.data(), length));

        EXPECT_EQ(calls, (Calls{{reader.operation, rendering.data(), "", 0, 3, 0}}));
        EXPECT_EQ(length, 0U);
    }
}

// Creation from a rendering, what the three forms share

TEST_F(MessageFactory, CreatesTheMessageAndLetsItReadFromTheStart)
{
    BciMessageBase::registerBciMsgClass(5, makeScripted);
    script.consumed = 3;
    for (const Factory& form : FACTORIES)
    {
        SCOPED_TRACE(form.operation);
        calls.clear();
        created.clear();
        destroyed = 0;
        Rendering rendering(form.rendering);
        const unsigned int length = rendering.length;

        EXPECT_TRUE(form.instantiate(rendering.data(), rendering.length, msg));

        EXPECT_EQ(created, Numbers{5});
        EXPECT_EQ(calls, (Calls{{form.operation, rendering.data(), form.rendering, length, 0, 0}}));
        EXPECT_EQ(rendering.length, 3U);
        EXPECT_EQ(destroyed, 0U);
        EXPECT_EQ(takeLog(), Log{});
        deleteMsg();
        EXPECT_EQ(destroyed, 1U);
    }
}

TEST_F(MessageFactory, FailedStreamIsNoFailure)
{
    BciMessageBase::registerBciMsgClass(5, makeScripted);
    script.setsFail = true;
    for (const Factory& form : FACTORIES)
    {
        SCOPED_TRACE(form.operation);
        Rendering rendering(form.rendering);

        EXPECT_TRUE(form.instantiate(rendering.data(), rendering.length, msg));

        deleteMsg();
    }
}

TEST_F(MessageFactory, NumberThatIsNotRegisteredLeavesEverythingAsItWas)
{
    for (const Factory& form : FACTORIES)
    {
        SCOPED_TRACE(form.operation);
        expectLookup(form, form.rendering, "5");
        EXPECT_EQ(calls, Calls{});
    }
}

TEST_F(MessageFactory, NullFactoryLeavesEverythingAsItWas)
{
    BciMessageBase::registerBciMsgClass(5, nullptr);
    for (const Factory& form : FACTORIES)
    {
        SCOPED_TRACE(form.operation);
        Rendering rendering(form.rendering);
        const unsigned int length = rendering.length;

        EXPECT_FALSE(form.instantiate(rendering.data(), rendering.length, msg));

        EXPECT_TRUE(msgIsUntouched());
        EXPECT_EQ(rendering.length, length);
        EXPECT_EQ(takeLog(), Log{});
    }
}

TEST_F(MessageFactory, FactoryThatReturnsNullMakesTheMessageNull)
{
    BciMessageBase::registerBciMsgClass(5, makeNothing);
    for (const Factory& form : FACTORIES)
    {
        SCOPED_TRACE(form.operation);
        msg = &m_untouched;
        Rendering rendering(form.rendering);
        const unsigned int length = rendering.length;

        EXPECT_FALSE(form.instantiate(rendering.data(), rendering.length, msg));

        EXPECT_EQ(msg, nullptr);
        EXPECT_EQ(rendering.length, length);
        EXPECT_EQ(takeLog(), NO_MESSAGE);
    }
}

TEST_F(MessageFactory, MessageThatCouldNotReadItsTextIsTheCallers)
{
    BciMessageBase::registerBciMsgClass(5, makeScripted);
    script.result = false;
    script.consumed = 3;
    Rendering rendering(FROM_TEXT.rendering);

    EXPECT_FALSE(BciMessageBase::instantiateBciMsgFromText(rendering.data(), rendering.length, msg));

    ASSERT_NE(msg, nullptr);
    EXPECT_EQ(destroyed, 0U);
    EXPECT_EQ(rendering.length, 3U);
    EXPECT_EQ(takeLog(), Log{});
    deleteMsg();
    EXPECT_EQ(destroyed, 1U);
}

TEST_F(MessageFactory, MessageThatCouldNotReadItsBinaryFormIsDeleted)
{
    BciMessageBase::registerBciMsgClass(5, makeScripted);
    script.result = false;
    script.consumed = 3;
    Rendering rendering(FROM_BINARY.rendering);

    EXPECT_FALSE(BciMessageBase::instantiateBciMsgFromBinary(rendering.data(), rendering.length, msg));

    EXPECT_EQ(msg, nullptr);
    EXPECT_EQ(destroyed, 1U);
    EXPECT_EQ(created, Numbers{5});
    EXPECT_EQ(rendering.length, 3U);
    EXPECT_EQ(takeLog(), Log{});
}

TEST_F(MessageFactory, MessageThatCouldNotReadItsXmlIsTheCallers)
{
    BciMessageBase::registerBciMsgClass(5, makeScripted);
    script.result = false;
    Rendering rendering(FROM_XML.rendering);

    EXPECT_FALSE(BciMessageBase::instantiateBciMsgFromXml(rendering.data(), rendering.length, msg));

    ASSERT_NE(msg, nullptr);
    EXPECT_EQ(destroyed, 0U);
    EXPECT_EQ(rendering.length, 0U);
    EXPECT_EQ(takeLog(), Log{});
    deleteMsg();
    EXPECT_EQ(destroyed, 1U);
}

// Creation from text

TEST_F(MessageFactory, TextNumberIsReadLikeAnyOther)
{
    expectCreation(FROM_TEXT, "5:", 5);
    expectCreation(FROM_TEXT, "4294967295:", 4294967295U);
    expectCreation(FROM_TEXT, "007:", 7);
    expectCreation(FROM_TEXT, "+7:", 7);
    expectCreation(FROM_TEXT, "7 8:", 7);
    expectCreation(FROM_TEXT, "4294967301:", 5);
    expectCreation(FROM_TEXT, "0000000000000000000000000000000000000007:", 7);
}

TEST_F(MessageFactory, TextNumberThatIsRefusedStillLeavesItsDigits)
{
    expectCreation(FROM_TEXT, "-5:", 5);
    expectCreation(FROM_TEXT, "F1:", 1);
}

TEST_F(MessageFactory, TextNumberIsLookedUpAsRead)
{
    expectLookup(FROM_TEXT, "23430145:1:2:3:", "23430145");
    expectLookup(FROM_TEXT, "4294967291:", "4294967291");
    expectLookup(FROM_TEXT, "-5:", "5");
    expectLookup(FROM_TEXT, "4294967296:", "0");
}

TEST_F(MessageFactory, TextWithoutAReadableNumberIsLookedUpAsZero)
{
    expectLookup(FROM_TEXT, "hello", "0");
    expectLookup(FROM_TEXT, ":5:", "0");
    expectLookup(FROM_TEXT, " 5:", "0");
    expectLookup(FROM_TEXT, "-:", "0");
    expectLookup(FROM_TEXT, "1F:", "0");
    expectLookup(FROM_TEXT, "5-3:", "0");
    expectLookup(FROM_TEXT, "0x5:", "0");
    expectLookup(FROM_TEXT, "11111111111111111111111111111111:", "0");
}

TEST_F(MessageFactory, TextNumberAtTheVeryEndIsLookedUpAsZero)
{
    BciMessageBase::registerBciMsgClass(5, makeScripted);

    expectLookup(FROM_TEXT, "5", "0");
    expectLookup(FROM_TEXT, "23430145", "0");
}

TEST_F(MessageFactory, TextEndsAtTheGivenLength)
{
    BciMessageBase::registerBciMsgClass(234, makeScripted);
    Rendering rendering("234:1:");
    unsigned int numberAtTheEnd = 3;
    unsigned int withDelimiter = 4;

    EXPECT_FALSE(BciMessageBase::instantiateBciMsgFromText(rendering.data(), numberAtTheEnd, msg));
    EXPECT_EQ(takeLog(), cannotFind("0"));
    EXPECT_EQ(numberAtTheEnd, 3U);

    EXPECT_TRUE(BciMessageBase::instantiateBciMsgFromText(rendering.data(), withDelimiter, msg));
    EXPECT_EQ(calls, (Calls{{"from text", rendering.data(), "234:", 4, 0, 0}}));
    deleteMsg();
}

TEST_F(MessageFactory, EmptyTextIsLookedUpAsZero)
{
    expectLookup(FROM_TEXT, "", "0");
}

TEST_F(MessageFactory, NullTextIsLookedUpAsZero)
{
    unsigned int length = 10;

    EXPECT_FALSE(BciMessageBase::instantiateBciMsgFromText(nullptr, length, msg));

    EXPECT_EQ(takeLog(), cannotFind("0"));
    EXPECT_TRUE(msgIsUntouched());
    EXPECT_EQ(length, 10U);
}

TEST_F(MessageFactory, UnreadableTextReachesAClassRegisteredAsZero)
{
    BciMessageBase::registerBciMsgClass(0, makeScripted);
    Rendering rendering("hello");
    unsigned int lengthOfNull = 10;

    EXPECT_TRUE(BciMessageBase::instantiateBciMsgFromText(rendering.data(), rendering.length, msg));
    deleteMsg();
    EXPECT_TRUE(BciMessageBase::instantiateBciMsgFromText(nullptr, lengthOfNull, msg));
    deleteMsg();

    EXPECT_EQ(created, (Numbers{0, 0}));
    EXPECT_EQ(calls,
              (Calls{{"from text", rendering.data(), "hello", 5, 0, 0}, {"from text", nullptr, "", 0, 3, 0}}));
    EXPECT_EQ(lengthOfNull, 0U);
}

// Creation from binary

TEST_F(MessageFactory, BinaryNumberIsInTheHostsOrder)
{
    expectCreation(FROM_BINARY, binaryOf({1, 2, 3, 4}, {4, 3, 2, 1}), 0x01020304);
    expectCreation(FROM_BINARY, binaryOf({0xFF, 0xFF, 0xFF, 0xFE}, {0xFE, 0xFF, 0xFF, 0xFF}), 4294967294U);
    expectLookup(FROM_BINARY, binaryOf({0x01, 0x65, 0x84, 0x02}, {0x02, 0x84, 0x65, 0x01}), "23430146");
}

TEST_F(MessageFactory, BinaryNumberMayBeAllThereIs)
{
    expectCreation(FROM_BINARY, bytes({7, 7, 7, 7}), 0x07070707);
}

TEST_F(MessageFactory, BinaryOfFewerThanFourBytesIsLookedUpAsZero)
{
    BciMessageBase::registerBciMsgClass(0x07070707, makeScripted);

    expectLookup(FROM_BINARY, bytes({}), "0");
    expectLookup(FROM_BINARY, bytes({7}), "0");
    expectLookup(FROM_BINARY, bytes({7, 7}), "0");
    expectLookup(FROM_BINARY, bytes({7, 7, 7}), "0");
}

TEST_F(MessageFactory, BinaryEndsAtTheGivenLength)
{
    Rendering rendering(bytes({7, 7, 7, 7}));
    unsigned int length = 3;

    EXPECT_FALSE(BciMessageBase::instantiateBciMsgFromBinary(rendering.data(), length, msg));

    EXPECT_EQ(takeLog(), cannotFind("0"));
    EXPECT_EQ(length, 3U);
}

TEST_F(MessageFactory, NullBinaryIsLookedUpAsZero)
{
    unsigned int length = 10;

    EXPECT_FALSE(BciMessageBase::instantiateBciMsgFromBinary(nullptr, length, msg));

    EXPECT_EQ(takeLog(), cannotFind("0"));
    EXPECT_TRUE(msgIsUntouched());
    EXPECT_EQ(length, 10U);
}

TEST_F(MessageFactory, ShortBinaryReachesAClassRegisteredAsZero)
{
    BciMessageBase::registerBciMsgClass(0, makeScripted);
    Rendering rendering(bytes({7, 7, 7}));

    EXPECT_TRUE(BciMessageBase::instantiateBciMsgFromBinary(rendering.data(), rendering.length, msg));

    EXPECT_EQ(calls, (Calls{{"from binary", rendering.data(), bytes({7, 7, 7}), 3, 0, 0}}));
    deleteMsg();
}

// Creation from XML

TEST_F(MessageFactory, XmlNumberIsFoundAnywhere)
{
    expectCreation(FROM_XML, "\t<sigNo>\n\t  5\n\t</sigNo>\n", 5);
    expectCreation(FROM_XML, "<clientRef>1</clientRef>\n<sigNo>5</sigNo>", 5);
    expectCreation(FROM_XML, "<message><sigNo>5</sigNo></message>", 5);
    expectCreation(FROM_XML, "<sigNo>5</sigNo><sigNo>6</sigNo>", 5);
    expectCreation(FROM_XML, "<sigNoX>6</sigNoX><sigNo>5</sigNo>", 5);
}

TEST_F(MessageFactory, XmlNumberIsConvertedLeniently)
{
    expectCreation(FROM_XML, "<sigNo> \n\t5 </sigNo>", 5);
    expectCreation(FROM_XML, "<sigNo>+5</sigNo>", 5);
    expectCreation(FROM_XML, "<sigNo>5x</sigNo>", 5);
    expectCreation(FROM_XML, "<sigNo>00000000000000000000000000000000000000000000005</sigNo>", 5);
    expectCreation(FROM_XML, "<sigNo>-5</sigNo>", 4294967291U);
}

TEST_F(MessageFactory, XmlNumberThatIsNotRegisteredIsLoggedAsConverted)
{
    expectLookup(FROM_XML, "<sigNo>23430146</sigNo>", "23430146");
    expectLookup(FROM_XML, "<sigNo>-5</sigNo>", "4294967291");
    expectLookup(FROM_XML, "<sigNo>-1</sigNo>", "4294967295");
    expectLookup(FROM_XML, "<sigNo>2147483647</sigNo>", "2147483647");
    expectLookup(FROM_XML, "<sigNo>2147483648</sigNo>", "2147483647");
    expectLookup(FROM_XML, "<sigNo>4294967295</sigNo>", "2147483647");
    expectLookup(FROM_XML, "<sigNo>99999999999999999999999</sigNo>", "2147483647");
    expectLookup(FROM_XML, "<sigNo>-99999999999999999999999</sigNo>", "2147483648");
}

TEST_F(MessageFactory, XmlContentThatIsNoNumberIsLookedUpAsZero)
{
    expectLookup(FROM_XML, "<sigNo></sigNo>", "0");
    expectLookup(FROM_XML, "<sigNo>hello</sigNo>", "0");
    expectLookup(FROM_XML, "<sigNo>F</sigNo>", "0");
    expectLookup(FROM_XML, "<sigNo>--5</sigNo>", "0");
}

TEST_F(MessageFactory, XmlWithoutTheNumbersElementIsLogged)
{
    BciMessageBase::registerBciMsgClass(0, makeScripted);
    BciMessageBase::registerBciMsgClass(5, makeScripted);
    for (const char* document : {"", "5", "<clientRef>5</clientRef>", "<sigNo>5", "5</sigNo>", "<SIGNO>5</SIGNO>",
                                 "<sigNoX>5</sigNoX>", "</sigNo>5<sigNo>", "<sigNo 5</sigNo>"})
    {
        SCOPED_TRACE(document);
        Rendering rendering(document);
        const unsigned int length = rendering.length;

        EXPECT_FALSE(BciMessageBase::instantiateBciMsgFromXml(rendering.data(), rendering.length, msg));

        EXPECT_EQ(takeLog(), NO_SIG_NO_TAG);
        EXPECT_TRUE(msgIsUntouched());
        EXPECT_EQ(rendering.length, length);
        EXPECT_EQ(created, Numbers{});
    }
}

TEST_F(MessageFactory, NullXmlHoldsNoElement)
{
    unsigned int length = 10;

    EXPECT_FALSE(BciMessageBase::instantiateBciMsgFromXml(nullptr, length, msg));

    EXPECT_EQ(takeLog(), NO_SIG_NO_TAG);
    EXPECT_TRUE(msgIsUntouched());
    EXPECT_EQ(length, 10U);
}

TEST_F(MessageFactory, XmlIsSearchedWhateverTheLengthSays)
{
    BciMessageBase::registerBciMsgClass(5, makeScripted);
    Rendering rendering("<sigNo>5</sigNo>");
    unsigned int none = 0;
    unsigned int few = 3;

    EXPECT_TRUE(BciMessageBase::instantiateBciMsgFromXml(rendering.data(), none, msg));
    deleteMsg();
    EXPECT_TRUE(BciMessageBase::instantiateBciMsgFromXml(rendering.data(), few, msg));
    deleteMsg();

    EXPECT_EQ(calls, (Calls{{"from xml", rendering.data(), "", 0, 3, 0},
                            {"from xml", rendering.data(), "<si", 3, 0, 0}}));
    EXPECT_EQ(none, 0U);
    EXPECT_EQ(few, 0U);
}

TEST_F(MessageFactory, XmlEndsAtItsTerminatorWhateverTheLengthSays)
{
    using namespace std::string_literals;
    BciMessageBase::registerBciMsgClass(5, makeScripted);
    Rendering rendering("<clientRef>1</clientRef>\0<sigNo>5</sigNo>"s);

    EXPECT_FALSE(BciMessageBase::instantiateBciMsgFromXml(rendering.data(), rendering.length, msg));

    EXPECT_EQ(takeLog(), NO_SIG_NO_TAG);
    EXPECT_TRUE(msgIsUntouched());
}

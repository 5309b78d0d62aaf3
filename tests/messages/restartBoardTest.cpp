#include "bciRestartBoardMsg.h"
#include "logCapture.h"
#include "messageKit.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <type_traits>

namespace
{

using namespace std::string_literals;
using Wire = VornBcRestartBoardFwdS;

const S32 kLowest = -2147483647 - 1;
const std::string kHeader = firstWord(23429123) + "\0\0\0\1\0\0\0\2"s;
const std::string kLongest(137, 'w'); // the longest trace that has its terminator

std::string xml(const std::string& content)
{
    return headerElements("23429123", "1", "2") + element("traceInformation", content);
}

class RestartBoardFwd : public testing::Test
{
protected:
    // The bytes behind the trace are 'Z', the alignment included.
    void hold(const std::string& trace)
    {
        std::memset(&wire(), 'Z', sizeof(Wire));
        wire().sigNo = 23429123;
        wire().addressInfo = {1, 2};
        std::memcpy(wire().traceInformation, (trace + '\0').data(), trace.size() < 138 ? trace.size() + 1 : 138);
    }

    Wire& wire()
    {
        return m_message->m_bciRestartBoardFwdMsg;
    }

    // Runs a reader on a message whose every byte is 'Z'. It fills that many numbers of the header and the
    // trace's first bytes; all else is as it was.
    void expectRead(Read (*read)(BciMessageBase&, const std::string&), const std::string& data,
                    const Read& expected, const std::string& trace, std::size_t headerNumbers = 3)
    {
        SCOPED_TRACE(data);
        const Wire header{23429123, {1, 2}, {}};
        std::string after(152, 'Z');
        std::memcpy(after.data(), &header, headerNumbers * 4);
        after.replace(12, trace.size(), trace);
        std::memset(&wire(), 'Z', sizeof(Wire));
        EXPECT_EQ(read(*m_message, data), expected);
        EXPECT_EQ(structureOf(*m_message, 152), after);
    }

    const std::unique_ptr<BciRestartBoardFwdMsg> m_message = filled<BciRestartBoardFwdMsg>(152);
};

TEST_F(RestartBoardFwd, StructureHasTheLayoutOfTheSignal)
{
    EXPECT_EQ(sizeof(Wire), 152U);
    EXPECT_EQ(offsetof(Wire, addressInfo), 4U);
    EXPECT_EQ(offsetof(Wire, traceInformation), 12U);
    EXPECT_TRUE((std::is_same_v<decltype(Wire::traceInformation), U8[138]>));
}

TEST_F(RestartBoardFwd, ConstructorLeavesTheStorageAsItWas)
{
    alignas(BciRestartBoardFwdMsg) unsigned char storage[sizeof(BciRestartBoardFwdMsg)];
    std::memset(storage, 0x5A, sizeof storage);
    auto* const message = new (storage) BciRestartBoardFwdMsg(23429123);
    EXPECT_EQ(message->getMsg(), reinterpret_cast<char*>(&message->m_bciRestartBoardFwdMsg));
    EXPECT_EQ(structureOf(*message, 152), std::string(152, '\x5A'));
    message->~BciRestartBoardFwdMsg();
}

TEST_F(RestartBoardFwd, AccessorsAnswerFromTheStructure)
{
    for (const char fill : {'a', 'b'})
    {
        m_message->setMsg(std::string(152, fill).data());
        EXPECT_EQ(structureOf(*m_message, 152), std::string(152, fill));
    }
    const Wire source{4294967295U, {kLowest, 2147483647}, {}};
    m_message->setMsg(reinterpret_cast<const char*>(&source));
    EXPECT_EQ(m_message->getSigNo(), 4294967295U);
    EXPECT_EQ(m_message->getAddressInfo().clientRef, kLowest);
    EXPECT_EQ(m_message->getAddressInfo().serverRef, 2147483647);
    EXPECT_EQ(m_message->getMaxTextBufferSize(), 587U);
    EXPECT_EQ(m_message->getMaxBinaryBufferSize(), 152U);
    EXPECT_EQ(writeText(*m_message).bytes, "4294967295:-2147483648:2147483647::");
    EXPECT_EQ(writeBinary(*m_message).bytes,
              firstWord(4294967295U) + be32(0x80000000) + be32(0x7FFFFFFF) + zeros(138));
    EXPECT_EQ(writeXml(*m_message).bytes,
              headerElements("4294967295", "-2147483648", "2147483647") + element("traceInformation", ""));
}

TEST_F(RestartBoardFwd, WritesTheTraceUpToItsTerminatorAndNeverBeyondTheArray)
{
    // A trace of 138 characters fills its array and has no terminator.
    for (const std::string& trace : {""s, "boot:watchdog"s, " <a>&\n\xFF "s, kLongest, kLongest + "w"})
    {
        SCOPED_TRACE(trace);
        hold(trace);
        const std::string text = "23429123:1:2:" + trace + ":";
        EXPECT_EQ(writeText(*m_message), (Written{true, text, 0}));
        EXPECT_EQ(writeXml(*m_message), (Written{true, xml(trace), 0}));
        for (unsigned int size = 0; size <= text.size(); ++size)
        {
            EXPECT_EQ(writeText(*m_message, size),
                      (Written{true, text.substr(0, size), size == text.size() ? 1U : 3U}));
        }
        for (unsigned int size = 0; size < xml(trace).size(); size += 7)
        {
            EXPECT_EQ(writeXml(*m_message, size), (Written{true, xml(trace).substr(0, size), 3}));
        }
    }
}

TEST_F(RestartBoardFwd, ReadsTheTraceUpToADelimiter)
{
    const std::string header = "23429123:1:2:";
    expectRead(readText, header + "watchdog:", {true, 1, 22}, "watchdog\0"s);
    expectRead(readText, header + "boot:watchdog:", {true, 0, 18}, "boot\0"s);
    expectRead(readText, header + ":", {true, 1, 14}, "\0"s);
    expectRead(readText, header + " <a>&\n\xFF :", {true, 1, 22}, " <a>&\n\xFF \0"s);
    expectRead(readText, header + kLongest + ":", {true, 1, 151}, kLongest + '\0');
    // The 138th character is taken for the delimiter.
    expectRead(readText, header + kLongest + "w:", {true, 0, 151}, kLongest + '\0');
    expectRead(readText, header + kLongest + "w", {true, 1, 151}, kLongest + '\0');
    expectRead(readText, "+023429123;001 2|x:", {true, 1, 19}, "x\0"s);
}

TEST_F(RestartBoardFwd, ReadsAsFarAsAShortOrDamagedTextGoes)
{
    expectRead(readText, "23429123:1:2:" + kLongest, {true, 3, 150}, kLongest + '\0');
    expectRead(readText, "23429123:1:2:boot", {true, 3, 17}, "boot\0"s);
    expectRead(readText, "23429123:1:2:", {true, 3, 13}, "");
    expectRead(readText, "23429123:1:?:boot:", {true, 2, 11}, "", 2);
    expectRead(readText, "23429123:1:", {true, 3, 11}, "", 2);
    expectRead(readText, "23429123:2147483648:2:boot:", {true, 2, 19}, "", 1);
    expectRead(readText, "?:1:2:boot:", {true, 2, 0}, "", 0);
    expectRead(readText, "", {true, 3, 0}, "", 0);
}

TEST_F(RestartBoardFwd, BinaryCarriesEveryByteOfTheTrace)
{
    std::string trace = "boot:watchdog\0behind"s;
    trace.append(138 - trace.size(), 'x');
    const std::string binary = kHeader + trace;
    m_message->setMsg(std::string(152, 'Z').data());
    EXPECT_EQ(readBinary(*m_message, binary), (Read{true, 1, 150}));
    EXPECT_EQ(writeBinary(*m_message), (Written{true, binary, 0}));
    EXPECT_EQ(writeBinary(*m_message, 150), (Written{true, binary, 1}));
    // What the numbers of the header leave free, the trace takes.
    for (unsigned int size = 0; size < 150; ++size)
    {
        const std::string header = kHeader.substr(0, size < 12 ? size / 4 * 4 : 12);
        EXPECT_EQ(writeBinary(*m_message, size),
                  (Written{true, header + trace.substr(0, size - header.size()), 3}));
    }
    expectRead(readBinary, binary, {true, 1, 150}, trace);
    expectRead(readBinary, binary + "rest", {true, 0, 150}, trace);
    for (unsigned int size = 13; size < 150; ++size)
    {
        expectRead(readBinary, binary.substr(0, size), {true, 3, size}, trace.substr(0, size - 12));
    }
    expectRead(readBinary, kHeader, {true, 1, 12}, "");
    expectRead(readBinary, kHeader.substr(0, 11), {true, 2, 8}, "", 2);
    expectRead(readBinary, kHeader.substr(0, 4), {true, 1, 4}, "", 1);
    expectRead(readBinary, "", {true, 3, 0}, "", 0);
}

TEST_F(RestartBoardFwd, ReadsXml)
{
    const std::string header = headerElements("23429123", "1", "2");
    for (const std::string& trace : {"boot:watchdog"s, ""s, "   "s, " a\n\t<b> &c "s, kLongest})
    {
        expectRead(readXml, xml(trace), {true, 0, 0}, trace + '\0');
    }
    expectRead(readXml, xml(kLongest + "x"), {true, 0, 0}, kLongest + '\0');
    expectRead(readXml, xml(std::string(5000, 'w')), {true, 0, 0}, kLongest + '\0');
    expectRead(readXml, element("traceInformation", "first") + xml("second"), {true, 0, 0}, "first\0"s);
    expectRead(readXml, header + "<traceInformation>\r\n  boot now\v </traceInformation>", {true, 0, 0},
               "boot now\0"s);
    expectRead(readXml, xml("boot</traceInformation>now"), {true, 0, 0}, "boot\0"s);
}

TEST_F(RestartBoardFwd, FirstMissingElementEndsReadingXml)
{
    const struct
    {
        const char* tag;
        const char* log;
    } rows[] = {
        {"sigNo", "[src/bciRestartBoardMsg:115] tag %s not found"},
        {"clientRef", "[src/bciRestartBoardMsg:122] tag %s not found"},
        {"serverRef", "[src/bciRestartBoardMsg:129] tag %s not found"},
        {"traceInformation", "[src/bciRestartBoardMsg:136] tag %s not found"},
    };
    for (std::size_t i = 0; i < 4; ++i)
    {
        expectRead(readXml, without(xml("boot"), rows[i].tag), {false, 0, 0}, "", i);
        EXPECT_EQ(takeLog(), (Log{{6, rows[i].log, {rows[i].tag}}}));
    }
    expectRead(readXml, xml("bo\0ot"s), {false, 0, 0}, ""); // the document ends at its first zero
    EXPECT_EQ(takeLog(), (Log{{6, rows[3].log, {"traceInformation"}}}));
}

} // namespace

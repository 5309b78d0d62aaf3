#include "bciRestartBoardMsg.h"
#include "logCapture.h"
#include "messageKit.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>

namespace
{

using namespace std::string_literals;
using Wire = VornBcRestartBoardFwdS;

const std::string kHeader = hostHeader(23429123, 1, 2);
const std::string kBinaryHeader = firstWord(23429123) + "\0\0\0\1\0\0\0\2"s;
const std::string kLongest(137, 'w'); // the longest trace that has its terminator

std::string xml(const std::string& content)
{
    return headerElements("23429123", "1", "2") + element("traceInformation", content);
}

class RestartBoardFwd : public testing::Test
{
protected:
    // The bytes behind the trace are kFill, the alignment included.
    void hold(const std::string& trace)
    {
        setStructure(*m_message, filledUp(kHeader + (trace + '\0').substr(0, 138), 152));
    }

    // Runs a reader on a message whose every byte is kFill. It fills that many numbers of the header and the
    // trace's first bytes; all else is as it was.
    void expectRead(Reader reader, const std::string& data, const Read& outcome, const std::string& trace,
                    std::size_t headerNumbers = 3, const Log& log = {})
    {
        expectReading(*m_message, reader, std::string(152, kFill),
                      {data, outcome, kHeader.substr(0, headerNumbers * 4) + trace, log});
    }

    const std::unique_ptr<BciRestartBoardFwdMsg> m_message = filled<BciRestartBoardFwdMsg>(152);
};

TEST_F(RestartBoardFwd, StructureHasTheLayoutOfTheSignal)
{
    expectSignal<Wire>(152);
    expectField<U8[138]>(&Wire::traceInformation, 12);
}

TEST_F(RestartBoardFwd, ConstructorLeavesTheStorageAsItWas)
{
    EXPECT_EQ(constructed(&BciRestartBoardFwdMsg::m_bciRestartBoardFwdMsg, 23429123), std::string(152, kFill));
}

TEST_F(RestartBoardFwd, AccessorsAnswerFromTheStructure)
{
    expectOwnStructure<BciRestartBoardFwdMsg, Wire>(&BciRestartBoardFwdMsg::m_bciRestartBoardFwdMsg, 587, 152);
    setStructure(*m_message, hostHeader(4294967295U, kLowest, 2147483647) + zeros(140));
    EXPECT_EQ(writeText(*m_message).bytes, "4294967295:-2147483648:2147483647::");
    EXPECT_EQ(writeBinary(*m_message).bytes, binaryHeader(4294967295U, kLowest, 2147483647) + zeros(138));
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
        expectBeginnings(writeText, *m_message, "23429123:1:2:" + trace + ":");
        expectBeginnings(writeXml, *m_message, xml(trace));
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
    const std::string binary = kBinaryHeader + trace;
    expectRead(readBinary, binary, {true, 1, 150}, trace);
    EXPECT_EQ(writeBinary(*m_message), (Written{true, binary, 0}));
    EXPECT_EQ(writeBinary(*m_message, 150), (Written{true, binary, 1}));
    // What the numbers of the header leave free, the trace takes.
    for (unsigned int size = 0; size < 150; ++size)
    {
        const std::string header = kBinaryHeader.substr(0, size < 12 ? size / 4 * 4 : 12);
        EXPECT_EQ(writeBinary(*m_message, size),
                  (Written{true, header + trace.substr(0, size - header.size()), 3}));
    }
    expectRead(readBinary, binary + "rest", {true, 0, 150}, trace);
    for (unsigned int size = 13; size < 150; ++size)
    {
        expectRead(readBinary, binary.substr(0, size), {true, 3, size}, trace.substr(0, size - 12));
    }
    expectRead(readBinary, kBinaryHeader, {true, 1, 12}, "");
    expectRead(readBinary, kBinaryHeader.substr(0, 11), {true, 2, 8}, "", 2);
    expectRead(readBinary, kBinaryHeader.substr(0, 4), {true, 1, 4}, "", 1);
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
    expectEachMissingElementStopsTheReader(
        *m_message, std::string(152, kFill), xml("boot"), filledUp(kHeader + "boot\0"s, 152),
        {{"sigNo", "[src/bciRestartBoardMsg:115] tag %s not found", 0},
         {"clientRef", "[src/bciRestartBoardMsg:122] tag %s not found", 4},
         {"serverRef", "[src/bciRestartBoardMsg:129] tag %s not found", 8},
         {"traceInformation", "[src/bciRestartBoardMsg:136] tag %s not found", 12}});
    // The document ends at its first zero.
    expectRead(readXml, xml("bo\0ot"s), {false, 0, 0}, "", 3,
               {{6, "[src/bciRestartBoardMsg:136] tag %s not found", {"traceInformation"}}});
}

} // namespace

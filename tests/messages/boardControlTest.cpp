// The messages that carry one unsigned number beside the common header.

#include "bciMaintStateMsg.h"
#include "bciMmiMsg.h"
#include "bciTempMeasMsg.h"
#include "bciUtcTimeMsg.h"
#include "bciVisualIndicationMsg.h"
#include "logCapture.h"
#include "messageKit.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>

namespace
{

using namespace std::string_literals;

struct Fields
{
    SIGSELECT sigNo;
    S32 clientRef;
    S32 serverRef;
    U32 value;
};

const Fields kExample{23429145, 1, 2, 3};
const Fields kBefore{77, 88, 99, 11}; // what a message holds before it reads

struct Kind
{
    const char* name; // of the class
    BciMsgFactory make;
    std::size_t width; // of the number in bytes; alignment up to 16 bytes follows
    U32 greatest;      // that the number can be
    unsigned int maxText;
    const char* tag;
    const char* source; // that logs a missing element, and the lines in it
    int sigNoLine;
    int clientRefLine;
    int serverRefLine;
    int valueLine;
};

void PrintTo(const Kind& kind, std::ostream* out)
{
    *out << kind.name;
}

const Kind kKinds[] = {
    {"SetMaintStateReq", &BciSetMaintStateReq::instantiateBciMsg, 4, 4294967295U, 46, "maintState",
     "bciMaintStateMsg", 96, 103, 110, 117},
    {"MaintStateInd", &BciMaintStateInd::instantiateBciMsg, 4, 4294967295U, 46, "maintState", "bciMaintStateMsg",
     199, 206, 213, 220},
    {"SelectMmiReq", &BciSelectMmiReq::instantiateBciMsg, 4, 4294967295U, 46, "mmiState", "bciMmiMsg", 96, 103,
     110, 117},
    {"TempMeasStartReq", &BciTempMeasStartReq::instantiateBciMsg, 1, 255, 39, "hotSpotMeasurementPeriod",
     "bciTempMeasMsg", 96, 103, 110, 117},
    {"SetUtcTimeReq", &BciSetUtcTimeReq::instantiateBciMsg, 4, 4294967295U, 46, "dateTime", "bciUtcTimeMsg", 96,
     103, 110, 117},
    {"SetVisualIndicationReq", &BciSetVisualIndicationReq::instantiateBciMsg, 2, 65535, 41, "visualizedState",
     "bciVisualIndicationMsg", 96, 103, 110, 117},
};

class BoardControl : public testing::TestWithParam<Kind>
{
protected:
    // The alignment behind the number is kFill.
    std::string structure(const Fields& fields) const
    {
        const std::string value = m_kind.width == 1   ? inMemory(static_cast<U8>(fields.value))
                                  : m_kind.width == 2 ? host16(static_cast<U16>(fields.value))
                                                      : inMemory(fields.value);
        return filledUp(hostHeader(fields.sigNo, fields.clientRef, fields.serverRef) + value, 16);
    }

    void hold(const Fields& fields)
    {
        setStructure(*m_message, structure(fields));
    }

    // Runs a reader on a message that holds kBefore. The alignment keeps its bytes.
    void expectRead(Reader reader, const std::string& data, const Read& outcome, const Fields& after,
                    const Log& log = {})
    {
        expectReading(*m_message, reader, structure(kBefore), {data, outcome, structure(after), log});
    }

    // The example's binary form.
    std::string binary() const
    {
        return binaryHeader(23429145, 1, 2) + zeros(m_kind.width - 1) + "\x03";
    }

    std::string xml(const std::string& value = "3") const
    {
        return headerElements("23429145", "1", "2") + element(m_kind.tag, value);
    }

    const Kind& m_kind = GetParam();
    const std::string m_greatest = std::to_string(m_kind.greatest);
    const std::unique_ptr<BciMessageBase> m_message{m_kind.make(23429145)};
};

template <typename Field, typename Message, typename Wire>
void expectLayout(Wire Message::*member, Field Wire::*field)
{
    expectSignal<Wire>(16);
    expectField<Field>(field, 12);
    Message message(1);
    EXPECT_EQ(message.getMsg(), reinterpret_cast<char*>(&(message.*member)));
}

TEST(BoardControlStructures, HaveTheLayoutOfTheSignalsAndLieInTheMessages)
{
    expectLayout<U32>(&BciSetMaintStateReq::m_setMaintStateReq, &VornBcSetMaintStateReqS::maintState);
    expectLayout<U32>(&BciMaintStateInd::m_maintStateInd, &VornBcMaintStateIndS::maintState);
    expectLayout<U32>(&BciSelectMmiReq::m_selectMmiReq, &VornBcSelectMmiReqS::mmiState);
    expectLayout<U8>(&BciTempMeasStartReq::m_tempMeasStartReq, &VornBcTempMeasStartReqS::hotSpotMeasurementPeriod);
    expectLayout<U32>(&BciSetUtcTimeReq::m_setUtcTimeReq, &VornBcSetUtcTimeReqS::dateTime);
    expectLayout<U16>(&BciSetVisualIndicationReq::m_setVisualIndicationReq,
                      &VornBcSetVisualIndicationReqS::visualizedState);
}

TEST(BoardControlConstructors, LeaveTheStorageAsItWas)
{
    const std::string untouched(16, kFill);
    EXPECT_EQ(constructed(&BciSetMaintStateReq::m_setMaintStateReq, 23429145), untouched);
    EXPECT_EQ(constructed(&BciSelectMmiReq::m_selectMmiReq, 23429138), untouched);
    EXPECT_EQ(constructed(&BciTempMeasStartReq::m_tempMeasStartReq, 23433472), untouched);
    EXPECT_EQ(constructed(&BciSetUtcTimeReq::m_setUtcTimeReq, 23434496), untouched);
    EXPECT_EQ(constructed(&BciSetVisualIndicationReq::m_setVisualIndicationReq, 23429124), untouched);
}

TEST(BoardControlConstructors, OfTheIndicationAloneStoresTheSignalNumber)
{
    const std::string untouched(12, kFill);
    EXPECT_EQ(constructed(&BciMaintStateInd::m_maintStateInd, 23429144), firstWord(23429144) + untouched);
    EXPECT_EQ(constructed(&BciMaintStateInd::m_maintStateInd, 4294967295U), "\xFF\xFF\xFF\xFF" + untouched);
    const std::unique_ptr<BciMessageBase> made(BciMaintStateInd::instantiateBciMsg(23429144));
    EXPECT_EQ(made->getSigNo(), 23429144U);
}

TEST_P(BoardControl, AccessorsAnswerFromTheStructure)
{
    expectSetMsgCopies(*m_message, 16);
    EXPECT_EQ(m_message->getMaxTextBufferSize(), m_kind.maxText);
    EXPECT_EQ(m_message->getMaxBinaryBufferSize(), 16U);
    const std::unique_ptr<BciMessageBase> other(m_kind.make(5));
    EXPECT_NE(other->getMsg(), m_message->getMsg());
}

TEST_P(BoardControl, ShortBufferTakesTheBeginningOfTextAndXml)
{
    hold(kExample);
    expectBeginnings(writeText, *m_message, "23429145:1:2:3:");
    expectBeginnings(writeXml, *m_message, xml());
}

// Text form

TEST_P(BoardControl, WritesText)
{
    hold(kExample);
    EXPECT_EQ(writeText(*m_message), (Written{true, "23429145:1:2:3:", 0}));
    hold({0, -1, -7, 0});
    EXPECT_EQ(writeText(*m_message), (Written{true, "0:-1:-7:0:", 0}));
    hold({4294967295U, kLowest, kLowest, m_kind.greatest});
    EXPECT_EQ(writeText(*m_message, m_kind.maxText),
              (Written{true, "4294967295:-2147483648:-2147483648:" + m_greatest + ":", 1}));
}

TEST_P(BoardControl, ReadsTextAsFarAsItIsSound)
{
    expectRead(readText, "23429145:1:2:3:", {true, 1, 15}, kExample);
    expectRead(readText, "23429145:1:2:3:4:", {true, 0, 15}, kExample);
    expectRead(readText, "23429145;1 2|3\n", {true, 1, 15}, kExample); // any character passes for a delimiter
    expectRead(readText, "+023429145:-1:002:+003:", {true, 1, 23}, {23429145, -1, 2, 3});
    expectRead(readText, "4294967295:2147483647:-2147483647:" + m_greatest + ":", {true, 1, m_kind.maxText - 1},
               {4294967295U, 2147483647, -2147483647, m_kind.greatest});
    // Behind a damaged number nothing is read.
    expectRead(readText, "?:1:2:3:", {true, 2, 0}, kBefore);
    expectRead(readText, "-5:1:2:3:", {true, 2, 2}, {5, 88, 99, 11});
    expectRead(readText, "5-3:1:2:3:", {true, 2, 1}, kBefore);
    expectRead(readText, "5:2147483648:2:3:", {true, 2, 12}, {5, 88, 99, 11});
    expectRead(readText, "5:1:-2147483648:3:", {true, 2, 15}, {5, 1, 99, 11});
    expectRead(readText, "5:1:2-1:3:", {true, 2, 5}, {5, 1, 0, 11});
    expectRead(readText, "5:1:2:?:", {true, 2, 6}, {5, 1, 2, 11});
    expectRead(readText, "5:1:2::", {true, 2, 6}, {5, 1, 2, 11});
    // What stands at the very end is not converted: an unsigned number of 32 bits keeps its value, others
    // become 0.
    expectRead(readText, "", {true, 3, 0}, kBefore);
    expectRead(readText, "23429145", {true, 3, 8}, kBefore);
    expectRead(readText, "23429145:1", {true, 3, 10}, {23429145, 0, 99, 11});
    expectRead(readText, "23429145:1:", {true, 3, 11}, {23429145, 1, 99, 11});
    expectRead(readText, "23429145:1:2:", {true, 3, 13}, {23429145, 1, 2, 11});
    expectRead(readText, "23429145:1:2:3", {true, 3, 14}, {23429145, 1, 2, m_kind.width == 4 ? 11U : 0U});
}

TEST_P(BoardControl, NumberInTextIsTakenByTheRulesOfItsWidth)
{
    struct Outcome
    {
        U32 value;
        bool fails;
    };
    const struct
    {
        std::string text;
        unsigned int scanned; // characters of it
        Outcome byWidth[3];   // 1, 2 and 4 bytes
    } rows[] = {
        {"255", 3, {{255, false}, {255, false}, {255, false}}},
        {"256", 3, {{11, true}, {256, false}, {256, false}}},
        {"300", 3, {{11, true}, {300, false}, {300, false}}},
        {"65535", 5, {{11, true}, {65535, false}, {65535, false}}},
        {"65536", 5, {{11, true}, {11, true}, {65536, false}}},
        {"4000000000", 10, {{11, true}, {11, true}, {4000000000U, false}}},
        {"4294967299", 10, {{3, false}, {3, false}, {3, false}}}, // taken modulo 2^32 first of all
        {"-5", 2, {{11, true}, {11, true}, {5, true}}},
        {"1F", 2, {{11, true}, {11, true}, {0, true}}},
        {"FF", 2, {{0, false}, {0, false}, {0, false}}},
        {"5-3", 1, {{0, true}, {0, true}, {11, true}}},
    };
    for (const auto& row : rows)
    {
        const Outcome& outcome = row.byWidth[m_kind.width / 2];
        expectRead(readText, "5:1:2:" + row.text + ":",
                   {true, outcome.fails ? 2U : 1U, 6 + row.scanned + (outcome.fails ? 0 : 1)},
                   {5, 1, 2, outcome.value});
    }
}

// Binary form

TEST_P(BoardControl, WritesAndReadsBinary)
{
    const auto size = static_cast<unsigned int>(12 + m_kind.width);
    const std::string extreme =
        firstWord(0xFFFFFFFE) + "\xFF\xFF\xFF\xFE\x7F\xFF\xFF\xFF" + std::string(m_kind.width, '\xFF');
    hold(kExample);
    EXPECT_EQ(writeBinary(*m_message), (Written{true, binary(), 0}));
    EXPECT_EQ(writeBinary(*m_message, size), (Written{true, binary(), 1}));
    hold({4294967294U, -2, 2147483647, m_kind.greatest});
    EXPECT_EQ(writeBinary(*m_message), (Written{true, extreme, 0}));
    hold({23429145, 1, 2, 0x12345678}); // of which a shorter number has the end
    EXPECT_EQ(writeBinary(*m_message).bytes.substr(12), "\x12\x34\x56\x78"s.substr(4 - m_kind.width));

    expectRead(readBinary, binary(), {true, 1, size}, kExample);
    expectRead(readBinary, binary() + "rest", {true, 0, size}, kExample);
    expectRead(readBinary, extreme, {true, 1, size}, {4294967294U, -2, 2147483647, m_kind.greatest});
}

// A number that does not fit is left out, and a shorter one behind it may still fit.
TEST_P(BoardControl, ShortBufferTakesTheNumbersThatFit)
{
    hold(kExample);
    for (unsigned int size = 0; size < 12 + m_kind.width; ++size)
    {
        SCOPED_TRACE(size);
        std::string expected = binary().substr(0, size / 4 * 4);
        expected += size - expected.size() >= m_kind.width ? binary().substr(12) : "";
        EXPECT_EQ(writeBinary(*m_message, size), (Written{true, expected, expected.size() == size ? 3U : 2U}));
    }
}

TEST_P(BoardControl, ReadsTheWholeNumbersOfShortBinaryData)
{
    for (unsigned int size = 0; size < 12 + m_kind.width; ++size)
    {
        const unsigned int status = size % 4 == 0 ? 1 : 2;
        expectRead(readBinary, binary().substr(0, size), {true, size == 0 ? 3 : status, size / 4 * 4},
                   {size < 4 ? 77U : 23429145U, size < 8 ? 88 : 1, size < 12 ? 99 : 2, 11});
    }
}

// XML form

TEST_P(BoardControl, WritesXml)
{
    hold(kExample);
    EXPECT_EQ(writeXml(*m_message), (Written{true,
                                             "\t<sigNo>\n\t  23429145\n\t</sigNo>\n"
                                             "\t<clientRef>\n\t  1\n\t</clientRef>\n"
                                             "\t<serverRef>\n\t  2\n\t</serverRef>\n" +
                                                 element(m_kind.tag, "3"),
                                             0}));
    hold({4294967295U, kLowest, 2147483647, m_kind.greatest});
    EXPECT_EQ(writeXml(*m_message).bytes,
              headerElements("4294967295", "-2147483648", "2147483647") + element(m_kind.tag, m_greatest));
}

TEST_P(BoardControl, ReadsXmlInAnyOrderAndLayout)
{
    const std::string tag = m_kind.tag;
    const std::string header = headerElements("23429145", "1", "2");
    expectRead(readXml, xml(), {true, 0, 0}, kExample);
    expectRead(readXml, element(tag, "3") + header, {true, 0, 0}, kExample);
    expectRead(readXml, xml() + headerElements("4", "5", "6") + element(tag, "7"), {true, 0, 0}, kExample);
    expectRead(readXml, element(tag + "X", "9") + "<x>" + xml() + "</x>", {true, 0, 0}, kExample);
    expectRead(readXml, header + "<" + tag + "> \r\n+03 </" + tag + ">", {true, 0, 0}, kExample);
}

TEST_P(BoardControl, FirstMissingElementEndsReadingXml)
{
    const struct
    {
        std::string tag;
        int line;
        Fields after;
    } rows[] = {
        {"sigNo", m_kind.sigNoLine, kBefore},
        {"clientRef", m_kind.clientRefLine, {23429145, 88, 99, 11}},
        {"serverRef", m_kind.serverRefLine, {23429145, 1, 99, 11}},
        {m_kind.tag, m_kind.valueLine, {23429145, 1, 2, 11}},
    };
    const std::string source = "[src/" + std::string(m_kind.source) + ":";
    for (const auto& row : rows)
    {
        const Log expected{{6, source + std::to_string(row.line) + "] tag %s not found", {row.tag}}};
        for (const char* const rest : {"", ">5", "X>5</X>"})
        {
            expectRead(readXml, without(xml(), row.tag) + "<" + row.tag + rest, {false, 0, 0}, row.after,
                       expected);
        }
    }
    // However much is missing.
    expectRead(readXml, "\n", {false, 0, 0}, kBefore,
               {{6, source + std::to_string(m_kind.sigNoLine) + "] tag %s not found", {"sigNo"}}});
}

TEST_P(BoardControl, XmlNumbersSaturateAt32BitsAndAreTruncatedToTheField)
{
    const struct
    {
        std::string content;
        U32 byWidth[3]; // 1, 2 and 4 bytes
    } rows[] = {
        {"255", {255, 255, 255}},
        {"300", {44, 300, 300}},
        {"65539", {3, 3, 65539}},
        {"2147483647", {255, 65535, 2147483647}},
        {"4000000000", {255, 65535, 2147483647}},
        {"-1", {255, 65535, 4294967295U}},
        {"-2147483649", {0, 0, 2147483648U}},
        {"12 34", {12, 12, 12}},
        {"abc", {0, 0, 0}},
        {"", {0, 0, 0}},
    };
    for (const auto& row : rows)
    {
        expectRead(readXml, xml(row.content), {true, 0, 0}, {23429145, 1, 2, row.byWidth[m_kind.width / 2]});
    }
    expectRead(readXml, headerElements("4294967295", "-2147483649", "x") + element(m_kind.tag, "1"), {true, 0, 0},
               {2147483647, kLowest, 0, 1});
}

INSTANTIATE_TEST_SUITE_P(, BoardControl, testing::ValuesIn(kKinds),
                         [](const testing::TestParamInfo<Kind>& kind) { return std::string(kind.param.name); });

} // namespace

// The confirm with the LED states. The request, which carries one number, is in boardControlTest.cpp.

#include "bciVisualIndicationMsg.h"
#include "messageKit.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>

namespace
{

using namespace std::string_literals;
using Wire = VornBcGetVisualIndicationCfmS;

const Wire kExample{23429136, {1, 2}, {1, 2, 3, 4}};
const Wire kBefore{77, {88, 99}, {11, 12, 13, 14}}; // what a message holds before it reads
const Wire kGreatest{4294967295U, {kLowest, kLowest}, {65535, 65535, 65535, 65535}};

const std::string kText = "23429136:1:2:1:2:3:4:";
const std::string kBinary = firstWord(23429136) + "\0\0\0\1\0\0\0\2"s + "\0\1\0\2\0\3\0\4"s;
const char* const kLeds[] = {"visualStateRedLed", "visualStateGreenLed", "visualStateYellowLed",
                             "visualStateBlueLed"};

// A confirm with LED states up to one of them; the rest is kBefore's.
Wire upTo(std::size_t count, std::array<U16, 4> states = {1, 2, 3, 4})
{
    Wire wire = kExample;
    wire.ledInfo = kBefore.ledInfo;
    std::memcpy(&wire.ledInfo, states.data(), count * sizeof(U16));
    return wire;
}

std::string xml(const std::array<std::string, 4>& states = {"1", "2", "3", "4"})
{
    std::string result = headerElements("23429136", "1", "2");
    for (std::size_t i = 0; i < 4; ++i)
    {
        result += element(kLeds[i], states[i]);
    }
    return result;
}

class GetVisualIndicationCfm : public testing::Test
{
protected:
    // Runs a reader on a message that holds kBefore.
    void expectRead(Reader reader, const std::string& data, const Read& outcome, const Wire& after)
    {
        expectReading(*m_message, reader, inMemory(kBefore), {data, outcome, inMemory(after)});
    }

    const std::unique_ptr<BciGetVisualIndicationCfm> m_message = filled<BciGetVisualIndicationCfm>(20);
};

TEST_F(GetVisualIndicationCfm, StructureHasTheLayoutOfTheSignal)
{
    expectSignal<Wire>(20);
    expectField<VornBcLedInfoS>(&Wire::ledInfo, 12);
    EXPECT_EQ(sizeof(VornBcLedInfoS), 8U);
    expectField<U16>(&VornBcLedInfoS::visualStateRedLed, 0);
    expectField<U16>(&VornBcLedInfoS::visualStateGreenLed, 2);
    expectField<U16>(&VornBcLedInfoS::visualStateYellowLed, 4);
    expectField<U16>(&VornBcLedInfoS::visualStateBlueLed, 6);
}

TEST_F(GetVisualIndicationCfm, ConstructorLeavesTheStorageAsItWas)
{
    EXPECT_EQ(constructed(&BciGetVisualIndicationCfm::m_getVisualIndicationCfm, 23429136), std::string(20, kFill));
}

TEST_F(GetVisualIndicationCfm, AccessorsAnswerFromTheStructure)
{
    setStructure(*m_message, inMemory(kGreatest));
    EXPECT_EQ(m_message->getSigNo(), 4294967295U);
    EXPECT_EQ(m_message->getAddressInfo().clientRef, kLowest);
    EXPECT_EQ(m_message->getAddressInfo().serverRef, kLowest);
    expectOwnStructure<BciGetVisualIndicationCfm, Wire>(&BciGetVisualIndicationCfm::m_getVisualIndicationCfm, 59,
                                                        20);
}

TEST_F(GetVisualIndicationCfm, WritesTheLedsInTheirOrder)
{
    m_message->m_getVisualIndicationCfm = kExample;
    EXPECT_EQ(writeText(*m_message), (Written{true, "23429136:1:2:1:2:3:4:", 0}));
    EXPECT_EQ(writeBinary(*m_message), (Written{true, kBinary, 0}));
    EXPECT_EQ(writeXml(*m_message), (Written{true,
                                             "\t<sigNo>\n\t  23429136\n\t</sigNo>\n"
                                             "\t<clientRef>\n\t  1\n\t</clientRef>\n"
                                             "\t<serverRef>\n\t  2\n\t</serverRef>\n"
                                             "\t<visualStateRedLed>\n\t  1\n\t</visualStateRedLed>\n"
                                             "\t<visualStateGreenLed>\n\t  2\n\t</visualStateGreenLed>\n"
                                             "\t<visualStateYellowLed>\n\t  3\n\t</visualStateYellowLed>\n"
                                             "\t<visualStateBlueLed>\n\t  4\n\t</visualStateBlueLed>\n",
                                             0}));
}

TEST_F(GetVisualIndicationCfm, WritesTheGreatestNumbersIntoBuffersOfTheMaximumSize)
{
    m_message->m_getVisualIndicationCfm = kGreatest;
    EXPECT_EQ(writeText(*m_message, 59),
              (Written{true, "4294967295:-2147483648:-2147483648:65535:65535:65535:65535:", 1}));
    EXPECT_EQ(writeBinary(*m_message, 20),
              (Written{true, binaryHeader(4294967295U, kLowest, kLowest) + std::string(8, '\xFF'), 1}));
    EXPECT_EQ(writeXml(*m_message).bytes, headerElements("4294967295", "-2147483648", "-2147483648") +
                                              xml({"65535", "65535", "65535", "65535"}).substr(95));
}

TEST_F(GetVisualIndicationCfm, ShortBufferTakesWhatFits)
{
    m_message->m_getVisualIndicationCfm = kExample;
    expectBeginnings(writeXml, *m_message, xml());
    expectBeginnings(writeText, *m_message, kText);
    // A number of the header that does not fit is left out, and the red LED may still fit.
    for (unsigned int size = 0; size < 20; ++size)
    {
        std::string expected = kBinary.substr(0, size < 12 ? size / 4 * 4 : size / 2 * 2);
        expected += size - expected.size() >= 2 ? be16(1) : "";
        EXPECT_EQ(writeBinary(*m_message, size), (Written{true, expected, size % 2 == 0 ? 3U : 2U})) << size;
    }
}

TEST_F(GetVisualIndicationCfm, ReadsWhatItWrites)
{
    expectRead(readText, kText, {true, 1, 21}, kExample);
    expectRead(readText, kText + "5:", {true, 0, 21}, kExample);
    expectRead(readText, "5:1:2:65535:0:65535:0:", {true, 1, 22}, {5, {1, 2}, {65535, 0, 65535, 0}});
    expectRead(readBinary, kBinary, {true, 1, 20}, kExample);
    expectRead(readBinary, kBinary + "rest", {true, 0, 20}, kExample);
    expectRead(readBinary, std::string(20, '\xFF'), {true, 1, 20},
               {4294967295U, {-1, -1}, {65535, 65535, 65535, 65535}});
    expectRead(readXml, xml(), {true, 0, 0}, kExample);
    expectRead(readXml, xml().substr(95) + xml(), {true, 0, 0}, kExample); // in any order; the first one counts
}

TEST_F(GetVisualIndicationCfm, DamagedLedInTextEndsReadingThere)
{
    const std::string states[] = {"1", "2", "3", "4"};
    std::string before = "23429136:1:2:";
    for (std::size_t i = 0; i < 4; before += states[i++] + ":")
    {
        const auto size = static_cast<unsigned int>(before.size());
        std::array<U16, 4> zeroed = {1, 2, 3, 4};
        zeroed[i] = 0;
        expectRead(readText, before + "65536:7:7:7:", {true, 2, size + 5}, upTo(i));
        expectRead(readText, before + "-1:7:7:7:", {true, 2, size + 2}, upTo(i));
        expectRead(readText, before + "?:7:7:7:", {true, 2, size}, upTo(i));
        expectRead(readText, before + "7-7:7:7:7:", {true, 2, size + 1}, upTo(i + 1, zeroed));
        // At the very end of the data, the delimiter missing, a number reads as 0.
        expectRead(readText, before, {true, 3, size}, upTo(i));
        expectRead(readText, before + "7", {true, 3, size + 1}, upTo(i + 1, zeroed));
    }
}

TEST_F(GetVisualIndicationCfm, ShortBinaryDataFillTheFieldsTheyReach)
{
    for (unsigned int size = 12; size < 20; ++size)
    {
        expectRead(readBinary, kBinary.substr(0, size), {true, size % 2 == 0 ? 1U : 2U, size / 2 * 2},
                   upTo((size - 12) / 2));
    }
    expectRead(readBinary, kBinary.substr(0, 7), {true, 2, 4}, {23429136, {88, 99}, {11, 12, 13, 14}});
    expectRead(readBinary, "", {true, 3, 0}, kBefore);
}

TEST_F(GetVisualIndicationCfm, FirstMissingElementEndsReadingXml)
{
    expectEachMissingElementStopsTheReader(
        *m_message, inMemory(kBefore), xml(), inMemory(kExample),
        {{"sigNo", "[src/bciVisualIndicationMsg:223] tag %s not found", 0},
         {"clientRef", "[src/bciVisualIndicationMsg:230] tag %s not found", 4},
         {"serverRef", "[src/bciVisualIndicationMsg:237] tag %s not found", 8},
         {"visualStateRedLed", "[src/bciVisualIndicationMsg:244] tag %s not found", 12},
         {"visualStateGreenLed", "[src/bciVisualIndicationMsg:251] tag %s not found", 14},
         {"visualStateYellowLed", "[src/bciVisualIndicationMsg:258] tag %s not found", 16},
         {"visualStateBlueLed", "[src/bciVisualIndicationMsg:265] tag %s not found", 18}});
}

TEST_F(GetVisualIndicationCfm, XmlNumbersAreTruncatedTo16Bits)
{
    expectRead(readXml, xml({"65535", "65536", "-1", "4000000000"}), {true, 0, 0},
               upTo(4, {65535, 0, 65535, 65535}));
    expectRead(readXml, xml({"", "red", " +7 ", "65543x"}), {true, 0, 0}, upTo(4, {0, 0, 7, 7}));
}

} // namespace

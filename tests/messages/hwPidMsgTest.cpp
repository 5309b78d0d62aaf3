#include "bciHwMsg.h"
#include "messageKit.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <utility>

namespace
{

using namespace std::string_literals;
using Message = BciGetHwPidCfmMsg;
using Wire = VornBcGetHwPidCfmS;

// The example's structure. Behind each text's terminator, and behind the last field, it holds `fill`.
std::string example(char fill = 'Z')
{
    const auto text = [fill](const std::string& characters, std::size_t size)
    { return characters + '\0' + std::string(size - characters.size() - 1, fill); };
    return hostHeader(23429633, 1, -2) + text("20240131", 9) + '\x01' + host16(2) + text("BOARD", 13) + '\x03' +
           host16(4) + text("PN-4711/A", 25) + '\x05' + host16(6) + text("B07", 5) + '\x07' + host16(8) +
           text("SN0001", 14) + fill + fill;
}

const std::string kText = "23429633:1:-2:20240131:1:2:BOARD:3:4:PN-4711/A:5:6:B07:7:8:SN0001:";
const std::string kBinary = binaryHeader(23429633, 1, -2) + "20240131\0"s + "\x01" + be16(2) + "BOARD\0ZZZZZZZ"s +
                            "\x03" + be16(4) + "PN-4711/A\0ZZZZZZZZZZZZZZZ"s + "\x05" + be16(6) + "B07\0Z"s +
                            "\x07" + be16(8) + "SN0001\0ZZZZZZZ"s;
const std::string kXml = headerElements("23429633", "1", "-2") + element("productionDate", "20240131") +
                         element("padding0", "1") + element("padding1", "2") + element("productName", "BOARD") +
                         element("padding2", "3") + "<padding3>\n\t   4\n\t</padding3>\n" +
                         element("productNumber", "PN-4711/A") + element("padding4", "5") +
                         element("padding5", "6") + element("productRevision", "B07") + element("padding6", "7") +
                         element("padding7", "8") + element("serialNumber", "SN0001");

// Every number at its greatest, and every text as long as its array.
const std::string kGreatest = "ddddddddd\xFF\xFF\xFFnnnnnnnnnnnnn\xFF\xFF\xFF"
                              "mmmmmmmmmmmmmmmmmmmmmmmmm\xFF\xFF\xFFrrrrr\xFF\xFF\xFFssssssssssssss";
const std::string kGreatestStructure = hostHeader(4294967295U, kLowest, 2147483647) + kGreatest + zeros(2);
const std::string kGreatestBinary = binaryHeader(4294967295U, kLowest, 2147483647) + kGreatest;

// What text leaves: the example's fields in front of an offset, then some bytes, and zeros.
struct TextRow
{
    std::string text;
    std::size_t upTo;
    std::string bytes;
    unsigned int status;
    unsigned int position;
};

void expectRead(std::initializer_list<TextRow> rows)
{
    for (const TextRow& row : rows)
    {
        const std::string read = example('\0').substr(0, row.upTo) + row.bytes;
        expectReadings<Message>(readText, 92,
                                {{row.text, {true, row.status, row.position}, read + zeros(92 - read.size())}});
    }
}

} // namespace

TEST(HwPidCfm, WireStructureHasTheLayoutOfTheSignal)
{
    expectSignal<Wire>(92);
    expectField<U8[9]>(&Wire::productionDate, 12);
    expectField<U8>(&Wire::padding0, 21);
    expectField<U16>(&Wire::padding1, 22);
    expectField<U8[13]>(&Wire::productName, 24);
    expectField<U8>(&Wire::padding2, 37);
    expectField<U16>(&Wire::padding3, 38);
    expectField<U8[25]>(&Wire::productNumber, 40);
    expectField<U8>(&Wire::padding4, 65);
    expectField<U16>(&Wire::padding5, 66);
    expectField<U8[5]>(&Wire::productRevision, 68);
    expectField<U8>(&Wire::padding6, 73);
    expectField<U16>(&Wire::padding7, 74);
    expectField<U8[14]>(&Wire::serialNumber, 76);
}

TEST(HwPidCfm, NewMessageHoldsWhatItsStorageHeld)
{
    EXPECT_EQ(constructed(&Message::m_getHwPidCfm, 23429633), std::string(92, kFill));
}

TEST(HwPidCfm, FactoryMakesAMessageThatHoldsItsStructureItself)
{
    const auto message = holding<Message>(example());
    EXPECT_EQ(structureOf(*message, 92), example());
    EXPECT_EQ(message->getMsg(), reinterpret_cast<char*>(&message->m_getHwPidCfm));
    EXPECT_EQ(message->getMaxTextBufferSize(), 339U);
    EXPECT_EQ(message->getMaxBinaryBufferSize(), 92U);
    EXPECT_EQ(message->getDelim(), ':');
    EXPECT_EQ(message->getSigNo(), 23429633U);
    EXPECT_EQ(message->getAddressInfo().clientRef, 1);
    EXPECT_EQ(message->getAddressInfo().serverRef, -2);
    EXPECT_EQ(textOf(message->m_getHwPidCfm.serialNumber), "SN0001");
}

TEST(HwPidCfm, SetMsgTakesTheWholeStructure)
{
    expectSetMsgCopies(*filled<Message>(92), 92);
}

TEST(HwPidCfm, WritesItsThreeForms)
{
    const auto message = holding<Message>(example());
    EXPECT_EQ(writeText(*message), (Written{true, kText, 0}));
    EXPECT_EQ(writeBinary(*message), (Written{true, kBinary, 0}));
    EXPECT_EQ(writeXml(*message), (Written{true, kXml, 0}));
    EXPECT_EQ(structureOf(*message, 92), example());
}

TEST(HwPidCfm, WritesAnUnterminatedTextUpToItsLastCharacter)
{
    const auto message = holding<Message>(kGreatestStructure);
    EXPECT_EQ(writeText(*message),
              (Written{true,
                       "4294967295:-2147483648:2147483647:ddddddddd:255:65535:nnnnnnnnnnnnn:255:65535:"
                       "mmmmmmmmmmmmmmmmmmmmmmmmm:255:65535:rrrrr:255:65535:ssssssssssssss:",
                       0}));
    EXPECT_EQ(writeBinary(*message), (Written{true, kGreatestBinary, 0}));
    const std::string xml =
        headerElements("4294967295", "-2147483648", "2147483647") + element("productionDate", "ddddddddd") +
        element("padding0", "255") + element("padding1", "65535") + element("productName", "nnnnnnnnnnnnn") +
        element("padding2", "255") + "<padding3>\n\t   65535\n\t</padding3>\n" +
        element("productNumber", "mmmmmmmmmmmmmmmmmmmmmmmmm") + element("padding4", "255") +
        element("padding5", "65535") + element("productRevision", "rrrrr") + element("padding6", "255") +
        element("padding7", "65535") + element("serialNumber", "ssssssssssssss");
    EXPECT_EQ(writeXml(*message), (Written{true, xml, 0}));
}

TEST(HwPidCfm, TextAndXmlFillAShortBuffer)
{
    const auto message = holding<Message>(example());
    EXPECT_EQ(kText.size(), 66U);
    expectBeginnings(writeText, *message, kText);
    expectBeginnings(writeXml, *message, kXml);
}

TEST(HwPidCfm, BinaryCutsTextsAndDropsNumbersInAShortBuffer)
{
    const auto message = holding<Message>(example());
    // serverRef has no room in 11 bytes, and padding1, 3, 5 and 7 have none in 23, 39, 67 and 75.
    const std::pair<unsigned int, std::string> rows[] = {
        {0, ""},
        {11, kBinary.substr(0, 8) + "202"},
        {23, kBinary.substr(0, 22) + "B"},
        {39, kBinary.substr(0, 38) + "P"},
        {67, kBinary.substr(0, 66) + "B"},
        {75, kBinary.substr(0, 74) + "S"},
        {89, kBinary.substr(0, 89)},
    };
    for (const auto& [capacity, expected] : rows)
    {
        EXPECT_EQ(writeBinary(*message, capacity), (Written{true, expected, 3}));
    }
    EXPECT_EQ(writeBinary(*message, 90), (Written{true, kBinary, 1}));
}

TEST(HwPidCfm, ReadsTextIntoAClearedStructure)
{
    expectRead({
        {kText, 90, "", 1, 66},
        {kText + "rest", 90, "", 0, 66},
        {kText.substr(0, 65), 90, "", 3, 65},
        {"", 0, "", 3, 0},
        {"identity", 0, "", 2, 0},
        {"23429633:1:", 8, "", 3, 11},
        {"23429633:1:-2:20240131:1", 21, "", 3, 24}, // a number at the very end is not converted
        {"23429633:1:-2:20240131:1:2:BOA", 24, "BOA", 3, 30},
        {"23429633:1:-2:20240131:256:2:BOARD:", 21, "", 2, 26},
        {"23429633:1:-2:20240131:-1:2:BOARD:", 21, "", 2, 25},
        {"23429633:1:-2:20240131:1:65536:BOARD:", 22, "", 2, 30},
        {"23429633:1:-2::::::::::::::", 12, "", 2, 15},
        {"23429633:1:-2::0:0::0:0::0:0::0:0::", 12, "", 1, 35},
        {"4294967295:2147483647:-2147483647:dddddddd:255:65535:nnnnnnnnnnnn:255:65535:"
         "mmmmmmmmmmmmmmmmmmmmmmmm:255:65535:rrrr:255:65535:sssssssssssss:",
         0,
         hostHeader(4294967295U, 2147483647, -2147483647) +
             "dddddddd\0\xFF\xFF\xFFnnnnnnnnnnnn\0\xFF\xFF\xFFmmmmmmmmmmmmmmmmmmmmmmmm\0\xFF\xFF\xFF"
             "rrrr\0\xFF\xFF\xFFsssssssssssss"s,
         1, 140},
    });
}

// One character too many in a text takes the place of the delimiter, and the delimiter that of the number.
TEST(HwPidCfm, MisreadsWhatFollowsATextThatIsTooLong)
{
    expectRead({
        {"23429633:1:-2:20240131X:1:2:BOARD:", 21, "", 2, 23},
        {"23429633:1:-2:20240131:1:2:nnnnnnnnnnnnX:3:4:", 24, "nnnnnnnnnnnn", 2, 40},
        {"23429633:1:-2:20240131:1:2:BOARD:3:4:mmmmmmmmmmmmmmmmmmmmmmmmX:5:6:", 40, "mmmmmmmmmmmmmmmmmmmmmmmm", 2,
         62},
        {"23429633:1:-2:20240131:1:2:BOARD:3:4:PN-4711/A:5:6:rrrrX:7:8:", 68, "rrrr", 2, 56},
        {"23429633:1:-2:20240131:1:2:BOARD:3:4:PN-4711/A:5:6:B07:7:8:sssssssssssssX:", 76, "sssssssssssss", 0, 73},
        // Two too many: every later field gets a wrong one. The letters B and A count as numbers there, and
        // O and R as delimiters.
        {"23429633:1:-2:20240131X9:1:2:BOARD:3:4:PN-4711/A:5:6:B07:7:8:SN0001:", 21,
         "\x09" + host16(1) + "2" + zeros(15) + "D" + zeros(24) + "\x03" + host16(4) + "PN-4\0\x0B\0\0"s + "5", 0,
         51},
    });
}

TEST(HwPidCfm, ReadsBinaryIntoAClearedStructure)
{
    const std::string whole = example().substr(0, 90) + zeros(2);
    const struct
    {
        std::size_t size;
        unsigned int position; // all in front of it is stored
        unsigned int status;
    } rows[] = {{0, 0, 3},   {3, 0, 2},   {4, 4, 1},   {11, 8, 2},  {12, 12, 1}, {15, 15, 3},
                {21, 21, 1}, {23, 22, 2}, {89, 89, 3}, {90, 90, 1}, {91, 90, 0}};
    for (const auto& row : rows)
    {
        expectReadings<Message>(readBinary, 92,
                                {{(kBinary + "Z").substr(0, row.size),
                                  {true, row.status, row.position},
                                  whole.substr(0, row.position) + zeros(92 - row.position)}});
    }
    expectReadings<Message>(readBinary, 92, {{kGreatestBinary, {true, 1, 90}, kGreatestStructure}});
}

TEST(HwPidCfm, XmlReaderPassesTheSerialNumberOver)
{
    const std::string read = example().substr(0, 76);
    expectReadings<Message>(readXml, 92,
                            {{kXml, {true, 0, 0}, read}, {without(kXml, "serialNumber"), {true, 0, 0}, read}});
}

TEST(HwPidCfm, XmlReaderStopsAtTheFirstMissingElement)
{
    expectEachMissingElementStopsTheReader<Message>(
        kXml, example(),
        {{"sigNo", "[src/bciHwMsg:268] tag %s not found", 0},
         {"clientRef", "[src/bciHwMsg:275] tag %s not found", 4},
         {"serverRef", "[src/bciHwMsg:282] tag %s not found", 8},
         {"productionDate", "[src/bciHwMsg:289] tag %s not found", 12},
         {"padding0", "[src/bciHwMsg:296] tag %s not found", 21},
         {"padding1", "[src/bciHwMsg:303] tag %s not found", 22},
         {"productName", "[src/bciHwMsg:310] tag %s not found", 24},
         {"padding2", "[src/bciHwMsg:317] tag %s not found", 37},
         {"padding3", "[src/bciHwMsg:324] tag %s not found", 38},
         {"productNumber", "[src/bciHwMsg:331] tag %s not found", 40},
         {"padding4", "[src/bciHwMsg:338] tag %s not found", 65},
         {"padding5", "[src/bciHwMsg:345] tag %s not found", 66},
         {"productRevision", "[src/bciHwMsg:352] tag %s not found", 68},
         {"padding6", "[src/bciHwMsg:359] tag %s not found", 73},
         {"padding7", "[src/bciHwMsg:366] tag %s not found", 74}});
}

TEST(HwPidCfm, XmlContentIsFittedToItsField)
{
    const std::string longest(1000, 'x');
    const struct
    {
        std::string tag;
        std::string content;
        std::size_t offset;
        std::string bytes; // there afterwards
    } rows[] = {
        {"sigNo", "4294967295", 0, firstWord(2147483647)},
        {"sigNo", "-1", 0, firstWord(4294967295)},
        {"clientRef", "-99999999999", 4, firstWord(0x80000000)},
        {"serverRef", "99999999999", 8, firstWord(0x7FFFFFFF)},
        {"padding0", "255", 21, "\xFF"},
        {"padding0", "300", 21, "\x2C"},
        {"padding2", "-1", 37, "\xFF"},
        {"padding4", "256", 65, zeros(1)},
        {"padding6", "none", 73, zeros(1)},
        {"padding1", "65535", 22, "\xFF\xFF"},
        {"padding3", "65537", 38, host16(1)},
        {"padding5", "-1", 66, "\xFF\xFF"},
        {"padding7", "99999999999", 74, "\xFF\xFF"},
        {"productionDate", "", 12, zeros(1)},
        {"productionDate", longest, 12, "xxxxxxxx\0"s},
        {"productName", "thirteen char", 24, "thirteen cha\0"s},
        {"productName", longest, 24, "xxxxxxxxxxxx\0"s},
        {"productNumber", "twenty-four characters..", 40, "twenty-four characters..\0"s},
        {"productNumber", longest, 40, "xxxxxxxxxxxxxxxxxxxxxxxx\0"s},
        {"productRevision", longest, 68, "xxxx\0"s},
        {"serialNumber", "OTHER", 76, "SN0001\0"s},
        // White space at the ends goes; of what the writers lay out, only theirs does.
        {"productName", "\r\n   a b\t", 24, "a b\0"s},
        {"productName", "\n\t   a b \n\t", 24, " a b \0"s},
        {"padding3", "\n\t   12\n\t", 38, host16(12)},
    };
    for (const auto& row : rows)
    {
        const std::string document = "<" + row.tag + ">" + row.content + "</" + row.tag + ">" + kXml;
        expectReading(*filled<Message>(92), readXml, example(),
                      {document, {true, 0, 0}, example().replace(row.offset, row.bytes.size(), row.bytes)});
    }
}

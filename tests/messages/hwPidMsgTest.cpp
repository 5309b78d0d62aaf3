#include "bciHwMsg.h"
#include "logCapture.h"
#include "messageKit.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace
{

using namespace std::string_literals;
using Message = BciGetHwPidCfmMsg;
using Wire = VornBcGetHwPidCfmS;

template <typename...>
struct Types;

// A 16-bit number as the structure has it.
std::string host16(U16 value)
{
    return {reinterpret_cast<const char*>(&value), sizeof value};
}

// The example's structure. Behind each text's terminator, and behind the last field, it holds `fill`.
std::string example(char fill = 'Z')
{
    const auto text = [fill](const std::string& characters, std::size_t size)
    { return characters + '\0' + std::string(size - characters.size() - 1, fill); };
    return firstWord(23429633) + firstWord(1) + firstWord(0xFFFFFFFE) + text("20240131", 9) + '\x01' + host16(2) +
           text("BOARD", 13) + '\x03' + host16(4) + text("PN-4711/A", 25) + '\x05' + host16(6) + text("B07", 5) +
           '\x07' + host16(8) + text("SN0001", 14) + fill + fill;
}

// The example in front of an offset, then some bytes, and nothing but `fill` behind them.
std::string exampleUpTo(std::size_t offset, char fill, const std::string& bytes = "")
{
    return example(fill).substr(0, offset) + bytes + std::string(92 - offset - bytes.size(), fill);
}

std::unique_ptr<Message> messageOf(const std::string& structure)
{
    std::unique_ptr<Message> message = filled<Message>(92);
    message->setMsg(structure.data());
    return message;
}

const std::string kText = "23429633:1:-2:20240131:1:2:BOARD:3:4:PN-4711/A:5:6:B07:7:8:SN0001:";
const std::string kBinary = firstWord(23429633) + be32(1) + be32(0xFFFFFFFE) + "20240131\0"s + "\x01" + be16(2) +
                            "BOARD\0ZZZZZZZ"s + "\x03" + be16(4) + "PN-4711/A\0ZZZZZZZZZZZZZZZ"s + "\x05" +
                            be16(6) + "B07\0Z"s + "\x07" + be16(8) + "SN0001\0ZZZZZZZ"s;
const std::string kXml = headerElements("23429633", "1", "-2") + element("productionDate", "20240131") +
                         element("padding0", "1") + element("padding1", "2") + element("productName", "BOARD") +
                         element("padding2", "3") + "<padding3>\n\t   4\n\t</padding3>\n" +
                         element("productNumber", "PN-4711/A") + element("padding4", "5") +
                         element("padding5", "6") + element("productRevision", "B07") + element("padding6", "7") +
                         element("padding7", "8") + element("serialNumber", "SN0001");

// Every number at its greatest, and every text as long as its array.
const std::string kGreatest = "ddddddddd\xFF\xFF\xFFnnnnnnnnnnnnn\xFF\xFF\xFF"
                              "mmmmmmmmmmmmmmmmmmmmmmmmm\xFF\xFF\xFFrrrrr\xFF\xFF\xFFssssssssssssss";
const std::string kGreatestStructure =
    firstWord(0xFFFFFFFF) + firstWord(0x80000000) + firstWord(0x7FFFFFFF) + kGreatest + zeros(2);
const std::string kGreatestBinary = be32(0xFFFFFFFF) + be32(0x80000000) + be32(0x7FFFFFFF) + kGreatest;

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
        SCOPED_TRACE(row.text);
        const auto message = filled<Message>(92);
        EXPECT_EQ(readText(*message, row.text), (Read{true, row.status, row.position}));
        EXPECT_EQ(structureOf(*message, 92), exampleUpTo(row.upTo, '\0', row.bytes));
    }
}

} // namespace

TEST(HwPidCfm, WireStructureHasTheLayoutOfTheSignal)
{
    EXPECT_EQ((std::vector<std::size_t>{
                  offsetof(Wire, sigNo), offsetof(Wire, addressInfo), offsetof(Wire, productionDate),
                  offsetof(Wire, padding0), offsetof(Wire, padding1), offsetof(Wire, productName),
                  offsetof(Wire, padding2), offsetof(Wire, padding3), offsetof(Wire, productNumber),
                  offsetof(Wire, padding4), offsetof(Wire, padding5), offsetof(Wire, productRevision),
                  offsetof(Wire, padding6), offsetof(Wire, padding7), offsetof(Wire, serialNumber), sizeof(Wire)}),
              (std::vector<std::size_t>{0, 4, 12, 21, 22, 24, 37, 38, 40, 65, 66, 68, 73, 74, 76, 92}));
    EXPECT_TRUE(
        (std::is_same_v<Types<decltype(Wire::sigNo), decltype(Wire::addressInfo), decltype(Wire::productionDate),
                              decltype(Wire::productName), decltype(Wire::productNumber),
                              decltype(Wire::productRevision), decltype(Wire::serialNumber)>,
                        Types<SIGSELECT, VornNodeCommonAddressInfoS, U8[9], U8[13], U8[25], U8[5], U8[14]>>));
    EXPECT_TRUE((std::is_same_v<Types<decltype(Wire::padding0), decltype(Wire::padding1), decltype(Wire::padding2),
                                      decltype(Wire::padding3), decltype(Wire::padding4), decltype(Wire::padding5),
                                      decltype(Wire::padding6), decltype(Wire::padding7)>,
                                Types<U8, U16, U8, U16, U8, U16, U8, U16>>));
}

TEST(HwPidCfm, NewMessageHoldsWhatItsStorageHeld)
{
    alignas(Message) unsigned char storage[sizeof(Message)];
    std::memset(storage, 'Z', sizeof storage);
    Message* const message = new (storage) Message(23429633);
    EXPECT_EQ(structureOf(*message, 92), std::string(92, 'Z'));
    message->~Message();
}

TEST(HwPidCfm, FactoryMakesAMessageThatHoldsItsStructureItself)
{
    const auto message = messageOf(example());
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
    const auto message = filled<Message>(92);
    const std::vector<char> source(92, 's'); // not a byte more
    message->setMsg(source.data());
    EXPECT_EQ(structureOf(*message, 92), std::string(92, 's'));
}

TEST(HwPidCfm, WritesItsThreeForms)
{
    const auto message = messageOf(example());
    EXPECT_EQ(writeText(*message), (Written{true, kText, 0}));
    EXPECT_EQ(writeBinary(*message), (Written{true, kBinary, 0}));
    EXPECT_EQ(writeXml(*message), (Written{true, kXml, 0}));
    EXPECT_EQ(structureOf(*message, 92), example());
}

TEST(HwPidCfm, WritesAnUnterminatedTextUpToItsLastCharacter)
{
    const auto message = messageOf(kGreatestStructure);
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
    const auto message = messageOf(example());
    for (unsigned int capacity = 0; capacity < 66; ++capacity)
    {
        EXPECT_EQ(writeText(*message, capacity), (Written{true, kText.substr(0, capacity), 3}));
    }
    EXPECT_EQ(writeText(*message, 66), (Written{true, kText, 1}));
    for (unsigned int capacity = 0; capacity < kXml.size(); ++capacity)
    {
        EXPECT_EQ(writeXml(*message, capacity), (Written{true, kXml.substr(0, capacity), 3}));
    }
}

TEST(HwPidCfm, BinaryCutsTextsAndDropsNumbersInAShortBuffer)
{
    const auto message = messageOf(example());
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
         firstWord(0xFFFFFFFF) + firstWord(0x7FFFFFFF) + firstWord(0x80000001) +
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
        SCOPED_TRACE(row.size);
        const auto message = filled<Message>(92);
        EXPECT_EQ(readBinary(*message, (kBinary + "Z").substr(0, row.size)),
                  (Read{true, row.status, row.position}));
        EXPECT_EQ(structureOf(*message, 92), whole.substr(0, row.position) + zeros(92 - row.position));
    }
    const auto message = filled<Message>(92);
    EXPECT_EQ(readBinary(*message, kGreatestBinary), (Read{true, 1, 90}));
    EXPECT_EQ(structureOf(*message, 92), kGreatestStructure);
}

TEST(HwPidCfm, XmlReaderPassesTheSerialNumberOver)
{
    for (const std::string& document : {kXml, without(kXml, "serialNumber")})
    {
        const auto message = filled<Message>(92);
        EXPECT_EQ(readXml(*message, document), (Read{true, 0, 0}));
        EXPECT_EQ(structureOf(*message, 92), exampleUpTo(76, 'Z'));
    }
}

TEST(HwPidCfm, XmlReaderStopsAtTheFirstMissingElement)
{
    const struct
    {
        std::string tag;
        std::size_t offset;
        std::string line;
    } rows[] = {{"sigNo", 0, "268"},
                {"clientRef", 4, "275"},
                {"serverRef", 8, "282"},
                {"productionDate", 12, "289"},
                {"padding0", 21, "296"},
                {"padding1", 22, "303"},
                {"productName", 24, "310"},
                {"padding2", 37, "317"},
                {"padding3", 38, "324"},
                {"productNumber", 40, "331"},
                {"padding4", 65, "338"},
                {"padding5", 66, "345"},
                {"productRevision", 68, "352"},
                {"padding6", 73, "359"},
                {"padding7", 74, "366"}};
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.tag);
        const auto message = filled<Message>(92);
        EXPECT_EQ(readXml(*message, without(kXml, row.tag)), (Read{false, 0, 0}));
        EXPECT_EQ(structureOf(*message, 92), exampleUpTo(row.offset, 'Z'));
        EXPECT_EQ(takeLog(), (Log{{6, "[src/bciHwMsg:" + row.line + "] tag %s not found", {row.tag}}}));
    }
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
        SCOPED_TRACE(row.tag + " " + row.content);
        const auto message = messageOf(example());
        EXPECT_EQ(readXml(*message, "<" + row.tag + ">" + row.content + "</" + row.tag + ">" + kXml),
                  (Read{true, 0, 0}));
        EXPECT_EQ(structureOf(*message, 92), example().replace(row.offset, row.bytes.size(), row.bytes));
    }
}

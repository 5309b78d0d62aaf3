#include "bciCommonMsg.h"
#include "bciMsgRegistration.h"
#include "messageKit.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace
{

using namespace std::string_literals;

const std::string kLongest(109, 'd'); // the longest description
const std::string kHeader = hostHeader(1, 2, 3);
const std::string kBinaryHeader = binaryHeader(1, 2, 3);

std::string rejectXml(const std::string& description, const std::string& errorCode = "4",
                      const std::string& padding0 = "5", const std::string& padding1 = "6")
{
    return headerElements() + element("errorCode", errorCode) + element("rejectCausePadding0", padding0) +
           element("errorDescription", description) + element("rejectCausePadding1", padding1);
}

const std::string kFanOff = kHeader + rejectCause(4, 5, "fan off\0"s, 6);
const std::string kUnterminated = kHeader + rejectCause(4, 5, kLongest + 'd', 25700); // goes on as "dd"

} // namespace

TEST(GenericMsg, StructureIsTheHeader)
{
    expectSignal<GenericMsgS>(12);
    expectOwnStructure<BciGenericMsg, GenericMsgS>(&BciGenericMsg::m_genericMsg, 35, 12);
}

TEST(GenericMsg, WritesTextAndXmlAsFarAsTheBufferGoes)
{
    const std::string ordinary = hostHeader(23429121, 4, 5);
    expectBeginnings(writeText, *holding<BciGenericMsg>(ordinary), "23429121:4:5:");
    expectBeginnings(writeXml, *holding<BciGenericMsg>(ordinary),
                     "\t<sigNo>\n\t  23429121\n\t</sigNo>\n"
                     "\t<clientRef>\n\t  4\n\t</clientRef>\n"
                     "\t<serverRef>\n\t  5\n\t</serverRef>\n");
    const std::string longest = hostHeader(4294967295U, kLowest, kLowest);
    expectBeginnings(writeText, *holding<BciGenericMsg>(longest), "4294967295:-2147483648:-2147483648:");
    expectBeginnings(writeXml, *holding<BciGenericMsg>(longest),
                     headerElements("4294967295", "-2147483648", "-2147483648"));
    const std::string fresh(12, kFill); // what the storage held
    expectBeginnings(writeText, *holding<BciGenericMsg>(fresh), "1515870810:1515870810:1515870810:");
    expectBeginnings(writeXml, *holding<BciGenericMsg>(fresh),
                     headerElements("1515870810", "1515870810", "1515870810"));
}

TEST(GenericMsg, WritesTheNumbersInBinaryThatFitWhole)
{
    const auto message = holding<BciGenericMsg>(hostHeader(BCI_CONN_EST_CFM, 4, -5));
    const std::string whole = firstWord(0x01658001) + bytes({0, 0, 0, 4, 0xFF, 0xFF, 0xFF, 0xFB});
    const unsigned int statuses[] = {3, 2, 2, 2, 3, 2, 2, 2, 3, 2, 2, 2, 1, 0};
    for (unsigned int capacity = 0; capacity <= 13; ++capacity)
    {
        EXPECT_EQ(writeBinary(*message, capacity),
                  (Written{true, whole.substr(0, capacity / 4 * 4), statuses[capacity]}))
            << capacity;
    }
}

TEST(GenericMsg, ReadsTextUpToTheDamage)
{
    const std::string first = inMemory<SIGSELECT>(1);
    const std::string longest = "4294967295:-2147483647:2147483647:";
    expectReadings<BciGenericMsg>(readText, 12,
                                  {{"23429121:4:5:", {true, 1, 13}, hostHeader(23429121, 4, 5)},
                                   {"23429121:4:5:6:", {true, 0, 13}, hostHeader(23429121, 4, 5)},
                                   {longest, {true, 1, 34}, hostHeader(4294967295U, -2147483647, 2147483647)},
                                   {"4294967297:2:3:", {true, 1, 15}, kHeader}, // modulo 2^32
                                   {"+1:002:--3:", {true, 1, 11}, hostHeader(1, 2, -3)},
                                   {"1;2 3/", {true, 1, 6}, kHeader}, // any character delimits
                                   {"", {true, 3, 0}, ""},
                                   {"1", {true, 3, 1}, ""}, // a number that ends with the data is not converted
                                   {"1:", {true, 3, 2}, first},
                                   {"1:2", {true, 3, 3}, first + inMemory<S32>(0)},
                                   {"1:2:3", {true, 3, 5}, hostHeader(1, 2, 0)},
                                   {":2:3:", {true, 2, 0}, ""},
                                   {"-5:2:3:", {true, 2, 2}, inMemory<SIGSELECT>(5)},
                                   {"1F:2:3:", {true, 2, 2}, inMemory<SIGSELECT>(0)},
                                   {"1:5-3:3:", {true, 2, 3}, first + inMemory<S32>(0)},
                                   {"1:two:3:", {true, 2, 2}, first},
                                   {"1:2147483648:3:", {true, 2, 12}, first},
                                   {"1:-2147483648:3:", {true, 2, 13}, first}});
}

TEST(GenericMsg, ReadsBinaryAsFarAsItGoes)
{
    expectBinaryReadings<BciGenericMsg>(firstWord(4294967295U) +
                                            bytes({0x80, 0, 0, 0, 0x7F, 0xFF, 0xFF, 0xFE, 'x'}),
                                        hostHeader(4294967295U, kLowest, 2147483646),
                                        {{13, {true, 0, 12}},
                                         {12, {true, 1, 12}},
                                         {11, {true, 2, 8}},
                                         {9, {true, 2, 8}},
                                         {8, {true, 1, 8}},
                                         {7, {true, 2, 4}},
                                         {4, {true, 1, 4}},
                                         {3, {true, 2, 0}},
                                         {0, {true, 3, 0}}});
}

TEST(GenericMsg, ReadsXml)
{
    const Read all{true, 0, 0};
    expectReadings<BciGenericMsg>(
        readXml, 12,
        {{headerElements("23429121", "4", "5"), all, hostHeader(23429121, 4, 5)},
         {"<serverRef> +3x</serverRef>\r\n<clientRef>\f2\v</clientRef><sigNo>1</sigNo><sigNo>9</sigNo>", all,
          kHeader}, // in any order, re-indented, and the first of its name
         {headerElements("4294967295", "-2147483649", "4000000000"), all,
          hostHeader(2147483647, kLowest, 2147483647)},
         {headerElements("00000000000000000000000001", "-2147483648", "2147483647"), all,
          hostHeader(1, kLowest, 2147483647)},
         {headerElements("-1", "abc", ""), all, hostHeader(4294967295U, 0, 0)}});
}

TEST(GenericMsg, XmlReaderStopsAtTheFirstMissingElement)
{
    expectEachMissingElementStopsTheReader<BciGenericMsg>(
        headerElements(), kHeader,
        {{"sigNo", "[src/bciCommonMsg:99] tag %s not found", 0},
         {"clientRef", "[src/bciCommonMsg:106] tag %s not found", 4},
         {"serverRef", "[src/bciCommonMsg:113] tag %s not found", 8}});

    expectReadings<BciGenericMsg>(
        readXml, 12,
        {{"", {false, 3, 0}, "", {{6, "[src/bciCommonMsg:99] tag %s not found", {"sigNo"}}}},
         {"<sigNo>1</sigNo><clientRef>2<serverRef>3</serverRef>",
          {false, 0, 0},
          inMemory<SIGSELECT>(1),
          {{6, "[src/bciCommonMsg:106] tag %s not found", {"clientRef"}}}}});
}

TEST(GenericRejMsg, StructureIsTheHeaderAndTheCause)
{
    EXPECT_EQ(sizeof(VornConstRejectCauseS), 116U);
    expectField<U16>(&VornConstRejectCauseS::errorCode, 0);
    expectField<U16>(&VornConstRejectCauseS::padding0, 2);
    expectField<U8[110]>(&VornConstRejectCauseS::errorDescription, 4);
    expectField<U16>(&VornConstRejectCauseS::padding1, 114);
    expectSignal<GenericRejMsgS>(128);
    expectField<VornConstRejectCauseS>(&GenericRejMsgS::cause, 12);
    expectOwnStructure<BciGenericRejMsg, GenericRejMsgS>(&BciGenericRejMsg::m_genericRejMsg, 493, 128);
}

TEST(GenericRejMsg, WritesTextAndXmlAsFarAsTheBufferGoes)
{
    expectBeginnings(writeText, *holding<BciGenericRejMsg>(kFanOff), "1:2:3:4:5:fan off:6:");
    expectBeginnings(writeXml, *holding<BciGenericRejMsg>(kFanOff),
                     "\t<sigNo>\n\t  1\n\t</sigNo>\n"
                     "\t<clientRef>\n\t  2\n\t</clientRef>\n"
                     "\t<serverRef>\n\t  3\n\t</serverRef>\n"
                     "\t<errorCode>\n\t  4\n\t</errorCode>\n"
                     "\t<rejectCausePadding0>\n\t  5\n\t</rejectCausePadding0>\n"
                     "\t<errorDescription>\n\t  fan off\n\t</errorDescription>\n"
                     "\t<rejectCausePadding1>\n\t  6\n\t</rejectCausePadding1>\n");
    const std::string empty = kHeader + rejectCause(0, 0, "\0"s, 0);
    expectBeginnings(writeText, *holding<BciGenericRejMsg>(empty), "1:2:3:0:0::0:");
    expectBeginnings(writeXml, *holding<BciGenericRejMsg>(empty), rejectXml("", "0", "0", "0"));
    const std::string greatest = kHeader + rejectCause(65535, 65535, kLongest + '\0', 65535);
    expectBeginnings(writeText, *holding<BciGenericRejMsg>(greatest), "1:2:3:65535:65535:" + kLongest + ":65535:");
    expectBeginnings(writeXml, *holding<BciGenericRejMsg>(greatest),
                     rejectXml(kLongest, "65535", "65535", "65535"));
    expectBeginnings(writeText, *holding<BciGenericRejMsg>(kUnterminated), "1:2:3:4:5:" + kLongest + "d:25700:");
    expectBeginnings(writeXml, *holding<BciGenericRejMsg>(kUnterminated),
                     rejectXml(kLongest + "d", "4", "5", "25700"));
    const std::string special = kHeader + rejectCause(4, 5, "a: <b>&\"\0"s, 6); // nothing is escaped
    expectBeginnings(writeText, *holding<BciGenericRejMsg>(special), "1:2:3:4:5:a: <b>&\":6:");
    expectBeginnings(writeXml, *holding<BciGenericRejMsg>(special), rejectXml("a: <b>&\""));
}

TEST(GenericRejMsg, WritesAllOfTheDescriptionInBinaryAndDropsNumbersThatDoNotFit)
{
    const std::string whole = kBinaryHeader + be16(4) + be16(5) + filledUp("fan off\0"s, 110) + be16(6);
    const std::pair<unsigned int, Written> cases[] = {
        {129, {true, whole, 0}},
        {128, {true, whole, 1}},
        {127, {true, whole.substr(0, 126), 2}},
        {126, {true, whole.substr(0, 126), 3}},
        {66, {true, whole.substr(0, 66), 3}},
        {16, {true, whole.substr(0, 16), 3}},
        {15, {true, whole.substr(0, 14) + "f", 3}}, // what still fits is written
        {13, {true, whole.substr(0, 12) + "f", 3}},
        {10, {true, whole.substr(0, 8) + be16(4), 3}},
        {6, {true, whole.substr(0, 4) + be16(4), 3}},
        {2, {true, be16(4), 3}},
        {1, {true, "f", 3}},
        {0, {true, "", 3}}};
    for (const auto& [capacity, written] : cases)
    {
        EXPECT_EQ(writeBinary(*holding<BciGenericRejMsg>(kFanOff), capacity), written) << capacity;
    }
    EXPECT_EQ(writeBinary(*holding<BciGenericRejMsg>(kUnterminated)),
              (Written{true, kBinaryHeader + be16(4) + be16(5) + kLongest + "d" + be16(25700), 0}));
}

TEST(GenericRejMsg, ReadsTextUpToTheDamage)
{
    const std::string upToFan = kHeader + host16(4) + host16(5) + "fan\0"s;
    const std::string upToLongest = kHeader + host16(4) + host16(5) + kLongest + '\0';
    expectReadings<BciGenericRejMsg>(
        readText, 128,
        {{"1:2:3:4:5:fan off:6:", {true, 1, 20}, kFanOff},
         {"1:2:3:0:0::0:", {true, 1, 13}, kHeader + rejectCause(0, 0, "\0"s, 0)},
         {"1:2:3:4:5:ab\0cd:6:"s, {true, 1, 18}, kHeader + rejectCause(4, 5, "ab\0cd\0"s, 6)},
         {"1:2:3:65535:65535:" + kLongest + ":65535:",
          {true, 1, 134},
          kHeader + rejectCause(65535, 65535, kLongest + '\0', 65535)},
         {"1:2:3:", {true, 3, 6}, kHeader},
         {"1:2:3:zero:5:fan:6:", {true, 2, 6}, kHeader},
         {"1:2:3:-4:5:fan:6:", {true, 2, 8}, kHeader},
         {"1:2:3:65536:5:fan:6:", {true, 2, 11}, kHeader},
         {"1:2:3:4", {true, 3, 7}, kHeader + host16(0)},
         {"1:2:3:4:65536:fan:6:", {true, 2, 13}, kHeader + host16(4)},
         {"1:2:3:4:5:", {true, 3, 10}, kHeader + host16(4) + host16(5)},
         {"1:2:3:4:5:fan", {true, 3, 13}, upToFan},
         {"1:2:3:4:5:fan:", {true, 3, 14}, upToFan},
         {"1:2:3:4:5:fan:6", {true, 3, 15}, kHeader + rejectCause(4, 5, "fan\0"s, 0)},
         {"1:2:3:4:5:fan:65536:", {true, 2, 19}, upToFan},
         {"1:2:3:4:5:fan: off:6:", {true, 2, 14}, upToFan}, // a ':' ends the description
         {"1:2:3:4:5:fan:7:6:", {true, 0, 16}, kHeader + rejectCause(4, 5, "fan\0"s, 7)},
         {"1:2:3:4:5:" + kLongest, {true, 3, 119}, upToLongest},
         {"1:2:3:4:5:" + kLongest + "d:6:", {true, 2, 120}, upToLongest},
         {"1:2:3:4:5:" + kLongest + "d6:", {true, 1, 122}, kHeader + rejectCause(4, 5, kLongest + '\0', 6)}});
}

TEST(GenericRejMsg, ReadsBinaryAsFarAsItGoes)
{
    const std::string description = "fan off\0"s + std::string(101, 'q'); // all of it is read, no terminator added
    expectBinaryReadings<BciGenericRejMsg>(kBinaryHeader + bytes({0xFF, 0xFE, 0x01, 0x02}) + description +
                                               bytes({'q', 0x80, 0x00, 'x'}),
                                           kHeader + rejectCause(0xFFFE, 0x0102, description + 'q', 0x8000),
                                           {{129, {true, 0, 128}},
                                            {128, {true, 1, 128}},
                                            {127, {true, 2, 126}},
                                            {126, {true, 1, 126}},
                                            {125, {true, 3, 125}},
                                            {17, {true, 3, 17}},
                                            {16, {true, 1, 16}},
                                            {15, {true, 2, 14}},
                                            {14, {true, 1, 14}},
                                            {13, {true, 2, 12}},
                                            {12, {true, 1, 12}}});
}

TEST(GenericRejMsg, ReadsXml)
{
    const Read all{true, 0, 0};
    const auto described = [](const std::string& description)
    { return kHeader + rejectCause(4, 5, description + '\0', 6); };
    const std::string misleading = "<rejectCausePadding1>7</rejectCausePadding1>"; // the first of its name
    expectReadings<BciGenericRejMsg>(
        readXml, 128,
        {{rejectXml("fan off"), all, described("fan off")},
         {rejectXml(""), all, described("")},
         {rejectXml("  two blanks  "), all, described("  two blanks  ")},
         {rejectXml("\n\ta: <b>&\n"), all, described("\n\ta: <b>&\n")},
         {rejectXml(kLongest), all, described(kLongest)},
         {rejectXml(kLongest + "d"), all, described(kLongest)}, // cut
         {rejectXml(std::string(1000, 'd')), all, described(kLongest)},
         {rejectXml(misleading), all, kHeader + rejectCause(4, 5, misleading + '\0', 7)},
         {"<rejectCausePadding1>6</rejectCausePadding1><errorDescription> \r\n fan off\v\f</errorDescription>"
          "<rejectCausePadding0>5</rejectCausePadding0><errorCode>00000000000000000004</errorCode>" +
              headerElements(),
          all, described("fan off")},
         {rejectXml("x", "65535", "65536", "65537"), all, kHeader + rejectCause(65535, 0, "x\0"s, 1)},
         {rejectXml("x", "-1", "-32769", "abc"), all, kHeader + rejectCause(65535, 32767, "x\0"s, 0)},
         {rejectXml("x", "4000000000", "-4000000000", " +7.9"), all, kHeader + rejectCause(65535, 0, "x\0"s, 7)}});
}

TEST(GenericRejMsg, XmlReaderStopsAtTheFirstMissingElement)
{
    expectEachMissingElementStopsTheReader<BciGenericRejMsg>(
        rejectXml(std::string(200, 'd')), kHeader + rejectCause(4, 5, kLongest + '\0', 6),
        {{"sigNo", "[src/bciCommonMsg:229] tag %s not found", 0},
         {"clientRef", "[src/bciCommonMsg:236] tag %s not found", 4},
         {"serverRef", "[src/bciCommonMsg:243] tag %s not found", 8},
         {"errorCode", "[src/bciCommonMsg:250] tag %s not found", 12},
         {"rejectCausePadding0", "[src/bciCommonMsg:257] tag %s not found", 14},
         {"errorDescription", "[src/bciCommonMsg:264] tag %s not found", 16},
         {"rejectCausePadding1", "[src/bciCommonMsg:271] tag %s not found", 126}});
}

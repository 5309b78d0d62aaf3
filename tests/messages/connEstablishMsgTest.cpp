#include "bciConnEstablishMsg.h"
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

std::string requestXml(const std::string& protocolRev)
{
    return headerElements() + element("protocolRev", protocolRev);
}

struct RejectNumbers
{
    std::string supportedProtocolRev = "7";
    std::string padding0 = "8";
    std::string errorCode = "4";
    std::string rejectCausePadding0 = "5";
    std::string rejectCausePadding1 = "6";
};

std::string rejectXml(const std::string& description, const RejectNumbers& numbers = {})
{
    return headerElements() + element("supportedProtocolRev", numbers.supportedProtocolRev) +
           element("padding0", numbers.padding0) + element("errorCode", numbers.errorCode) +
           element("rejectCausePadding0", numbers.rejectCausePadding0) + element("errorDescription", description) +
           element("rejectCausePadding1", numbers.rejectCausePadding1);
}

const std::string kRevisions = kHeader + host16(7) + host16(8);
const std::string kTooOld = kRevisions + rejectCause(4, 5, "too old\0"s, 6);
const std::string kUnterminated = kRevisions + rejectCause(4, 5, kLongest + 'd', 25700); // goes on as "dd"
const std::string kBinaryRevisions = kBinaryHeader + be16(7) + be16(8);

} // namespace

TEST(ConnEst, SignalNumbersHaveNames)
{
    EXPECT_EQ(BCI_CONN_EST_REQ, 0x1658000U);
    EXPECT_EQ(BCI_CONN_EST_REJ, 0x1658002U);
}

TEST(ConnEstReq, StructureIsTheHeaderTheRevisionAndTwoBytesOfAlignment)
{
    expectSignal<VornBcConnEstablishReqS>(16);
    expectField<U16>(&VornBcConnEstablishReqS::protocolRev, 12);
    expectOwnStructure<BciConnEstReq, VornBcConnEstablishReqS>(&BciConnEstReq::m_connEstReq, 41, 16);
}

TEST(ConnEstReq, WritesTextAndXmlAsFarAsTheBufferGoes)
{
    const std::string ordinary = filledUp(hostHeader(BCI_CONN_EST_REQ, -4, 5) + host16(3), 16);
    expectBeginnings(writeText, *holding<BciConnEstReq>(ordinary), "23429120:-4:5:3:");
    expectBeginnings(writeXml, *holding<BciConnEstReq>(ordinary),
                     "\t<sigNo>\n\t  23429120\n\t</sigNo>\n"
                     "\t<clientRef>\n\t  -4\n\t</clientRef>\n"
                     "\t<serverRef>\n\t  5\n\t</serverRef>\n"
                     "\t<protocolRev>\n\t  3\n\t</protocolRev>\n");
    const std::string longest = filledUp(hostHeader(4294967295U, kLowest, kLowest) + host16(65535), 16);
    expectBeginnings(writeText, *holding<BciConnEstReq>(longest), "4294967295:-2147483648:-2147483648:65535:");
    expectBeginnings(writeText, *filled<BciConnEstReq>(16), "1515870810:1515870810:1515870810:23130:");
}

TEST(ConnEstReq, WritesTheNumbersInBinaryThatFitWhole)
{
    const std::string whole = kBinaryHeader + bytes({0xFF, 0xFE}); // without the alignment
    const std::pair<unsigned int, Written> cases[] = {{16, {true, whole, 0}},
                                                      {14, {true, whole, 1}},
                                                      {13, {true, kBinaryHeader, 2}},
                                                      {12, {true, kBinaryHeader, 3}},
                                                      {7, {true, whole.substr(0, 4) + "\xFF\xFE", 2}},
                                                      {3, {true, "\xFF\xFE", 2}},
                                                      {2, {true, "\xFF\xFE", 3}},
                                                      {1, {true, "", 2}},
                                                      {0, {true, "", 3}}};
    const auto message = holding<BciConnEstReq>(filledUp(kHeader + host16(0xFFFE), 16));
    for (const auto& [capacity, written] : cases)
    {
        EXPECT_EQ(writeBinary(*message, capacity), written) << capacity;
    }
}

TEST(ConnEstReq, ReadsTextUpToTheDamage)
{
    expectReadings<BciConnEstReq>(readText, 16,
                                  {{"1:2:3:4:", {true, 1, 8}, kHeader + host16(4)},
                                   {"1:2:3:65535:5:", {true, 0, 12}, kHeader + host16(65535)},
                                   {"1:2:3:65536:", {true, 2, 11}, kHeader},
                                   {"1:2:3:-1:", {true, 2, 8}, kHeader},
                                   {"1:2:3:x:", {true, 2, 7}, kHeader},
                                   {"1:2:3:4", {true, 3, 7}, kHeader + host16(0)},
                                   {"1:2:3:", {true, 3, 6}, kHeader},
                                   {"1:2:", {true, 3, 4}, kHeader.substr(0, 8)},
                                   {"one:2:3:4:", {true, 2, 0}, ""}});
}

TEST(ConnEstReq, ReadsBinaryAsFarAsItGoes)
{
    expectBinaryReadings<BciConnEstReq>(kBinaryHeader + bytes({0xFF, 0xFE, 'x', 'y'}),
                                        filledUp(kHeader + host16(0xFFFE), 16),
                                        {{16, {true, 0, 14}},
                                         {14, {true, 1, 14}},
                                         {13, {true, 2, 12}},
                                         {12, {true, 1, 12}},
                                         {3, {true, 2, 0}},
                                         {0, {true, 3, 0}}});
}

TEST(ConnEstReq, ReadsXml)
{
    const Read all{true, 0, 0};
    expectReadings<BciConnEstReq>(
        readXml, 16,
        {{requestXml("3"), all, kHeader + host16(3)},
         {requestXml("65535"), all, kHeader + host16(65535)},
         {requestXml("65537"), all, kHeader + host16(1)},
         {requestXml("-1"), all, kHeader + host16(65535)},
         {requestXml("4000000000"), all, kHeader + host16(65535)},
         {requestXml("three"), all, kHeader + host16(0)},
         {"<supportedProtocolRev>9</supportedProtocolRev><protocolRev>\r 3 </protocolRev>" + headerElements(), all,
          kHeader + host16(3)}});
}

TEST(ConnEstReq, XmlReaderStopsAtTheFirstMissingElement)
{
    expectEachMissingElementStopsTheReader<BciConnEstReq>(
        requestXml("3"), filledUp(kHeader + host16(3), 16),
        {{"sigNo", "[src/bciConnEstablishMsg:96] tag %s not found", 0},
         {"clientRef", "[src/bciConnEstablishMsg:103] tag %s not found", 4},
         {"serverRef", "[src/bciConnEstablishMsg:110] tag %s not found", 8},
         {"protocolRev", "[src/bciConnEstablishMsg:117] tag %s not found", 12}});
}

TEST(ConnEstRej, StructureIsTheHeaderTheRevisionAndTheCause)
{
    expectSignal<VornBcConnEstablishRejS>(132);
    expectField<U16>(&VornBcConnEstablishRejS::supportedProtocolRev, 12);
    expectField<U16>(&VornBcConnEstablishRejS::padding0, 14);
    expectField<VornConstRejectCauseS>(&VornBcConnEstablishRejS::rejectCause, 16);
    expectOwnStructure<BciConnEstRej, VornBcConnEstablishRejS>(&BciConnEstRej::m_ConnEstRej, 505, 132);
}

TEST(ConnEstRej, WritesTextAndXmlAsFarAsTheBufferGoes)
{
    expectBeginnings(writeText, *holding<BciConnEstRej>(kTooOld), "1:2:3:7:8:4:5:too old:6:");
    expectBeginnings(writeXml, *holding<BciConnEstRej>(kTooOld),
                     "\t<sigNo>\n\t  1\n\t</sigNo>\n"
                     "\t<clientRef>\n\t  2\n\t</clientRef>\n"
                     "\t<serverRef>\n\t  3\n\t</serverRef>\n"
                     "\t<supportedProtocolRev>\n\t  7\n\t</supportedProtocolRev>\n"
                     "\t<padding0>\n\t  8\n\t</padding0>\n"
                     "\t<errorCode>\n\t  4\n\t</errorCode>\n"
                     "\t<rejectCausePadding0>\n\t  5\n\t</rejectCausePadding0>\n"
                     "\t<errorDescription>\n\t  too old\n\t</errorDescription>\n"
                     "\t<rejectCausePadding1>\n\t  6\n\t</rejectCausePadding1>\n");
    const std::string empty = kHeader + host16(0) + host16(0) + rejectCause(0, 0, "\0"s, 0);
    expectBeginnings(writeText, *holding<BciConnEstRej>(empty), "1:2:3:0:0:0:0::0:");
    expectBeginnings(writeXml, *holding<BciConnEstRej>(empty), rejectXml("", {"0", "0", "0", "0", "0"}));
    const std::string greatest =
        kHeader + host16(65535) + host16(65535) + rejectCause(65535, 65535, kLongest + '\0', 65535);
    expectBeginnings(writeText, *holding<BciConnEstRej>(greatest),
                     "1:2:3:65535:65535:65535:65535:" + kLongest + ":65535:");
    expectBeginnings(writeText, *holding<BciConnEstRej>(kUnterminated), "1:2:3:7:8:4:5:" + kLongest + "d:25700:");
    expectBeginnings(writeXml, *holding<BciConnEstRej>(kUnterminated),
                     rejectXml(kLongest + "d", {.rejectCausePadding1 = "25700"}));
}

TEST(ConnEstRej, WritesAllOfTheDescriptionInBinaryAndDropsNumbersThatDoNotFit)
{
    const std::string whole = kBinaryRevisions + be16(4) + be16(5) + filledUp("too old\0"s, 110) + be16(6);
    const std::pair<unsigned int, Written> cases[] = {
        {133, {true, whole, 0}},
        {132, {true, whole, 1}},
        {131, {true, whole.substr(0, 130), 2}},
        {130, {true, whole.substr(0, 130), 3}},
        {20, {true, whole.substr(0, 20), 3}},
        {19, {true, whole.substr(0, 18) + "t", 3}}, // what still fits is written
        {17, {true, whole.substr(0, 16) + "t", 3}},
        {15, {true, whole.substr(0, 14) + "t", 3}},
        {11, {true, whole.substr(0, 8) + be16(7) + "t", 3}},
        {0, {true, "", 3}}};
    for (const auto& [capacity, written] : cases)
    {
        EXPECT_EQ(writeBinary(*holding<BciConnEstRej>(kTooOld), capacity), written) << capacity;
    }
    EXPECT_EQ(writeBinary(*holding<BciConnEstRej>(kUnterminated)),
              (Written{true, kBinaryRevisions + be16(4) + be16(5) + kLongest + "d" + be16(25700), 0}));
}

TEST(ConnEstRej, ReadsTextUpToTheDamage)
{
    const std::string upToOld = kRevisions + host16(4) + host16(5) + "old\0"s;
    const std::string upToLongest = kRevisions + host16(4) + host16(5) + kLongest + '\0';
    expectReadings<BciConnEstRej>(
        readText, 132,
        {{"1:2:3:7:8:4:5:too old:6:", {true, 1, 24}, kTooOld},
         {"1:2:3:0:0:0:0::0:", {true, 1, 17}, kHeader + host16(0) + host16(0) + rejectCause(0, 0, "\0"s, 0)},
         {"1:2:3:65535:65535:65535:65535:" + kLongest + ":65535:",
          {true, 1, 146},
          kHeader + host16(65535) + host16(65535) + rejectCause(65535, 65535, kLongest + '\0', 65535)},
         {"1:2:3:65536:8:4:5:old:6:", {true, 2, 11}, kHeader},
         {"1:2:3:7:65536:4:5:old:6:", {true, 2, 13}, kHeader + host16(7)},
         {"1:2:3:7:8:-4:5:old:6:", {true, 2, 12}, kRevisions},
         {"1:2:3:7:8:4:V:old:6:", {true, 2, 12}, kRevisions + host16(4)},
         {"1:2:3:7:8:4:5", {true, 3, 13}, kRevisions + host16(4) + host16(0)},
         {"1:2:3:7:8:4:5:", {true, 3, 14}, kRevisions + host16(4) + host16(5)},
         {"1:2:3:7:8:4:5:old", {true, 3, 17}, upToOld},
         {"1:2:3:7:8:4:5:old:6", {true, 3, 19}, kRevisions + rejectCause(4, 5, "old\0"s, 0)},
         {"1:2:3:7:8:4:5:old: too:6:", {true, 2, 18}, upToOld}, // a ':' ends the description
         {"1:2:3:7:8:4:5:old:9:6:", {true, 0, 20}, kRevisions + rejectCause(4, 5, "old\0"s, 9)},
         {"1:2:3:7:8:4:5:" + kLongest + "d:6:", {true, 2, 124}, upToLongest}});
}

TEST(ConnEstRej, ReadsBinaryAsFarAsItGoes)
{
    const std::string description = "too old\0"s + std::string(101, 'q'); // all of it is read, no terminator added
    expectBinaryReadings<BciConnEstRej>(kBinaryHeader + bytes({0xFF, 0xFD, 0x00, 0x03, 0xFF, 0xFE, 0x01, 0x02}) +
                                            description + bytes({'q', 0x80, 0x00, 'x'}),
                                        kHeader + host16(0xFFFD) + host16(3) +
                                            rejectCause(0xFFFE, 0x0102, description + 'q', 0x8000),
                                        {{133, {true, 0, 132}},
                                         {132, {true, 1, 132}},
                                         {131, {true, 2, 130}},
                                         {130, {true, 1, 130}},
                                         {129, {true, 3, 129}},
                                         {20, {true, 1, 20}},
                                         {19, {true, 2, 18}},
                                         {17, {true, 2, 16}},
                                         {15, {true, 2, 14}},
                                         {13, {true, 2, 12}},
                                         {12, {true, 1, 12}}});
}

TEST(ConnEstRej, ReadsXml)
{
    const Read all{true, 0, 0};
    const auto described = [](const std::string& description)
    { return kRevisions + rejectCause(4, 5, description + '\0', 6); };
    expectReadings<BciConnEstRej>(
        readXml, 132,
        {{rejectXml("too old"), all, described("too old")},
         {rejectXml(""), all, described("")},
         {rejectXml("  two blanks  "), all, described("  two blanks  ")},
         {rejectXml("a: <b>&\n"), all, described("a: <b>&\n")},
         {rejectXml(kLongest), all, described(kLongest)},
         {rejectXml(kLongest + "d"), all, described(kLongest)}, // cut
         {rejectXml(std::string(1000, 'd')), all, described(kLongest)},
         {"<rejectCausePadding1>6</rejectCausePadding1><rejectCausePadding0>5</rejectCausePadding0>"
          "<padding0>8</padding0><errorDescription>\ttoo old\r\n</errorDescription><protocolRev>1</protocolRev>"
          "<errorCode>4</errorCode><supportedProtocolRev>7</supportedProtocolRev>" +
              headerElements(),
          all, described("too old")},
         {rejectXml("x", {"65537", "65535", "-1", "4000000000", "five"}), all,
          kHeader + host16(1) + host16(65535) + rejectCause(65535, 65535, "x\0"s, 0)}});
}

TEST(ConnEstRej, XmlReaderStopsAtTheFirstMissingElement)
{
    expectEachMissingElementStopsTheReader<BciConnEstRej>(
        rejectXml(std::string(200, 'd')), kRevisions + rejectCause(4, 5, kLongest + '\0', 6),
        {{"sigNo", "[src/bciConnEstablishMsg:245] tag %s not found", 0},
         {"clientRef", "[src/bciConnEstablishMsg:252] tag %s not found", 4},
         {"serverRef", "[src/bciConnEstablishMsg:259] tag %s not found", 8},
         {"supportedProtocolRev", "[src/bciConnEstablishMsg:266] tag %s not found", 12},
         {"padding0", "[src/bciConnEstablishMsg:273] tag %s not found", 14},
         {"errorCode", "[src/bciConnEstablishMsg:280] tag %s not found", 16},
         {"rejectCausePadding0", "[src/bciConnEstablishMsg:287] tag %s not found", 18},
         {"errorDescription", "[src/bciConnEstablishMsg:294] tag %s not found", 20},
         {"rejectCausePadding1", "[src/bciConnEstablishMsg:301] tag %s not found", 130}});
}

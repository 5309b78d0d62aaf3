#include "bciConnEstablishMsg.h"
#include "bciMsgRegistration.h"
#include "logCapture.h"
#include "messageKit.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace std::string_literals;

constexpr S32 kLowest = -2147483647 - 1;

const std::string kLongest(109, 'd'); // the longest description

template <typename Field, typename Wire>
void expectField(Field Wire::*field, std::ptrdiff_t offset)
{
    const Wire wire{};
    EXPECT_EQ(reinterpret_cast<const char*>(&(wire.*field)) - reinterpret_cast<const char*>(&wire), offset);
}

template <typename Message, typename Wire>
void expectOwnStructure(Wire Message::*member, unsigned int maxText, unsigned int maxBinary)
{
    alignas(Message) unsigned char storage[sizeof(Message)];
    std::memset(storage, 0x5A, sizeof storage);
    Message* const message = new (storage) Message(23429121);
    EXPECT_EQ(message->getMsg(), reinterpret_cast<char*>(&(message->*member)));
    EXPECT_EQ(structureOf(*message, sizeof(Wire)), std::string(sizeof(Wire), '\x5A'));
    EXPECT_EQ(message->getDelim(), ':');
    EXPECT_EQ(message->getMaxTextBufferSize(), maxText);
    EXPECT_EQ(message->getMaxBinaryBufferSize(), maxBinary);

    std::vector<char> source(sizeof(Wire), '\x11'); // ends where the structure ends
    const GenericMsgS header{4294967295U, {kLowest, 2147483647}};
    std::memcpy(source.data(), &header, sizeof header);
    message->setMsg(source.data());
    EXPECT_EQ(structureOf(*message, sizeof(Wire)), std::string(source.begin(), source.end()));
    EXPECT_EQ(message->getSigNo(), 4294967295U);
    EXPECT_EQ(message->getAddressInfo().clientRef, kLowest);
    EXPECT_EQ(message->getAddressInfo().serverRef, 2147483647);
    message->~Message();

    const std::unique_ptr<BciMessageBase> first(Message::instantiateBciMsg(1));
    const std::unique_ptr<BciMessageBase> second(Message::instantiateBciMsg(1));
    EXPECT_NE(first->getMsg(), second->getMsg());
    EXPECT_EQ(first->getMaxTextBufferSize(), maxText);
}

// Structures as they lie in memory. Where less than the whole is given, the rest is as in a filled message.

template <typename T>
std::string inMemory(T value)
{
    return {reinterpret_cast<const char*>(&value), sizeof value};
}

std::string half(U16 value)
{
    return inMemory(value);
}

std::string header(SIGSELECT sigNo, S32 clientRef, S32 serverRef)
{
    return inMemory(sigNo) + inMemory(clientRef) + inMemory(serverRef);
}

const std::string kHeader = header(1, 2, 3);

std::string filledUp(const std::string& beginning, std::size_t size)
{
    return beginning + std::string(size - beginning.size(), '\x5A');
}

std::string cause(U16 errorCode, U16 padding0, const std::string& description, U16 padding1)
{
    return half(errorCode) + half(padding0) + filledUp(description, 110) + half(padding1);
}

template <typename Message>
std::unique_ptr<Message> holding(const std::string& beginning)
{
    auto message = std::make_unique<Message>(1);
    message->setMsg(filledUp(beginning, message->getMaxBinaryBufferSize()).data());
    return message;
}

// A buffer that is too short takes the beginning.
template <typename Message>
void expectRendering(Written (*write)(const BciMessageBase&, unsigned int), const std::string& beginning,
                     const std::string& whole)
{
    const auto message = holding<Message>(beginning);
    for (unsigned int capacity = 0; capacity <= whole.size() + 1; ++capacity)
    {
        const unsigned int status = capacity < whole.size() ? 3 : capacity == whole.size() ? 1 : 0;
        EXPECT_EQ(write(*message, capacity), (Written{true, whole.substr(0, capacity), status})) << capacity;
    }
}

struct Reading
{
    std::string data;
    Read outcome;
    std::string beginning; // of the structure afterwards
};

template <typename Message>
void expectReadings(Read (*read)(BciMessageBase&, const std::string&), const std::vector<Reading>& readings)
{
    for (const auto& [data, outcome, beginning] : readings)
    {
        SCOPED_TRACE(testing::PrintToString(data));
        const auto message = holding<Message>("");
        const std::size_t size = message->getMaxBinaryBufferSize();
        EXPECT_EQ(read(*message, data), outcome);
        EXPECT_EQ(structureOf(*message, size), filledUp(beginning, size));
    }
}

// Binary data of several lengths. The structure holds the same bytes up to where reading ended.
template <typename Message>
void expectBinaryReadings(const std::string& whole, const std::string& structure,
                          const std::vector<std::pair<std::size_t, Read>>& outcomes)
{
    for (const auto& [length, outcome] : outcomes)
    {
        expectReadings<Message>(readBinary,
                                {{whole.substr(0, length), outcome, structure.substr(0, outcome.position)}});
    }
}

struct Missing
{
    const char* tag;
    const char* format;
    std::size_t offset; // of the field: what lies before it is read
};

// Takes each element out of a document that otherwise reads to `structure`.
template <typename Message>
void expectStopsAt(const std::vector<Missing>& elements, const std::string& document, const std::string& structure)
{
    for (const auto& [tag, format, offset] : elements)
    {
        expectReadings<Message>(readXml, {{without(document, tag), {false, 0, 0}, structure.substr(0, offset)}});
        EXPECT_EQ(takeLog(), (Log{{6, format, {tag}}}));
    }
    commonStream::istream_text detached;
    EXPECT_FALSE(holding<Message>("")->deserializeBciMsgFromXml(detached));
    EXPECT_EQ(takeLog(), (Log{{6, elements.front().format, {elements.front().tag}}}));
}

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

const std::string kRevisions = kHeader + half(7) + half(8);
const std::string kTooOld = kRevisions + cause(4, 5, "too old\0"s, 6);
const std::string kUnterminated = kRevisions + cause(4, 5, kLongest + 'd', 25700); // goes on as "dd"
const std::string kBinaryHeader = firstWord(1) + be32(2) + be32(3);
const std::string kBinaryRevisions = kBinaryHeader + be16(7) + be16(8);

} // namespace

TEST(ConnEst, SignalNumbersHaveNames)
{
    EXPECT_EQ(BCI_CONN_EST_REQ, 0x1658000U);
    EXPECT_EQ(BCI_CONN_EST_REJ, 0x1658002U);
}

TEST(ConnEstReq, StructureIsTheHeaderTheRevisionAndTwoBytesOfAlignment)
{
    EXPECT_EQ(sizeof(VornBcConnEstablishReqS), 16U);
    expectField<SIGSELECT>(&VornBcConnEstablishReqS::sigNo, 0);
    expectField<VornNodeCommonAddressInfoS>(&VornBcConnEstablishReqS::addressInfo, 4);
    expectField<U16>(&VornBcConnEstablishReqS::protocolRev, 12);
    expectOwnStructure<BciConnEstReq, VornBcConnEstablishReqS>(&BciConnEstReq::m_connEstReq, 41, 16);
}

TEST(ConnEstReq, WritesTextAndXmlAsFarAsTheBufferGoes)
{
    const std::string ordinary = header(BCI_CONN_EST_REQ, -4, 5) + half(3);
    expectRendering<BciConnEstReq>(writeText, ordinary, "23429120:-4:5:3:");
    expectRendering<BciConnEstReq>(writeXml, ordinary,
                                   "\t<sigNo>\n\t  23429120\n\t</sigNo>\n"
                                   "\t<clientRef>\n\t  -4\n\t</clientRef>\n"
                                   "\t<serverRef>\n\t  5\n\t</serverRef>\n"
                                   "\t<protocolRev>\n\t  3\n\t</protocolRev>\n");
    const std::string longest = header(4294967295U, kLowest, kLowest) + half(65535);
    expectRendering<BciConnEstReq>(writeText, longest, "4294967295:-2147483648:-2147483648:65535:");
    expectRendering<BciConnEstReq>(writeText, "", "1515870810:1515870810:1515870810:23130:");
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
    for (const auto& [capacity, written] : cases)
    {
        EXPECT_EQ(writeBinary(*holding<BciConnEstReq>(kHeader + half(0xFFFE)), capacity), written) << capacity;
    }
}

TEST(ConnEstReq, ReadsTextUpToTheDamage)
{
    expectReadings<BciConnEstReq>(readText, {{"1:2:3:4:", {true, 1, 8}, kHeader + half(4)},
                                             {"1:2:3:65535:5:", {true, 0, 12}, kHeader + half(65535)},
                                             {"1:2:3:65536:", {true, 2, 11}, kHeader},
                                             {"1:2:3:-1:", {true, 2, 8}, kHeader},
                                             {"1:2:3:x:", {true, 2, 7}, kHeader},
                                             {"1:2:3:4", {true, 3, 7}, kHeader + half(0)},
                                             {"1:2:3:", {true, 3, 6}, kHeader},
                                             {"1:2:", {true, 3, 4}, kHeader.substr(0, 8)},
                                             {"one:2:3:4:", {true, 2, 0}, ""}});
}

TEST(ConnEstReq, ReadsBinaryAsFarAsItGoes)
{
    expectBinaryReadings<BciConnEstReq>(kBinaryHeader + bytes({0xFF, 0xFE, 'x', 'y'}), kHeader + half(0xFFFE),
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
        readXml,
        {{requestXml("3"), all, kHeader + half(3)},
         {requestXml("65535"), all, kHeader + half(65535)},
         {requestXml("65537"), all, kHeader + half(1)},
         {requestXml("-1"), all, kHeader + half(65535)},
         {requestXml("4000000000"), all, kHeader + half(65535)},
         {requestXml("three"), all, kHeader + half(0)},
         {"<supportedProtocolRev>9</supportedProtocolRev><protocolRev>\r 3 </protocolRev>" + headerElements(), all,
          kHeader + half(3)}});
}

TEST(ConnEstReq, XmlReaderStopsAtTheFirstMissingElement)
{
    expectStopsAt<BciConnEstReq>({{"sigNo", "[src/bciConnEstablishMsg:96] tag %s not found", 0},
                                  {"clientRef", "[src/bciConnEstablishMsg:103] tag %s not found", 4},
                                  {"serverRef", "[src/bciConnEstablishMsg:110] tag %s not found", 8},
                                  {"protocolRev", "[src/bciConnEstablishMsg:117] tag %s not found", 12}},
                                 requestXml("3"), kHeader + half(3));
}

TEST(ConnEstRej, StructureIsTheHeaderTheRevisionAndTheCause)
{
    EXPECT_EQ(sizeof(VornBcConnEstablishRejS), 132U);
    expectField<SIGSELECT>(&VornBcConnEstablishRejS::sigNo, 0);
    expectField<VornNodeCommonAddressInfoS>(&VornBcConnEstablishRejS::addressInfo, 4);
    expectField<U16>(&VornBcConnEstablishRejS::supportedProtocolRev, 12);
    expectField<U16>(&VornBcConnEstablishRejS::padding0, 14);
    expectField<VornConstRejectCauseS>(&VornBcConnEstablishRejS::rejectCause, 16);
    expectOwnStructure<BciConnEstRej, VornBcConnEstablishRejS>(&BciConnEstRej::m_ConnEstRej, 505, 132);
}

TEST(ConnEstRej, WritesTextAndXmlAsFarAsTheBufferGoes)
{
    expectRendering<BciConnEstRej>(writeText, kTooOld, "1:2:3:7:8:4:5:too old:6:");
    expectRendering<BciConnEstRej>(writeXml, kTooOld,
                                   "\t<sigNo>\n\t  1\n\t</sigNo>\n"
                                   "\t<clientRef>\n\t  2\n\t</clientRef>\n"
                                   "\t<serverRef>\n\t  3\n\t</serverRef>\n"
                                   "\t<supportedProtocolRev>\n\t  7\n\t</supportedProtocolRev>\n"
                                   "\t<padding0>\n\t  8\n\t</padding0>\n"
                                   "\t<errorCode>\n\t  4\n\t</errorCode>\n"
                                   "\t<rejectCausePadding0>\n\t  5\n\t</rejectCausePadding0>\n"
                                   "\t<errorDescription>\n\t  too old\n\t</errorDescription>\n"
                                   "\t<rejectCausePadding1>\n\t  6\n\t</rejectCausePadding1>\n");
    const std::string empty = kHeader + half(0) + half(0) + cause(0, 0, "\0"s, 0);
    expectRendering<BciConnEstRej>(writeText, empty, "1:2:3:0:0:0:0::0:");
    expectRendering<BciConnEstRej>(writeXml, empty, rejectXml("", {"0", "0", "0", "0", "0"}));
    const std::string greatest = kHeader + half(65535) + half(65535) + cause(65535, 65535, kLongest + '\0', 65535);
    expectRendering<BciConnEstRej>(writeText, greatest, "1:2:3:65535:65535:65535:65535:" + kLongest + ":65535:");
    expectRendering<BciConnEstRej>(writeText, kUnterminated, "1:2:3:7:8:4:5:" + kLongest + "d:25700:");
    expectRendering<BciConnEstRej>(writeXml, kUnterminated,
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
    const std::string upToOld = kRevisions + half(4) + half(5) + "old\0"s;
    const std::string upToLongest = kRevisions + half(4) + half(5) + kLongest + '\0';
    expectReadings<BciConnEstRej>(
        readText, {{"1:2:3:7:8:4:5:too old:6:", {true, 1, 24}, kTooOld},
                   {"1:2:3:0:0:0:0::0:", {true, 1, 17}, kHeader + half(0) + half(0) + cause(0, 0, "\0"s, 0)},
                   {"1:2:3:65535:65535:65535:65535:" + kLongest + ":65535:",
                    {true, 1, 146},
                    kHeader + half(65535) + half(65535) + cause(65535, 65535, kLongest + '\0', 65535)},
                   {"1:2:3:65536:8:4:5:old:6:", {true, 2, 11}, kHeader},
                   {"1:2:3:7:65536:4:5:old:6:", {true, 2, 13}, kHeader + half(7)},
                   {"1:2:3:7:8:-4:5:old:6:", {true, 2, 12}, kRevisions},
                   {"1:2:3:7:8:4:V:old:6:", {true, 2, 12}, kRevisions + half(4)},
                   {"1:2:3:7:8:4:5", {true, 3, 13}, kRevisions + half(4) + half(0)},
                   {"1:2:3:7:8:4:5:", {true, 3, 14}, kRevisions + half(4) + half(5)},
                   {"1:2:3:7:8:4:5:old", {true, 3, 17}, upToOld},
                   {"1:2:3:7:8:4:5:old:6", {true, 3, 19}, kRevisions + cause(4, 5, "old\0"s, 0)},
                   {"1:2:3:7:8:4:5:old: too:6:", {true, 2, 18}, upToOld}, // a ':' ends the description
                   {"1:2:3:7:8:4:5:old:9:6:", {true, 0, 20}, kRevisions + cause(4, 5, "old\0"s, 9)},
                   {"1:2:3:7:8:4:5:" + kLongest + "d:6:", {true, 2, 124}, upToLongest}});
}

TEST(ConnEstRej, ReadsBinaryAsFarAsItGoes)
{
    const std::string description = "too old\0"s + std::string(101, 'q'); // all of it is read, no terminator added
    expectBinaryReadings<BciConnEstRej>(kBinaryHeader + bytes({0xFF, 0xFD, 0x00, 0x03, 0xFF, 0xFE, 0x01, 0x02}) +
                                            description + bytes({'q', 0x80, 0x00, 'x'}),
                                        kHeader + half(0xFFFD) + half(3) +
                                            cause(0xFFFE, 0x0102, description + 'q', 0x8000),
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
    { return kRevisions + cause(4, 5, description + '\0', 6); };
    expectReadings<BciConnEstRej>(
        readXml,
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
          kHeader + half(1) + half(65535) + cause(65535, 65535, "x\0"s, 0)}});
}

TEST(ConnEstRej, XmlReaderStopsAtTheFirstMissingElement)
{
    expectStopsAt<BciConnEstRej>({{"sigNo", "[src/bciConnEstablishMsg:245] tag %s not found", 0},
                                  {"clientRef", "[src/bciConnEstablishMsg:252] tag %s not found", 4},
                                  {"serverRef", "[src/bciConnEstablishMsg:259] tag %s not found", 8},
                                  {"supportedProtocolRev", "[src/bciConnEstablishMsg:266] tag %s not found", 12},
                                  {"padding0", "[src/bciConnEstablishMsg:273] tag %s not found", 14},
                                  {"errorCode", "[src/bciConnEstablishMsg:280] tag %s not found", 16},
                                  {"rejectCausePadding0", "[src/bciConnEstablishMsg:287] tag %s not found", 18},
                                  {"errorDescription", "[src/bciConnEstablishMsg:294] tag %s not found", 20},
                                  {"rejectCausePadding1", "[src/bciConnEstablishMsg:301] tag %s not found", 130}},
                                 rejectXml(std::string(200, 'd')), kRevisions + cause(4, 5, kLongest + '\0', 6));
}

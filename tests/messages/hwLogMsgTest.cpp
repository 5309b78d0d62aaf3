#include "bciHwMsg.h"
#include "logCapture.h"
#include "messageKit.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <new>
#include <string>
#include <vector>

namespace
{

using namespace std::string_literals;
using GetReq = BciHwLogGetReqMsg;
using SetReq = BciHwLogSetReqMsg;
using GetCfm = BciHwLogGetCfmMsg;

std::string x(std::size_t count)
{
    return std::string(count, 'x');
}

std::string times(std::size_t count, const std::string& text)
{
    std::string result;
    for (std::size_t i = 0; i < count; ++i)
    {
        result += text;
    }
    return result;
}

// The 424 bytes of a log: what it holds first, and kFill behind it.
std::string logData(const std::string& first)
{
    return filledUp(first, 424);
}

std::string getReq(SIGSELECT sigNo, S32 clientRef, S32 serverRef, U32 logId)
{
    return hostHeader(sigNo, clientRef, serverRef) + inMemory(logId);
}

std::string setReq(U32 length, const std::string& data)
{
    return hostHeader(23433738, 1, -2) + "20240131\0ZZZZZ"s + host16(7) + inMemory<U32>(9) + inMemory(length) +
           logData(data);
}

std::string getCfm(U32 length, const std::string& data)
{
    return hostHeader(23433742, 1, -2) + inMemory(length) + logData(data);
}

// What stands in front of the length.
const std::string kSetReqText = "23433738:1:-2:20240131:7:9:";
const std::string kSetReqBinary = binaryHeader(23433738, 1, -2) + "20240131\0ZZZZZ"s + be16(7) + be32(9);
const std::string kSetReqXml = headerElements("23433738", "1", "-2") + element("dateTime", "20240131") +
                               element("padding0", "7") + element("logId", "9");
const std::string kGetCfmText = "23433742:1:-2:";
const std::string kGetCfmBinary = binaryHeader(23433742, 1, -2);
const std::string kGetCfmXml = headerElements("23433742", "1", "-2");

// The elements of a length and of entries.
std::string logElements(const std::string& length, const std::vector<std::string>& entries)
{
    std::string elements = element("length", length);
    for (std::size_t i = 0; i < entries.size(); ++i)
    {
        elements += element("hwLogData_" + std::to_string(i), entries[i]);
    }
    return elements;
}

constexpr U32 kUnread = 0x5A5A5A5A; // a length that is not read is the one that was there

// What is left by the length and the log, behind what stands in front of them.
struct Row
{
    std::string rendering;
    U32 length;
    std::string data;
    Read read;
    Log log;
};

template <typename Message>
void expectReads(Reader reader, const std::string& front, std::string (*structure)(U32, const std::string&),
                 std::initializer_list<Row> rows)
{
    for (const Row& row : rows)
    {
        SCOPED_TRACE(testing::PrintToString(row.rendering));
        const std::string after = structure(row.length, row.data);
        expectReadings<Message>(reader, after.size(), {{front + row.rendering, row.read, after, row.log}});
    }
}

// Entry, place and length of what does not fit.
Log textExceeded(const std::string& entry, const std::string& index, const std::string& length)
{
    return {{6,
             "[src/bciHwMsg:622] logIdx %d logDataIdx: %u log length: %u, buffer limit: %u exceeded",
             {entry, index, length, "424"}}};
}

Log xmlExceeded(const std::string& entry, const std::string& index, const std::string& length)
{
    return {{6,
             "[src/bciHwMsg:726] %s %d at logIdx %d logDataIdx: %u log length: %u buffer limit: %u exceeded",
             {"deserializeBciMsgFromXml", "726", entry, index, length, "424"}}};
}

Log noEntry(const std::string& tag)
{
    return {{6, "[src/bciHwMsg:720] tag %s not found", {tag}}};
}

Log tooLong(const std::string& line, const std::string& length)
{
    return {{6, "[src/bciHwMsg:" + line + "] length %u > %u", {length, "424"}}};
}

} // namespace

// All three

TEST(HwLog, WireStructuresHaveTheLayoutOfTheirSignals)
{
    using Get = VornBcHwLogGetReqS;
    using Set = VornBcHwLogSetReqS;
    using Cfm = VornBcHwLogGetCfmS;
    expectSignal<Get>(16);
    expectField<U32>(&Get::logId, 12);
    expectSignal<Set>(460);
    expectField<U8[14]>(&Set::dateTime, 12);
    expectField<U16>(&Set::padding0, 26);
    expectField<U32>(&Set::logId, 28);
    expectField<U32>(&Set::length, 32);
    expectField<U8[424]>(&Set::hwLogData, 36);
    expectSignal<Cfm>(440);
    expectField<U32>(&Cfm::length, 12);
    expectField<U8[424]>(&Cfm::hwLogData, 16);
}

TEST(HwLog, MessagesHoldTheirStructuresAndNothingElse)
{
    expectOwnStructure<GetReq, VornBcHwLogGetReqS>(&GetReq::m_hwLogGetReq, 46, 16);
    expectOwnStructure<SetReq, VornBcHwLogSetReqS>(&SetReq::m_hwLogSetReq, 1815, 460);
    expectOwnStructure<GetCfm, VornBcHwLogGetCfmS>(&GetCfm::m_hwLogGetCfm, 1742, 440);
}

// Get request

TEST(HwLogGetReq, WritesItsThreeForms)
{
    const auto message = holding<GetReq>(getReq(23433741, 1, -2, 9));
    EXPECT_EQ(writeText(*message), (Written{true, "23433741:1:-2:9:", 0}));
    EXPECT_EQ(writeBinary(*message), (Written{true, binaryHeader(23433741, 1, -2) + be32(9), 0}));
    EXPECT_EQ(writeXml(*message),
              (Written{true, headerElements("23433741", "1", "-2") + element("logId", "9"), 0}));

    const auto longest = holding<GetReq>(getReq(4294967295, kLowest, kLowest, 4294967295));
    const std::string text = "4294967295:-2147483648:-2147483648:4294967295:";
    EXPECT_EQ(writeText(*longest, 46), (Written{true, text, 1}));
    EXPECT_EQ(writeText(*longest, 45), (Written{true, text.substr(0, 45), 3}));
    EXPECT_EQ(writeBinary(*longest, 16),
              (Written{true, "\xFF\xFF\xFF\xFF\x80\0\0\0\x80\0\0\0\xFF\xFF\xFF\xFF"s, 1}));
    EXPECT_EQ(writeBinary(*longest, 15), (Written{true, "\xFF\xFF\xFF\xFF\x80\0\0\0\x80\0\0\0"s, 2}));
}

TEST(HwLogGetReq, ReadsTextAndBinaryIntoWhatIsThere)
{
    const std::string whole = binaryHeader(23433741, 1, -2) + be32(4294967295);
    const struct
    {
        Reader reader;
        std::string rendering;
        std::string structure; // afterwards
        unsigned int status;
        unsigned int position;
    } rows[] = {
        {readText, "23433741:1:-2:9:", getReq(23433741, 1, -2, 9), 1, 16},
        {readText, "4294967295:2147483647:-2147483647:4294967295:",
         getReq(4294967295, 2147483647, -2147483647, 4294967295), 1, 45},
        {readText, "23433741:1:-2:4294967296:", getReq(23433741, 1, -2, 0), 1, 25},
        {readText, "23433741:1:-2:-9:", getReq(23433741, 1, -2, 9), 2, 16},
        {readText, "23433741:1:-2:log:", getReq(23433741, 1, -2, 70), 2, 14},
        {readText, "23433741:1:-2:9", getReq(23433741, 1, -2, 70), 3, 15},
        {readText, "23433741:1:-2147483648:9:", getReq(23433741, 1, 60, 70), 2, 22},
        {readText, "", getReq(40, 50, 60, 70), 3, 0},
        {readBinary, whole, getReq(23433741, 1, -2, 4294967295), 1, 16},
        {readBinary, whole + "Z", getReq(23433741, 1, -2, 4294967295), 0, 16},
        {readBinary, whole.substr(0, 15), getReq(23433741, 1, -2, 70), 2, 12},
        {readBinary, whole.substr(0, 8), getReq(23433741, 1, 60, 70), 1, 8},
    };
    for (const auto& row : rows)
    {
        expectReading(*filled<GetReq>(16), row.reader, getReq(40, 50, 60, 70),
                      {row.rendering, {true, row.status, row.position}, row.structure});
    }
}

TEST(HwLogGetReq, ReadsXml)
{
    const std::string document = headerElements("23433741", "1", "-2") + element("logId", "9");
    const std::string expected = getReq(23433741, 1, -2, 9);
    const auto message = filled<GetReq>(16);
    EXPECT_EQ(readXml(*message, document), (Read{true, 0, 0}));
    EXPECT_EQ(structureOf(*message, 16), expected);
    EXPECT_EQ(readXml(*message, "<logId>4294967295</logId>" + document), (Read{true, 0, 0}));
    EXPECT_EQ(message->m_hwLogGetReq.logId, 2147483647U);
    EXPECT_EQ(readXml(*message, "<logId>-1</logId>" + document), (Read{true, 0, 0}));
    EXPECT_EQ(message->m_hwLogGetReq.logId, 4294967295U);
    expectEachMissingElementStopsTheReader<GetReq>(document, expected,
                                                   {{"sigNo", "[src/bciHwMsg:452] tag %s not found", 0},
                                                    {"clientRef", "[src/bciHwMsg:459] tag %s not found", 4},
                                                    {"serverRef", "[src/bciHwMsg:466] tag %s not found", 8},
                                                    {"logId", "[src/bciHwMsg:473] tag %s not found", 12}});
}

// Set request

TEST(HwLogSetReq, WritesItsEntriesInsideTheLog)
{
    const struct
    {
        U32 length;
        std::string lengthText;
        std::string data;                 // of the log
        std::vector<std::string> entries; // written
    } rows[] = {
        {0, "0", "ab\0"s, {}},
        {1, "1", "ab\0cde\0"s, {"ab"}},
        {3, "3", "ab\0\0\xFF<:\0"s, {"ab", "", "\xFF<:"}},
        {13, "13", times(13, "i\0"s), std::vector<std::string>(13, "i")},
        {2, "2", times(2, x(211) + '\0'), {x(211), x(211)}},
        // An entry that would start behind the log is not there.
        {2, "2", x(423) + '\0', {x(423)}},
        {425, "425", zeros(424), std::vector<std::string>(424)},
        // The last entry ends with the log if it has no terminator.
        {1, "1", x(424), {x(424)}},
        {2, "2", x(424), {x(424)}},
        {4294967295, "4294967295", "ab\0"s + x(421), {"ab", x(421)}},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.lengthText + testing::PrintToString(row.data));
        const auto message = holding<SetReq>(setReq(row.length, row.data));
        std::string text = kSetReqText + row.lengthText + ":";
        for (const std::string& entry : row.entries)
        {
            text += entry + ":";
        }
        EXPECT_EQ(writeText(*message), (Written{true, text, 0}));
        EXPECT_EQ(writeXml(*message), (Written{true, kSetReqXml + logElements(row.lengthText, row.entries), 0}));
        EXPECT_EQ(writeBinary(*message), (Written{true, kSetReqBinary + be32(row.length) + logData(row.data), 0}));
    }
}

TEST(HwLogSetReq, EndsItsLastEntryWithTheLogWhateverStandsBehindIt)
{
    alignas(SetReq) unsigned char storage[sizeof(SetReq) + 512];
    std::memset(storage, 'z', sizeof storage);
    auto* const message = new (storage) SetReq(23433738);
    const std::string structure = setReq(2, "ab\0"s + x(421));
    std::memcpy(message->getMsg(), structure.data(), structure.size());

    EXPECT_EQ(writeText(*message), (Written{true, kSetReqText + "2:ab:" + x(421) + ":", 0}));
    EXPECT_EQ(writeXml(*message), (Written{true, kSetReqXml + logElements("2", {"ab", x(421)}), 0}));

    message->~SetReq();
}

TEST(HwLogSetReq, WritesAnUnterminatedTimeUpToItsLastCharacter)
{
    const auto message = holding<SetReq>(std::string(36, '\xFF') + logData(""));
    std::memset(message->m_hwLogSetReq.dateTime, 't', 14);
    message->m_hwLogSetReq.length = 0;
    EXPECT_EQ(writeText(*message), (Written{true, "4294967295:-1:-1:tttttttttttttt:65535:4294967295:0:", 0}));
    EXPECT_EQ(writeXml(*message),
              (Written{true,
                       headerElements("4294967295", "-1", "-1") + element("dateTime", "tttttttttttttt") +
                           element("padding0", "65535") + element("logId", "4294967295") + element("length", "0"),
                       0}));
}

// The longest XML of all messages: as many entries as there is room for, all of them empty.
TEST(HwLogSetReq, LongestXmlTakes16578Bytes)
{
    const auto message = filled<BciHwLogSetReqMsg>(sizeof(VornBcHwLogSetReqS));
    VornBcHwLogSetReqS& wire = message->m_hwLogSetReq;
    wire.sigNo = 4294967295U;
    wire.addressInfo = {kLowest, kLowest};
    wire.padding0 = 65535;
    wire.logId = 4294967295U;
    wire.length = 4294967295U;
    setText(wire.hwLogData, "");
    EXPECT_EQ(writeXml(*message).bytes.size(), 16578U);
}

TEST(HwLogSetReq, FillsAShortBuffer)
{
    const auto message = holding<SetReq>(setReq(2, "ab\0cde\0"s));
    const std::string text = kSetReqText + "2:ab:cde:";
    const std::string xml = kSetReqXml + logElements("2", {"ab", "cde"});
    expectBeginnings(writeText, *message, text);
    expectBeginnings(writeXml, *message, xml);
    EXPECT_EQ(writeBinary(*message, 39), (Written{true, kSetReqBinary + be32(2) + "ab\0"s, 3}));
    EXPECT_EQ(writeBinary(*message, 35), (Written{true, kSetReqBinary + "ab\0"s, 3})); // no room for the length
}

// The result tells whether a character followed the last delimiter and nothing failed before.
TEST(HwLogSetReq, ReadsEntriesFromText)
{
    expectReads<SetReq>(
        readText, kSetReqText, setReq,
        {
            {"0:", 0, "", {false, 3, 29}, {}},
            {"0:.", 0, "", {true, 1, 30}, {}},
            {"0:..", 0, "", {true, 0, 30}, {}},
            {"1:ab:", 1, "ab\0"s, {false, 3, 32}, {}},
            {"1:ab:\0"s, 1, "ab\0"s, {true, 1, 33}, {}},
            {"2:ab:cde:.", 2, "ab\0cde\0"s, {true, 1, 37}, {}},
            {"2::\xFF:.", 2, "\0\xFF\0"s, {true, 1, 33}, {}},
            {"1:a:b:", 1, "a\0"s, {true, 0, 32}, {}},
            {"4294967296:.", 0, "", {true, 1, 39}, {}},
            // An entry ends at its first zero, wherever its delimiter is.
            {"2:a\0b:c:."s, 2, "a\0c\0"s, {true, 1, 36}, {}},
            // Zeros behind a log that promises more are one entry of 424 characters after the other.
            {"2:ab:" + zeros(424), 2, "ab\0\0"s, {false, 3, 456}, {}},
            {"2:ab:" + zeros(425), 2, "ab\0\0"s, {false, 3, 457}, {}},
            {"2:ab:" + zeros(426), 2, "ab\0\0"s, {true, 1, 458}, {}},
            {"2:ab:" + zeros(427), 2, "ab\0\0"s, {true, 0, 458}, {}},
            // Where the text has ended, the last entry repeats.
            {"1:ab", 1, "ab\0"s, {false, 3, 31}, {}},
            {"2:ab", 2, "ab\0ab\0"s, {false, 3, 31}, {}},
            {"2:ab:", 2, "ab\0ab\0"s, {false, 3, 32}, {}},
            {"4:ab:cde", 4, "ab\0cde\0cde\0cde\0"s, {false, 3, 35}, {}},
            {"3:", 3, "\0\0\0"s, {false, 3, 29}, {}},
            {"424:", 424, zeros(424), {false, 3, 31}, {}},
            {"425:", 425, zeros(424), {false, 3, 31}, textExceeded("424", "424", "0")},
            {"1000:ab:", 1000, times(141, "ab\0"s), {false, 3, 35}, textExceeded("141", "423", "2")},
            {"1000:ab:cde", 1000, "ab\0"s + times(105, "cde\0"s), {false, 3, 38}, textExceeded("106", "423", "3")},
            {"1000:ab::", 1000, "ab\0"s + zeros(421), {false, 3, 36}, textExceeded("422", "424", "0")},
            {"4294967295:ab:", 4294967295, times(141, "ab\0"s), {false, 3, 41}, textExceeded("141", "423", "2")},
            {"5", kUnread, zeros(424), {false, 3, 28}, textExceeded("424", "424", "0")},
            {"many:ab:.", kUnread, zeros(424), {false, 2, 27}, textExceeded("424", "424", "0")},
            // A log takes 424 characters, each entry's terminator included.
            {"1:" + x(423) + ":.", 1, x(423) + '\0', {true, 1, 454}, {}},
            {"2:" + x(423) + "::.", 2, x(423) + '\0', {false, 0, 453}, textExceeded("1", "424", "0")},
            {"1:" + x(424) + ":.", 1, "", {false, 0, 453}, textExceeded("0", "0", "424")},
            {"1:" + x(424), 1, "", {false, 1, 453}, textExceeded("0", "0", "424")},
            {"1:" + x(1000) + ":.", 1, "", {false, 0, 453}, textExceeded("0", "0", "424")},
            {"2:" + x(400) + ":" + x(22) + ":.", 2, x(400) + '\0' + x(22) + '\0', {true, 1, 454}, {}},
            {"2:" + x(400) + ":" + x(23) + ":.",
             2,
             x(400) + '\0',
             {false, 0, 453},
             textExceeded("1", "401", "23")},
            {"3:" + x(400) + ":b:" + x(21), 3, x(400) + "\0b\0"s, {false, 3, 453}, textExceeded("2", "403", "21")},
        });
}

TEST(HwLogSetReq, ReadsTextOnlyUpToADamagedField)
{
    const struct
    {
        std::string text;
        std::string bytes; // then behind the header
        std::string data;  // of the log: two entries, empty if they are not read
        Read read;
    } rows[] = {
        {"23433738:1:-2:ttttttttttttt:65535:4294967295:2:ab:c:.",
         "ttttttttttttt\0\xFF\xFF\xFF\xFF\xFF\xFF"s,
         "ab\0c\0"s,
         {true, 1, 53}},
        // One character too many takes the place of the delimiter, and the delimiter that of the number.
        {"23433738:1:-2:tttttttttttttX:8:9:2:ab:c:.", "ttttttttttttt\0"s, "\0\0"s, {false, 2, 28}},
        {"23433738:1:-2:t:65536:10:2:ab:c:.", "t\0"s, "\0\0"s, {false, 2, 21}},
        {"23433738:1:-2:ttttttttttttt:257:10", "ttttttttttttt\0\x01\x01"s, "\0\0"s, {false, 3, 34}},
        {"23433738:1:-2:tt", "tt\0"s, "\0\0"s, {false, 3, 16}},
    };
    for (const auto& row : rows)
    {
        expectReading(*filled<SetReq>(460), readText, setReq(2, ""),
                      {row.text, row.read, setReq(2, row.data).replace(12, row.bytes.size(), row.bytes)});
    }
}

TEST(HwLogSetReq, ReadsBinaryWhateverItsLength)
{
    expectBinaryReadings<SetReq>(kSetReqBinary + be32(4294967295) + x(424) + "Z", setReq(4294967295, x(424)),
                                 {{0, {true, 3, 0}},
                                  {20, {true, 3, 20}},
                                  {27, {true, 2, 26}},
                                  {35, {true, 2, 32}},
                                  {36, {true, 1, 36}},
                                  {37, {true, 3, 37}},
                                  {459, {true, 3, 459}},
                                  {460, {true, 1, 460}},
                                  {461, {true, 0, 460}}});
}

TEST(HwLogSetReq, ReadsEntriesFromXml)
{
    const Read found = {true, 0, 0};
    const Read notFound = {false, 0, 0};
    expectReads<SetReq>(
        readXml, kSetReqXml, setReq,
        {
            {logElements("0", {}), 0, "", found, {}},
            {logElements("none", {"ab"}), 0, "", found, {}},
            {logElements("1", {"ab", "cde"}), 1, "ab\0"s, found, {}},
            {logElements("3", {"ab", "", " <b>: "}), 3, "ab\0\0 <b>: \0"s, found, {}},
            {"<hwLogData_0> a b\r\n</hwLogData_0>" + logElements("1", {}), 1, "a b\0"s, found, {}},
            {logElements("2", {}) + element("hwLogData_1", "ab"), 2, "", notFound, noEntry("hwLogData_0")},
            {logElements("2", {"ab"}) + element("hwLogData_10", "c"), 2, "ab\0"s, notFound,
             noEntry("hwLogData_1")},
            {logElements("-1", {"ab"}), 4294967295, "ab\0"s, notFound, noEntry("hwLogData_1")},
            {logElements("4000000000", {"ab"}), 2147483647, "ab\0"s, notFound, noEntry("hwLogData_1")},
            // A log takes 424 characters, each entry's terminator included. Nothing is cut.
            {logElements("1", {x(423)}), 1, x(423) + '\0', found, {}},
            {logElements("2", {x(423), ""}), 2, x(423) + '\0', notFound, xmlExceeded("1", "424", "0")},
            {logElements("1", {x(424)}), 1, "", notFound, xmlExceeded("0", "0", "424")},
            {logElements("1", {x(9000)}), 1, "", notFound, xmlExceeded("0", "0", "9000")},
            {logElements("2", {x(400), x(22)}), 2, x(400) + '\0' + x(22) + '\0', found, {}},
            {logElements("2", {x(400), x(23)}), 2, x(400) + '\0', notFound, xmlExceeded("1", "401", "23")},
        });
}

// Each name is the one before with one character behind the underscore replaced by the digits of the index.
TEST(HwLogSetReq, XmlReaderKeepsTheTailsOfEarlierNames)
{
    const std::string twelve = logElements("", {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l"});
    const std::string more = element("hwLogData_110", "m") + element("hwLogData_1210", "n") + twelve;
    const std::string data = "a\0b\0c\0d\0e\0f\0g\0h\0i\0j\0k\0"s;
    expectReads<SetReq>(
        readXml, kSetReqXml, setReq,
        {
            {"<length>11</length>" + twelve, 11, data, {true, 0, 0}, {}},
            {"<length>12</length>" + twelve, 12, data, {false, 0, 0}, noEntry("hwLogData_110")},
            {"<length>12</length>" + more, 12, data + "m\0"s, {true, 0, 0}, {}},
            {"<length>13</length>" + more, 13, data + "m\0n\0"s, {true, 0, 0}, {}},
            {"<length>14</length>" + more, 14, data + "m\0n\0"s, {false, 0, 0}, noEntry("hwLogData_13210")},
        });

    std::string document = element("length", "150");
    std::string digits;
    for (int i = 0; i < 150; ++i)
    {
        digits = std::to_string(i) + (i == 0 ? "" : digits.substr(1));
        document += element("hwLogData_" + digits, "");
    }
    expectReads<SetReq>(readXml, kSetReqXml, setReq, {{document, 150, zeros(150), {true, 0, 0}, {}}});
}

TEST(HwLogSetReq, ReadsTheOtherFieldsFromXml)
{
    const std::string document = kSetReqXml + logElements("1", {"ab"});
    const auto message = filled<SetReq>(460);
    EXPECT_EQ(readXml(*message, "<dateTime>" + x(1000) + "</dateTime><padding0>65537</padding0>" +
                                    "<logId>4294967295</logId>" + document),
              (Read{true, 0, 0}));
    EXPECT_EQ(structureOf(*message, 26), setReq(0, "").substr(0, 12) + x(13) + '\0');
    EXPECT_EQ(message->m_hwLogSetReq.padding0, 1U);
    EXPECT_EQ(message->m_hwLogSetReq.logId, 2147483647U);
    expectEachMissingElementStopsTheReader<SetReq>(document, setReq(1, "ab\0"s),
                                                   {{"sigNo", "[src/bciHwMsg:667] tag %s not found", 0},
                                                    {"clientRef", "[src/bciHwMsg:674] tag %s not found", 4},
                                                    {"serverRef", "[src/bciHwMsg:681] tag %s not found", 8},
                                                    {"dateTime", "[src/bciHwMsg:688] tag %s not found", 12},
                                                    {"padding0", "[src/bciHwMsg:695] tag %s not found", 26},
                                                    {"logId", "[src/bciHwMsg:702] tag %s not found", 28},
                                                    {"length", "[src/bciHwMsg:709] tag %s not found", 32},
                                                    {"hwLogData_0", "[src/bciHwMsg:720] tag %s not found", 36}});
}

// Get confirm

TEST(HwLogGetCfm, WritesOneEntryWhetherItCountsOrNot)
{
    const struct
    {
        U32 length;
        std::string lengthText;
        std::string data; // of the log
        std::string entry;
    } rows[] = {{0, "0", "\0"s, ""},
                {0, "0", "ab\0"s, "ab"},
                {1, "1", "ab\0c\0"s, "ab"},
                {1, "1", x(423) + '\0', x(423)},
                {1, "1", x(424), x(424)}};
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.lengthText + row.entry);
        const auto message = holding<GetCfm>(getCfm(row.length, row.data));
        EXPECT_EQ(writeText(*message), (Written{true, kGetCfmText + row.lengthText + ":" + row.entry + ":", 0}));
        EXPECT_EQ(writeBinary(*message), (Written{true, kGetCfmBinary + be32(row.length) + logData(row.data), 0}));
        EXPECT_EQ(writeXml(*message), (Written{true, kGetCfmXml + logElements(row.lengthText, {row.entry}), 0}));
    }
    const auto message = holding<GetCfm>(getCfm(1, "ab\0"s));
    EXPECT_EQ(writeText(*message, 18), (Written{true, "23433742:1:-2:1:ab", 3}));
    EXPECT_EQ(writeBinary(*message, 18), (Written{true, kGetCfmBinary + be32(1) + "ab", 3}));
    EXPECT_EQ(writeXml(*message, 5), (Written{true, "\t<sig", 3}));
}

TEST(HwLogGetCfm, OnlyTheBinaryWriterTakesALengthAboveOne)
{
    for (const U32 length : {2U, 4294967295U})
    {
        const auto message = holding<GetCfm>(getCfm(length, "ab\0"s));
        const std::string text = length == 2 ? "2" : "4294967295";
        EXPECT_EQ(writeText(*message), (Written{false, "", 0}));
        EXPECT_EQ(takeLog(), (Log{{6, "[src/bciHwMsg:744] length %u > 1", {text}}}));
        EXPECT_EQ(writeXml(*message), (Written{false, "", 0}));
        EXPECT_EQ(takeLog(), (Log{{6, "[src/bciHwMsg:780] length %u > 1", {text}}}));
        EXPECT_EQ(writeBinary(*message), (Written{true, kGetCfmBinary + be32(length) + logData("ab\0"s), 0}));
    }
}

TEST(HwLogGetCfm, ReadsText)
{
    expectReads<GetCfm>(readText, kGetCfmText, getCfm,
                        {
                            {"1:ab:", 1, "ab\0"s, {true, 1, 19}, {}},
                            {"1:ab:c:", 1, "ab\0"s, {true, 0, 19}, {}},
                            {"0::", 0, "\0"s, {true, 1, 17}, {}},
                            {"0:ab:", 0, "ab\0"s, {true, 1, 19}, {}},
                            {"1:ab", 1, "ab\0"s, {true, 3, 18}, {}},
                            {"1:", 1, "", {true, 3, 16}, {}},
                            {"4294967297:ab:", 1, "ab\0"s, {true, 1, 28}, {}},
                            {"1:" + x(423) + ":", 1, x(423) + '\0', {true, 1, 440}, {}},
                            {"1:" + x(424) + ":", 1, x(423) + '\0', {true, 0, 440}, {}},
                            {"1:" + x(1000), 1, x(423) + '\0', {true, 0, 440}, {}},
                            {"2:ab:", 2, "", {false, 0, 16}, tooLong("832", "2")},
                            {"2:", 2, "", {false, 1, 16}, tooLong("832", "2")},
                            {"4294967295:ab:", 4294967295, "", {false, 0, 25}, tooLong("832", "4294967295")},
                            {"1", kUnread, "", {false, 3, 15}, tooLong("832", "1515870810")},
                            {"one:ab:", kUnread, "", {false, 2, 14}, tooLong("832", "1515870810")},
                        });
    expectReading(*filled<GetCfm>(440), readText, getCfm(1, "ab\0"s), {"-", {true, 3, 1}, ""});
}

TEST(HwLogGetCfm, ReadsBinary)
{
    expectReads<GetCfm>(
        readBinary, kGetCfmBinary, getCfm,
        {
            {be32(0) + x(424), 0, x(424), {true, 1, 440}, {}},
            {be32(1) + logData("ab\0"s), 1, "ab\0"s, {true, 1, 440}, {}},
            {be32(1) + logData("ab\0"s) + "Z", 1, "ab\0"s, {true, 0, 440}, {}},
            {be32(1) + "ab", 1, "ab", {true, 3, 18}, {}},
            {be32(1), 1, "", {true, 1, 16}, {}},
            {be32(2) + x(424), 2, "", {false, 0, 16}, tooLong("853", "2")},
            {be32(4294967295) + x(424), 4294967295, "", {false, 0, 16}, tooLong("853", "4294967295")},
            {be32(1).substr(0, 3), kUnread, "", {false, 2, 12}, tooLong("853", "1515870810")},
        });
}

TEST(HwLogGetCfm, ReadsXml)
{
    expectReads<GetCfm>(
        readXml, kGetCfmXml, getCfm,
        {
            {logElements("1", {"ab"}), 1, "ab\0"s, {true, 0, 0}, {}},
            {logElements("0", {"ab"}), 0, "ab\0"s, {true, 0, 0}, {}},
            {logElements("none", {""}), 0, "\0"s, {true, 0, 0}, {}},
            {logElements("1", {x(423)}), 1, x(423) + '\0', {true, 0, 0}, {}},
            {logElements("1", {x(424)}), 1, x(423) + '\0', {true, 0, 0}, {}},
            {logElements("1", {x(9000)}), 1, x(423) + '\0', {true, 0, 0}, {}},
            {logElements("2", {"ab"}), 2, "", {false, 0, 0}, tooLong("899", "2")},
            {logElements("-1", {"ab"}), 4294967295, "", {false, 0, 0}, tooLong("899", "4294967295")},
            {logElements("4294967295", {}), 2147483647, "", {false, 0, 0}, tooLong("899", "2147483647")},
        });
    for (const U32 length : {0U, 1U})
    {
        expectEachMissingElementStopsTheReader<GetCfm>(
            kGetCfmXml + logElements(length == 0 ? "0" : "1", {"ab"}), getCfm(length, "ab\0"s),
            {{"sigNo", "[src/bciHwMsg:871] tag %s not found", 0},
             {"clientRef", "[src/bciHwMsg:878] tag %s not found", 4},
             {"serverRef", "[src/bciHwMsg:885] tag %s not found", 8},
             {"length", "[src/bciHwMsg:892] tag %s not found", 12},
             {"hwLogData_0", "[src/bciHwMsg:906] tag %s not found", 16}});
    }
}

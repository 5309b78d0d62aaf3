// How an input is split into records, and where each of them is.

#include "records.h"
#include "bciMsgRegistration.h"
#include "containers.h"
#include "output.h"
#include "parallel.h"
#include "record.h"
#include "rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using namespace bci::tool;

// Rows of NDJSON are rendered by the library.
class Registered : public testing::Environment
{
public:
    void SetUp() override
    {
        BciMsgRegistry::registerSupportedMsgClasses();
    }
};
const testing::Environment* const kRegistered = testing::AddGlobalTestEnvironment(new Registered);

// A byte string with its zeros.
template <std::size_t N>
std::string bytes(const char (&text)[N])
{
    return {text, N - 1};
}

// Hands out an input in pieces.
class Trickle : public ByteStream
{
public:
    Trickle(std::string_view bytes, std::size_t piece) : m_stream(bytes), m_piece(piece) {}

    std::size_t read(char* to, std::size_t most) override
    {
        return m_stream.read(to, std::min(most, m_piece));
    }

private:
    MemoryStream m_stream;
    std::size_t m_piece;
};

// One line for each record: its number, offset and place; its form and class; the codes of what is wrong with it,
// each with its place; its bytes.
std::string recordsOf(ByteStream& stream, Packing packing = Packing::automatic)
{
    std::string text;
    Collector collector(
        [&text](const Item& item, const Record& record)
        {
            const Rendering& rendering = item.rendering;
            text += std::to_string(item.record) + " @" + std::to_string(item.offset) + " " + placeOf(item, 0) +
                    " " + (item.hasForm ? formName(rendering.form) : "no form") + " " +
                    (rendering.signal != nullptr ? rendering.signal->shape->className : "no signal") + " " +
                    quote(rendering.bytes);
            text += item.time.empty() ? "" : " " + std::string(item.time);
            text += item.direction.empty() ? "" : " " + std::string(item.direction);
            for (const Finding& one : record.findings)
            {
                text += " ";
                text += info(one.code).name;
                text += " " + placeOf(item, one.position);
            }
            text += "\n";
        });
    RecordReader<Collector>("in", packing, collector).readAll(stream);
    return text;
}

std::string recordsOf(std::string_view input, Packing packing = Packing::automatic)
{
    MemoryStream whole(input);
    std::string text = recordsOf(whole, packing);
    for (const unsigned int piece : {1U, 7U})
    {
        Trickle trickle(input, piece);
        EXPECT_EQ(recordsOf(trickle, packing), text) << "in pieces of " << piece;
    }
    return text;
}

std::string whatOf(std::string_view input)
{
    MemoryStream stream(input);
    Collector collector([](const Item& /*item*/, const Record& /*record*/) {});
    return RecordReader<Collector>("in", Packing::automatic, collector).readAll(stream);
}

const std::string kBig = bytes("\1\x65\x84\1\0\0\0\1\0\0\0\2\0\3");
const std::string kLittle = bytes("\1\x84\x65\1\0\0\0\1\0\0\0\2\0\3");
const std::string kXml = "\t<sigNo>\n\t  23430145\n\t</sigNo>\n\t<clientRef>\n\t  1\n\t</clientRef>\n"
                         "\t<serverRef>\n\t  2\n\t</serverRef>\n\t<mainState>\n\t  3\n\t</mainState>\n";
constexpr const char* kHex = "0165840100000001000000020003";
constexpr const char* kBase64 = "AWWEAQAAAAEAAAACAAM=";
constexpr const char* kTrace = "2026-11-20T12:00:00Z rx text 32333433303134353a313a323a333a";

// ---- text

TEST(RecordsOfText, StandOnLines)
{
    EXPECT_EQ(recordsOf("23430145:1:2:3:\n23430144:1:2:\n"), "1 @0 in:1:1 text BciAuditCfm '23430145:1:2:3:'\n"
                                                             "2 @16 in:2:1 text BciGenericMsg '23430144:1:2:'\n");
    EXPECT_EQ(recordsOf("23430145:1:2:3:"), "1 @0 in:1:1 text BciAuditCfm '23430145:1:2:3:'\n");
    EXPECT_EQ(recordsOf(""), "");
    EXPECT_EQ(recordsOf("\n \t\r\n\n"), "");
}

TEST(RecordsOfText, MayHaveCarriageReturnsBlanksAndZerosAroundThem)
{
    EXPECT_EQ(recordsOf("23430145:1:2:3:\r\n\r\n  23430144:1:2: \r\n"),
              "1 @0 in:1:1 text BciAuditCfm '23430145:1:2:3:'\n"
              "2 @21 in:3:3 text BciGenericMsg '23430144:1:2:'\n");
    EXPECT_EQ(recordsOf(bytes("23430145:1:2:3:\0\0\0\n\0\0"
                              "23430144:1:2:\0")),
              "1 @0 in:1:1 text BciAuditCfm '23430145:1:2:3:'\n"
              "2 @21 in:2:3 text BciGenericMsg '23430144:1:2:'\n");
}

TEST(RecordsOfText, MayBeginWithTheMarkOfEditors)
{
    EXPECT_EQ(recordsOf("\xEF\xBB\xBF"
                        "23430145:1:2:3:\n"),
              "1 @3 in:1:1 text BciAuditCfm '23430145:1:2:3:'\n");
}

TEST(RecordsOfText, MayShareALine)
{
    EXPECT_EQ(recordsOf("23430145:1:2:3:23430144:1:2: 23430145:1:2:x:\n23430144:1:2:"),
              "1 @0 in:1:1 text BciAuditCfm '23430145:1:2:3:'\n"
              "2 @15 in:1:16 text BciGenericMsg '23430144:1:2:'\n"
              "3 @29 in:1:30 text BciAuditCfm '23430145:1:2:x:' not-a-number in:1:43\n"
              "4 @45 in:2:1 text BciGenericMsg '23430144:1:2:'\n");
}

TEST(RecordsOfText, EndWhereTheyAreCut)
{
    EXPECT_EQ(recordsOf("23430145:1:2\n23430145:1:2:3:\n23430145:\n23430144:1:2:\n"),
              "1 @0 in:1:1 text BciAuditCfm '23430145:1:2' cut-short in:1:13\n"
              "2 @13 in:2:1 text BciAuditCfm '23430145:1:2:3:'\n"
              "3 @29 in:3:1 text BciAuditCfm '23430145:' cut-short in:3:10\n"
              "4 @39 in:4:1 text BciGenericMsg '23430144:1:2:'\n");
    EXPECT_EQ(recordsOf("23429126:1:2:3:4:cut here\n23430144:1:2:\n"),
              "1 @0 in:1:1 text BciGenericRejMsg '23429126:1:2:3:4:cut here' cut-short in:1:26\n"
              "2 @26 in:2:1 text BciGenericMsg '23430144:1:2:'\n");
}

TEST(RecordsOfText, TellWhatFollowsTheLastFieldInTheirLine)
{
    EXPECT_EQ(recordsOf("23430145:1:2:3:4:\n23430144:1:2: more\n"),
              "1 @0 in:1:1 text BciAuditCfm '23430145:1:2:3:4:' extra-input in:1:16\n"
              "2 @18 in:2:1 text BciGenericMsg '23430144:1:2: more' extra-input in:2:15\n");
}

TEST(RecordsOfText, MayHaveEndsOfLinesInTextsAndBlocks)
{
    EXPECT_EQ(recordsOf("23429126:1:2:3:4:two\nlines:5:\n23430144:1:2:\n"),
              "1 @0 in:1:1 text BciGenericRejMsg '23429126:1:2:3:4:two\\x0Alines:5:'\n"
              "2 @30 in:3:1 text BciGenericMsg '23430144:1:2:'\n");
    EXPECT_EQ(recordsOf("23431174:1:2:3:0:6:a:\nb:\n:\n23431174:1:2:3:0:x:\n"),
              "1 @0 in:1:1 text BciLoadLmcData '23431174:1:2:3:0:6:a:\\x0Ab:\\x0A:'\n"
              "2 @27 in:4:1 text BciLoadLmcData '23431174:1:2:3:0:x:' not-a-number in:4:18\n");
    EXPECT_EQ(recordsOf("23429126:1:2:3:4:two\nlines:x:\n"),
              "1 @0 in:1:1 text BciGenericRejMsg '23429126:1:2:3:4:two\\x0Alines:x:' not-a-number in:2:7\n");
}

// A block may hold what looks like a record; that is only believed if the block is not what it is said to be.
TEST(RecordsOfText, MayHoldOthersInABlock)
{
    EXPECT_EQ(recordsOf("23431174:1:2:3:0:17:a\n23430145:1:2:3::\n23430144:1:2:\n"),
              "1 @0 in:1:1 text BciLoadLmcData '23431174:1:2:3:0:17:a\\x0A23430145:1:2:3::'\n"
              "2 @39 in:3:1 text BciGenericMsg '23430144:1:2:'\n");
    EXPECT_EQ(recordsOf("23431174:1:2:3:0:18:a\n23430145:1:2:3:\n23430144:1:2:\n"),
              "1 @0 in:1:1 text BciLoadLmcData '23431174:1:2:3:0:18:a' cut-short in:1:22\n"
              "2 @22 in:2:1 text BciAuditCfm '23430145:1:2:3:'\n"
              "3 @38 in:3:1 text BciGenericMsg '23430144:1:2:'\n");
}

TEST(RecordsOfText, StandBesideOtherLines)
{
    EXPECT_EQ(recordsOf("a log\n23430145:1:2:3:\n\nmore of it \n4711:1:2:\n23430144:1:2:\nbehind"),
              "1 @0 in:1:1 no form no signal 'a log' unknown-record in:1:1\n"
              "2 @6 in:2:1 text BciAuditCfm '23430145:1:2:3:'\n"
              "3 @23 in:4:1 no form no signal 'more of it ' unknown-record in:4:1\n"
              "4 @35 in:5:1 text no signal '4711:1:2:' unknown-signal in:5:1\n"
              "5 @45 in:6:1 text BciGenericMsg '23430144:1:2:'\n"
              "6 @59 in:7:1 no form no signal 'behind' unknown-record in:7:1\n");
}

// ---- XML

TEST(RecordsOfXml, StandOneBehindTheOther)
{
    EXPECT_EQ(recordsOf(kXml + kXml + "\n\n" + kXml), "1 @0 in:1:1 XML BciAuditCfm " + quote(kXml) + "\n" +
                                                          "2 @127 in:13:1 XML BciAuditCfm " + quote(kXml) + "\n" +
                                                          "3 @256 in:27:1 XML BciAuditCfm " + quote(kXml) + "\n");
}

TEST(RecordsOfXml, MayLackOrRepeatElements)
{
    const std::string lacking = "<sigNo>23430145</sigNo><clientRef>1</clientRef><mainState>3</mainState>";
    EXPECT_EQ(recordsOf(kXml + lacking + "\n" + lacking + kXml),
              "1 @0 in:1:1 XML BciAuditCfm " + quote(kXml) + "\n" + "2 @127 in:13:1 XML BciAuditCfm " +
                  quote(lacking) +
                  " element-layout in:13:1"
                  " missing-element in:14:1\n" +
                  "3 @199 in:14:1 XML BciAuditCfm " + quote(lacking) +
                  " element-layout in:14:1"
                  " missing-element in:14:72\n" +
                  "4 @270 in:14:72 XML BciAuditCfm " + quote(kXml) + "\n");
}

TEST(RecordsOfXml, AreUnknownWithoutANumber)
{
    EXPECT_EQ(recordsOf("<a>1</a>"), "1 @0 in:1:1 XML no signal '<a>1</a>' unknown-signal in:1:1\n");
    EXPECT_EQ(recordsOf("\n<sigNo> 4711 </sigNo>"),
              "1 @1 in:2:1 XML no signal '<sigNo> 4711 </sigNo>' unknown-signal in:2:9\n");
    EXPECT_EQ(recordsOf("<sigNo>23430145x</sigNo>").substr(0, 67),
              "1 @0 in:1:1 XML BciAuditCfm '<sigNo>23430145x</sigNo>' element-layo");
}

TEST(RecordsOfXml, MayHaveNothingThatCanBeRead)
{
    EXPECT_EQ(
        recordsOf("<sigNo>23430144\nx").substr(0, 108),
        "1 @0 in:1:1 XML BciGenericMsg '<sigNo>23430144\\x0Ax' unclosed-element in:1:1 missing-element in:2:2 "
        "missing-");
}

TEST(RecordsOfXml, LeaveOtherLinesAloneIfTheyAreUnknown)
{
    EXPECT_EQ(recordsOf("<a>\n\t  1\n</a>\nno signal\n23430144:1:2:\n"),
              "1 @0 in:1:1 XML no signal '<a>\\x0A\\x09  1\\x0A</a>\\x0A' unknown-signal in:1:1\n"
              "2 @14 in:4:1 no form no signal 'no signal' unknown-record in:4:1\n"
              "3 @24 in:5:1 text BciGenericMsg '23430144:1:2:'\n");
}

TEST(RecordsOfXml, EndInFrontOfOtherLines)
{
    EXPECT_EQ(recordsOf(kXml + "23430144:1:2:\n" + kXml + kHex + "\n" + kXml + "\nthe log goes on\n" + kXml +
                        kTrace + "\n"),
              "1 @0 in:1:1 XML BciAuditCfm " + quote(kXml) + "\n" +
                  "2 @127 in:13:1 text BciGenericMsg '23430144:1:2:'\n"
                  "3 @141 in:14:1 XML BciAuditCfm " +
                  quote(kXml) + "\n" +
                  "4 @268 in:26:1 binary BciAuditCfm "
                  "'\\x01e\\x84\\x01\\x00\\x00\\x00\\x01\\x00\\x00\\x00\\x02\\x00\\x03'\n"
                  "5 @297 in:27:1 XML BciAuditCfm " +
                  quote(kXml) + "\n" +
                  "6 @425 in:40:1 no form no signal 'the log goes on' unknown-record in:40:1\n"
                  "7 @441 in:41:1 XML BciAuditCfm " +
                  quote(kXml) + "\n" +
                  "8 @568 in:53:30 text BciAuditCfm '23430145:1:2:3:' 2026-11-20T12:00:00Z rx\n");
}

TEST(RecordsOfXml, TellElementsBehindTheirLast)
{
    EXPECT_EQ(recordsOf(kXml + "\t<extra>\n\t  1\n\t</extra>\n"),
              "1 @0 in:1:1 XML BciAuditCfm " + quote(kXml) + " unknown-element in:13:2\n");
}

// ---- binary

TEST(RecordsOfBinary, StandOneBehindTheOtherInEitherByteOrder)
{
    const std::string shown = quote(kBig);
    EXPECT_EQ(recordsOf(kBig + kLittle + std::string(7, '\0') + kBig),
              "1 @0 in: offset 0 binary BciAuditCfm " + quote(kBig) + "\n2 @14 in: offset 14 binary BciAuditCfm " +
                  quote(kLittle) + "\n3 @35 in: offset 35 binary BciAuditCfm " + quote(kBig) + "\n");
    EXPECT_EQ(recordsOf(std::string(3, '\0') + kBig + std::string(3, '\0')),
              "1 @3 in: offset 3 binary BciAuditCfm " + quote(kBig) + "\n");
}

// Its first word begins with a zero as a little-endian host writes it.
TEST(RecordsOfBinary, MayBeginWithAZero)
{
    const std::string connEst = bytes("\0\x80\x65\1\0\0\0\1\0\0\0\2\0\3");
    const std::string records = recordsOf(kBig + '\0' + connEst + connEst);
    EXPECT_EQ(records, "1 @0 in: offset 0 binary BciAuditCfm " + quote(kBig) +
                           "\n2 @15 in: offset 15 binary "
                           "BciConnEstReq " +
                           quote(connEst) + "\n3 @29 in: offset 29 binary BciConnEstReq " + quote(connEst) + "\n");
}

TEST(RecordsOfBinary, EndWhereTheNextIsRecognisable)
{
    EXPECT_EQ(recordsOf(kBig.substr(0, 10) + kBig + kBig.substr(0, 13)),
              "1 @0 in: offset 0 binary BciAuditCfm " + quote(kBig.substr(0, 10)) +
                  " cut-short in: offset 10\n2 @10 in: offset 10 binary BciAuditCfm " + quote(kBig) +
                  "\n3 @24 in: offset 24 binary BciAuditCfm " + quote(kBig.substr(0, 13)) +
                  " cut-short in: offset 37\n");
    // A cut text, filled up with what is another record.
    const std::string reject = bytes("\1\x65\x80\6\0\0\0\1\0\0\0\2\0\3\0\4") + "cut";
    EXPECT_EQ(recordsOf(reject + kBig + kLittle),
              "1 @0 in: offset 0 binary BciGenericRejMsg " + quote(reject) +
                  " cut-short in: offset 19\n2 @19 in: offset 19 binary BciAuditCfm " + quote(kBig) +
                  "\n3 @33 in: offset 33 binary BciAuditCfm " + quote(kLittle) + "\n");
}

TEST(RecordsOfBinary, StandBesideOtherBytes)
{
    EXPECT_EQ(recordsOf(kBig + "abc" + kBig + bytes("\0\0d") + kBig + "e"),
              "1 @0 in: offset 0 binary BciAuditCfm " + quote(kBig + "abc") +
                  " extra-input in: offset 14\n2 @17 in: offset 17 binary BciAuditCfm " +
                  quote(kBig + bytes("\0\0d")) +
                  " extra-input in: offset 33\n3 @34 in: offset 34 binary BciAuditCfm " + quote(kBig + "e") +
                  " extra-input in: offset 48\n");
    EXPECT_EQ(recordsOf("abc" + kBig, Packing::binary),
              "1 @0 in: offset 0 no form no signal 'abc' unknown-record in: offset 0\n"
              "2 @3 in: offset 3 binary BciAuditCfm " +
                  quote(kBig) + "\n");
}

// What an input is does not depend on how much of it has come by then.
TEST(RecordsOfBinary, AreNotLookedForBehindALongBeginningWithoutControls)
{
    EXPECT_EQ(recordsOf(std::string(255, 'x') + kBig),
              "1 @0 in: offset 0 no form no signal " + quote(std::string(255, 'x')) +
                  " unknown-record in: offset 0\n2 @255 in: offset 255 binary BciAuditCfm " + quote(kBig) + "\n");
    EXPECT_EQ(recordsOf(std::string(256, 'x') + kBig),
              "1 @0 in:1:1 no form no signal " + quote(std::string(256, 'x') + kBig) + " unknown-record in:1:1\n");
}

// ---- digits

TEST(RecordsOfDigits, AreHexOnOneLineOrSeveral)
{
    EXPECT_EQ(recordsOf(std::string(kHex) + "\n" + kHex + "\r\n"),
              "1 @0 in:1:1 binary BciAuditCfm " + quote(kBig) + "\n2 @29 in:2:1 binary BciAuditCfm " +
                  quote(kBig) + "\n");
    EXPECT_EQ(
        recordsOf("01 65 84 01 00 00 00 01\n00 00 00 02 00 03\r\n" + std::string(kHex) + "\n23430144:1:2:\n"),
        "1 @0 in:1:1 binary BciAuditCfm " + quote(kBig) + "\n2 @43 in:3:1 binary BciAuditCfm " + quote(kBig) +
            "\n3 @72 in:4:1 text BciGenericMsg '23430144:1:2:'\n");
}

TEST(RecordsOfDigits, TellDamageAtTheDigits)
{
    EXPECT_EQ(recordsOf("  0x32333433303134353a313a323a783a"),
              "1 @2 in:1:5 text BciAuditCfm '23430145:1:2:x:' not-a-number in:1:31\n");
    EXPECT_EQ(recordsOf("32333433303134353a\n31 3a 32 3a\n78 3a\n"),
              "1 @0 in:1:1 text BciAuditCfm '23430145:1:2:x:' not-a-number in:3:1\n");
    EXPECT_EQ(recordsOf("01658401 00000001 00000002 00\n"),
              "1 @0 in:1:1 binary BciAuditCfm " + quote(kBig.substr(0, 13)) + " cut-short in:1:30\n");
}

TEST(RecordsOfDigits, AreBase64)
{
    EXPECT_EQ(recordsOf(std::string(kBase64) + "\nMjM0MzAxNDU6MToyOng6\n"),
              "1 @0 in:1:1 binary BciAuditCfm " + quote(kBig) +
                  "\n2 @21 in:2:1 text BciAuditCfm '23430145:1:2:x:' not-a-number in:2:18\n");
}

TEST(RecordsOfDigits, AreNoneIfTheyAreOfNoSignal)
{
    EXPECT_EQ(recordsOf("0102\nAAAA\n016584\n"),
              "1 @0 in:1:1 no form no signal '0102' unknown-record in:1:1\n"
              "2 @5 in:2:1 no form no signal 'AAAA' unknown-record in:2:1\n"
              "3 @10 in:3:1 no form no signal '016584' unknown-record in:3:1\n");
    EXPECT_EQ(recordsOf("0102\n0304\n", Packing::hex),
              "1 @0 in:1:1 no form no signal '\\x01\\x02\\x03\\x04' unknown-record in:1:1\n");
}

// ---- carriers

TEST(RecordsOfATrace, HaveTimeAndDirection)
{
    EXPECT_EQ(recordsOf(std::string(kTrace) + "\n- - binary " + kHex + "\n- tx text 3132\n"),
              "1 @0 in:1:30 text BciAuditCfm '23430145:1:2:3:' 2026-11-20T12:00:00Z rx\n"
              "2 @60 in:2:12 binary BciAuditCfm " +
                  quote(kBig) +
                  "\n"
                  "3 @100 in:3:11 text no signal '12' tx unknown-signal in:3:11\n");
}

TEST(RecordsOfRows, AreRead)
{
    const std::string row = R"({"class":"BciAuditCfm","clientRef":1,"serverRef":2,"mainState":3})";
    EXPECT_EQ(recordsOf(row + "\n{\"class\":\n" + row + "\n"),
              "1 @0 in:1:1 text BciAuditCfm '23430145:1:2:3:'\n"
              "2 @66 in:2:1 no form no signal '{\"class\":' bad-encoding in:2:1\n"
              "3 @76 in:3:1 text BciAuditCfm '23430145:1:2:3:'\n");
}

TEST(RecordsOfACapture, ArePackets)
{
    const std::string capture = pcapHeader() + pcapPacket("2026-11-20T12:00:00Z", kBig) +
                                pcapPacket("2026-11-20T12:00:01.5Z", "23430145:1:2:x:") + pcapPacket("", "abc");
    EXPECT_EQ(recordsOf(capture),
              "1 @40 in: packet 1, offset 0 binary BciAuditCfm " + quote(kBig) +
                  " 2026-11-20T12:00:00.000000000Z\n" +
                  "2 @70 in: packet 2, offset 0 text BciAuditCfm '23430145:1:2:x:' 2026-11-20T12:00:01.500000000Z"
                  " not-a-number in: packet 2, offset 13\n"
                  "3 @101 in: packet 3, offset 0 no form no signal 'abc' 1970-01-01T00:00:00.000000000Z"
                  " unknown-record in: packet 3, offset 0\n");
    for (const unsigned int cut : {1U, 16U, 18U})
    {
        EXPECT_THROW(recordsOf(std::string_view(capture).substr(0, capture.size() - cut)), Trouble) << cut;
    }
    EXPECT_THROW(recordsOf("\x0A\x0D\x0D\x0A"), Trouble) << "the other format";
}

TEST(RecordsOfADump, AreThoseOfItsBytes)
{
    EXPECT_EQ(recordsOf("00000000: 0165 8401 0000 0001 0000 0002 0003 0165  .e.............e\n"
                        "00000010: 8401 0000 0001 0000 0002 0003            ............\n"),
              "1 @0 in: offset 0 binary BciAuditCfm " + quote(kBig) + "\n2 @14 in: offset 14 binary BciAuditCfm " +
                  quote(kBig) + "\n");
}

TEST(Records, OfAllFormsMayStandInOneInput)
{
    EXPECT_EQ(recordsOf("23430145:1:2:3:\n" + std::string(kHex) + "\n" + kBase64 + "\n" + kTrace + "\n" + kXml +
                        R"({"class":"BciAuditCfm"})" + "\nx\n23430144:1:2:\n"),
              "1 @0 in:1:1 text BciAuditCfm '23430145:1:2:3:'\n"
              "2 @16 in:2:1 binary BciAuditCfm " +
                  quote(kBig) + "\n" + "3 @45 in:3:1 binary BciAuditCfm " + quote(kBig) + "\n" +
                  "4 @66 in:4:30 text BciAuditCfm '23430145:1:2:3:' 2026-11-20T12:00:00Z rx\n"
                  "5 @126 in:5:1 XML BciAuditCfm " +
                  quote(kXml) + "\n" +
                  "6 @253 in:17:1 text BciAuditCfm '23430145:0:0:0:'\n"
                  "7 @277 in:18:1 no form no signal 'x' unknown-record in:18:1\n"
                  "8 @279 in:19:1 text BciGenericMsg '23430144:1:2:'\n");
}

// Packets count by themselves, however many records each of them holds.
TEST(Records, MayBeSeveralInWhatCarriesThem)
{
    const std::string two = std::string(kBig) + std::string(kBig);
    EXPECT_EQ(recordsOf(pcapHeader() + pcapPacket("", two) + pcapPacket("", "abc"), Packing::automatic),
              "1 @40 in: packet 1, offset 0 binary BciAuditCfm " + quote(kBig) +
                  " 1970-01-01T00:00:00.000000000Z\n" + "2 @40 in: packet 1, offset 14 binary BciAuditCfm " +
                  quote(kBig) + " 1970-01-01T00:00:00.000000000Z\n" +
                  "3 @84 in: packet 2, offset 0 no form no signal 'abc' 1970-01-01T00:00:00.000000000Z" +
                  " unknown-record in: packet 2, offset 0\n");
    EXPECT_EQ(recordsOf("- rx text " + encodeHex("23430145:1:2:3:23430144:1:2:") + "\n", Packing::automatic),
              "1 @0 in:1:11 text BciAuditCfm '23430145:1:2:3:' rx\n"
              "2 @0 in:1:41 text BciGenericMsg '23430144:1:2:' rx\n");
}

TEST(Records, AreOnlyWhatTheyAreSaidToBe)
{
    EXPECT_EQ(recordsOf("23430145:1:2:3:\n" + std::string(kHex) + "\n", Packing::text),
              "1 @0 in:1:1 text BciAuditCfm '23430145:1:2:3:'\n"
              "2 @16 in:2:1 no form no signal '" +
                  std::string(kHex) + "' unknown-record in:2:1\n");
    EXPECT_EQ(recordsOf("23430145:1:2:3:\n" + std::string(kHex) + "\n", Packing::hex),
              "1 @0 in:1:1 no form no signal '23430145:1:2:3:' unknown-record in:1:1\n"
              "2 @16 in:2:1 binary BciAuditCfm " +
                  quote(kBig) + "\n");
}

TEST(Records, SayWhatAnInputWasTakenForAndWhy)
{
    EXPECT_EQ(whatOf("23430145:1:2:3:\n"),
              "lines, each recognised by its own beginning; the first is text, by the "
              "signal number in front of its first ':'");
    EXPECT_EQ(whatOf(kBig), "binary, by the signal number in its first word");
    EXPECT_EQ(whatOf(std::string(kHex) + "\n"),
              "lines, each recognised by its own beginning; the first is hex, by the "
              "signal that its digits stand for");
    EXPECT_EQ(whatOf(pcapHeader()), "a capture, by its first word");
}

// ---- sizes

TEST(Records, MayFillInputsOfAnySize)
{
    std::string input;
    for (int i = 0; i < 20000; ++i)
    {
        input += "23429126:" + std::to_string(i) + ":2:3:4:two\nlines:5:\n";
    }
    std::uint64_t count = 0;
    std::uint64_t lines = 0;
    MemoryStream stream(input);
    Collector collector(
        [&](const Item& item, const Record& record)
        {
            EXPECT_TRUE(record.findings.empty());
            EXPECT_EQ(record.fields.at(1).value, std::to_string(count));
            EXPECT_EQ(item.line, 2 * count + 1);
            EXPECT_EQ(input.substr(static_cast<std::size_t>(item.offset), item.rendering.bytes.size()),
                      item.rendering.bytes);
            lines = item.line;
            ++count;
        });
    RecordReader<Collector>("in", Packing::automatic, collector).readAll(stream);
    EXPECT_EQ(count, 20000U);
}

// What is no record is told in pieces: nothing waits for the end of a line that may never come.
TEST(Records, EndSomewhereInALineWithoutEnd)
{
    std::string input(10'000'000, 'x'); // NOLINT(bugprone-string-constructor): as long as that
    input += "\n23430145:1:2:3:\n";
    std::uint64_t covered = 0;
    std::string last;
    MemoryStream stream(input);
    Collector collector(
        [&](const Item& item, const Record& record)
        {
            EXPECT_EQ(item.offset, covered);
            EXPECT_EQ(item.column, item.record == 154 ? 1 : covered + 1);
            covered += item.rendering.bytes.size() + (covered + item.rendering.bytes.size() == 10'000'000 ? 1 : 0);
            last = placeOf(item, 0) + (record.findings.empty() ? " clean" : " unknown");
        });
    RecordReader<Collector>("in", Packing::automatic, collector).readAll(stream);
    EXPECT_EQ(last, "in:2:1 clean");
}

TEST(Records, FollowABinaryInputOfBytesThatAreNone)
{
    const std::string input = kBig + std::string(300'000, '\7') + kBig + std::string(300'000, '\0') + kBig;
    std::string offsets;
    MemoryStream stream(input);
    Collector collector([&](const Item& item, const Record& record)
                        { offsets += std::to_string(item.offset) + (record.findings.empty() ? " " : "! "); });
    RecordReader<Collector>("in", Packing::automatic, collector).readAll(stream);
    EXPECT_TRUE(offsets.starts_with("0! ")) << offsets;
    EXPECT_TRUE(offsets.ends_with(" 300014 600028 ")) << offsets;
}

// ---- several threads

// What a sink has seen, one text for each piece.
struct ListJob
{
    ListJob()
        : collector(
              [this](const Item& item, const Record& record)
              {
                  text +=
                      placeOf(item, 0) + " @" + std::to_string(item.offset) + " " + quote(item.rendering.bytes);
                  for (const Finding& one : record.findings)
                  {
                      text += " " + placeOf(item, one.position) + " " + message(one);
                  }
                  for (const FieldValue& one : record.fields)
                  {
                      text += " " + one.name + "=" + one.value;
                  }
                  text += "\n";
              })
    {
    }

    Collector& sink()
    {
        return collector;
    }

    void clear()
    {
        text.clear();
    }

    std::string text;
    Collector collector;
};

std::string listOf(const std::string& input)
{
    MemoryStream stream(input);
    ListJob job;
    RecordReader<Collector>("in", Packing::automatic, job.sink()).readAll(stream);
    return job.text;
}

template <std::size_t piece>
std::string listInPiecesOf(const std::string& input, unsigned int jobs)
{
    MemoryStream stream(input);
    Window window(stream);
    std::string text;
    ParallelReader<ListJob, piece>("in", Packing::automatic, jobs)
        .readLines(window, [&text](ListJob& job) { text += job.text; });
    return text;
}

void expectSameOnThreads(const std::string& input)
{
    const std::string whole = listOf(input);
    const std::string beginning = input.substr(0, 10'000);
    const std::string wholeBeginning = listOf(beginning);
    for (unsigned int jobs = 1; jobs <= 5; ++jobs)
    {
        ASSERT_EQ(listInPiecesOf<100>(beginning, jobs), wholeBeginning) << jobs;
        ASSERT_EQ(listInPiecesOf<4000>(input, jobs), whole) << jobs;
        ASSERT_EQ(listInPiecesOf<70'000>(input, jobs), whole) << jobs;
    }
}

// Repeats lines until there are pieces enough.
std::string repeated(const std::string& lines)
{
    std::string input;
    while (input.size() < 200'000)
    {
        input += lines;
    }
    return input;
}

TEST(ParallelReader, FindsTheRecordsOfOneThreadInEveryKindOfLog)
{
    expectSameOnThreads("");
    expectSameOnThreads("23430145:1:2:3:\n");
    expectSameOnThreads(repeated("23430145:1:2:3:\n23430144:1:2:\n"));
    expectSameOnThreads(repeated("23430145:1:2:3:\r\n23430145:1:2\r\n\r\nx\r\n23430145:1:x:3:\r\n"));
    expectSameOnThreads(repeated(kXml));
    expectSameOnThreads(repeated(std::string(kHex) + "\n"));
    expectSameOnThreads(repeated("01 65 84 01 00 00 00 01\n00 00 00 02 00 03\n"));
    expectSameOnThreads(repeated(std::string(kTrace) + "\n"));
    expectSameOnThreads(repeated(R"({"class":"BciAuditCfm","clientRef":1})"
                                 "\n"));
    expectSameOnThreads(
        repeated("23430145:1:2:3:\n" + std::string(kHex) + "\n" + kTrace + "\n" + kXml + "no record\n"));
    expectSameOnThreads("\xEF\xBB\xBF" + repeated("23430145:1:2:3:\n"));
}

TEST(ParallelReader, FindsTheRecordsOfOneThreadWhereOneHoldsOthers)
{
    std::string block;
    while (block.size() < 4000)
    {
        block += "23430145:1:2:3:\n";
    }
    block.resize(4000);
    expectSameOnThreads(repeated("23431174:1:2:3:0:4000:" + block + ":\n23430144:1:2:\n"));
    expectSameOnThreads(repeated("23429126:1:2:3:4:two\nlines:5:\n"));
    expectSameOnThreads(repeated("23430145:1:2:3:23430144:1:2: "));
    expectSameOnThreads(std::string(300'000, 'x') + "\n23430145:1:2:3:\n");
}

} // namespace

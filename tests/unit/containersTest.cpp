// What renderings travel in: digits, dumps, traces and captures.

#include "containers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace
{

using namespace bci::tool;
using namespace std::string_literals;

TEST(Hex, ReadsPairsInEitherCase)
{
    EXPECT_EQ(decodeHex("01658401"), "\x01\x65\x84\x01");
    EXPECT_EQ(decodeHex("aB Cd\tEF"), "\xAB\xCD\xEF");
    EXPECT_EQ(decodeHex(" 0x0102\r\n0304 \n"), "\x01\x02\x03\x04");
    EXPECT_EQ(decodeHex("0X00"), "\0"s);
}

TEST(Hex, IsNothingElse)
{
    for (const char* const digits :
         {"", " ", "0x", "0", "012", "01 2 3", "0g", "01:02", "0x 0x", "010x", "-1", "\xC3\xA4"})
    {
        EXPECT_EQ(decodeHex(digits), std::nullopt) << digits;
    }
    EXPECT_EQ(decodeHex("00\0"s), std::nullopt);
}

TEST(Hex, IsWrittenInLowerCase)
{
    EXPECT_EQ(encodeHex("\x01\xAB\0\xFF"s), "01ab00ff");
    EXPECT_EQ(encodeHex(""), "");
}

TEST(Base64, ReadsBothAlphabets)
{
    EXPECT_EQ(decodeBase64("AWWEAQ=="), "\x01\x65\x84\x01");
    EXPECT_EQ(decodeBase64("AWWEAQ"), "\x01\x65\x84\x01");
    EXPECT_EQ(decodeBase64("MjM0"), "234");
    EXPECT_EQ(decodeBase64("MjM="), "23");
    EXPECT_EQ(decodeBase64("+/+/"), "\xFB\xFF\xBF");
    EXPECT_EQ(decodeBase64("-_-_"), "\xFB\xFF\xBF");
    EXPECT_EQ(decodeBase64(" MjM0\r\nMzAx\n"), "234301");
    EXPECT_EQ(decodeBase64("AAECAwQFBgcICQoLDA0ODw=="),
              "\0\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A\x0B\x0C\x0D\x0E\x0F"s);
}

TEST(Base64, IsNothingElse)
{
    for (const char* const digits : {"", "=", "A", "AAAAA", "AA=", "AAA==", "AA===", "AAAA=", "AAAA====", "=AAA",
                                     "A=AA", "AAAA AAAA", "+_AA", "AB==", "AAB=", "AAF", "AA.A", "AA==AAAA"})
    {
        EXPECT_EQ(decodeBase64(digits), std::nullopt) << digits;
    }
    EXPECT_EQ(decodeBase64("AAA\0"s), std::nullopt);
}

// Gives its text in pieces, at most so many bytes each.
class TextStream : public ByteStream
{
public:
    TextStream(std::string text, std::size_t piece) : m_text(std::move(text)), m_piece(piece) {}

    std::size_t read(char* to, std::size_t most) override
    {
        const std::size_t length = m_text.copy(to, std::min(most, m_piece), m_position);
        m_position += length;
        return length;
    }

private:
    std::string m_text;
    std::size_t m_piece;
    std::size_t m_position = 0;
};

// What a dump stands for, and behind it in brackets the trouble that ends it.
std::string undumped(const std::string& dump, std::size_t piece, std::size_t most)
{
    TextStream text(dump, piece);
    const auto stream = openDump(text, "dump.txt");
    std::string bytes;
    std::vector<char> buffer(most);
    try
    {
        while (const std::size_t length = stream->read(buffer.data(), most))
        {
            bytes.append(buffer.data(), length);
        }
        EXPECT_EQ(stream->read(buffer.data(), most), 0U);
    }
    catch (const Trouble& trouble)
    {
        bytes += "["s + trouble.what() + "]";
    }
    return bytes;
}

std::string undumped(const std::string& dump)
{
    std::string bytes = undumped(dump, 1 << 20, 1 << 20);
    EXPECT_EQ(undumped(dump, 1, 1), bytes);
    EXPECT_EQ(undumped(dump, 37, 5), bytes);
    return bytes;
}

// The bytes of a dump that isDump() has to know.
std::string known(const std::string& dump)
{
    EXPECT_TRUE(isDump(std::string_view(dump).substr(0, 256))) << dump;
    return undumped(dump);
}

// What the dumps below were made of.
const std::string kSample = "23430145:1:2:3:\n 8 extra bytes...\0\x80\xFF  "s;

TEST(Dump, ReadsXxd)
{
    EXPECT_EQ(known("00000000: 3233 3433 3031 3435 3a31 3a32 3a33 3a0a  23430145:1:2:3:.\n"
                    "00000010: 2038 2065 7874 7261 2062 7974 6573 2e2e   8 extra bytes..\n"
                    "00000020: 2e00 80ff 2020                           ....  \n"),
              kSample);
    // -u -g 4 -c 5
    EXPECT_EQ(known("00000000: 32333433 30  23430\n00000005: 3134353A 31  145:1\n0000000a: 3A323A33 3A  :2:3:\n"
                    "0000000f: 0A203820 65  . 8 e\n00000014: 78747261 20  xtra \n00000019: 62797465 73  bytes\n"
                    "0000001e: 2E2E2E00 80  .....\n00000023: FF2020       .  \n"),
              kSample);
    // -g 0
    EXPECT_EQ(known("00000000: 32333433303134353a313a323a333a0a  23430145:1:2:3:.\n"
                    "00000010: 20382065787472612062797465732e2e   8 extra bytes..\n"
                    "00000020: 2e0080ff2020                      ....  \n"),
              kSample);
    // -d, and the blanks at the ends of lines lost
    EXPECT_EQ(known("00000000: 3233 3433 3031 3435 3a31 3a32 3a33 3a0a  23430145:1:2:3:.\r\n"
                    "00000016: 2038 2065 7874 7261 2062 7974 6573 2e2e   8 extra bytes..\r\n"
                    "00000032: 2e00 80ff 2020                           ....\r\n\r\n"),
              kSample);
    // -a
    EXPECT_EQ(known("00000000: 0000 0000 0000 0000 0000 0000 0000 0000  ................\n*\n"
                    "00000060: 0000 0000                                ....\n"),
              std::string(100, '\0'));
}

TEST(Dump, ReadsLongLinesOfXxd)
{
    std::string line = "00000000: ";
    std::string text;
    for (int i = 0; i != 128; ++i)
    {
        line += "6162 ";
        text += "ab";
    }
    EXPECT_EQ(known(line + " " + text + "\n00000100: 63" + std::string(640, ' ') + "c\n"), text + "c");
    line = "00000000: ";
    for (int i = 0; i != 256; ++i)
    {
        line += "61";
    }
    EXPECT_EQ(known(line + "  " + std::string(256, 'a') + "\n"), std::string(256, 'a'));
}

TEST(Dump, ReadsTextBesideTheDigitsThatLooksLikeDigits)
{
    EXPECT_EQ(known("00000000: 3031 2032 3320  01 23 \n00000006: 2020 2020 2020        \n"), "01 23       ");
    EXPECT_EQ(known("00000000  33 34 20 33 34 20 7c 20  |34 34 | |\n00000008\n"), "34 34 | ");
    EXPECT_EQ(known("0000000 33 34 3c 33  >34<3<\n0000004\n"), "34<3");
}

TEST(Dump, ReadsHexdump)
{
    // -C
    EXPECT_EQ(known("00000000  32 33 34 33 30 31 34 35  3a 31 3a 32 3a 33 3a 0a  |23430145:1:2:3:.|\n"
                    "00000010  20 38 20 65 78 74 72 61  20 62 79 74 65 73 2e 2e  | 8 extra bytes..|\n"
                    "00000020  2e 00 80 ff 20 20                                 |....  |\n"
                    "00000026\n"),
              kSample);
    EXPECT_EQ(known("0000000 3332 3334 3130 3534 313a 323a 333a 0a3a\n"
                    "0000010 3820 6520 7478 6172 6220 7479 7365 2e2e\n"
                    "0000020 002e ff80 2020                         \n"
                    "0000026\n"),
              kSample);
    // -x
    EXPECT_EQ(known("0000000    3332    3334    3130    3534    313a    323a    333a    0a3a\n"
                    "0000010    3820    6520    7478    6172    6220    7479    7365    2e2e\n"
                    "0000020    002e    ff80    2020                                        \n"
                    "0000026\n"),
              kSample);
}

TEST(Dump, ReadsOd)
{
    // -t x1
    EXPECT_EQ(known("0000000 32 33 34 33 30 31 34 35 3a 31 3a 32 3a 33 3a 0a\n"
                    "0000020 20 38 20 65 78 74 72 61 20 62 79 74 65 73 2e 2e\n"
                    "0000040 2e 00 80 ff 20 20\n0000046\n"),
              kSample);
    // -A x -t x1z
    EXPECT_EQ(known("000000 32 33 34 33 30 31 34 35 3a 31 3a 32 3a 33 3a 0a  >23430145:1:2:3:.<\n"
                    "000010 20 38 20 65 78 74 72 61 20 62 79 74 65 73 2e 2e  > 8 extra bytes..<\n"
                    "000020 2e 00 80 ff 20 20                                >....  <\n000026\n"),
              kSample);
    // -A d -t x1
    EXPECT_EQ(known("0000000 32 33 34 33 30 31 34 35 3a 31 3a 32 3a 33 3a 0a\n"
                    "0000016 20 38 20 65 78 74 72 61 20 62 79 74 65 73 2e 2e\n"
                    "0000032 2e 00 80 ff 20 20\n0000038\n"),
              kSample);
    // -A n -t x1
    EXPECT_EQ(known(" 32 33 34 33 30 31 34 35 3a 31 3a 32 3a 33 3a 0a\n"
                    " 20 38 20 65 78 74 72 61 20 62 79 74 65 73 2e 2e\n 2e 00 80 ff 20 20\n"),
              kSample);
    // -x
    EXPECT_EQ(known("0000000 3332 3334 3130 3534 313a 323a 333a 0a3a\n"
                    "0000020 3820 6520 7478 6172 6220 7479 7365 2e2e\n0000040 002e ff80 2020\n0000046\n"),
              kSample);
    // -t x4
    EXPECT_EQ(known("0000000 33343332 35343130 323a313a 0a3a333a\n"
                    "0000020 65203820 61727478 74796220 2e2e7365\n0000040 ff80002e 00002020\n0000046\n"),
              kSample);
    // -t x2z
    EXPECT_EQ(known("0000000 3332 0034                                >234<\n0000003\n"), "234");
    // -t x1 -w5
    EXPECT_EQ(known("0000000 32 33 34 33 30\n0000005 31 34\n0000007\n"), "2343014");
    // of nothing
    EXPECT_EQ(known("0000000\n"), "");
}

TEST(Dump, RepeatsTheLineBeforeAStar)
{
    EXPECT_EQ(known("00000000  00 00 00 00 00 00 00 00  00 00 00 00 00 00 00 00  |................|\n*\n"
                    "00000020  01 00                                             |..|\n00000022\n"),
              std::string(32, '\0') + "\x01\0"s);
    // hexdump lets it stand for a part of a line at the end.
    EXPECT_EQ(
        known("00000000  61 62 63 64 61 62 63 64  61 62 63 64 61 62 63 65  |abcdabcdabcdabce|\n*\n00000025\n"),
        "abcdabcdabcdabceabcdabcdabcdabceabcda");
    EXPECT_EQ(known("0000000 61 62 63 64 65 66 67 68\n0000010 31 32 33 34 35 36 37 38\n*\n0000030\n"),
              "abcdefgh1234567812345678");
    EXPECT_EQ(known("0000000 6261 6463 6665 6867 6a69\n000000a 3231 3433 3635 3837 3039\n*\n000001d\n"),
              "abcdefghij1234567890123456789");
}

TEST(Dump, TakesAStarWithoutAnEndForTrouble)
{
    EXPECT_EQ(undumped("0000000 61 62\n*\n"),
              "ab[dump.txt:3: no offset tells how often '*' repeats the line before it]");
    EXPECT_EQ(undumped(" 61 62\n*\n 63\n"),
              "ab[dump.txt:2: without offsets, nothing tells how often '*' repeats the line before it]");
    EXPECT_EQ(
        undumped("0000000 61 62\n*\n0000100\n"),
        "ab[dump.txt:3: the offset '0000100' may be octal, decimal or hexadecimal, so nothing tells how often "
        "'*' repeats the line before it]");
    // Nothing but decimal has an eight here.
    EXPECT_EQ(undumped("0000000 61 62\n*\n0000008\n"), "abababab");
}

TEST(Dump, ReadsLongRepetitionsPieceByPiece)
{
    TextStream text("00000000: 6162  ab\n*\n01000002: 63  c\n", 1000);
    const auto stream = openDump(text, "dump.txt");
    std::vector<char> buffer(1001);
    EXPECT_EQ(stream->read(buffer.data(), buffer.size()), 2U);
    EXPECT_EQ(stream->read(buffer.data(), buffer.size()), 1001U);
    EXPECT_EQ(std::string(buffer.data(), 4), "abab");
    EXPECT_EQ(stream->read(buffer.data(), buffer.size()), 1001U);
    EXPECT_EQ(std::string(buffer.data(), 4), "baba");
}

// A few bytes would otherwise keep the command busy for years.
TEST(Dump, RepeatsNoMoreThanSixteenMebibytes)
{
    const std::string refused =
        "'*' stands for more than 16 MiB; a dump that repeats no line (hexdump -v, od -v) is "
        "read whatever its length]";
    EXPECT_EQ(undumped("00000000: 6161  aa\n*\n01000004: 62  b\n"), "aa[dump.txt:3: " + refused);
    EXPECT_EQ(undumped("00000000: 6162  ab\n*\nfffffffffffffffe: 63  c\n"), "ab[dump.txt:3: " + refused);
    // In the whole dump.
    const std::string most =
        undumped("00000000: 6161  aa\n*\n01000000: 6161  aa\n*\n01000004: 6161  aa\n*\n01000008: 62  b\n", 1 << 20,
                 1 << 20);
    EXPECT_EQ(most.size(), 0x1000006 + refused.size() + std::strlen("[dump.txt:7: "));
    EXPECT_TRUE(most.ends_with("aa[dump.txt:7: " + refused));
}

TEST(Dump, EndsAWordThatWasFilledUp)
{
    EXPECT_EQ(undumped("0000000 3332 0034\n0000003\n"), "234");
    EXPECT_EQ(undumped("0000000 3332 0034\n0000004\n"), "234\0"s);
    EXPECT_EQ(undumped("0000000 3332 0034\n"), "234\0"s); // nothing says otherwise
    EXPECT_EQ(undumped("0000000 3332 3534\n0000003\n"),
              "2345[dump.txt:2: the offset '0000003' does not follow from the lines before]");
}

TEST(Dump, DeliversWhatComesBeforeALineThatIsNone)
{
    EXPECT_EQ(undumped("00000000: 3233  23\nhello\n00000002: 3435  45\n"),
              "23[dump.txt:2: this is no line of a dump: 'hello']");
    EXPECT_EQ(undumped("00000000: 3233  23\n00000003: 3435  45\n"),
              "23[dump.txt:2: the offset '00000003' does not follow from the lines before]");
    EXPECT_EQ(undumped("00000000: 3233  23\n00000002: 343  4\n"),
              "23[dump.txt:2: this is no line of a dump: '00000002: 343  4']");
    EXPECT_EQ(undumped("0000000 3332\n0000002 343\n"), "23[dump.txt:2: this is no line of a dump: '0000002 343']");
    EXPECT_EQ(undumped("0000000 32\n0000001\n0000001 33\n"),
              "2[dump.txt:3: this line is behind the end of the dump]");
    EXPECT_EQ(undumped("00000000  32 33  |234|\n"),
              "[dump.txt:1: this is no line of a dump: '00000000  32 33  |234|']");
    EXPECT_EQ(undumped("*\n0000000 32\n"), "[dump.txt:1: this is no line of a dump: '*']");
    EXPECT_EQ(undumped("0000000 32\n" + std::string(70000, '0')),
              "2[dump.txt:2: this line is too long for a dump]");
    EXPECT_EQ(undumped(""), "");
}

TEST(Dump, KeepsTheTroubleOfWhatItReads)
{
    class Cut : public TextStream
    {
    public:
        using TextStream::TextStream;
        std::size_t read(char* to, std::size_t most) override
        {
            const std::size_t length = TextStream::read(to, most);
            return length != 0 ? length : throw Trouble("cut");
        }
    };
    Cut text("00000000: 3233  23\n00000002: 34", 1000);
    const auto stream = openDump(text, "dump.txt");
    char byte = 0;
    EXPECT_EQ(stream->read(&byte, 1), 1U);
    EXPECT_EQ(stream->read(&byte, 1), 1U);
    try
    {
        stream->read(&byte, 1);
        FAIL() << "no trouble";
    }
    catch (const Trouble& trouble)
    {
        EXPECT_STREQ(trouble.what(), "cut");
    }
}

TEST(Dump, IsNothingElse)
{
    for (const char* const text : {"",
                                   "\n",
                                   "*\n",
                                   "hello\n",
                                   "00000000",
                                   "000000\n",
                                   "00000000 01658401 00000001\n",
                                   "0000000032\n",
                                   "01658401000000010000000200000003\n",
                                   "01 65 84 01 00 00 00 01\n",
                                   " 01 65 84 01 00 00 00 01\n",
                                   " 01 65 84 01\n\n",
                                   " 01 65 84 01\nhello\n",
                                   "23430145:1:2:3:\n",
                                   "00000000:1:2:3:\n",
                                   "00000000: 3:\n",
                                   "0000: 3233  23\n",
                                   "00000010: 3233  23\n",
                                   "00000080 00\n",
                                   "00000000  32 33  |2|\n",
                                   "0000000 031462 031464\n",
                                   "0000000  50  51\n",
                                   "0000000  3332\n",
                                   "00000000: 00110010 00110011 00110100 00110011 00110000 00110001  234301\n",
                                   "00000000: 3233  a text longer\n",
                                   "2026-11-20T12:00:00Z rx text 3233\n",
                                   "<sigNo>23430145</sigNo>\n",
                                   "AWWEAQ==\n",
                                   "{\"schema\":1}\n"})
    {
        EXPECT_FALSE(isDump(text)) << text;
    }
    EXPECT_FALSE(isDump(std::string(300, '0')));
    EXPECT_FALSE(isDump(std::string(300, ' ')));
    EXPECT_FALSE(isDump("00000000: " + std::string(300, ' ')));
    EXPECT_FALSE(isDump("\0\0\0"s));
}

TEST(Trace, ReadsALine)
{
    const auto line = parseTrace("2026-11-20T12:00:00.250Z rx text 32333a");
    ASSERT_TRUE(line);
    EXPECT_EQ(line->time, "2026-11-20T12:00:00.250Z");
    EXPECT_EQ(line->direction, "rx");
    EXPECT_EQ(line->form, Form::text);
    EXPECT_EQ(line->bytes, "23:");
    EXPECT_EQ(parseTrace("2026-11-20T12:00:00Z\ttx  binary 01 65 84 01 \r")->bytes, "\x01\x65\x84\x01");
    EXPECT_EQ(parseTrace("2026-11-20T12:00:00Z tx xml 3C")->form, Form::xml);
}

TEST(Trace, ReadsEveryTime)
{
    for (const char* const time :
         {"2026-11-20T12:00:00", "2026-11-20T12:00:00Z", "2024-02-29T23:59:60.123456789Z", "0000-01-01T00:00:00.0",
          "9999-12-31T23:59:59+23:59", "2026-11-20T12:00:00.5-01:30"})
    {
        const std::string text = time + " rx text 32"s;
        const auto line = parseTrace(text);
        ASSERT_TRUE(line) << time;
        EXPECT_EQ(line->time, time);
    }
    for (const char* const time : {"2026-11-20",
                                   "2026-11-20T12:00",
                                   "2026-11-20T12:00:00.",
                                   "2026-11-20T12:00:00.1234567890",
                                   "2026-11-20t12:00:00",
                                   "2026-11-20T12:00:00z",
                                   "2026-13-20T12:00:00",
                                   "2026-00-20T12:00:00",
                                   "2026-11-31T12:00:00",
                                   "2025-02-29T12:00:00",
                                   "2026-11-00T12:00:00",
                                   "2026-11-20T24:00:00",
                                   "2026-11-20T12:60:00",
                                   "2026-11-20T12:00:61",
                                   "2026-11-20T12:00:00+1:00",
                                   "2026-11-20T12:00:00+0100",
                                   "2026-11-20T12:00:00+24:00",
                                   "2026-11-20T12:00:00+01:60",
                                   "2026-11-20T12:00:00+01:00Z",
                                   "+026-11-20T12:00:00",
                                   "2026-11-20T12:00:00,5",
                                   "026-11-20T12:00:00",
                                   "1732104000",
                                   "rx"})
    {
        EXPECT_FALSE(parseTrace(time + " rx text 32"s)) << time;
    }
}

TEST(Trace, IsNothingElse)
{
    for (const char* const line :
         {"", "-", "- -", "- - text", "- - text ", "- - text 3", "- - text 3g", "- - XML 32", "- - Text 32",
          "- - hex 32", "- text 32", " - - text 32", "2026-11-20 12:00:00 rx text 32", "23430145:1:2:3:"})
    {
        EXPECT_FALSE(parseTrace(line)) << line;
    }
}

TEST(Trace, IsWrittenAsItIsRead)
{
    EXPECT_EQ(formatTrace("2026-11-20T12:00:00.250Z", "rx", Form::text, "23:"),
              "2026-11-20T12:00:00.250Z rx text 32333a");
    EXPECT_EQ(formatTrace("2026-11-20T12:00:00", "tx", Form::xml, "<"), "2026-11-20T12:00:00 tx xml 3c");
    EXPECT_EQ(formatTrace("", "", Form::binary, "\xFF"), "- - binary ff");
    EXPECT_EQ(formatTrace("noon", "to the\nboard", Form::binary, "\xFF"), "- to_the_board binary ff");
    const auto line = parseTrace("- - binary ff");
    ASSERT_TRUE(line);
    EXPECT_EQ(line->time, "");
    EXPECT_EQ(line->direction, "");
}

TEST(Pcap, ReadsHeadersOfEitherByteOrderAndPrecision)
{
    struct Case
    {
        const char* magic;
        bool isBigEndian;
        bool nanoseconds;
    };
    for (const Case& one : {Case{"a1b2c3d4", true, false}, Case{"a1b23c4d", true, true},
                            Case{"d4c3b2a1", false, false}, Case{"4d3cb2a1", false, true}})
    {
        const std::string rest = one.isBigEndian ? "00020004 00000000 00000000 00040000 00000093"
                                                 : "02000400 00000000 00000000 00000400 93000000";
        const auto format = parsePcapHeader(*decodeHex(one.magic + rest));
        ASSERT_TRUE(format) << one.magic;
        EXPECT_EQ(format->reversed, one.isBigEndian != (std::endian::native == std::endian::big));
        EXPECT_EQ(format->nanoseconds, one.nanoseconds);
        EXPECT_EQ(format->linkType, kPcapLinkType);

        const auto packet =
            parsePacketHeader(*format, *decodeHex(one.isBigEndian ? "6920 5180 0003d090 0000000e 00000010"
                                                                  : "8051 2069 90d00300 0e000000 10000000"));
        EXPECT_EQ(packet.time, one.nanoseconds ? "2025-11-21T11:48:16.000250000Z" : "2025-11-21T11:48:16.250000Z");
        EXPECT_EQ(packet.length, 14U);
        EXPECT_EQ(packet.lengthOnTheWire, 16U);
    }
}

TEST(Pcap, KnowsTheHeaderOfNothingElse)
{
    const std::string header = *decodeHex("a1b2c3d4 00020004 00000000 00000000 00040000 00000093");
    EXPECT_TRUE(parsePcapHeader(header + "more"));
    EXPECT_FALSE(parsePcapHeader(header.substr(0, 23)));
    EXPECT_FALSE(parsePcapHeader(""));
    EXPECT_FALSE(parsePcapHeader(*decodeHex("a1b2c3d5 00020004 00000000 00000000 00040000 00000093")));
    EXPECT_FALSE(parsePcapHeader(*decodeHex("a1b2c3d4 00020003 00000000 00000000 00040000 00000093")));
    EXPECT_FALSE(parsePcapHeader(*decodeHex("0a0d0d0a 0000001c 1a2b3c4d 00010000 ffffffff ffffffff")));
    // The upper bits of the link type tell about checksums.
    EXPECT_EQ(parsePcapHeader(*decodeHex("a1b2c3d4 00020004 00000000 00000000 00040000 f4000001"))->linkType, 1U);
}

TEST(Pcap, ReadsFieldsThatCannotBe)
{
    const PcapFormat format = *parsePcapHeader(pcapHeader());
    const PcapPacket packet = parsePacketHeader(format, std::string(16, '\xFF'));
    EXPECT_EQ(packet.time, "2106-02-07T06:28:19.294967295Z");
    EXPECT_EQ(packet.length, 4294967295U);
    EXPECT_EQ(packet.lengthOnTheWire, 4294967295U);
    EXPECT_EQ(parsePacketHeader(format, "").time, "1970-01-01T00:00:00.000000000Z");
}

TEST(Pcap, WritesBigEndianWithNanoseconds)
{
    EXPECT_EQ(encodeHex(pcapHeader()), "a1b23c4d0002000400000000000000000004000000000093");
    EXPECT_EQ(encodeHex(pcapPacket("2026-11-20T12:00:00.250Z", "23:")), "6b003640"
                                                                        "0ee6b280"
                                                                        "00000003"
                                                                        "00000003"
                                                                        "32333a");
    const auto packet =
        parsePacketHeader(*parsePcapHeader(pcapHeader()), pcapPacket("2026-11-20T12:00:00.250Z", "23:"));
    EXPECT_EQ(packet.time, "2026-11-20T12:00:00.250000000Z");
    EXPECT_EQ(packet.length, 3U);
}

std::string timeInPcap(std::string_view time)
{
    return parsePacketHeader(*parsePcapHeader(pcapHeader()), pcapPacket(time, "")).time;
}

TEST(Pcap, WritesTimesInUtc)
{
    EXPECT_EQ(timeInPcap("2026-11-20T12:00:00"), "2026-11-20T12:00:00.000000000Z");
    EXPECT_EQ(timeInPcap("2026-11-20T12:00:00+01:30"), "2026-11-20T10:30:00.000000000Z");
    EXPECT_EQ(timeInPcap("2026-12-31T23:00:00.123456789-01:00"), "2027-01-01T00:00:00.123456789Z");
    EXPECT_EQ(timeInPcap("2024-02-29T23:59:60Z"), "2024-03-01T00:00:00.000000000Z");
    EXPECT_EQ(timeInPcap("2106-02-07T06:28:15Z"), "2106-02-07T06:28:15.000000000Z");
    for (const char* const time :
         {"", "noon", "1969-12-31T23:59:59.5Z", "1970-01-01T00:00:00.5+01:00", "2106-02-07T06:28:16.5Z"})
    {
        EXPECT_EQ(timeInPcap(time), "1970-01-01T00:00:00.000000000Z") << time;
    }
}

} // namespace

// The strict reading of one record: of a signal of its own with every kind of field, and of those that are more
// than a run of fields.

#include "bciMsgRegistration.h"
#include "output.h"
#include "record.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <set>
#include <string>
#include <vector>

namespace
{

using namespace bci::tool;
using bci::Signal;
using bci::codec::Field;
using bci::codec::Kind;
using bci::codec::Shape;

struct SampleS
{
    U32 word;
    S32 signedWord;
    U16 half;
    S16 signedHalf;
    U8 byte;
    U8 name[4];
};

constexpr Field kRows[] = {
    BCI_FIELD(SampleS, word, "word", 1), BCI_FIELD(SampleS, signedWord, "signedWord", 2),
    BCI_FIELD(SampleS, half, "half", 3), BCI_FIELD(SampleS, signedHalf, "signedHalf", 4),
    BCI_FIELD(SampleS, byte, "byte", 5), BCI_FIELD(SampleS, name, "name", 6),
};
constexpr Shape kShape = {"Sample", "SampleS", sizeof(SampleS), {kRows}, ""};
constexpr Signal kSignal = {1, "SAMPLE", &kShape};

Rendering rendering(Form form, std::string_view bytes, const Signal* signal = &kSignal)
{
    return {bytes, form, std::endian::big, signal};
}

// A byte string with its zeros.
template <std::size_t N>
std::string bytes(const char (&text)[N])
{
    return {text, N - 1};
}

// Fields with their positions and lengths, and what has been read of all.
std::string walked(const Record& record)
{
    std::string text;
    for (const FieldValue& value : record.fields)
    {
        text += value.isLost ? value.name + " lost\n"
                             : std::to_string(value.position) + "+" + std::to_string(value.length) + " " +
                                   value.name + "=" + value.value + "\n";
    }
    const Reading& reading = record.reading;
    return text + (reading.isComplete ? "to " : "broken off at ") + std::to_string(reading.end) + "\n";
}

std::string told(const Record& record)
{
    std::string text;
    for (const Finding& one : record.findings)
    {
        text += std::to_string(one.position) + "+" + std::to_string(one.length) + " " + message(one) + "\n";
        EXPECT_FALSE(one.library.empty());
    }
    const auto has = [&record](Severity severity)
    {
        return std::any_of(record.findings.begin(), record.findings.end(),
                           [severity](const Finding& one) { return info(one.code).severity == severity; });
    };
    EXPECT_EQ(record.reading.isDamaged, has(Severity::damage));
    EXPECT_EQ(record.reading.hasNotes, has(Severity::note));
    return text;
}

std::string toldOf(Form form, std::string_view bytes)
{
    return told(inspect(rendering(form, bytes)));
}

std::string toldOf(SIGSELECT number, Form form, std::string_view bytes)
{
    return told(inspect(rendering(form, bytes, bci::findSignal(number))));
}

std::string walkedOf(SIGSELECT number, Form form, std::string_view bytes)
{
    return walked(inspect(rendering(form, bytes, bci::findSignal(number))));
}

std::string restOf(Form form, std::string_view bytes)
{
    Item item;
    item.rendering = rendering(form, bytes);
    return std::string(inspect(item.rendering).rest(item));
}

// An element as the writers lay it out.
std::string element(const std::string& name, const std::string& value)
{
    return "\t<" + name + ">\n\t  " + value + "\n\t</" + name + ">\n";
}

std::string sample(const std::string& word, const std::string& signedWord, const std::string& half,
                   const std::string& signedHalf, const std::string& byte, const std::string& name)
{
    return element("word", word) + element("signedWord", signedWord) + element("half", half) +
           element("signedHalf", signedHalf) + element("byte", byte) + element("name", name);
}

std::string header(const char* number)
{
    return std::string(number, 4) + std::string("\0\0\0\1\0\0\0\2", 8);
}

std::string headerElements(const std::string& number)
{
    return element("sigNo", number) + element("clientRef", "1") + element("serverRef", "2");
}

void expectStructure(const Record& record, const SampleS& expected)
{
    SampleS structure;
    ASSERT_EQ(record.structure.size(), sizeof structure);
    std::memcpy(&structure, record.structure.data(), sizeof structure);
    EXPECT_EQ(structure.word, expected.word);
    EXPECT_EQ(structure.signedWord, expected.signedWord);
    EXPECT_EQ(structure.half, expected.half);
    EXPECT_EQ(structure.signedHalf, expected.signedHalf);
    EXPECT_EQ(structure.byte, expected.byte);
    EXPECT_EQ(std::memcmp(structure.name, expected.name, sizeof structure.name), 0);
}

constexpr S32 kLeast = -2147483647 - 1;
constexpr SampleS kGreatestOfAll = {4294967295U, 2147483647, 65535, 32767, 255, {'a', ' ', 'b', 0}};
constexpr SampleS kLeastOfAll = {0, kLeast, 0, -32768, 0, {}};

// ---- what is right

TEST(ReadingText, TakesEveryKindAtItsLimits)
{
    const Record greatest = inspect(rendering(Form::text, "4294967295:2147483647:65535:32767:255:a b:"));
    EXPECT_EQ(walked(greatest), "0+10 word=4294967295\n11+10 signedWord=2147483647\n22+5 half=65535\n"
                                "28+5 signedHalf=32767\n34+3 byte=255\n38+3 name=a b\nto 42\n");
    EXPECT_EQ(told(greatest), "");
    expectStructure(greatest, kGreatestOfAll);
    const Record least = inspect(rendering(Form::text, "0:-2147483648:0:-32768:0::"));
    EXPECT_EQ(walked(least), "0+1 word=0\n2+11 signedWord=-2147483648\n14+1 half=0\n16+6 signedHalf=-32768\n"
                             "23+1 byte=0\n25+0 name=\nto 26\n");
    EXPECT_EQ(told(least), "");
    expectStructure(least, kLeastOfAll);
}

TEST(ReadingBinary, TakesEveryKindAtItsLimits)
{
    const Record greatest =
        inspect(rendering(Form::binary, bytes("\xFF\xFF\xFF\xFF\x7F\xFF\xFF\xFF\xFF\xFF\x7F\xFF\xFF"
                                              "a b\0")));
    EXPECT_EQ(walked(greatest), "0+4 word=4294967295\n4+4 signedWord=2147483647\n8+2 half=65535\n"
                                "10+2 signedHalf=32767\n12+1 byte=255\n13+3 name=a b\nto 17\n");
    EXPECT_EQ(told(greatest), "");
    expectStructure(greatest, kGreatestOfAll);
    const Record least = inspect(rendering(Form::binary, bytes("\0\0\0\0\x80\0\0\0\0\0\x80\0\0\0\0\0\0")));
    EXPECT_EQ(walked(least), "0+4 word=0\n4+4 signedWord=-2147483648\n8+2 half=0\n10+2 signedHalf=-32768\n"
                             "12+1 byte=0\n13+0 name=\nto 17\n");
    EXPECT_EQ(told(least), "");
    expectStructure(least, kLeastOfAll);
}

TEST(ReadingXml, TakesEveryKindAtItsLimits)
{
    const Record greatest =
        inspect(rendering(Form::xml, sample("4294967295", "2147483647", "65535", "32767", "255", "a b")));
    EXPECT_EQ(walked(greatest), "11+10 word=4294967295\n48+10 signedWord=2147483647\n85+5 half=65535\n"
                                "117+5 signedHalf=32767\n149+3 byte=255\n173+3 name=a b\nto 186\n");
    EXPECT_EQ(told(greatest), "");
    expectStructure(greatest, kGreatestOfAll);
    const Record least = inspect(rendering(Form::xml, sample("0", "-2147483648", "0", "-32768", "0", "")));
    EXPECT_EQ(told(least), "");
    expectStructure(least, kLeastOfAll);
}

TEST(ReadingBinary, TurnsOnlyTheFirstWordOfALittleEndianHost)
{
    const std::string input = bytes("\4\3\2\1\0\0\0\1\0\2\0\3\4abc\0");
    Rendering turned = rendering(Form::binary, input);
    turned.firstWord = std::endian::little;
    EXPECT_EQ(walked(inspect(turned)),
              "0+4 word=16909060\n4+4 signedWord=1\n8+2 half=2\n10+2 signedHalf=3\n12+1 byte=4\n13+3 name=abc\n"
              "to 17\n");
}

TEST(Reading, LeavesWhatFollowsToOthers)
{
    EXPECT_EQ(walked(inspect(rendering(Form::text, "1:2:3:4:5:abc:\nx"))),
              "0+1 word=1\n2+1 signedWord=2\n4+1 half=3\n6+1 signedHalf=4\n8+1 byte=5\n10+3 name=abc\nto 14\n");
    EXPECT_EQ(toldOf(Form::text, "1:2:3:4:5:abc:6:"), "");
    EXPECT_EQ(toldOf(Form::binary, bytes("\0\0\0\1\0\0\0\1\0\2\0\3\4abc\0x")), "");
}

// ---- numbers

TEST(ReadingText, GoesOnBehindANumberThatIsNone)
{
    EXPECT_EQ(walked(inspect(rendering(Form::text, "1:x:3:4:5:abc:"))),
              "0+1 word=1\nsignedWord lost\n4+1 half=3\n6+1 signedHalf=4\n8+1 byte=5\n10+3 name=abc\nto 14\n");
    EXPECT_EQ(toldOf(Form::text, "1:x:3:4:5:abc:"),
              "2+1 signedWord: expected a decimal number, found 'x' [not-a-number]\n");
    EXPECT_EQ(toldOf(Form::text, "1:2x4:3:4:5:abc:"),
              "3+1 signedWord: expected a decimal number, found '2x4' [not-a-number]\n");
    EXPECT_EQ(toldOf(Form::text, "1::3:4:5:abc:"),
              "2+0 signedWord: expected a decimal number, found '' [not-a-number]\n");
    EXPECT_EQ(toldOf(Form::text, "1: 2:3:4:5:abc:"),
              "2+1 signedWord: expected a decimal number, found ' 2' [not-a-number]\n");
    EXPECT_EQ(toldOf(Form::text, "1:+2:3:4:5:abc:"),
              "2+1 signedWord: expected a decimal number, found '+2' [not-a-number]\n");
    EXPECT_EQ(toldOf(Form::text, "1:-:3:4:5:abc:"),
              "3+1 signedWord: expected a decimal number, found '-' [not-a-number]\n");
    EXPECT_EQ(toldOf(Form::text, "1:99999999999999999999x:3:4:5:abc:"),
              "22+1 signedWord: expected a decimal number, found '99999999999999999999x' [not-a-number]\n");
}

TEST(ReadingText, BreaksOffWhereNoDelimiterFollowsANumberInItsLine)
{
    EXPECT_EQ(toldOf(Form::text, "1:2;3;4"),
              "3+1 signedWord: expected another digit or ':', found ';' [not-a-number]\n");
    EXPECT_EQ(toldOf(Form::text, "1:x\n3:4:5:abc:"),
              "2+1 signedWord: expected a decimal number, found 'x' [not-a-number]\n");
    EXPECT_EQ(walked(inspect(rendering(Form::text, "1:2;3;4"))), "0+1 word=1\nbroken off at 2\n");
    EXPECT_EQ(restOf(Form::text, "1:2;3;4"), "2;3;4");
}

TEST(ReadingText, TellsEveryNumberThatIsWrong)
{
    EXPECT_EQ(toldOf(Form::text, "-1:x:65536:4:256:abc:"),
              "0+2 word: expected 0 ... 4294967295, found '-1' [out-of-range]\n"
              "3+1 signedWord: expected a decimal number, found 'x' [not-a-number]\n"
              "5+5 half: expected 0 ... 65535, found '65536' [out-of-range]\n"
              "13+3 byte: expected 0 ... 255, found '256' [out-of-range]\n");
}

TEST(ReadingText, HoldsEveryNumberAgainstItsRange)
{
    const auto toldIn =
        [](const char* word, const char* signedWord, const char* half, const char* signedHalf, const char* byte)
    {
        return toldOf(Form::text,
                      std::string(word) + ":" + signedWord + ":" + half + ":" + signedHalf + ":" + byte + ":abc:");
    };
    EXPECT_EQ(toldIn("4294967296", "2", "3", "4", "5"),
              "0+10 word: expected 0 ... 4294967295, found '4294967296' [out-of-range]\n");
    EXPECT_EQ(toldIn("1", "2147483648", "3", "4", "5"),
              "2+10 signedWord: expected -2147483648 ... 2147483647, found '2147483648' [out-of-range]\n");
    EXPECT_EQ(toldIn("1", "-2147483649", "3", "4", "5"),
              "2+11 signedWord: expected -2147483648 ... 2147483647, found '-2147483649' [out-of-range]\n");
    EXPECT_EQ(toldIn("1", "2", "-1", "4", "5"), "4+2 half: expected 0 ... 65535, found '-1' [out-of-range]\n");
    EXPECT_EQ(toldIn("1", "2", "3", "32768", "5"),
              "6+5 signedHalf: expected -32768 ... 32767, found '32768' [out-of-range]\n");
    EXPECT_EQ(toldIn("1", "2", "3", "-32769", "5"),
              "6+6 signedHalf: expected -32768 ... 32767, found '-32769' [out-of-range]\n");
    EXPECT_EQ(toldIn("1", "2", "3", "4", "-1"), "8+2 byte: expected 0 ... 255, found '-1' [out-of-range]\n");
}

// Numbers that come round to small ones in 64 bits.
TEST(ReadingText, IsNotTakenInByNumbersOfManyDigits)
{
    for (const std::string number :
         {"18446744073709551617", "9223372036854775808", "100000000000000000000000000000000000001",
          "-18446744073709551615", "-9223372036854775808", "-9223372036854775809"})
    {
        EXPECT_EQ(toldOf(Form::text, "1:" + number + ":3:4:5:abc:"),
                  "2+" + std::to_string(number.size()) +
                      " signedWord: expected -2147483648 ... 2147483647, found '" + number + "' [out-of-range]\n");
    }
}

TEST(ReadingText, NotesZerosInFrontOfANumber)
{
    EXPECT_EQ(toldOf(Form::text, "01:-02:0000000000000000000000000000003:-0:00:abc:"),
              "0+2 word: expected 1, found '01' [number-layout]\n"
              "3+3 signedWord: expected -2, found '-02' [number-layout]\n"
              "7+31 half: expected 3, found '0000000000000000000000000000003' [number-layout]\n"
              "39+2 signedHalf: expected 0, found '-0' [number-layout]\n"
              "42+2 byte: expected 0, found '00' [number-layout]\n");
    const Record record = inspect(rendering(Form::text, "01:-02:0000000000000000000000000000003:-0:00:abc:"));
    EXPECT_TRUE(record.reading.isClean());
    expectStructure(record, {1, -2, 3, 0, 0, {'a', 'b', 'c', 0}});
    EXPECT_EQ(toldOf(Form::text, "1:-00000000000000000002147483649:3:4:5:abc:"),
              "2+30 signedWord: expected -2147483648 ... 2147483647, found '-00000000000000000002147483649' "
              "[out-of-range]\n");
}

TEST(ReadingXml, TellsNumbersThatAreNoneOrDoNotFitAndGoesOn)
{
    const Record record = inspect(rendering(Form::xml, sample("4294967296", "x", "", "-32769", "1 2", "abc")));
    EXPECT_EQ(told(record), "11+10 word: expected 0 ... 4294967295, found '4294967296' [out-of-range]\n"
                            "48+1 signedWord: expected a decimal number, found 'x' [not-a-number]\n"
                            "76+0 half: expected a decimal number, found '' [not-a-number]\n"
                            "103+6 signedHalf: expected -32768 ... 32767, found '-32769' [out-of-range]\n"
                            "137+1 byte: expected a decimal number, found '1 2' [not-a-number]\n");
    EXPECT_EQ(walked(record), "word lost\nsignedWord lost\nhalf lost\nsignedHalf lost\nbyte lost\n"
                              "160+3 name=abc\nto 173\n");
    EXPECT_EQ(toldOf(Form::xml, sample("-9223372036854775808", "2", "3", "4", "5", "abc")),
              "11+20 word: expected 0 ... 4294967295, found '-9223372036854775808' [out-of-range]\n");
}

TEST(ReadingXml, NotesZerosInFrontOfANumber)
{
    EXPECT_EQ(toldOf(Form::xml, sample("1", "-002", "3", "4", "5", "abc")),
              "39+4 signedWord: expected -2, found '-002' [number-layout]\n");
}

// ---- texts

TEST(ReadingText, TellsATextThatDoesNotFitAndTakesAllOfIt)
{
    const Record record = inspect(rendering(Form::text, "1:2:3:4:5:abcde:"));
    EXPECT_EQ(told(record), "13+2 name: expected at most 3 characters, found 5 [too-long]\n");
    EXPECT_EQ(record.fields.back().value, "abcde");
    expectStructure(record, {1, 2, 3, 4, 5, {'a', 'b', 'c', 0}});
}

TEST(ReadingText, TellsAZeroWithinAText)
{
    EXPECT_EQ(toldOf(Form::text, bytes("1:2:3:4:5:a\0b:")),
              "11+1 name: expected characters other than the zero byte, found a zero byte [zero-in-text]\n");
}

TEST(ReadingText, TakesEndsOfLinesIntoATextButNotTheNextRecord)
{
    EXPECT_EQ(toldOf(Form::text, "1:2:3:4:5:a\nb:"), "");
    EXPECT_EQ(toldOf(Form::text, "1:2:3:4:5:\n23430145:1:2:3:"),
              "10+0 name: expected ':' behind the text, found the end of the line [cut-short]\n");
    EXPECT_EQ(toldOf(Form::text, "1:2:3:4:5:a\r\n23430145:1:2:3:"),
              "11+0 name: expected ':' behind the text, found the end of the line [cut-short]\n");
    EXPECT_EQ(toldOf(Form::text, "1:2:3:4:5:a\nbcdef:"),
              "11+0 name: expected ':' behind the text, found the end of the line [cut-short]\n")
        << "no text of this field is as long";
}

TEST(ReadingXml, TellsATextThatDoesNotFit)
{
    EXPECT_EQ(toldOf(Form::xml, sample("1", "2", "3", "4", "5", "abcd")),
              "148+1 name: expected at most 3 characters, found 4 [too-long]\n");
}

TEST(ReadingBinary, NotesWhatStandsBehindTheEndOfAText)
{
    EXPECT_EQ(toldOf(Form::binary, bytes("\0\0\0\1\0\0\0\1\0\2\0\3\4\0b\0\0")),
              "14+1 name: expected zeros where no value is, found 'b' [unused-bytes]\n");
    EXPECT_EQ(toldOf(Form::binary, bytes("\0\0\0\1\0\0\0\1\0\2\0\3\4a\0\0c")),
              "16+1 name: expected zeros where no value is, found 'c' [unused-bytes]\n");
    const Record record = inspect(rendering(Form::binary, bytes("\0\0\0\1\0\0\0\1\0\2\0\3\4\0b\0\0")));
    EXPECT_EQ(record.structure[14], 'b') << "it goes through";
}

// ---- ends that come early

TEST(ReadingText, TellsWhereItEndsEarly)
{
    EXPECT_EQ(toldOf(Form::text, "1:2:3"),
              "5+0 half: expected ':' behind the number, found the end [cut-short]\n");
    EXPECT_EQ(toldOf(Form::text, "1:2:"), "4+0 half: expected ':' behind the number, found the end [cut-short]\n");
    EXPECT_EQ(toldOf(Form::text, "1:2:3\r\n1:2:3:"),
              "5+0 half: expected ':' behind the number, found the end of the line [cut-short]\n");
    EXPECT_EQ(toldOf(Form::text, bytes("1:2:3\0:4")),
              "5+0 half: expected ':' behind the number, found a zero byte [cut-short]\n");
    EXPECT_EQ(toldOf(Form::text, "1:2:3:4:5:ab"),
              "12+0 name: expected ':' behind the text, found the end [cut-short]\n");
    EXPECT_EQ(toldOf(Form::text, "1:2:3:4:5:ab\n"),
              "12+0 name: expected ':' behind the text, found the end of the line [cut-short]\n");
    EXPECT_EQ(toldOf(Form::text, bytes("1:2:3:4:5:ab\0\0")),
              "12+0 name: expected ':' behind the text, found a zero byte [cut-short]\n");
    EXPECT_EQ(walked(inspect(rendering(Form::text, "1:2:3"))), "0+1 word=1\n2+1 signedWord=2\nbroken off at 4\n");
    EXPECT_EQ(restOf(Form::text, "1:2:3"), "3");
    EXPECT_EQ(restOf(Form::text, "1:2:3:4:5:ab"), "ab");
}

TEST(ReadingBinary, TellsWhereItEndsEarly)
{
    EXPECT_EQ(toldOf(Form::binary, bytes("\0\0\0\1\0\0")),
              "6+0 signedWord: expected 4 bytes, found the end after 2 [cut-short]\n");
    EXPECT_EQ(toldOf(Form::binary, bytes("\0\0\0\1\0\0\0\1\0\2\0\3\4ab")),
              "15+0 name: expected 4 bytes, found the end after 2 [cut-short]\n");
    EXPECT_EQ(walked(inspect(rendering(Form::binary, bytes("\0\0\0\1\0\0")))), "0+4 word=1\nbroken off at 4\n");
    EXPECT_EQ(restOf(Form::binary, bytes("\0\0\0\1\0\7")), bytes("\0\7"));
}

// ---- XML

TEST(ReadingXml, NotesAnotherLayoutOnceAndReadsEveryElement)
{
    const Record record = inspect(
        rendering(Form::xml, "<word>4294967295</word><signedWord>\n\t  -7\n\t</signedWord><half>65535</half>"
                             "<byte> 255 </byte><signedHalf>-32768</signedHalf><name>a b</name>"));
    EXPECT_EQ(walked(record),
              "6+10 word=4294967295\n39+2 signedWord=-7\n62+5 half=65535\n104+6 signedHalf=-32768\n"
              "81+3 byte=255\n129+3 name=a b\nto 139\n");
    EXPECT_EQ(told(record), "0+0 word: expected the writers' layout and order of elements, found "
                            "'<word>4294967295</wo' [element-layout]\n");
    expectStructure(record, {4294967295U, -7, 65535, -32768, 255, {'a', ' ', 'b', 0}});
}

TEST(ReadingXml, NotesWhereTheWritersOrderEnds)
{
    const std::string document = element("word", "1") + element("signedWord", "2") + element("signedHalf", "4") +
                                 element("half", "3") + element("byte", "5") + element("name", "abc");
    EXPECT_EQ(toldOf(Form::xml, document), "56+0 half: expected the writers' layout and order of elements, found "
                                           "'\\x09<signedHalf>\\x0A\\x09  4\\x0A\\x09' [element-layout]\n");
}

TEST(ReadingXml, TakesANumberWithBlanksAroundItInTheWritersLayout)
{
    const Record record = inspect(rendering(Form::xml, sample("1", " 2 ", "3", "4", "5", " a ")));
    EXPECT_EQ(told(record), "39+3 signedWord: expected the writers' layout and order of elements, found ' 2 ' "
                            "[element-layout]\n");
    expectStructure(record, {1, 2, 3, 4, 5, {' ', 'a', ' ', 0}});
}

TEST(ReadingXml, TellsEveryElementThatIsMissing)
{
    const std::string document = "<word>1</word>\n<signedWord>2</signedWord>\n<byte>3</byte>";
    const Record record = inspect(rendering(Form::xml, document));
    EXPECT_EQ(told(record), "0+0 word: expected the writers' layout and order of elements, found "
                            "'<word>1</word>\\x0A<sign' [element-layout]\n"
                            "56+0 half: expected <half>, found none [missing-element]\n"
                            "56+0 signedHalf: expected <signedHalf>, found none [missing-element]\n"
                            "56+0 name: expected <name>, found none [missing-element]\n");
    EXPECT_EQ(walked(record), "6+1 word=1\n27+1 signedWord=2\nhalf lost\nsignedHalf lost\n48+1 byte=3\nname lost\n"
                              "to 56\n");
}

TEST(ReadingXml, TellsAnElementThatIsNotClosed)
{
    const std::string document = element("word", "1") + "\t<signedWord>\n\t  2\n" + element("half", "3") +
                                 element("signedHalf", "4") + element("byte", "5") + element("name", "abc");
    EXPECT_EQ(toldOf(Form::xml, document),
              "23+12 signedWord: expected </signedWord>, found none behind it [unclosed-element]\n"
              "22+0 half: expected the writers' layout and order of elements, found "
              "'\\x09<signedWord>\\x0A\\x09  2\\x0A\\x09' [element-layout]\n");
}

TEST(ReadingXml, EndsAtAZeroByte)
{
    const std::string document = element("word", "1") + '\0' + element("signedWord", "2");
    EXPECT_EQ(toldOf(Form::xml, document.substr(0, 24)),
              "24+0 signedWord: expected <signedWord>, found none [missing-element]\n"
              "24+0 half: expected <half>, found none [missing-element]\n"
              "24+0 signedHalf: expected <signedHalf>, found none [missing-element]\n"
              "24+0 byte: expected <byte>, found none [missing-element]\n"
              "24+0 name: expected <name>, found none [missing-element]\n");
}

TEST(ReadingXml, TellsElementsThatAreThereTwiceOrUnknown)
{
    const std::string document = "<word>1</word><signedWord>2</signedWord><half>3</half><extra>7</extra>"
                                 "<signedHalf>4</signedHalf><byte>5</byte><half>8</half><name>abc</name>";
    const Record record = inspect(rendering(Form::xml, document));
    EXPECT_EQ(told(record), "0+0 word: expected the writers' layout and order of elements, found "
                            "'<word>1</word><signe' [element-layout]\n"
                            "54+7 expected elements of this signal, found '<extra>' [unknown-element]\n"
                            "110+6 half: expected one element of this name, found one more [repeated-element]\n");
    expectStructure(record, {1, 2, 3, 4, 5, {'a', 'b', 'c', 0}});
}

TEST(ReadingXml, TellsAnElementThatIsThereTwiceBehindThoseInTheirLayout)
{
    const std::string document = element("word", "1") + element("word", "7") + element("signedWord", "2") +
                                 element("half", "3") + element("signedHalf", "4") + element("byte", "5") +
                                 element("name", "abc");
    EXPECT_EQ(toldOf(Form::xml, document),
              "22+0 signedWord: expected the writers' layout and order of elements, found "
              "'\\x09<word>\\x0A\\x09  7\\x0A\\x09</word' [element-layout]\n"
              "23+6 word: expected one element of this name, found one more [repeated-element]\n");
}

// ---- lists

constexpr const char* kCease = "\x01\x65\x80\x0E";

TEST(ReadingLists, TakesAsManyElementsAsTheCountSays)
{
    EXPECT_EQ(
        walkedOf(BCI_FAULT_CEASE_IND, Form::text, "23429134:1:2:3:2:11:12:9:"),
        "0+8 sigNo=23429134\n9+1 clientRef=1\n11+1 serverRef=2\n13+1 faultId=3\n15+1 additionalDataLength=2\n"
        "17+2 additionalData_0=11\n20+2 additionalData_1=12\n23+1 faultCase=9\nto 25\n");
    const std::string binary = header(kCease) + bytes("\0\3\0\2\0\x0B\0\x0C\0\0\0\0\0\x09");
    EXPECT_EQ(walkedOf(BCI_FAULT_CEASE_IND, Form::binary, binary),
              "0+4 sigNo=23429134\n4+4 clientRef=1\n8+4 serverRef=2\n12+2 faultId=3\n14+2 additionalDataLength=2\n"
              "16+2 additionalData_0=11\n18+2 additionalData_1=12\n24+2 faultCase=9\nto 26\n");
    EXPECT_EQ(toldOf(BCI_FAULT_CEASE_IND, Form::binary, binary), "");
    const std::string document = headerElements("23429134") + element("faultId", "3") +
                                 element("additionalDataLength", "1") + element("additionalData_0", "11") +
                                 element("faultCase", "9");
    EXPECT_EQ(toldOf(BCI_FAULT_CEASE_IND, Form::xml, document), "");
}

TEST(ReadingLists, NotesThatAnEmptyOneLacksItsDelimiter)
{
    EXPECT_EQ(toldOf(BCI_FAULT_CEASE_IND, Form::text, "23429134:1:2:3:0::9:"), "");
    EXPECT_EQ(toldOf(BCI_FAULT_CEASE_IND, Form::text, "23429134:1:2:3:0:9:"),
              "17+0 additionalDataLength: expected ':' in the place of the empty list, found none "
              "[list-delimiter]\n");
    EXPECT_EQ(toldOf(BCI_GET_CAPABILITIES_CFM, Form::text, "23429128:1:2:0:7::"), "");
    EXPECT_EQ(toldOf(BCI_GET_CAPABILITIES_CFM, Form::text, "23429128:1:2:0:7:"),
              "17+0 numberOfBoardCapabilities: expected ':' in the place of the empty list, found none "
              "[list-delimiter]\n");
}

TEST(ReadingLists, BreakOffAtACountAboveTheBound)
{
    EXPECT_EQ(toldOf(BCI_FAULT_CEASE_IND, Form::text, "23429134:1:2:3:5:1:2:3:4:5:9:"),
              "15+1 additionalDataLength: expected at most 4, found 5 [count-above-bound]\n");
    EXPECT_EQ(
        walkedOf(BCI_FAULT_CEASE_IND, Form::text, "23429134:1:2:3:5:1:2:3:4:5:9:"),
        "0+8 sigNo=23429134\n9+1 clientRef=1\n11+1 serverRef=2\n13+1 faultId=3\n15+1 additionalDataLength=5\n"
        "broken off at 17\n");
    EXPECT_EQ(
        toldOf(BCI_FAULT_CEASE_IND, Form::binary, header(kCease) + bytes("\0\3\0\5") + std::string(10, '\0')),
        "14+2 additionalDataLength: expected at most 4, found 5 [count-above-bound]\n");
    EXPECT_EQ(
        toldOf(BCI_FAULT_CEASE_IND, Form::xml,
               headerElements("23429134") + element("faultId", "3") + element("additionalDataLength", "65535")),
        "150+5 additionalDataLength: expected at most 4, found 65535 [count-above-bound]\n");
    EXPECT_EQ(toldOf(BCI_GET_CAPABILITIES_CFM, Form::text, "23429128:1:2:3:0:"),
              "13+1 numberOfBoardCapabilities: expected at most 2, found 3 [count-above-bound]\n");
}

TEST(ReadingLists, BreakOffWhereTheCountIsLost)
{
    EXPECT_EQ(toldOf(BCI_FAULT_CEASE_IND, Form::text, "23429134:1:2:3:x:1:2:3:4:5:9:"),
              "15+1 additionalDataLength: expected a decimal number, found 'x' [not-a-number]\n");
    EXPECT_EQ(walkedOf(BCI_FAULT_CEASE_IND, Form::text, "23429134:1:2:3:x:1:2:3:4:5:9:"),
              "0+8 sigNo=23429134\n9+1 clientRef=1\n11+1 serverRef=2\n13+1 faultId=3\n"
              "additionalDataLength lost\nbroken off at 17\n");
}

TEST(ReadingLists, GoOnBehindADamagedElement)
{
    EXPECT_EQ(
        walkedOf(BCI_FAULT_CEASE_IND, Form::text, "23429134:1:2:3:2:x:12:9:"),
        "0+8 sigNo=23429134\n9+1 clientRef=1\n11+1 serverRef=2\n13+1 faultId=3\n15+1 additionalDataLength=2\n"
        "additionalData_0 lost\n19+2 additionalData_1=12\n22+1 faultCase=9\nto 24\n");
}

TEST(ReadingLists, InBinaryAreCutOrHoldUnusedBytes)
{
    EXPECT_EQ(toldOf(BCI_FAULT_CEASE_IND, Form::binary, header(kCease) + bytes("\0\3\0\1\0\1\0\2\0")),
              "21+0 additionalDataLength: expected 6 bytes behind what this field says, found the end after 3 "
              "[cut-short]\n");
    EXPECT_EQ(toldOf(BCI_FAULT_CEASE_IND, Form::binary, header(kCease) + bytes("\0\3\0\1\0\1\0\2\0\0\0\3\0\x09")),
              "19+5 additionalDataLength: expected zeros where no value is, found '\\x02\\x00\\x00\\x00\\x03' "
              "[unused-bytes]\n");
}

// ---- choices

TEST(ReadingChoices, TellAnIdentityThatSelectsNothing)
{
    EXPECT_EQ(toldOf(BCI_GET_CAPABILITIES_CFM, Form::text, "23429128:1:2:1:0:2:0:"),
              "17+1 boardCapabilityIdentity_0: expected one of 1, 3, 4, 5, 6, found 2 [unknown-choice]\n");
    EXPECT_EQ(toldOf(BCI_GET_CAPABILITIES_CFM, Form::text, "23429128:1:2:2:0:3:0:-9:0:"),
              "21+2 boardCapabilityIdentity_1: expected one of 1, 3, 4, 5, 6, found -9 [unknown-choice]\n");
    EXPECT_EQ(toldOf(BCI_GET_CAPABILITIES_CFM, Form::binary,
                     header("\x01\x65\x80\x08") + bytes("\0\1\0\0\0\2\0\0") + std::string(84, '\0')),
              "16+2 boardCapabilityIdentity_0: expected one of 1, 3, 4, 5, 6, found 2 [unknown-choice]\n");
    EXPECT_EQ(toldOf(BCI_GET_CAPABILITIES_CFM, Form::xml,
                     headerElements("23429128") + element("numberOfBoardCapabilities", "1") +
                         element("padding0", "0") + element("boardCapabilityIdentity_0", "2") +
                         element("boardCapabilityLength_0", "0")),
              "221+1 boardCapabilityIdentity_0: expected one of 1, 3, 4, 5, 6, found 2 [unknown-choice]\n");
}

TEST(ReadingChoices, BreakOffWhereTheIdentityIsLost)
{
    EXPECT_EQ(toldOf(BCI_GET_CAPABILITIES_CFM, Form::text, "23429128:1:2:1:0:x:0:1:2:3:4:5:"),
              "17+1 boardCapabilityIdentity_0: expected a decimal number, found 'x' [not-a-number]\n");
}

TEST(ReadingChoices, InBinaryAreCutOrHoldUnusedBytes)
{
    const std::string fields = header("\x01\x65\x80\x08") + bytes("\0\1\0\0\0\3\0\0");
    EXPECT_EQ(
        toldOf(BCI_GET_CAPABILITIES_CFM, Form::binary, fields + bytes("\0\0\0\0")),
        "24+0 boardCapabilityIdentity_0: expected 84 bytes behind what this field says, found the end after 4 "
        "[cut-short]\n");
    EXPECT_EQ(toldOf(BCI_GET_CAPABILITIES_CFM, Form::binary, fields + '\0' + '\7' + std::string(82, '\0')),
              "21+1 boardCapabilityIdentity_0: expected zeros where no value is, found '\\x07' [unused-bytes]\n");
    const std::string loading = header("\x01\x65\x80\x08") + bytes("\0\1\0\0\0\1\0\0") + std::string(12, '\0');
    EXPECT_EQ(toldOf(BCI_GET_CAPABILITIES_CFM, Form::binary, loading + '\7' + std::string(71, '\0')),
              "32+1 boardCapabilityIdentity_0: expected zeros where no value is, found '\\x07' [unused-bytes]\n")
        << "behind five numbers of the member";
}

TEST(ReadingChoices, HaveElementsOfTheirOwnForEachOfTwoCapabilities)
{
    std::string document = "<sigNo>23429128</sigNo><clientRef>1</clientRef><serverRef>2</serverRef>"
                           "<numberOfBoardCapabilities>2</numberOfBoardCapabilities><padding0>0</padding0>"
                           "<boardCapabilityIdentity_0>4</boardCapabilityIdentity_0>"
                           "<boardCapabilityIdentity_1>4</boardCapabilityIdentity_1>"
                           "<boardCapabilityLength_0>0</boardCapabilityLength_0>"
                           "<boardCapabilityLength_1>0</boardCapabilityLength_1>"
                           "<numOfEthTermHosts>0</numOfEthTermHosts>"
                           "<ethTermSupportPadding0>7</ethTermSupportPadding0>\n";
    const std::string layout = "0+0 sigNo: expected the writers' layout and order of elements, found "
                               "'<sigNo>23429128</sig' [element-layout]\n";
    EXPECT_EQ(toldOf(BCI_GET_CAPABILITIES_CFM, Form::xml, document),
              layout + "456+0 numOfEthTermHosts[1]: expected <numOfEthTermHosts>, found none [missing-element]\n"
                       "456+0 ethTermSupportPadding0[1]: expected <ethTermSupportPadding0>, found none "
                       "[missing-element]\n");
    document += "<numOfEthTermHosts>0</numOfEthTermHosts><ethTermSupportPadding0>8";
    EXPECT_EQ(toldOf(BCI_GET_CAPABILITIES_CFM, Form::xml, document),
              layout +
                  "496+24 ethTermSupportPadding0[1]: expected </ethTermSupportPadding0>, found none behind it "
                  "[unclosed-element]\n");
    const Record record = inspect(
        rendering(Form::xml, document + "</ethTermSupportPadding0>", bci::findSignal(BCI_GET_CAPABILITIES_CFM)));
    EXPECT_EQ(told(record), layout);
    EXPECT_EQ(record.fields.back().value, "8");
}

// ---- log entries

TEST(ReadingEntries, InBinaryLackTheirZeroOrTheirRoom)
{
    const std::string fields = header("\x01\x65\x92\x0A") + std::string(16, 't') + std::string(7, '\0');
    EXPECT_EQ(toldOf(BCI_HW_LOG_SET_REQ, Form::binary, fields + "\2" + bytes("a\0") + std::string(422, 'b')),
              "38+422 hwLogData_1: expected a zero byte behind the entry, found none [entry-not-ended]\n");
    EXPECT_EQ(toldOf(BCI_HW_LOG_SET_REQ, Form::binary, fields + "\2" + std::string(423, 'a') + '\0'),
              "32+4 length: expected at most 1, found 2 [count-above-bound]\n");
    EXPECT_EQ(toldOf(BCI_HW_LOG_SET_REQ, Form::binary, fields + "\1" + std::string(423, '\0')),
              "459+0 hwLogData_: expected 424 bytes, found the end after 423 [cut-short]\n");
    EXPECT_EQ(toldOf(BCI_HW_LOG_SET_REQ, Form::binary, fields + "\1" + std::string(423, 'a') + '\0'), "");
    EXPECT_EQ(toldOf(BCI_HW_LOG_SET_REQ, Form::binary, fields + "\1" + bytes("a\0bc") + std::string(420, '\0')),
              "38+2 hwLogData_: expected zeros where no value is, found 'bc' [unused-bytes]\n");
}

TEST(ReadingEntries, InTextHaveNoMoreThanTheRoomThatIsLeft)
{
    const std::string fields = "23433738:1:2:t:0:1:";
    EXPECT_EQ(toldOf(BCI_HW_LOG_SET_REQ, Form::text, fields + "2:a:" + std::string(421, 'b') + ":"), "");
    EXPECT_EQ(toldOf(BCI_HW_LOG_SET_REQ, Form::text, fields + "2:a:" + std::string(422, 'b') + ":"),
              "444+1 hwLogData_1: expected at most 421 characters, found 422 [too-long]\n");
    EXPECT_EQ(toldOf(BCI_HW_LOG_SET_REQ, Form::text, fields + "2:" + std::string(423, 'a') + "::"),
              "19+1 length: expected at most 1, found 2 [count-above-bound]\n");
    EXPECT_EQ(toldOf(BCI_HW_LOG_SET_REQ, Form::text, fields + "3:a:b:"),
              "25+0 hwLogData_2: expected ':' behind the text, found the end [cut-short]\n");
    EXPECT_EQ(toldOf(BCI_HW_LOG_SET_REQ, Form::text, fields + "x:a:b:"),
              "19+1 length: expected a decimal number, found 'x' [not-a-number]\n");
}

TEST(ReadingEntries, InXmlAreReadBehindOneThatIsMissing)
{
    const std::string fields =
        headerElements("23433738") + element("dateTime", "t") + element("padding0", "0") + element("logId", "0");
    const Record record =
        inspect(rendering(Form::xml, fields + element("length", "2") + element("hwLogData_1", "b"),
                          bci::findSignal(BCI_HW_LOG_SET_REQ)));
    EXPECT_EQ(record.fields.back().value, "b");
}

// ---- blocks

TEST(ReadingBlocks, InTextEndWhereTheirLengthSays)
{
    EXPECT_EQ(toldOf(BCI_LOAD_LMC_DATA, Form::text, bytes("23431174:1:2:3:0:4:a:\0b:")), "");
    EXPECT_EQ(toldOf(BCI_LOAD_LMC_DATA, Form::text, "23431174:1:2:3:0:4:abcde:"),
              "23+1 lmBlock: expected ':' behind the 4 bytes of the block, found 'e' [block-length]\n");
    EXPECT_EQ(toldOf(BCI_LOAD_LMC_DATA, Form::text, "23431174:1:2:3:0:4:abcd"),
              "23+1 lmBlock: expected ':' behind the 4 bytes of the block, found the end [block-length]\n");
    EXPECT_EQ(toldOf(BCI_LOAD_LMC_DATA, Form::text, "23431174:1:2:3:0:4:ab"),
              "21+0 lmBlock: expected 4 bytes, found the end after 2 [cut-short]\n");
    EXPECT_EQ(toldOf(BCI_LOAD_LMC_DATA, Form::text, "23431174:1:2:3:0:4101:"),
              "17+4 lmBlockSize: expected at most 4100, found 4101 [count-above-bound]\n");
    EXPECT_EQ(toldOf(BCI_LOAD_LMC_DATA, Form::text, "23431174:1:2:3:0:x:ab:"),
              "17+1 lmBlockSize: expected a decimal number, found 'x' [not-a-number]\n");
}

TEST(ReadingBlocks, InBinaryEndWhereTheirLengthSays)
{
    const std::string fields = header("\x01\x65\x88\x06") + bytes("\0\3\0\0\0\0\0\3");
    EXPECT_EQ(toldOf(BCI_LOAD_LMC_DATA, Form::binary, fields + "ab"),
              "22+0 lmBlock: expected 3 bytes, found the end after 2 [cut-short]\n");
    EXPECT_EQ(toldOf(BCI_LOAD_LMC_DATA, Form::binary, fields + "abc"), "");
    EXPECT_EQ(toldOf(BCI_LOAD_LMC_DATA, Form::binary, header("\x01\x65\x88\x06") + bytes("\0\3\0\0\0\0\x10\5")),
              "16+4 lmBlockSize: expected at most 4100, found 4101 [count-above-bound]\n");
}

TEST(ReadingBlocks, InXmlHaveTheBytesThatTheirLengthSays)
{
    const std::string fields = headerElements("23431174") + element("lmSeqNr", "3") + element("padding0", "0");
    EXPECT_EQ(
        toldOf(BCI_LOAD_LMC_DATA, Form::xml, fields + element("lmBlockSize", "4") + element("lmBlock", "abc")),
        "203+3 lmBlock: expected 4 bytes, found 3 [block-length]\n");
    EXPECT_EQ(
        toldOf(BCI_LOAD_LMC_DATA, Form::xml, fields + element("lmBlockSize", "2") + element("lmBlock", "abc")),
        "203+3 lmBlock: expected 2 bytes, found 3 [block-length]\n");
    EXPECT_EQ(
        toldOf(BCI_LOAD_LMC_DATA, Form::xml, fields + element("lmBlockSize", "3") + element("lmBlock", "abc")),
        "");
    EXPECT_EQ(toldOf(BCI_LOAD_LMC_DATA, Form::xml, fields + element("lmBlockSize", "3")),
              "189+0 lmBlock: expected <lmBlock>, found none [missing-element]\n");
}

// ---- limits

TEST(ReadingLimits, TellANumberAboveThemAndGoOn)
{
    EXPECT_EQ(toldOf(BCI_HW_LOG_GET_CFM, Form::text, "23433742:1:2:2:x:"),
              "13+1 length: expected at most 1, found 2 [count-above-bound]\n");
    EXPECT_EQ(walkedOf(BCI_HW_LOG_GET_CFM, Form::text, "23433742:1:2:2:x:"),
              "0+8 sigNo=23433742\n9+1 clientRef=1\n11+1 serverRef=2\n13+1 length=2\n15+1 hwLogData_0=x\nto 17\n");
    EXPECT_EQ(toldOf(BCI_HW_LOG_GET_CFM, Form::text, "23433742:1:2:x:x:"),
              "13+1 length: expected a decimal number, found 'x' [not-a-number]\n");
    EXPECT_EQ(toldOf(BCI_HW_LOG_GET_CFM, Form::xml,
                     headerElements("23433742") + element("length", "7") + element("hwLogData_0", "x")),
              "108+1 length: expected at most 1, found 7 [count-above-bound]\n");
}

// ---- oddities of XML

TEST(ReadingXml, TakesTheClosingTagThatTheWriterPuts)
{
    EXPECT_EQ(
        toldOf(BCI_LOAD_LMC_ACK, Form::xml, headerElements("23431175") + "\t<lmSeqNr>\n\t  3\n\t</loadModule>\n"),
        "");
    EXPECT_EQ(toldOf(BCI_LOAD_LMC_ACK, Form::xml, headerElements("23431175") + element("lmSeqNr", "3")),
              "95+0 lmSeqNr: expected the writers' layout and order of elements, found "
              "'\\x09<lmSeqNr>\\x0A\\x09  3\\x0A\\x09</l' [element-layout]\n")
        << "which is what the reader wants";
}

// ---- pieces

TEST(Record, TellsTheFirstFieldThatARenderingLoses)
{
    const Record record = inspect(rendering(Form::text, "1:2:3:4:5:abc:"));
    EXPECT_EQ(firstLost(record, rendering(Form::text, "1:2:3:4:5:abc:")), nullptr);
    EXPECT_EQ(firstLost(record, rendering(Form::text, "1:2:9:4:6:abc:")), &record.fields[2]);
    EXPECT_EQ(firstLost(record, rendering(Form::text, "1:2:3:x:5:abc:")), &record.fields[3]);
    EXPECT_EQ(firstLost(record, rendering(Form::text, "1:2:3:4:5:abcd:")), &record.fields[5]);
    EXPECT_EQ(firstLost(record, rendering(Form::text, "1:2:3:4:5:abc:6:")), &record.fields[5]) << "more than it";
    EXPECT_EQ(firstLost(record, rendering(Form::text, "1:2:3:4:5:abc:\r\n")), nullptr);
    EXPECT_EQ(firstLost(record, rendering(Form::text, "1:2:3:4:")), &record.fields[4]) << "less than it";
}

TEST(Output, ShowsPiecesOfInputOnOneLineAndCut)
{
    EXPECT_EQ(quote("a b"), "'a b'");
    EXPECT_EQ(quote(bytes("\n\x1B\x7F\0")), "'\\x0A\\x1B\\x7F\\x00'");
    EXPECT_EQ(quote(std::string(40, 'x')), "'" + std::string(40, 'x') + "'");
    EXPECT_EQ(quote(std::string(41, 'x')), "'" + std::string(40, 'x') + "'...");
    EXPECT_EQ(quote(std::string(39, 'x') + "\xC3\xA9"), "'" + std::string(39, 'x') + "'...")
        << "characters stay whole";
    EXPECT_EQ(displayName("-"), "<stdin>");
    EXPECT_EQ(displayName("a\nb"), "a\\x0Ab");
}

TEST(Output, ShowsPrintableCharactersAndEscapesTheRest)
{
    EXPECT_EQ(escaped("a ~\\x41"), "a ~\\\\x41") << "a backslash is doubled";
    EXPECT_EQ(escaped("\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80 \xC2\xA0"),
              "\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80 \xC2\xA0");
    EXPECT_EQ(escaped("\x1F\x7F"), "\\x1F\\x7F");
    EXPECT_EQ(escaped("\xC2\x9B"), "\\xC2\\x9B") << "a control character";
    EXPECT_EQ(escaped("\xC3"), "\\xC3") << "cut";
    EXPECT_EQ(escaped("\xC3z"), "\\xC3z");
    EXPECT_EQ(escaped("\xE2\x82z"), "\\xE2\\x82z");
    EXPECT_EQ(escaped("\xC1\x81"), "\\xC1\\x81") << "overlong";
    EXPECT_EQ(escaped("\xE0\x9F\xBF"), "\\xE0\\x9F\\xBF");
    EXPECT_EQ(escaped("\xF0\x8F\xBF\xBF"), "\\xF0\\x8F\\xBF\\xBF");
    EXPECT_EQ(escaped("\xED\xA0\x80"), "\\xED\\xA0\\x80") << "a surrogate";
    EXPECT_EQ(escaped("\xF4\x90\x80\x80"), "\\xF4\\x90\\x80\\x80") << "beyond the last character";
    EXPECT_EQ(escaped("\xFF\x80"), "\\xFF\\x80");
}

TEST(Output, WritesHexDigits)
{
    EXPECT_EQ(hexDigits(""), "");
    EXPECT_EQ(hexDigits(bytes("\xFF\0\x0A")), "ff000a");
}

TEST(Output, NamesTypesAsTheWireStructuresDo)
{
    EXPECT_STREQ(typeName(Kind::u8), "U8");
    EXPECT_STREQ(typeName(Kind::u16), "U16");
    EXPECT_STREQ(typeName(Kind::s16), "S16");
    EXPECT_STREQ(typeName(Kind::u32), "U32");
    EXPECT_STREQ(typeName(Kind::s32), "S32");
    EXPECT_STREQ(typeName(Kind::text), "text");
}

TEST(Findings, HaveNamesOfTheirOwnThatAreFound)
{
    std::set<std::string> names;
    for (const CodeInfo& one : codes())
    {
        EXPECT_TRUE(names.insert(one.name).second) << one.name;
        EXPECT_EQ(findCode(one.name), &one);
        EXPECT_EQ(&info(one.code), &one);
    }
    EXPECT_EQ(findCode("none"), nullptr);
}

} // namespace

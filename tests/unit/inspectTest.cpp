// The strict walk of the tools, over a signal of its own with every kind of field.

#include "inspect.h"
#include "bciMsgRegistration.h"
#include "output.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <cstring>
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
constexpr Shape kShape = {"Sample", "SampleS", sizeof(SampleS), {kRows}};
constexpr Signal kSignal = {1, "SAMPLE", &kShape};

Rendering rendering(Form form, const std::string& bytes)
{
    return {bytes, false, form, std::endian::big, &kSignal};
}

std::string walked(const Record& record)
{
    std::string text;
    for (const FieldValue& value : record.fields)
    {
        text += std::to_string(value.position) + " " + value.name + "=" + value.value + "\n";
    }
    return text;
}

SampleS structureOf(const Record& record)
{
    SampleS structure;
    EXPECT_EQ(record.structure.size(), sizeof structure);
    std::memcpy(&structure, record.structure.data(), sizeof structure);
    return structure;
}

std::string damageOf(const Rendering& input)
{
    try
    {
        inspect(input);
    }
    catch (const Damage& damage)
    {
        return damage.what();
    }
    return "none";
}

std::string damageInText(const std::string& bytes)
{
    return damageOf(rendering(Form::text, bytes));
}

void expectExtremes(const Record& record)
{
    const SampleS structure = structureOf(record);
    EXPECT_EQ(structure.word, 4294967295U);
    EXPECT_EQ(structure.signedWord, -2147483647 - 1);
    EXPECT_EQ(structure.half, 65535);
    EXPECT_EQ(structure.signedHalf, -32768);
    EXPECT_EQ(structure.byte, 255);
    EXPECT_EQ(std::memcmp(structure.name, "a b", 4), 0);
}

TEST(Inspect, ReadsEveryKindFromTextExactly)
{
    const Record record = inspect(rendering(Form::text, "4294967295:-2147483648:65535:-32768:255:a b:"));
    EXPECT_EQ(walked(record), "0 word=4294967295\n11 signedWord=-2147483648\n23 half=65535\n"
                              "29 signedHalf=-32768\n36 byte=255\n40 name=a b\n");
    expectExtremes(record);
}

TEST(Inspect, ReadsEveryKindFromBinary)
{
    const Record record =
        inspect(rendering(Form::binary, std::string("\xFF\xFF\xFF\xFF\x80\0\0\0\xFF\xFF\x80\0\xFF"
                                                    "a b\0",
                                                    17)));
    EXPECT_EQ(walked(record), "0 word=4294967295\n4 signedWord=-2147483648\n8 half=65535\n"
                              "10 signedHalf=-32768\n12 byte=255\n13 name=a b\n");
    expectExtremes(record);
}

TEST(Inspect, ReadsEveryKindFromXmlExactly)
{
    const Record record = inspect(rendering(
        Form::xml, "<word>4294967295</word><signedWord>\n\t  -2147483648\n\t</signedWord><half>65535</half>"
                   "<byte> 255 </byte><signedHalf>-32768</signedHalf><name>a b</name>"));
    EXPECT_EQ(walked(record), "6 word=4294967295\n39 signedWord=-2147483648\n71 half=65535\n"
                              "113 signedHalf=-32768\n90 byte=255\n138 name=a b\n");
    expectExtremes(record);
}

TEST(Inspect, TurnsOnlyTheFirstWordOfALittleEndianHost)
{
    Rendering input = rendering(Form::binary, std::string("\4\3\2\1\0\0\0\1\0\2\0\3\4abc\0", 17));
    input.firstWord = std::endian::little;
    EXPECT_EQ(walked(inspect(input)),
              "0 word=16909060\n4 signedWord=1\n8 half=2\n10 signedHalf=3\n12 byte=4\n13 name=abc\n");
}

TEST(Inspect, TellsWhereANumberInTextIsNone)
{
    EXPECT_EQ(damageInText("1:x:"), ":1:3: signedWord: not a decimal number: 'x'");
    EXPECT_EQ(damageInText("1:2x4:"), ":1:4: signedWord: not a decimal number: '2x4'");
    EXPECT_EQ(damageInText("1::"), ":1:3: signedWord: not a decimal number: ''");
    EXPECT_EQ(damageInText("1: 2:"), ":1:3: signedWord: not a decimal number: ' 2'");
    EXPECT_EQ(damageInText("1:+2:"), ":1:3: signedWord: not a decimal number: '+2'");
    EXPECT_EQ(damageInText("1:99999999999999999999x:"),
              ":1:23: signedWord: not a decimal number: '99999999999999999999x'");
}

TEST(Inspect, HoldsEveryNumberAgainstItsRange)
{
    EXPECT_EQ(damageInText("4294967296:"), ":1:1: word: '4294967296' is not within 0 ... 4294967295");
    EXPECT_EQ(damageInText("-1:"), ":1:1: word: '-1' is not within 0 ... 4294967295");
    EXPECT_EQ(damageInText("1:2147483648:"),
              ":1:3: signedWord: '2147483648' is not within -2147483648 ... 2147483647");
    EXPECT_EQ(damageInText("1:2:65536:"), ":1:5: half: '65536' is not within 0 ... 65535");
    EXPECT_EQ(damageInText("1:2:3:-32769:"), ":1:7: signedHalf: '-32769' is not within -32768 ... 32767");
    EXPECT_EQ(damageInText("1:2:3:4:256:"), ":1:9: byte: '256' is not within 0 ... 255");
    EXPECT_EQ(damageInText("99999999999999999999:"),
              ":1:1: word: '99999999999999999999' is not within 0 ... 4294967295");
}

TEST(Inspect, TellsATextThatDoesNotFit)
{
    EXPECT_EQ(damageInText("1:2:3:4:5:abcd:"), ":1:14: name: more than the 3 characters that fit");
    EXPECT_EQ(damageInText("1:2:3:4:5:abc:"), "none");
}

TEST(Inspect, TellsWhereTextEndsEarly)
{
    EXPECT_EQ(damageInText("1:2:3"), ":1:6: half: the input ends before the ':' behind this field");
    EXPECT_EQ(damageInText("1:2:"), ":1:5: half: the input ends before the ':' behind this field");
}

TEST(Inspect, TellsWhereBinaryEndsEarly)
{
    EXPECT_EQ(damageOf(rendering(Form::binary, std::string("\0\0\0\1\0\0", 6))),
              ": offset 4: signedWord: the input ends within this field, after 2 of 4 bytes");
}

TEST(Inspect, TellsAMissingElementAtTheEndOfTheDocument)
{
    EXPECT_EQ(damageOf(rendering(Form::xml, "<word>1</word>\n<signedWord>2</signedWord>\n")),
              ":3:1: half: no such element");
}

TEST(Inspect, TellsAnElementThatIsNotClosed)
{
    EXPECT_EQ(damageOf(rendering(Form::xml, "<word>1</word>\n <signedWord>2<half>3</half>")),
              ":2:2: signedWord: this element is not closed");
}

TEST(Inspect, TellsAZeroByteThatEndsTheDocument)
{
    EXPECT_EQ(damageOf(rendering(Form::xml, std::string("<word>1</word>\0<signedWord>2</signedWord>", 41))),
              ":1:15: signedWord: no such element before the zero byte here");
}

TEST(Inspect, CountsLinesAndColumns)
{
    EXPECT_EQ(damageOf(rendering(Form::xml, "<word>1</word>\n<signedWord>\n\t  2x\n\t</signedWord>\n")),
              ":3:5: signedWord: not a decimal number: '2x'");
}

TEST(Inspect, CountsBytesInWhatCameAsHex)
{
    Rendering input = rendering(Form::text, "1:x:");
    input.fromHex = true;
    EXPECT_EQ(damageOf(input), ": offset 2: signedWord: not a decimal number: 'x'");
}

TEST(Inspect, AllowsZerosAndInTextWhiteSpaceBehindTheLastField)
{
    EXPECT_EQ(damageInText(std::string("1:2:3:4:5:abc:\r\n\0\0", 18)), "none");
    EXPECT_EQ(damageInText("1:2:3:4:5:abc:\n6"), ":2:1: name: more input behind this field, the last");
    const std::string binary("\0\0\0\1\0\0\0\1\0\2\0\3\4abc\0", 17);
    EXPECT_EQ(damageOf(rendering(Form::binary, binary + std::string(3, '\0'))), "none");
    EXPECT_EQ(damageOf(rendering(Form::binary, binary + "\n")),
              ": offset 17: name: more input behind this field, the last");
}

// Messages that are more than a run of fields; how they read otherwise is tested at the command.

std::string damageIn(SIGSELECT number, Form form, const std::string& bytes)
{
    return damageOf({bytes, false, form, std::endian::big, bci::findSignal(number)});
}

std::string header(const char* number)
{
    return std::string(number, 4) + std::string("\0\0\0\1\0\0\0\2", 8);
}

TEST(Inspect, TellsALogEntryInBinaryWithoutItsZero)
{
    const std::string fields = header("\x01\x65\x92\x0A") + std::string(16, 't') + std::string(7, '\0');
    EXPECT_EQ(
        damageIn(BCI_HW_LOG_SET_REQ, Form::binary, fields + "\2" + std::string("a\0", 2) + std::string(422, 'b')),
        ": offset 38: hwLogData_1: no zero byte ends this entry");
    EXPECT_EQ(damageIn(BCI_HW_LOG_SET_REQ, Form::binary, fields + "\2" + std::string(423, 'a') + '\0'),
              ": offset 32: length: 2 is more than the 1 that there is room for");
    EXPECT_EQ(damageIn(BCI_HW_LOG_SET_REQ, Form::binary, fields + "\1" + std::string(423, '\0')),
              ": offset 36: hwLogData_: the input ends within this field, after 423 of 424 bytes");
    EXPECT_EQ(damageIn(BCI_HW_LOG_SET_REQ, Form::binary, fields + "\1" + std::string(423, 'a') + '\0'), "none");
}

TEST(Inspect, TellsALogEntryInTextThatTheLogHasNoRoomFor)
{
    const std::string fields = "23433738:1:2:t:0:1:";
    EXPECT_EQ(damageIn(BCI_HW_LOG_SET_REQ, Form::text, fields + "2:a:" + std::string(421, 'b') + ":"), "none");
    EXPECT_EQ(damageIn(BCI_HW_LOG_SET_REQ, Form::text, fields + "2:a:" + std::string(422, 'b') + ":"),
              ":1:445: hwLogData_1: more than the 421 characters that fit");
    EXPECT_EQ(damageIn(BCI_HW_LOG_SET_REQ, Form::text, fields + "2:" + std::string(423, 'a') + "::"),
              ":1:20: length: 2 is more than the 1 that there is room for");
}

TEST(Inspect, WantsAnElementOfItsOwnForEachOfTwoCapabilities)
{
    std::string document = "<sigNo>23429128</sigNo><clientRef>1</clientRef><serverRef>2</serverRef>"
                           "<numberOfBoardCapabilities>2</numberOfBoardCapabilities><padding0>0</padding0>"
                           "<boardCapabilityIdentity_0>4</boardCapabilityIdentity_0>"
                           "<boardCapabilityIdentity_1>4</boardCapabilityIdentity_1>"
                           "<boardCapabilityLength_0>0</boardCapabilityLength_0>"
                           "<boardCapabilityLength_1>0</boardCapabilityLength_1>"
                           "<numOfEthTermHosts>0</numOfEthTermHosts>"
                           "<ethTermSupportPadding0>7</ethTermSupportPadding0>\n";
    EXPECT_EQ(damageIn(BCI_GET_CAPABILITIES_CFM, Form::xml, document), ":2:1: numOfEthTermHosts: no such element");
    document += "<numOfEthTermHosts>0</numOfEthTermHosts><ethTermSupportPadding0>8";
    EXPECT_EQ(damageIn(BCI_GET_CAPABILITIES_CFM, Form::xml, document),
              ":2:41: ethTermSupportPadding0: this element is not closed");
    EXPECT_EQ(damageIn(BCI_GET_CAPABILITIES_CFM, Form::xml, document + "</ethTermSupportPadding0>"), "none");
}

TEST(Inspect, TellsWhereAListOrABlockInBinaryEndsEarly)
{
    const std::string fault = header("\x01\x65\x80\x0E") + std::string("\0\3\0\1", 4);
    EXPECT_EQ(damageIn(BCI_FAULT_CEASE_IND, Form::binary, fault + std::string("\0\1\0\2\0", 5)),
              ": offset 21: additionalData_0: the input ends after 3 of the 6 bytes that follow this field");
    EXPECT_EQ(damageIn(BCI_FAULT_CEASE_IND, Form::binary, fault + std::string(10, '\0')), "none");
    const std::string block = header("\x01\x65\x88\x06") + std::string("\0\3\0\0\0\0\0\3", 8);
    EXPECT_EQ(damageIn(BCI_LOAD_LMC_DATA, Form::binary, block + "ab"),
              ": offset 20: lmBlock: the input ends within this field, after 2 of 3 bytes");
    EXPECT_EQ(damageIn(BCI_LOAD_LMC_DATA, Form::binary, block + "abc"), "none");
}

TEST(Inspect, ShowsPiecesOfInputOnOneLineAndCut)
{
    EXPECT_EQ(quote("a b"), "'a b'");
    EXPECT_EQ(quote(std::string("\n\x1B\x7F\0", 4)), "'\\x0A\\x1B\\x7F\\x00'");
    EXPECT_EQ(quote(std::string(40, 'x')), "'" + std::string(40, 'x') + "'");
    EXPECT_EQ(quote(std::string(41, 'x')), "'" + std::string(40, 'x') + "'...");
    EXPECT_EQ(quote(std::string(39, 'x') + "\xC3\xA9"), "'" + std::string(39, 'x') + "'...")
        << "characters stay whole";
    EXPECT_EQ(displayName("-"), "<stdin>");
    EXPECT_EQ(displayName("a\nb"), "a\\x0Ab");
}

TEST(Inspect, ShowsPrintableCharactersAndEscapesTheRest)
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

TEST(Inspect, TellsTheFirstFieldThatARenderingLoses)
{
    const Record record = inspect(rendering(Form::text, "1:2:3:4:5:abc:"));
    EXPECT_EQ(firstLost(record, rendering(Form::text, "1:2:3:4:5:abc:")), nullptr);
    EXPECT_EQ(firstLost(record, rendering(Form::text, "1:2:9:4:6:abc:")), &record.fields[2]);
    EXPECT_EQ(firstLost(record, rendering(Form::text, "1:2:3:x:5:abc:")), &record.fields[3]);
    EXPECT_EQ(firstLost(record, rendering(Form::text, "1:2:3:4:5:abc:6:")), &record.fields[5]) << "more than it";
}

TEST(Inspect, WritesHexInLinesOfSixteenBytes)
{
    EXPECT_EQ(toHex(""), "");
    EXPECT_EQ(toHex("\xFF"), "ff\n");
    EXPECT_EQ(toHex(std::string(16, '\x0A')), "0a 0a 0a 0a 0a 0a 0a 0a 0a 0a 0a 0a 0a 0a 0a 0a\n");
    EXPECT_EQ(toHex(std::string(17, '\x0A')), "0a 0a 0a 0a 0a 0a 0a 0a 0a 0a 0a 0a 0a 0a 0a 0a\n0a\n");
}

TEST(Inspect, NamesTypesAsTheWireStructuresDo)
{
    EXPECT_STREQ(typeName(Kind::u8), "U8");
    EXPECT_STREQ(typeName(Kind::u16), "U16");
    EXPECT_STREQ(typeName(Kind::s16), "S16");
    EXPECT_STREQ(typeName(Kind::u32), "U32");
    EXPECT_STREQ(typeName(Kind::s32), "S32");
    EXPECT_STREQ(typeName(Kind::text), "text");
}

} // namespace

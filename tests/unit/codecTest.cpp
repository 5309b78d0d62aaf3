// The engine over a table of its own, which has every kind of field and every oddity, in both ways that rows are
// used.

#include "codec/codec.h"
#include "codec/constants.h"
#include "codec/tagLookup.h"
#include "logCapture.h"
#include "sampleRows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace
{

using namespace bci::codec;
using commonStream::istream_binary;
using commonStream::istream_text;
using commonStream::ostream_binary;
using commonStream::ostream_text;

SampleS sample()
{
    return {4000000000U, -7, 65535, -32768, 200, {'a', ' ', 'b', 0, 'z'}, 1, 2, {'x', 'y', 0}};
}

SampleS pattern()
{
    SampleS structure;
    std::memset(&structure, 0x5A, sizeof structure);
    return structure;
}

// What an operation writes into a buffer of 500 bytes.
template <typename Stream, typename Write>
std::string written(Write write)
{
    std::vector<char> buffer(500);
    Stream stream;
    stream.attachBuffer(buffer.data(), static_cast<unsigned int>(buffer.size()));
    EXPECT_TRUE(write(stream));
    EXPECT_EQ(stream.status(), 0U);
    return {buffer.data(), stream.length()};
}

template <typename Rows>
bool readXmlText(std::string document, const Rows& rows, void* structure, const Subscripts* subscripts = nullptr,
                 unsigned int count = 1)
{
    istream_text stream;
    stream.attachBuffer(document.data(), static_cast<unsigned int>(document.size()));
    Elements elements(stream);
    const bool result = subscripts != nullptr ? readXml(rows, structure, elements, subscripts, count)
                                              : readXml(rows, structure, elements);
    EXPECT_EQ(stream.tellg(), 0U);
    EXPECT_EQ(stream.status(), 0U);
    return result;
}

std::string elements()
{
    return "<word>4000000000</word><signedWord>-7</signedWord><half>65535</half><signedHalf>-32768</signedHalf>"
           "<byte>200</byte><name>a b</name><bare>1</bare><foreign>2</foreign>";
}

constexpr Fields kWord = kSample.part(0, 1);
constexpr Fields kSignedWord = kSample.part(1, 1);
constexpr Fields kSmallNumbers = kSample.part(2, 3);
constexpr Fields kName = kSample.part(5, 1);
constexpr Fields kNameAndBare = kSample.part(5, 2);
constexpr Fields kForeign = kSample.part(7, 1);

constexpr Field kThreeNumberRows[] = {{0, 2, Kind::u16, Oddity::none, 1, "one"},
                                      {2, 2, Kind::u16, Oddity::none, 2, "two"},
                                      {4, 2, Kind::u16, Oddity::none, 3, "three"}};
constexpr Fields kThreeNumbers = {"sampleMsg", kThreeNumberRows};

constexpr Field kQuotingRows[] = {BCI_FIELD(SampleS, half, "half", 286, Oddity::quotesDocument)};
constexpr Fields kQuoting = {"sampleMsg", kQuotingRows};

// With a gap between them, and the first one last.
constexpr Field kSwappedRows[] = {BCI_FIELD(SampleS, signedHalf, "signedHalf", 1),
                                  BCI_FIELD(SampleS, word, "word", 8)};
constexpr Fields kSwapped = {"sampleMsg", kSwappedRows};

template <typename Way>
class Codec : public testing::Test
{
};

class NameOfWay
{
public:
    template <typename Way>
    static std::string GetName(int /*index*/) // NOLINT: the name that the test framework asks for
    {
        return Way::kName;
    }
};

using Ways = testing::Types<AsTable, AsConstants>;
TYPED_TEST_SUITE(Codec, Ways, NameOfWay);

TYPED_TEST(Codec, WritesEveryKindAsText)
{
    const SampleS structure = sample();
    EXPECT_EQ(written<ostream_text>([&](ostream_text& stream)
                                    { return writeText(rowsFor<TypeParam, kSample>, &structure, stream); }),
              "4000000000:-7:65535:-32768:200:a b:1:2:xy:");
}

TYPED_TEST(Codec, ReadsEveryKindFromText)
{
    std::string text = "4000000000:-7:65535:-32768:200:a b:1:2:xy: ";
    SampleS structure = pattern();
    istream_text stream;
    stream.attachBuffer(text.data(), static_cast<unsigned int>(text.size()));
    EXPECT_TRUE(readText(rowsFor<TypeParam, kSample>, &structure, stream));
    EXPECT_EQ(stream.tellg(), 42U);
    EXPECT_EQ(stream.status(), 0U);
    EXPECT_EQ(structure.word, 4000000000U);
    EXPECT_EQ(structure.signedWord, -7);
    EXPECT_EQ(structure.half, 65535);
    EXPECT_EQ(structure.signedHalf, -32768);
    EXPECT_EQ(structure.byte, 200);
    EXPECT_EQ(std::memcmp(structure.name, "a b\0\x5A", 5), 0);
    EXPECT_EQ(structure.bare, 1);
    EXPECT_EQ(structure.foreign, 2);
    EXPECT_EQ(std::memcmp(structure.skipped, "xy", 3), 0);
}

TYPED_TEST(Codec, TakesWhateverStandsBehindAFieldForItsDelimiter)
{
    std::string text = "1;2?3x";
    U16 numbers[3] = {};
    istream_text stream;
    stream.attachBuffer(text.data(), static_cast<unsigned int>(text.size()));
    EXPECT_TRUE(readText(rowsFor<TypeParam, kThreeNumbers>, numbers, stream));
    EXPECT_EQ(numbers[0], 1);
    EXPECT_EQ(numbers[1], 2);
    EXPECT_EQ(numbers[2], 0) << "'x' behind a digit makes the number 0";
    EXPECT_EQ(stream.tellg(), 5U);
    EXPECT_EQ(stream.status(), 2U);
}

TYPED_TEST(Codec, CutsATextThatIsLongerThanItsFieldAndMisreadsWhatFollows)
{
    std::string text = "abcdefg:";
    SampleS structure = pattern();
    istream_text stream;
    stream.attachBuffer(text.data(), static_cast<unsigned int>(text.size()));
    EXPECT_TRUE(readText(rowsFor<TypeParam, kNameAndBare>, &structure, stream));
    EXPECT_EQ(std::memcmp(structure.name, "abcd", 5), 0);
    EXPECT_EQ(structure.bare, 0) << "the delimiter's place was 'e', so the number starts at \"fg\"";
}

TYPED_TEST(Codec, WritesEveryKindAsBinaryWithTextsWhole)
{
    const SampleS structure = sample();
    const std::string binary = written<ostream_binary>(
        [&](ostream_binary& stream) { return writeBinary(rowsFor<TypeParam, kSample>, &structure, stream); });
    ASSERT_EQ(binary.size(), 25U);
    EXPECT_EQ(std::memcmp(binary.data(), &structure.word, 4), 0) << "host order at position 0";
    EXPECT_EQ(binary.substr(4), std::string("\xFF\xFF\xFF\xF9\xFF\xFF\x80\x00\xC8"
                                            "a b\0z\0\1\0\2xy\0",
                                            21));
}

TYPED_TEST(Codec, ReadsEveryKindFromBinary)
{
    std::string binary("\1\1\1\1\xFF\xFF\xFF\xF9\xFF\xFF\x80\x00\xC8"
                       "a b\0z\0\1\0\2xy\0",
                       25);
    SampleS structure = pattern();
    istream_binary stream;
    stream.attachBuffer(binary.data(), static_cast<unsigned int>(binary.size()));
    EXPECT_TRUE(readBinary(rowsFor<TypeParam, kSample>, &structure, stream));
    EXPECT_EQ(stream.tellg(), 25U);
    EXPECT_EQ(stream.status(), 1U);
    EXPECT_EQ(structure.word, 0x01010101U);
    EXPECT_EQ(structure.signedWord, -7);
    EXPECT_EQ(structure.half, 65535);
    EXPECT_EQ(structure.signedHalf, -32768);
    EXPECT_EQ(structure.byte, 200);
    EXPECT_EQ(std::memcmp(structure.name, "a b\0z", 5), 0);
    EXPECT_EQ(structure.bare, 1);
    EXPECT_EQ(structure.foreign, 2);
    EXPECT_EQ(std::memcmp(structure.skipped, "xy", 3), 0);
}

TYPED_TEST(Codec, WritesEveryKindAndOddityAsXml)
{
    const SampleS structure = sample();
    EXPECT_EQ(written<ostream_text>([&](ostream_text& stream)
                                    { return writeXml(rowsFor<TypeParam, kSample>, &structure, stream); }),
              "\t<word>\n\t  4000000000\n\t</word>\n"
              "\t<signedWord>\n\t  -7\n\t</signedWord>\n"
              "\t<half>\n\t  65535\n\t</half>\n"
              "\t<signedHalf>\n\t  -32768\n\t</signedHalf>\n"
              "\t<byte>\n\t  200\n\t</byte>\n"
              "\t<name>\n\t  a b\n\t</name>\n"
              "<bare>\n\t   1\n\t</bare>\n"
              "\t<foreign>\n\t  2\n\t</other>\n"
              "\t<skipped>\n\t  xy\n\t</skipped>\n");
}

TYPED_TEST(Codec, ReadsEveryKindFromXmlButNotWhatIsPassedOver)
{
    SampleS structure = pattern();
    EXPECT_TRUE(readXmlText(elements() + "<skipped>no</skipped>", rowsFor<TypeParam, kSample>, &structure));
    EXPECT_EQ(structure.word, 2147483647U) << "numbers go through a signed word";
    EXPECT_EQ(structure.signedWord, -7);
    EXPECT_EQ(structure.half, 65535);
    EXPECT_EQ(structure.signedHalf, -32768);
    EXPECT_EQ(structure.byte, 200);
    EXPECT_EQ(std::memcmp(structure.name, "a b\0\x5A", 5), 0);
    EXPECT_EQ(structure.bare, 1);
    EXPECT_EQ(structure.foreign, 2);
    EXPECT_EQ(std::memcmp(structure.skipped, "ZZZ", 3), 0);
}

constexpr Field kByteRows[] = {BCI_FIELD(SampleS, byte, "byte", 1)};
constexpr Fields kByte = {"sampleMsg", kByteRows};

TYPED_TEST(Codec, FailsForASingleByteThatHasNoRoom)
{
    SampleS structure = pattern();
    structure.byte = 'x';
    char buffer[1] = {'?'};
    ostream_binary stream;
    stream.attachBuffer(buffer, 1);
    stream.put('!');
    EXPECT_TRUE(writeBinary(rowsFor<TypeParam, kByte>, &structure, stream));
    EXPECT_EQ(buffer[0], '!');
    EXPECT_EQ(stream.status(), 3U);
}

TYPED_TEST(Codec, FailsForASingleByteThatIsNotThere)
{
    SampleS structure = pattern();
    structure.byte = 'x';
    char buffer[1] = {'?'};
    istream_binary stream;
    stream.attachBuffer(buffer, 1);
    stream.seekg(1);
    stream.setgood();
    EXPECT_TRUE(readBinary(rowsFor<TypeParam, kByte>, &structure, stream));
    EXPECT_EQ(structure.byte, 'x');
    EXPECT_EQ(stream.status(), 3U);
}

struct BehindS
{
    U32 before;
    U32 number;
};
constexpr Field kBehindRows[] = {BCI_FIELD(BehindS, number, "number", 1)};
constexpr Fields kBehind = {"sampleMsg", kBehindRows};

TYPED_TEST(Codec, KeepsTheOrderOfAFirstNumberThatStandsElsewhereInItsStructure)
{
    BehindS structure = {0x11121314, 0x21222324};
    char buffer[4];
    ostream_binary out;
    out.attachBuffer(buffer, 4);
    EXPECT_TRUE(writeBinary(rowsFor<TypeParam, kBehind>, &structure, out));
    EXPECT_EQ(std::memcmp(buffer, &structure.number, 4), 0);

    BehindS read = {0x11121314, 0};
    istream_binary in;
    in.attachBuffer(buffer, 4);
    EXPECT_TRUE(readBinary(rowsFor<TypeParam, kBehind>, &read, in));
    EXPECT_EQ(read.number, 0x21222324U);
    EXPECT_EQ(read.before, 0x11121314U);
}

TYPED_TEST(Codec, TruncatesNumbersFromXmlToTheirField)
{
    SampleS structure = pattern();
    EXPECT_TRUE(readXmlText("<half>65537</half><signedHalf>98304</signedHalf><byte>-1</byte>",
                            rowsFor<TypeParam, kSmallNumbers>, &structure));
    EXPECT_EQ(structure.half, 1);
    EXPECT_EQ(structure.signedHalf, -32768);
    EXPECT_EQ(structure.byte, 255);
}

TYPED_TEST(Codec, CutsATextFromXmlToItsFieldAndTerminatesIt)
{
    SampleS structure = pattern();
    EXPECT_TRUE(readXmlText("<name>abcdef</name><bare>7</bare>", rowsFor<TypeParam, kNameAndBare>, &structure));
    EXPECT_EQ(std::memcmp(structure.name, "abcd", 5), 0);
    EXPECT_EQ(structure.bare, 7);
}

TYPED_TEST(Codec, NeverLooksPastATextWithoutTerminator)
{
    SampleS structure = sample();
    std::memcpy(structure.name, "abcde", 5);
    constexpr const auto& name = rowsFor<TypeParam, kName>;
    EXPECT_EQ(written<ostream_text>([&](ostream_text& stream) { return writeText(name, &structure, stream); }),
              "abcde:");
    EXPECT_EQ(written<ostream_text>([&](ostream_text& stream) { return writeXml(name, &structure, stream); }),
              "\t<name>\n\t  abcde\n\t</name>\n");
}

TYPED_TEST(Codec, LooksForAClosingTagOfTheSameNameWhateverTheWritersDo)
{
    const SampleS source = sample();
    const std::string document = written<ostream_text>(
        [&](ostream_text& stream) { return writeXml(rowsFor<TypeParam, kForeign>, &source, stream); });
    ASSERT_EQ(document, "\t<foreign>\n\t  2\n\t</other>\n");
    SampleS structure = pattern();
    EXPECT_FALSE(readXmlText(document, rowsFor<TypeParam, kForeign>, &structure));
    EXPECT_EQ(takeLog(), (Log{{6, "[src/sampleMsg:59] tag %s not found", {"foreign"}}}));
    EXPECT_EQ(structure.foreign, 0x5A5A);
    EXPECT_TRUE(readXmlText("\t<foreign>\n\t  3\n\t</foreign>\n", rowsFor<TypeParam, kForeign>, &structure));
    EXPECT_EQ(structure.foreign, 3);
}

TYPED_TEST(Codec, LogsTheFirstMissingElementAndStops)
{
    for (const Field& missing : kSampleRows)
    {
        SCOPED_TRACE(missing.tag);
        const bool passedOver = missing.oddity == Oddity::notReadFromXml;
        std::string document = elements();
        const std::string tag = std::string("<") + missing.tag + ">";
        if (!passedOver)
        {
            document.replace(document.find(tag), tag.size(), "<absent>");
        }
        SampleS structure = pattern();
        EXPECT_EQ(readXmlText(document, rowsFor<TypeParam, kSample>, &structure), passedOver);
        const SampleS untouched = pattern();
        for (const Field& field : kSampleRows)
        {
            const bool read = field.offset < missing.offset && field.oddity != Oddity::notReadFromXml;
            const char* const now = reinterpret_cast<const char*>(&structure) + field.offset;
            const char* const before = reinterpret_cast<const char*>(&untouched) + field.offset;
            EXPECT_EQ(std::memcmp(now, before, field.size) != 0, read) << field.tag;
        }
        const Log log = takeLog();
        if (!passedOver)
        {
            ASSERT_EQ(log.size(), 1U);
            EXPECT_EQ(log[0].arguments, std::vector<std::string>{missing.tag});
        }
    }
}

TYPED_TEST(Codec, ReadsANumberFromXmlBehindAnyCharacter)
{
    for (int code = 1; code < 256; ++code)
    {
        const char ch = static_cast<char>(code);
        if (ch == '<')
        {
            continue;
        }
        SCOPED_TRACE(code);
        const std::string spaces = "\t\n\v\f\r +";
        const S32 expected = ch >= '0' && ch <= '9'                 ? (ch - '0') * 10 + 5
                             : ch == '-'                            ? -5
                             : spaces.find(ch) != std::string::npos ? 5
                                                                    : 0;
        SampleS structure = pattern();

        EXPECT_TRUE(readXmlText("\t<signedWord>\n\t  " + std::string(1, ch) + "5\n\t</signedWord>\n",
                                rowsFor<TypeParam, kSignedWord>, &structure));

        EXPECT_EQ(structure.signedWord, expected);
    }
}

TYPED_TEST(Codec, ComposesTheLogLineOfAMissingElement)
{
    SampleS structure = pattern();
    EXPECT_FALSE(readXmlText("<>", rowsFor<TypeParam, kWord>, &structure));
    EXPECT_EQ(takeLog(), (Log{{6, "[src/sampleMsg:10] tag %s not found", {"word"}}}));
    EXPECT_FALSE(readXmlText("<>", rowsFor<TypeParam, kSignedWord>, &structure));
    EXPECT_EQ(takeLog(), (Log{{6, "[src/sampleMsg:17] tag tag %s not found", {"signedWord"}}}));
    EXPECT_FALSE(readXmlText("<byte>1</byte> %s", rowsFor<TypeParam, kQuoting>, &structure));
    EXPECT_EQ(takeLog(), (Log{{6, "[src/sampleMsg:286] tag %s not found buf %s", {"half", "<byte>1</byte> %s"}}}));
}

TEST(CodecLookup, FindsAnElementThatAnotherNameCloses)
{
    TagContent content = {};
    const char* const document = "<a>1</b><a>2</a>";
    EXPECT_EQ(findTag(document, "a", "b", content), document + 8);
    EXPECT_EQ(std::string(content.begin, content.end), "1");
    EXPECT_EQ(findTag(document, "a", content), document + 16);
    EXPECT_EQ(std::string(content.begin, content.end), "1</b><a>2");
    EXPECT_EQ(findTag(document, "b", "a", content), nullptr);
}

struct ElementS
{
    U16 single;
    U16 twofold;
    U16 plain;
};

constexpr Field kElementRows[] = {
    BCI_FIELD(ElementS, single, "single_", 70),
    BCI_FIELD(ElementS, twofold, "twofold__", 80),
    BCI_FIELD(ElementS, plain, "plain", 90),
};
constexpr Fields kElement = {"sampleMsg", kElementRows};

TYPED_TEST(Codec, PutsIndexesIntoTheNamesOfElements)
{
    const ElementS structure = {5, 6, 7};
    const Subscripts subscripts = {1, 12};
    EXPECT_EQ(written<ostream_text>(
                  [&](ostream_text& stream)
                  {
                      TextWriter out(stream);
                      writeXml(rowsFor<TypeParam, kElement>, &structure, out, &subscripts);
                      return true;
                  }),
              "\t<single_1>\n\t  5\n\t</single_1>\n"
              "\t<twofold_1_12>\n\t  6\n\t</twofold_1_12>\n"
              "\t<plain>\n\t  7\n\t</plain>\n");
}

TYPED_TEST(Codec, FindsElementsByTheirIndexes)
{
    ElementS structure = {};
    const Subscripts subscripts = {0, 9};
    EXPECT_TRUE(readXmlText("<twofold_0_9>3</twofold_0_9><single_0>4</single_0><plain>5</plain>",
                            rowsFor<TypeParam, kElement>, &structure, &subscripts));
    EXPECT_EQ(structure.single, 4);
    EXPECT_EQ(structure.twofold, 3);
    EXPECT_EQ(structure.plain, 5);
}

TYPED_TEST(Codec, NamesTheIndexesOfAMissingElement)
{
    ElementS structure = {};
    const Subscripts subscripts = {1, 3};
    EXPECT_FALSE(readXmlText("<single_1>4</single_1>", rowsFor<TypeParam, kElement>, &structure, &subscripts));
    EXPECT_EQ(takeLog(), (Log{{6, "[src/sampleMsg:80] tag %s not found", {"twofold_1_3"}}}));
}

// Three elements of a list, as they lie in the structure.
std::vector<char> threeElements()
{
    std::vector<char> list;
    for (const int number : {1, -20, 300})
    {
        const U16 first = static_cast<U16>(number);
        const S32 second = -number;
        const char third[6] = {'t', static_cast<char>('0' + std::abs(number) % 7), 0, '?', '?', 'e'};
        list.resize(list.size() + 12);
        std::memcpy(&list.end()[-12], &first, 2);
        std::memcpy(&list.end()[-10], &second, 4);
        std::memcpy(&list.end()[-6], third, 6);
    }
    return list;
}

TYPED_TEST(Codec, WritesAndReadsTheElementsOfAList)
{
    const std::vector<char> list = threeElements();
    EXPECT_EQ(written<ostream_text>(
                  [&](ostream_text& stream)
                  {
                      TextWriter out(stream);
                      writeText(rowsFor<TypeParam, kList>, list.data(), out, 3);
                      return true;
                  }),
              "1:-1:t1:65516:20:t6:300:-300:t6:");
    std::string binary = written<ostream_binary>(
        [&](ostream_binary& stream)
        {
            BinaryWriter out(stream);
            writeBinary(rowsFor<TypeParam, kList>, list.data(), out, 3);
            return true;
        });
    EXPECT_EQ(binary, std::string("\0\1\xFF\xFF\xFF\xFFt1\0??e"
                                  "\xFF\xEC\0\0\0\x14t6\0??e"
                                  "\1\x2C\xFF\xFF\xFE\xD4t6\0??e",
                                  36));

    std::vector<char> read(36);
    {
        istream_binary stream;
        stream.attachBuffer(binary.data(), 36);
        BinaryReader in(stream);
        readBinary(rowsFor<TypeParam, kList>, read.data(), in, 3);
    }
    EXPECT_EQ(read, list);
    std::fill(read.begin(), read.end(), '?');
    std::string text = "1:-1:t1:65516:20:t6:300:-300:t6:";
    {
        istream_text stream;
        stream.attachBuffer(text.data(), static_cast<unsigned int>(text.size()));
        TextReader in(stream);
        readText(rowsFor<TypeParam, kList>, read.data(), in, 3);
    }
    std::vector<char> expected = list;
    expected[11] = expected[23] = expected[35] = '?'; // behind a text nothing is touched
    EXPECT_EQ(read, expected);
}

TYPED_TEST(Codec, NothingOfAListWithoutElementsIsWrittenOrRead)
{
    char buffer[4] = {'1', ':', '2', ':'};
    char structure[12] = "?";
    ostream_text text;
    text.attachBuffer(buffer, 4);
    ostream_binary binary;
    binary.attachBuffer(buffer, 4);
    istream_text textIn;
    textIn.attachBuffer(buffer, 4);
    istream_binary binaryIn;
    binaryIn.attachBuffer(buffer, 4);
    const Subscripts subscripts = {1, 2};
    {
        TextWriter out(text);
        writeText(rowsFor<TypeParam, kList>, structure, out, 0);
        writeXml(rowsFor<TypeParam, kList>, structure, out, &subscripts, 0);
        BinaryWriter binaryOut(binary);
        writeBinary(rowsFor<TypeParam, kList>, structure, binaryOut, 0);
        TextReader in(textIn);
        readText(rowsFor<TypeParam, kList>, structure, in, 0);
        BinaryReader fromBinary(binaryIn);
        readBinary(rowsFor<TypeParam, kList>, structure, fromBinary, 0);
    }
    EXPECT_TRUE(readXmlText("<", rowsFor<TypeParam, kList>, structure, &subscripts, 0));
    EXPECT_EQ(std::string(buffer, 4), "1:2:");
    EXPECT_EQ(structure[0], '?');
    EXPECT_EQ(text.length() + binary.length() + textIn.tellg() + binaryIn.tellg(), 0U);
    EXPECT_EQ(text.status() | binary.status() | textIn.status() | binaryIn.status(), 0U);
}

TYPED_TEST(Codec, CountsTheSecondIndexOn)
{
    const std::vector<char> list = threeElements();
    const auto xml = [&list](unsigned int first, unsigned int second)
    {
        return written<ostream_text>(
            [&](ostream_text& stream)
            {
                TextWriter out(stream);
                const Subscripts subscripts = {first, second};
                writeXml(rowsFor<TypeParam, kList>, list.data(), out, &subscripts, 2);
                return true;
            });
    };
    const auto expected = [](const std::string& one, const std::string& two)
    {
        return "\t<n_" + one + ">\n\t  1\n\t</n_" + one + ">\n" + //
               "\t<signedNumber_" + one + ">\n\t  -1\n\t</signedNumber_" + one + ">\n" + "\t<textOfElement_" +
               one + ">\n\t  t1\n\t</textOfElement_" + one + ">\n" + "\t<n_" + two + ">\n\t  65516\n\t</n_" + two +
               ">\n" + "\t<signedNumber_" + two + ">\n\t  20\n\t</signedNumber_" + two + ">\n" +
               "\t<textOfElement_" + two + ">\n\t  t6\n\t</textOfElement_" + two + ">\n";
    };
    const struct
    {
        Subscripts subscripts;
        const char* one;
        const char* two;
    } cases[] = {{{0, 0}, "0_0", "0_1"},
                 {{9, 8}, "9_8", "9_9"},
                 {{9, 9}, "9_9", "9_10"},
                 {{10, 9}, "10_9", "10_10"},
                 {{0, 10}, "0_10", "0_11"},
                 {{11, 0}, "11_0", "11_1"},
                 {{99, 98}, "99_98", "99_99"},
                 {{1, 99}, "1_99", "1_100"},
                 {{4294967295U, 9}, "4294967295_9", "4294967295_10"}};
    for (const auto& [subscripts, one, two] : cases)
    {
        const std::string document = xml(subscripts.first, subscripts.second);
        EXPECT_EQ(document, expected(one, two));
        std::vector<char> read(24, '?');
        EXPECT_TRUE(readXmlText(document, rowsFor<TypeParam, kList>, read.data(), &subscripts, 2)) << one;
        std::vector<char> wanted(list.begin(), list.begin() + 24);
        wanted[11] = wanted[23] = '?';
        EXPECT_EQ(read, wanted) << one;
    }
}

TYPED_TEST(Codec, TakesNoOtherCharacterForAnIndexOfTwoDigits)
{
    std::vector<char> read(12, '?');
    const Subscripts subscripts = {10, 0};

    // ':' is ten characters behind '0'.
    EXPECT_TRUE(readXmlText("\t<n_:_0>\n\t  1\n\t</n_:_0>\n\t<n_10_0>\n\t  2\n\t</n_10_0>\n"
                            "<signedNumber_10_0>3</signedNumber_10_0><textOfElement_10_0>x</textOfElement_10_0>",
                            rowsFor<TypeParam, kList>, read.data(), &subscripts));

    U16 n;
    std::memcpy(&n, read.data(), sizeof n);
    EXPECT_EQ(n, 2);
}

TYPED_TEST(Codec, StopsAtTheFirstMissingElementOfAList)
{
    std::vector<char> read(36, '?');
    const Subscripts subscripts = {1, 8};
    EXPECT_FALSE(
        readXmlText("<n_1_8>1</n_1_8><signedNumber_1_8>2</signedNumber_1_8><textOfElement_1_8></textOfElement_1_8>"
                    "<n_1_9>3</n_1_9><textOfElement_1_9>x</textOfElement_1_9>",
                    rowsFor<TypeParam, kList>, read.data(), &subscripts, 3));
    // The third index has two digits.
    EXPECT_EQ(takeLog(), (Log{{6, "[src/sampleMsg:107] tag %s not found", {"signedNumber_1_9"}}}));
    EXPECT_EQ(read[11], '?');
    EXPECT_NE(read[12], '?');
    EXPECT_EQ(std::string(&read[14], 22), std::string(22, '?'));

    EXPECT_FALSE(readXmlText("<n_1_8>1</n_1_8>", rowsFor<TypeParam, kList>, read.data(), &subscripts, 2));
    EXPECT_EQ(takeLog(), (Log{{6, "[src/sampleMsg:107] tag %s not found", {"signedNumber_1_8"}}}));
}

TYPED_TEST(Codec, PutsFieldsInTheOrderOfTheirRows)
{
    SampleS structure = sample();
    structure.word = 0x01020304;
    structure.signedHalf = 0x0506;
    std::string binary = written<ostream_binary>(
        [&](ostream_binary& stream) { return writeBinary(rowsFor<TypeParam, kSwapped>, &structure, stream); });
    EXPECT_EQ(binary, "\5\6\1\2\3\4") << "the word does not stand at position 0";
    EXPECT_EQ(written<ostream_text>([&](ostream_text& stream)
                                    { return writeText(rowsFor<TypeParam, kSwapped>, &structure, stream); }),
              "1286:16909060:");
    SampleS read = pattern();
    istream_binary stream;
    stream.attachBuffer(binary.data(), 6);
    EXPECT_TRUE(readBinary(rowsFor<TypeParam, kSwapped>, &read, stream));
    EXPECT_EQ(read.word, 0x01020304U);
    EXPECT_EQ(read.signedHalf, 0x0506);
    EXPECT_EQ(read.signedWord, 0x5A5A5A5A);
    EXPECT_EQ(read.half, 0x5A5A);
}

TYPED_TEST(Codec, TurnsAWordRoundUnlessItStandsAtPosition0)
{
    const U32 word = 0x01020304;
    std::string hostOrder(4, '\0');
    std::memcpy(hostOrder.data(), &word, 4);
    std::string binary = written<ostream_binary>(
        [&](ostream_binary& stream)
        {
            BinaryWriter out(stream);
            writeBinary(rowsFor<TypeParam, kWord>, &word, out);
            writeBinary(rowsFor<TypeParam, kWord>, &word, out);
            return true;
        });
    EXPECT_EQ(binary, hostOrder + "\1\2\3\4");
    U32 first = 0;
    U32 second = 0;
    istream_binary stream;
    stream.attachBuffer(binary.data(), 8);
    BinaryReader in(stream);
    readBinary(rowsFor<TypeParam, kWord>, &first, in);
    readBinary(rowsFor<TypeParam, kWord>, &second, in);
    EXPECT_EQ(first, word);
    EXPECT_EQ(second, word);
}

TYPED_TEST(Codec, GoesOnAfterAWriteThatDoesNotFit)
{
    const SampleS structure = sample();
    std::vector<char> buffer(14);
    ostream_text text;
    text.attachBuffer(buffer.data(), 12);
    EXPECT_TRUE(writeText(rowsFor<TypeParam, kSample>, &structure, text));
    EXPECT_EQ(std::string(buffer.data(), buffer.size()), std::string("4000000000:-\0\0", 14));
    EXPECT_EQ(text.length(), 12U);
    EXPECT_EQ(text.status(), 3U);

    std::vector<char> bytes(8);
    ostream_binary binary;
    binary.attachBuffer(bytes.data(), 7);
    EXPECT_TRUE(writeBinary(rowsFor<TypeParam, kSample>, &structure, binary));
    EXPECT_EQ(std::string(bytes.data() + 4, 4), std::string("\xFF\xFF\xC8\0", 4))
        << "neither the second word nor the signed half fits, but the half and the byte after them do";
    EXPECT_EQ(binary.length(), 7U);
    EXPECT_EQ(binary.status(), 3U);
}

} // namespace

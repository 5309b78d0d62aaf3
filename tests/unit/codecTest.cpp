// The engine over a table of its own, which has every kind of field and every oddity.

#include "codec/codec.h"
#include "codec/tagLookup.h"
#include "logCapture.h"

#include <gtest/gtest.h>

#include <cstddef>
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

struct SampleS
{
    U32 word;
    S32 signedWord;
    U16 half;
    S16 signedHalf;
    U8 byte;
    U8 name[5];
    U16 bare;
    U16 foreign;
    U8 skipped[3];
};

constexpr Field kSampleRows[] = {
    BCI_FIELD(SampleS, word, "word", 10),
    BCI_FIELD(SampleS, signedWord, "signedWord", 17, Oddity::doubledWord),
    BCI_FIELD(SampleS, half, "half", 24),
    BCI_FIELD(SampleS, signedHalf, "signedHalf", 31),
    BCI_FIELD(SampleS, byte, "byte", 38),
    BCI_FIELD(SampleS, name, "name", 45),
    BCI_FIELD(SampleS, bare, "bare", 52, Oddity::bareOpening),
    BCI_FIELD(SampleS, foreign, "foreign\0other", 59, Oddity::foreignClosing),
    BCI_FIELD(SampleS, skipped, "skipped", 66, Oddity::notReadFromXml),
};
constexpr Fields kSample = {"sampleMsg", kSampleRows};

static_assert(binarySize(kSampleRows) == 4 + 4 + 2 + 2 + 1 + 5 + 2 + 2 + 3);
static_assert(maxTextSize(kSampleRows) == 11 + 12 + 6 + 7 + 4 + 20 + 6 + 6 + 12);

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

bool readXmlText(std::string document, const Fields& fields, void* structure,
                 const Subscripts* subscripts = nullptr)
{
    istream_text stream;
    stream.attachBuffer(document.data(), static_cast<unsigned int>(document.size()));
    Elements elements(stream);
    const bool result = readXml(fields, structure, elements, subscripts);
    EXPECT_EQ(stream.tellg(), 0U);
    EXPECT_EQ(stream.status(), 0U);
    return result;
}

std::string elements()
{
    return "<word>4000000000</word><signedWord>-7</signedWord><half>65535</half><signedHalf>-32768</signedHalf>"
           "<byte>200</byte><name>a b</name><bare>1</bare><foreign>2</foreign>";
}

TEST(Codec, WritesEveryKindAsText)
{
    const SampleS structure = sample();
    EXPECT_EQ(written<ostream_text>([&](ostream_text& stream) { return writeText(kSample, &structure, stream); }),
              "4000000000:-7:65535:-32768:200:a b:1:2:xy:");
}

TEST(Codec, ReadsEveryKindFromText)
{
    std::string text = "4000000000:-7:65535:-32768:200:a b:1:2:xy: ";
    SampleS structure = pattern();
    istream_text stream;
    stream.attachBuffer(text.data(), static_cast<unsigned int>(text.size()));
    EXPECT_TRUE(readText(kSample, &structure, stream));
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

TEST(Codec, TakesWhateverStandsBehindAFieldForItsDelimiter)
{
    std::string text = "1;2?3x";
    struct
    {
        U16 one, two, three;
    } structure = {};
    constexpr Field rows[] = {{0, 2, Kind::u16, Oddity::none, 1, "one"},
                              {2, 2, Kind::u16, Oddity::none, 2, "two"},
                              {4, 2, Kind::u16, Oddity::none, 3, "three"}};
    istream_text stream;
    stream.attachBuffer(text.data(), static_cast<unsigned int>(text.size()));
    EXPECT_TRUE(readText(Fields("sampleMsg", rows), &structure, stream));
    EXPECT_EQ(structure.one, 1);
    EXPECT_EQ(structure.two, 2);
    EXPECT_EQ(structure.three, 0) << "'x' behind a digit makes the number 0";
    EXPECT_EQ(stream.tellg(), 5U);
    EXPECT_EQ(stream.status(), 2U);
}

TEST(Codec, CutsATextThatIsLongerThanItsFieldAndMisreadsWhatFollows)
{
    std::string text = "abcdefg:";
    SampleS structure = pattern();
    istream_text stream;
    stream.attachBuffer(text.data(), static_cast<unsigned int>(text.size()));
    EXPECT_TRUE(readText(kSample.part(5, 2), &structure, stream));
    EXPECT_EQ(std::memcmp(structure.name, "abcd", 5), 0);
    EXPECT_EQ(structure.bare, 0) << "the delimiter's place was 'e', so the number starts at \"fg\"";
}

TEST(Codec, WritesEveryKindAsBinaryWithTextsWhole)
{
    const SampleS structure = sample();
    const std::string binary =
        written<ostream_binary>([&](ostream_binary& stream) { return writeBinary(kSample, &structure, stream); });
    ASSERT_EQ(binary.size(), 25U);
    EXPECT_EQ(std::memcmp(binary.data(), &structure.word, 4), 0) << "host order at position 0";
    EXPECT_EQ(binary.substr(4), std::string("\xFF\xFF\xFF\xF9\xFF\xFF\x80\x00\xC8"
                                            "a b\0z\0\1\0\2xy\0",
                                            21));
}

TEST(Codec, ReadsEveryKindFromBinary)
{
    std::string binary("\1\1\1\1\xFF\xFF\xFF\xF9\xFF\xFF\x80\x00\xC8"
                       "a b\0z\0\1\0\2xy\0",
                       25);
    SampleS structure = pattern();
    istream_binary stream;
    stream.attachBuffer(binary.data(), static_cast<unsigned int>(binary.size()));
    EXPECT_TRUE(readBinary(kSample, &structure, stream));
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

TEST(Codec, WritesEveryKindAndOddityAsXml)
{
    const SampleS structure = sample();
    EXPECT_EQ(written<ostream_text>([&](ostream_text& stream) { return writeXml(kSample, &structure, stream); }),
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

TEST(Codec, ReadsEveryKindFromXmlButNotWhatIsPassedOver)
{
    SampleS structure = pattern();
    EXPECT_TRUE(readXmlText(elements() + "<skipped>no</skipped>", kSample, &structure));
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

TEST(Codec, TruncatesNumbersFromXmlToTheirField)
{
    SampleS structure = pattern();
    EXPECT_TRUE(readXmlText("<half>65537</half><signedHalf>98304</signedHalf><byte>-1</byte>", kSample.part(2, 3),
                            &structure));
    EXPECT_EQ(structure.half, 1);
    EXPECT_EQ(structure.signedHalf, -32768);
    EXPECT_EQ(structure.byte, 255);
}

TEST(Codec, CutsATextFromXmlToItsFieldAndTerminatesIt)
{
    SampleS structure = pattern();
    EXPECT_TRUE(readXmlText("<name>abcdef</name><bare>7</bare>", kSample.part(5, 2), &structure));
    EXPECT_EQ(std::memcmp(structure.name, "abcd", 5), 0);
    EXPECT_EQ(structure.bare, 7);
}

TEST(Codec, NeverLooksPastATextWithoutTerminator)
{
    SampleS structure = sample();
    std::memcpy(structure.name, "abcde", 5);
    const Fields name = kSample.part(5, 1);
    EXPECT_EQ(written<ostream_text>([&](ostream_text& stream) { return writeText(name, &structure, stream); }),
              "abcde:");
    EXPECT_EQ(written<ostream_text>([&](ostream_text& stream) { return writeXml(name, &structure, stream); }),
              "\t<name>\n\t  abcde\n\t</name>\n");
}

TEST(Codec, LogsTheFirstMissingElementAndStops)
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
        EXPECT_EQ(readXmlText(document, kSample, &structure), passedOver);
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

TEST(Codec, ComposesTheLogLineOfAMissingElement)
{
    SampleS structure = pattern();
    EXPECT_FALSE(readXmlText("<>", kSample.part(0, 1), &structure));
    EXPECT_EQ(takeLog(), (Log{{6, "[src/sampleMsg:10] tag %s not found", {"word"}}}));
    EXPECT_FALSE(readXmlText("<>", kSample.part(1, 1), &structure));
    EXPECT_EQ(takeLog(), (Log{{6, "[src/sampleMsg:17] tag tag %s not found", {"signedWord"}}}));

    constexpr Field quoting[] = {BCI_FIELD(SampleS, half, "half", 286, Oddity::quotesDocument)};
    EXPECT_FALSE(readXmlText("<byte>1</byte> %s", {"sampleMsg", quoting}, &structure));
    EXPECT_EQ(takeLog(), (Log{{6, "[src/sampleMsg:286] tag %s not found buf %s", {"half", "<byte>1</byte> %s"}}}));
}

TEST(Codec, FindsAnElementThatAnotherNameCloses)
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

TEST(Codec, PutsIndexesIntoTheNamesOfElements)
{
    const ElementS structure = {5, 6, 7};
    const Subscripts subscripts = {1, 12};
    EXPECT_EQ(written<ostream_text>(
                  [&](ostream_text& stream)
                  {
                      TextWriter out(stream);
                      writeXml(kElement, &structure, out, &subscripts);
                      return true;
                  }),
              "\t<single_1>\n\t  5\n\t</single_1>\n"
              "\t<twofold_1_12>\n\t  6\n\t</twofold_1_12>\n"
              "\t<plain>\n\t  7\n\t</plain>\n");
}

TEST(Codec, FindsElementsByTheirIndexes)
{
    ElementS structure = {};
    const Subscripts subscripts = {0, 9};
    EXPECT_TRUE(readXmlText("<twofold_0_9>3</twofold_0_9><single_0>4</single_0><plain>5</plain>", kElement,
                            &structure, &subscripts));
    EXPECT_EQ(structure.single, 4);
    EXPECT_EQ(structure.twofold, 3);
    EXPECT_EQ(structure.plain, 5);
}

TEST(Codec, NamesTheIndexesOfAMissingElement)
{
    ElementS structure = {};
    const Subscripts subscripts = {1, 3};
    EXPECT_FALSE(readXmlText("<single_1>4</single_1>", kElement, &structure, &subscripts));
    EXPECT_EQ(takeLog(), (Log{{6, "[src/sampleMsg:80] tag %s not found", {"twofold_1_3"}}}));
}

TEST(Codec, GoesOnAfterAWriteThatDoesNotFit)
{
    const SampleS structure = sample();
    std::vector<char> buffer(14);
    ostream_text text;
    text.attachBuffer(buffer.data(), 12);
    EXPECT_TRUE(writeText(kSample, &structure, text));
    EXPECT_EQ(std::string(buffer.data(), buffer.size()), std::string("4000000000:-\0\0", 14));
    EXPECT_EQ(text.length(), 12U);
    EXPECT_EQ(text.status(), 3U);

    std::vector<char> bytes(8);
    ostream_binary binary;
    binary.attachBuffer(bytes.data(), 7);
    EXPECT_TRUE(writeBinary(kSample, &structure, binary));
    EXPECT_EQ(std::string(bytes.data() + 4, 4), std::string("\xFF\xFF\xC8\0", 4))
        << "neither the second word nor the signed half fits, but the half and the byte after them do";
    EXPECT_EQ(binary.length(), 7U);
    EXPECT_EQ(binary.status(), 3U);
}

} // namespace

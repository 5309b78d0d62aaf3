// What has room, and is as the writers write it, goes straight through the buffers: nothing else may be asked to
// do it. Renderings do not show that, because the other ways give the same.

#include "codec/codec.h"
#include "codec/constants.h"
#include "sampleRows.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

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

const std::string kText = "4000000000:-7:65535:-32768:200:a b:1:2:xy:";
const std::string kXml = "\t<word>\n\t  4000000000\n\t</word>\n\t<signedWord>\n\t  -7\n\t</signedWord>\n"
                         "\t<half>\n\t  65535\n\t</half>\n\t<signedHalf>\n\t  -32768\n\t</signedHalf>\n"
                         "\t<byte>\n\t  200\n\t</byte>\n\t<name>\n\t  a b\n\t</name>\n<bare>\n\t   1\n\t</bare>\n"
                         "\t<foreign>\n\t  2\n\t</other>\n\t<skipped>\n\t  xy\n\t</skipped>\n";
constexpr std::size_t kBinarySize = 25;

template <std::size_t index>
using SampleField = ConstantField<kSample, index>;

// How many fields are left to the stream where there is room for a text of this size.
template <typename Rows>
int textFieldsLeft(const Rows& rows, std::size_t room)
{
    const SampleS structure = sample();
    std::string buffer(room, '?');
    ostream_text stream;
    stream.attachBuffer(buffer.data(), static_cast<unsigned int>(room));
    int left = 0;
    {
        TextWriter out(stream);
        putText(rows, reinterpret_cast<const char*>(&structure), out,
                [&left](const auto& /*field*/, const char* /*element*/, unsigned int /*index*/,
                        ostream_text& /*stream*/) { ++left; });
    }
    return left;
}

template <typename Rows, typename Indexes>
int xmlFieldsLeft(const Rows& rows, std::size_t room, Indexes indexes)
{
    const SampleS structure = sample();
    std::string buffer(room, '?');
    ostream_text stream;
    stream.attachBuffer(buffer.data(), static_cast<unsigned int>(room));
    int left = 0;
    {
        TextWriter out(stream);
        putXml(rows, reinterpret_cast<const char*>(&structure), out, indexes,
               [&left](const auto& /*field*/, const char* /*element*/, unsigned int /*index*/,
                       ostream_text& /*stream*/) { ++left; });
    }
    return left;
}

TEST(Straight, TextIsWrittenIntoABufferOfItsSize)
{
    const int left = kForSpeed ? 0 : 9;

    EXPECT_EQ(textFieldsLeft(TableRows(kSample), kText.size()), left);
    EXPECT_EQ(textFieldsLeft(ConstantRows<kSample>(1), kText.size()), left);
}

TEST(Straight, TextIsLeftToTheStreamFromTheFirstFieldThatDoesNotFit)
{
    EXPECT_EQ(textFieldsLeft(TableRows(kSample), kText.size() - 1), kForSpeed ? 1 : 9);
    EXPECT_EQ(textFieldsLeft(ConstantRows<kSample>(1), kText.size() - 1), kForSpeed ? 1 : 9);
}

TEST(Straight, XmlIsWrittenIntoABufferOfItsSize)
{
    const int left = kForSpeed ? 0 : 9;
    const Subscripts* const none = nullptr;

    EXPECT_EQ(xmlFieldsLeft(TableRows(kSample), kXml.size(), none), left);
    EXPECT_EQ(xmlFieldsLeft(ConstantRows<kSample>(1), kXml.size(), nullptr), left);
}

TEST(Straight, XmlIsLeftToTheStreamFromTheFirstFieldThatDoesNotFit)
{
    const Subscripts* const none = nullptr;

    EXPECT_EQ(xmlFieldsLeft(TableRows(kSample), kXml.size() - 1, none), kForSpeed ? 1 : 9);
    EXPECT_EQ(xmlFieldsLeft(ConstantRows<kSample>(1), kXml.size() - 1, nullptr), kForSpeed ? 1 : 9);
}

template <typename Rows>
int textFieldsLeftUnread(const Rows& rows, std::string text)
{
    SampleS structure = {};
    istream_text stream;
    stream.attachBuffer(text.data(), static_cast<unsigned int>(text.size()));
    int left = 0;
    {
        TextReader in(stream);
        getText(rows, reinterpret_cast<char*>(&structure), in,
                [&left](const auto& /*field*/, char* /*element*/, istream_text& /*stream*/) { ++left; });
    }
    return left;
}

TEST(Straight, TextIsReadWithNumbersOfNineDigits)
{
    const std::string text = "400000000:-7:65535:-32767:200:a b:1:2:xy:";

    EXPECT_EQ(textFieldsLeftUnread(TableRows(kSample), text), kForSpeed ? 0 : 9);
    EXPECT_EQ(textFieldsLeftUnread(ConstantRows<kSample>(1), text), kForSpeed ? 0 : 9);
}

TEST(Straight, TextIsReadUpToTheEndOfItsArrayOrData)
{
    SampleS structure = {};
    char* const to = reinterpret_cast<char*>(&structure);
    const SampleField<5> name;
    const std::string text = "abcd:";

    EXPECT_EQ(getOrdinaryText(name, &text[0], &text[5], to), &text[5]);
    EXPECT_STREQ(reinterpret_cast<char*>(structure.name), "abcd");
    EXPECT_EQ(getOrdinaryText(name, &text[2], &text[5], to), &text[5]);
    EXPECT_STREQ(reinterpret_cast<char*>(structure.name), "cd");
    EXPECT_EQ(getOrdinaryText(name, &text[0], &text[4], to), nullptr); // no delimiter yet
}

TEST(Straight, NumbersFitEasilyIntoTheRoomOfTheLongest)
{
    EXPECT_EQ(fitsEasily(SampleField<0>(), 11, 1), kForSpeed);
    EXPECT_FALSE(fitsEasily(SampleField<0>(), 10, 1));
    EXPECT_FALSE(fitsEasily(SampleField<5>(), 1000, 1)); // a text
}

TEST(Straight, ValuesHaveTheSizeOfTheirCharacters)
{
    const SampleS structure = sample();
    const char* const from = reinterpret_cast<const char*>(&structure);

    EXPECT_EQ(Value(kSampleRows[0], from).size(), 10U);
    EXPECT_EQ(Value(kSampleRows[1], from).size(), 2U);
    EXPECT_EQ(Value(kSampleRows[5], from).size(), 3U);
}

TEST(Straight, ElementsHaveTheSizeOfWhatStandsAroundTheirValues)
{
    const Subscripts subscripts = {1, 12};

    EXPECT_EQ(ElementText(kSampleRows[0], nullptr).size(), std::strlen("\t<word>\n\t  \n\t</word>\n"));
    EXPECT_EQ(ElementText(kListRows[0], &subscripts).size(), std::strlen("\t<n_1_12>\n\t  \n\t</n_1_12>\n"));
}

template <typename Rows>
void expectBinaryOfItsSize(const Rows& rows)
{
    SampleS structure = sample();
    char* const bytes = reinterpret_cast<char*>(&structure);
    char buffer[kBinarySize];
    ostream_binary out;
    out.attachBuffer(buffer, kBinarySize);
    {
        BinaryWriter writer(out);
        EXPECT_TRUE(putBinary(rows, bytes, writer));
        EXPECT_FALSE(putBinary(rows, bytes, writer)); // it is full
    }
    istream_binary in;
    in.attachBuffer(buffer, kBinarySize);
    BinaryReader reader(in);
    EXPECT_TRUE(getBinary(rows, bytes, reader));
    EXPECT_FALSE(getBinary(rows, bytes, reader));
}

TEST(Straight, BinaryIsWrittenAndReadInABufferOfItsSize)
{
    if (std::endian::native == std::endian::big)
    {
        GTEST_SKIP() << "takes fields that are adjacent, which these are not";
    }
    expectBinaryOfItsSize(TableRows(kSample));
    expectBinaryOfItsSize(ConstantRows<kSample>(1));
}

TEST(Straight, RowsCountTheirElements)
{
    EXPECT_EQ(TableRows(kList).count(), 1U);
    EXPECT_EQ(TableRows(kList, 3).count(), 3U);
    EXPECT_EQ(ConstantRows<kList>(3).count(), 3U);
}

TEST(Straight, IndexesHaveOneDigitBelowTen)
{
    EXPECT_TRUE(haveOneDigit({9, 9}, 1));
    EXPECT_TRUE(haveOneDigit({0, 0}, 10));
    EXPECT_FALSE(haveOneDigit({10, 0}, 1));
    EXPECT_FALSE(haveOneDigit({0, 10}, 0));
    EXPECT_FALSE(haveOneDigit({0, 0}, 11));
    EXPECT_FALSE(haveOneDigit({0, 4294967295U}, 1));
}

TEST(Straight, ConstantTextsEndWhereTheyHaveBeenPut)
{
    char buffer[64];
    const ConstantElementText<SampleField<0>, false> text = {};

    EXPECT_EQ(text.putOpening(buffer), buffer + std::strlen("\t<word>\n\t  "));
    EXPECT_EQ(text.putClosing(buffer), buffer + std::strlen("\n\t</word>\n"));
}

// Reads one element as constants do, which ends with its closing tag.
template <std::size_t index>
void expectTaken(std::string_view element)
{
    SampleS structure = {};
    char* const to = reinterpret_cast<char*>(&structure);
    const std::string document(element); // nothing behind it

    const char* const behind =
        takeNext<SampleField<index>, false>(document.data(), document.data() + document.size(), to, {});

    EXPECT_EQ(behind, document.data() + document.size()) << element;
}

TEST(Straight, ElementsAreReadToTheEndOfTheDocument)
{
    expectTaken<0>("\t<word>\n\t  400000000\n\t</word>\n");
    expectTaken<1>("\t<signedWord>\n\t  -7\n\t</signedWord>\n");
    expectTaken<4>("\t<byte>\n\t  200\n\t</byte>\n");
    expectTaken<5>("\t<name>\n\t  a b\n\t</name>\n");
    expectTaken<5>("\t<name>\n\t  \n\t</name>\n");
    expectTaken<6>("<bare>\n\t   1\n\t</bare>\n");
}

TEST(Straight, NoElementIsTakenThatItsDocumentCuts)
{
    SampleS structure = {};
    char* const to = reinterpret_cast<char*>(&structure);
    const std::string document = "\t<word>\n\t  4\n\t</word>\n";

    EXPECT_EQ((takeNext<SampleField<0>, false>(document.data(), document.data() + document.size() - 1, to, {})),
              nullptr);
    EXPECT_TRUE((opensAt<SampleField<0>, false>(document.data(), document.data() + 11, {})));
    EXPECT_FALSE((opensAt<SampleField<0>, false>(document.data(), document.data() + 10, {})));
}

// The elements of a document that goes on behind them.
constexpr Fields kOrdinary = kSample.part(0, 6);
const std::string kOrdinaryXml = "\t<word>\n\t  400000000\n\t</word>\n\t<signedWord>\n\t  -7\n\t</signedWord>\n"
                                 "\t<half>\n\t  65535\n\t</half>\n\t<signedHalf>\n\t  -32768\n\t</signedHalf>\n"
                                 "\t<byte>\n\t  200\n\t</byte>\n\t<name>\n\t  a b\n\t</name>\n";

TEST(Straight, TheNextElementBeginsWhereTheLastOneEnded)
{
    std::string document = kOrdinaryXml + "tail";
    istream_text stream;
    stream.attachBuffer(document.data(), static_cast<unsigned int>(document.size()));
    SampleS structure = {};
    char* const to = reinterpret_cast<char*>(&structure);

    if (kForSpeed) // or there are no constants
    {
        Elements ofConstants(stream);
        EXPECT_TRUE(readXml(Constant<kOrdinary>(), to, ofConstants));
        EXPECT_EQ(ofConstants.next(), document.data() + kOrdinaryXml.size());
    }
    Elements ofTable(stream);
    EXPECT_TRUE(readXml(kOrdinary, to, ofTable));
    EXPECT_EQ(ofTable.next(), document.data() + kOrdinaryXml.size());
}

TEST(Straight, BehindADeviationNothingIsNext)
{
    std::string document = kOrdinaryXml + "tail";
    istream_text stream;
    stream.attachBuffer(document.data(), static_cast<unsigned int>(document.size()));
    Elements elements(stream);
    TagContent content;

    EXPECT_TRUE(elements.find("half", 4, content));

    EXPECT_EQ(elements.next(), elements.end());
}

TEST(Straight, AnElementThatBeginsWithoutItsTabIsNext)
{
    std::string document = "<word>\n\t  4\n\t</word>\ntail";
    istream_text stream;
    stream.attachBuffer(document.data(), static_cast<unsigned int>(document.size()));
    Elements elements(stream);
    TagContent content;

    EXPECT_TRUE(elements.find("word", 4, content));

    EXPECT_EQ(elements.next(), document.data() + document.size() - 4);
}

TEST(Straight, NamesThatRepeatHaveNoFirst)
{
    std::string document = kOrdinaryXml;
    istream_text stream;
    stream.attachBuffer(document.data(), static_cast<unsigned int>(document.size()));
    Elements elements(stream);
    const U32 hash = nameHash("half", 4, false);

    EXPECT_EQ(elements.first(hash), kForSpeed ? document.data() + document.find("half") : nullptr);
    elements.repeat(true);
    EXPECT_EQ(elements.first(hash), nullptr);
}

} // namespace

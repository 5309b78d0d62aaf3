#include "bciLoadLmcMsg.h"
#include "logCapture.h"
#include "messageKit.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>

namespace
{

using namespace std::string_literals;

constexpr std::size_t kStructure = 4120;
constexpr std::size_t kMost = 4100; // bytes of a block

struct Content
{
    U32 lmBlockSize;
    std::string block;
    U16 lmSeqNr = 4;
    U16 padding0 = 5;
};

// A structure of which lmBlockSize, the start of the block and as many of the first bytes are set.
std::string structure(const Content& content, std::size_t first = 16)
{
    const VornBcLoadLmcDataS wire{1, {2, 3}, content.lmSeqNr, content.padding0, content.lmBlockSize, {}};
    std::string numbers = inMemory(wire).substr(0, 20);
    numbers.replace(first, 16 - first, 16 - first, kFill);
    return filledUp(numbers + content.block, kStructure);
}

const std::string kBefore = structure({3, ""}, 0);

// Letters, which all forms can carry.
std::string letters(std::size_t count)
{
    std::string result;
    for (std::size_t i = 0; i < count; ++i)
    {
        result += static_cast<char>('a' + i % 23);
    }
    return result;
}

// The three forms as far as their block.
std::string textUpTo(const std::string& lmBlockSize)
{
    return "1:2:3:4:5:" + lmBlockSize + ":";
}

std::string binaryUpTo(unsigned long lmBlockSize)
{
    return binaryHeader(1, 2, 3) + be16(4) + be16(5) + be32(lmBlockSize);
}

std::string xmlUpTo(const std::string& lmBlockSize)
{
    return headerElements() + element("lmSeqNr", "4") + element("padding0", "5") +
           element("lmBlockSize", lmBlockSize);
}

Log rejected(int line, const std::string& value)
{
    return {{6, "[src/bciLoadLmcMsg:" + std::to_string(line) + "] lmBlockSize %u > %u", {value, "4100"}}};
}

void expectRead(Reader reader, const std::string& data, const Read& outcome, const std::string& after,
                const Log& log = {}, const std::string& before = kBefore)
{
    expectReading(*filled<BciLoadLmcData>(kStructure), reader, before, {data, outcome, after, log});
}

// The class

TEST(LoadLmcData, WireStructureHasTheLayoutOfTheSignal)
{
    using Wire = VornBcLoadLmcDataS;
    expectSignal<Wire>(24);
    expectField<U16>(&Wire::lmSeqNr, 12);
    expectField<U16>(&Wire::padding0, 14);
    expectField<U32>(&Wire::lmBlockSize, 16);
    expectField<U8[1]>(&Wire::lmBlock, 20);
}

TEST(LoadLmcData, EachMessageHasAStructureOfItsOwnOnTheHeap)
{
    const std::unique_ptr<BciMessageBase> first(BciLoadLmcData::instantiateBciMsg(1));
    ASSERT_NE(first, nullptr);
    BciLoadLmcData second(23431174);

    EXPECT_EQ(second.getMsg(), reinterpret_cast<char*>(second.m_loadLmcData));
    EXPECT_NE(second.getMsg(), first->getMsg());
    // The constructor leaves the block as it was. The sanitizer fills no more than 4096 bytes.
    const FilledHeap heap;
    EXPECT_EQ(structureOf(*heap.make<BciLoadLmcData>(23431174, 4096), 4096), std::string(4096, heap.fill()));
    EXPECT_FALSE(std::is_copy_constructible_v<BciLoadLmcData>);
    EXPECT_FALSE(std::is_copy_assignable_v<BciLoadLmcData>);
}

TEST(LoadLmcData, SetMsgCopies4120BytesFromWhichTheAccessorsAnswer)
{
    const std::string whole = structure({kMost, letters(kMost)});
    BciLoadLmcData message(23431174);

    expectSetMsgCopies(message, kStructure);
    setStructure(message, whole);
    std::memcpy(message.getMsg(), "\x81\x81\x81\x81", 4);

    EXPECT_EQ(structureOf(message, kStructure), "\x81\x81\x81\x81" + whole.substr(4));
    EXPECT_EQ(message.getSigNo(), 0x81818181U);
    EXPECT_EQ(message.getAddressInfo().clientRef, 2);
    EXPECT_EQ(message.getAddressInfo().serverRef, 3);
}

TEST(LoadLmcData, OnlyTheBinaryBufferSizeFollowsTheBlock)
{
    BciLoadLmcData message(23431174);
    const struct
    {
        U32 lmBlockSize;
        unsigned int binaryBufferSize;
    } rows[] = {{0, 23}, {1, 24}, {4100, 4123}, {4101, 4124}, {4294967272, 4294967295}};
    for (const auto& row : rows)
    {
        message.m_loadLmcData->lmBlockSize = row.lmBlockSize;
        EXPECT_EQ(message.getMaxBinaryBufferSize(), row.binaryBufferSize);
        EXPECT_EQ(message.getMaxTextBufferSize(), 1000U);
    }
}

// All forms

TEST(LoadLmcData, BlocksOfAnySizeAreWrittenAndReadBack)
{
    for (const unsigned int size : {0U, 1U, 3U, 4100U})
    {
        const std::string block = letters(size);
        const std::string digits = std::to_string(size);
        const std::string text = textUpTo(digits) + block + ":";
        const std::string binary = binaryUpTo(size) + block;
        const std::string xml = xmlUpTo(digits) + "\t<lmBlock>\n\t  " + block + "\n\t</lmBlock>\n";
        const auto message = holding<BciLoadLmcData>(structure({size, block}));

        EXPECT_EQ(writeText(*message), (Written{true, text, 0}));
        EXPECT_EQ(writeBinary(*message), (Written{true, binary, 0}));
        EXPECT_EQ(writeXml(*message), (Written{true, xml, 0}));
        EXPECT_EQ(structureOf(*message, kStructure), structure({size, block}));

        // Text terminates the block: the one of 4100 bytes behind the structure, the empty one not at all.
        const std::string afterText = structure({size, size == 0 ? "" : (block + '\0').substr(0, kMost)});
        const unsigned int textLength = sizeOf(text);
        expectRead(readText, text, {true, 1, textLength}, afterText);
        expectRead(readText, text + "9:", {true, 0, textLength}, afterText);
        expectRead(readBinary, binary, {true, 1, 20 + size}, structure({size, block}));
        expectRead(readBinary, binary + "9", {true, 0, 20 + size}, structure({size, block}));
        expectRead(readXml, xml, {true, 0, 0}, structure({size, block}));
    }
}

TEST(LoadLmcData, NumbersAreWrittenAndReadBackUpTo16Bits)
{
    const std::string greatest = structure({1, "x", 65535, 65535});
    const std::string xml = headerElements() + element("lmSeqNr", "65535") + element("padding0", "65535") +
                            element("lmBlockSize", "1") + element("lmBlock", "x");
    const auto message = holding<BciLoadLmcData>(greatest);

    EXPECT_EQ(writeText(*message), (Written{true, "1:2:3:65535:65535:1:x:", 0}));
    EXPECT_EQ(writeBinary(*message).bytes.substr(12, 4), "\xFF\xFF\xFF\xFF");
    EXPECT_EQ(writeXml(*message), (Written{true, xml, 0}));
    expectRead(readText, "1:2:3:65535:65535:1:x:", {true, 1, 22}, structure({1, "x\0"s, 65535, 65535}));
    expectRead(readBinary, binaryHeader(1, 2, 3) + be32(0xFFFFFFFF) + be32(1) + "x", {true, 1, 21}, greatest);
    expectRead(readXml, xml, {true, 0, 0}, greatest);
    expectRead(readXml,
               without(without(xml, "lmSeqNr"), "padding0") + "<lmSeqNr>65536</lmSeqNr><padding0>-2</padding0>",
               {true, 0, 0}, structure({1, "x", 0, 65534}));
}

TEST(LoadLmcData, BlocksAbove4100BytesAreRejectedByAllWriters)
{
    for (const std::string digits : {"4101", "4294967295"})
    {
        const U32 size = static_cast<U32>(std::stoul(digits));
        const auto message = holding<BciLoadLmcData>(structure({size, ""}));

        EXPECT_EQ(writeText(*message), (Written{false, textUpTo(digits), 0}));
        EXPECT_EQ(takeLog(), rejected(503, digits));
        EXPECT_EQ(writeText(*message, 8), (Written{false, "1:2:3:4:", 3}));
        EXPECT_EQ(takeLog(), rejected(503, digits));
        EXPECT_EQ(writeBinary(*message), (Written{false, binaryUpTo(size), 0}));
        EXPECT_EQ(takeLog(), rejected(522, digits));
        EXPECT_EQ(writeXml(*message), (Written{false, xmlUpTo(digits), 0}));
        EXPECT_EQ(takeLog(), rejected(549, digits));
    }
}

// What was read before, the size included, stays.
TEST(LoadLmcData, BlocksAbove4100BytesAreRejectedByAllReaders)
{
    const std::string block = letters(5000);
    for (const std::string digits : {"4101", "4294967295"})
    {
        const U32 size = static_cast<U32>(std::stoul(digits));
        const unsigned int consumed = sizeOf(textUpTo(digits));

        expectRead(readText, textUpTo(digits) + block + ":", {false, 0, consumed}, structure({size, ""}),
                   rejected(563, digits));
        expectRead(readText, textUpTo(digits), {false, 1, consumed}, structure({size, ""}), rejected(563, digits));
        expectRead(readBinary, binaryUpTo(size) + block, {false, 0, 20}, structure({size, ""}),
                   rejected(572, digits));
        expectRead(readBinary, binaryUpTo(size), {false, 1, 20}, structure({size, ""}), rejected(572, digits));
    }
    const struct
    {
        std::string content;
        U32 stored;
        std::string logged;
    } rows[] = {
        {"4101", 4101, "4101"},
        {"-1", 4294967295U, "4294967295"},
        {"4294967295", 2147483647, "2147483647"},
    };
    for (const auto& row : rows)
    {
        for (const std::string& rest : {element("lmBlock", block), ""s})
        {
            expectRead(readXml, xmlUpTo(row.content) + rest, {false, 0, 0}, structure({row.stored, ""}),
                       rejected(618, row.logged));
        }
    }
}

// Where the size is not among the data, the one that the message holds counts.
TEST(LoadLmcData, SizeThatCouldNotBeReadIsThatOfBefore)
{
    const std::string before = structure({4101, ""}, 0);

    expectRead(readText, "1:2:3:4:5:", {false, 3, 10}, structure({4101, ""}), rejected(563, "4101"), before);
    expectRead(readBinary, binaryUpTo(1).substr(0, 16), {false, 1, 16}, structure({4101, ""}),
               rejected(572, "4101"), before);
}

// Raw bytes

const std::string kRaw = "a\0:\0\0<b>\xFF&\n\0"s;

TEST(LoadLmcData, BlockGoesOutAsItIsAsFarAsTheBufferGoes)
{
    const auto message = holding<BciLoadLmcData>(structure({12, kRaw}));
    const std::string text = textUpTo("12") + kRaw + ":";
    const std::string xml = xmlUpTo("12") + "\t<lmBlock>\n\t  " + kRaw + "\n\t</lmBlock>\n";
    expectBeginnings(writeText, *message, text);
    expectBeginnings(writeXml, *message, xml);
}

// A number that does not fit is left out, the block is cut.
TEST(LoadLmcData, ShortBufferTakesTheBinaryFieldsThatFit)
{
    const auto message = holding<BciLoadLmcData>(structure({12, kRaw}));
    const std::string numbers[] = {firstWord(1), be32(2), be32(3), be16(4), be16(5), be32(12)};
    for (unsigned int size = 0; size <= 32; ++size)
    {
        std::string expected;
        for (const std::string& number : numbers)
        {
            expected += expected.size() + number.size() <= size ? number : "";
        }
        expected += kRaw.substr(0, size - expected.size());
        EXPECT_EQ(writeBinary(*message, size), (Written{true, expected, size < 32 ? 3U : 1U}));
    }
}

// An empty block is put all the same: at the end of the buffer that is noticed.
TEST(LoadLmcData, EmptyBlockBehindAFullBufferEndsTheStream)
{
    const auto message = holding<BciLoadLmcData>(structure({0, ""}));
    char buffer[1];
    commonStream::ostream_binary stream;
    stream.attachBuffer(buffer, sizeof buffer);
    stream.put('x');
    stream.setgood();
    EXPECT_TRUE(message->serializeBciMsgToBinary(stream));
    EXPECT_EQ(stream.status(), 3U);
    EXPECT_EQ(stream.length(), 1U);
}

// Reading

TEST(LoadLmcData, TextEndsTheBlockAtTheDelimiterOrTheSize)
{
    const struct
    {
        std::string text;
        std::string after;
        unsigned int status;
        unsigned int position;
    } rows[] = {
        {textUpTo("12") + kRaw + ":", structure({12, "a\0\0"s}), 0, 16},
        {textUpTo("7") + "a\0<\xFF\n\0b:"s, structure({7, "a\0<\xFF\n\0b\0"s}), 1, 20},
        {textUpTo("5") + ":", structure({5, "\0"s}), 1, 13},
        {textUpTo("5") + "abc:", structure({5, "abc\0"s}), 1, 16},
        {textUpTo("5") + "abc", structure({5, "abc\0"s}), 3, 15},
        {textUpTo("5") + "abcde", structure({5, "abcde\0"s}), 3, 17},
        {textUpTo("5"), structure({5, ""}), 3, 12},
        {textUpTo("2") + "abcd:", structure({2, "ab\0"s}), 0, 15},
        {textUpTo("0") + "abcd:", structure({0, ""}), 0, 13},
        {textUpTo("4100") + letters(5000) + ":", structure({4100, letters(4100)}), 0, 4116},
        {textUpTo("4294967297") + "a:", structure({1, "a\0"s}), 1, 23},
        {textUpTo("-5") + "abcde:", structure({5, ""}), 2, 12},
        {textUpTo("?") + "abcde:", structure({3, ""}, 16), 2, 10},
        {"1:2:3:4:5:2", structure({3, ""}), 3, 11},
        {"1:2:3:4:65536:2:ab:", structure({3, ""}, 14), 2, 13},
    };
    for (const auto& row : rows)
    {
        expectRead(readText, row.text, {true, row.status, row.position}, row.after);
    }
}

TEST(LoadLmcData, ReadsAsFarAsShortBinaryDataGo)
{
    const std::string data = binaryUpTo(12) + kRaw;
    for (unsigned int size = 0; size <= 32; ++size)
    {
        SCOPED_TRACE(size);
        unsigned int position = size < 12 ? size / 4 * 4 : size < 16 ? size / 2 * 2 : 16;
        unsigned int status = size == 0 ? 3 : position == size ? 1 : 2;
        std::string after = structure({3, ""}, position);
        if (size >= 20)
        {
            position = size;
            status = size == 20 || size == 32 ? 1 : 3;
            after = structure({12, kRaw.substr(0, size - 20)});
        }
        expectRead(readBinary, data.substr(0, size), {true, status, position}, after);
    }
}

TEST(LoadLmcData, XmlContentIsFilledWithZerosOrCutToTheSize)
{
    const struct
    {
        std::string size;
        std::string lmBlock;
        std::string after;
    } rows[] = {
        {"5", element("lmBlock", "abc"), structure({5, "abc\0\0"s})},
        {"5", element("lmBlock", ""), structure({5, zeros(5)})},
        {"5", element("lmBlock", "abcdefg"), structure({5, "abcde"})},
        {"0", element("lmBlock", "abcdefg"), structure({0, ""})},
        {"five", element("lmBlock", "abcdefg"), structure({0, ""})},
        {"4100", element("lmBlock", "abc"), structure({4100, "abc" + zeros(4097)})},
        {"4100", element("lmBlock", letters(9000)), structure({4100, letters(4100)})},
        {"8", element("lmBlock", " a:<&>\n\t"), structure({8, " a:<&>\n\t"})},
        {"5", "<lmBlock>\r\n a b\t</lmBlock>", structure({5, "a b\0\0"s})},
        {"5", element("lmBlock", "a</lmBlock>b"), structure({5, "a\0\0\0\0"s})},
    };
    for (const auto& row : rows)
    {
        expectRead(readXml, xmlUpTo(row.size) + row.lmBlock, {true, 0, 0}, row.after);
        expectRead(readXml, row.lmBlock + xmlUpTo(row.size), {true, 0, 0}, row.after);
    }
}

TEST(LoadLmcData, XmlEndsAtTheFirstZeroByte)
{
    const auto message = holding<BciLoadLmcData>(structure({12, kRaw}));

    expectRead(readXml, writeXml(*message).bytes, {false, 0, 0}, structure({12, ""}),
               {{6, "[src/bciLoadLmcMsg:623] tag %s not found", {"lmBlock"}}});
}

TEST(LoadLmcData, FirstMissingElementEndsTheReadingOfXml)
{
    expectEachMissingElementStopsTheReader(*filled<BciLoadLmcData>(kStructure), kBefore,
                                           xmlUpTo("2") + element("lmBlock", "ab"), structure({2, "ab"}),
                                           {{"sigNo", "[src/bciLoadLmcMsg:581] tag %s not found", 0},
                                            {"clientRef", "[src/bciLoadLmcMsg:588] tag %s not found", 4},
                                            {"serverRef", "[src/bciLoadLmcMsg:595] tag %s not found", 8},
                                            {"lmSeqNr", "[src/bciLoadLmcMsg:602] tag %s not found", 12},
                                            {"padding0", "[src/bciLoadLmcMsg:609] tag %s not found", 14},
                                            {"lmBlockSize", "[src/bciLoadLmcMsg:616] tag %s not found", 16},
                                            {"lmBlock", "[src/bciLoadLmcMsg:623] tag %s not found", 20}});
}

} // namespace

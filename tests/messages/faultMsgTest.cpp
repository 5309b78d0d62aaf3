#include "bciFaultMsg.h"
#include "bciMsgRegistration.h"
#include "logCapture.h"
#include "messageKit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <ostream>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace
{

using namespace std::string_literals;

// What a message holds: its fields in order, each as it prints, the alignment at the structure's end last.
using Content = std::vector<std::string>;

Content with(Content content, std::initializer_list<std::pair<std::size_t, std::string>> changes)
{
    for (const auto& [field, value] : changes)
    {
        content[field] = value;
    }
    return content;
}

struct Field
{
    const char* tag;
    std::size_t offset;
    char type; // S, U: signed and unsigned of 32 bits, u: unsigned of 16 bits, t: text of 110
    int line;  // in the log if the XML reader does not find the element
};

// The outcome of a reading operation on a message.
struct Outcome
{
    Read read;
    Content content;
    Log log = {};

    bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Outcome& outcome)
{
    return out << outcome.read << ' ' << testing::PrintToString(outcome.content) << ' '
               << testing::PrintToString(outcome.log);
}

template <typename Number>
std::string load(const char* from)
{
    Number number;
    std::memcpy(&number, from, sizeof number);
    return std::to_string(number);
}

Log tooLong(int priority, int line, const std::string& length)
{
    return {
        {priority, "[src/bciFaultMsg:" + std::to_string(line) + "] additionalDataLength %d > %d", {length, "4"}}};
}

LogLine noWord(const std::string& index, const std::string& offset)
{
    return {6,
            "[src/bciFaultMsg:560] additional data tag not found, i %d offset %d tag %s",
            {index, offset, "additionalData_" + index}};
}

// The lines in the log if an operation rejects the length; 0: it does not.
struct Lines
{
    int textWrite, binaryWrite, xmlWrite, textRead, binaryRead, xmlRead;
};

// One of the two messages.
struct Kind
{
    const char* name;
    std::unique_ptr<BciMessageBase> (*filled)(std::size_t, char);
    std::size_t size;
    std::size_t length, words, faultCase; // indexes of fields
    Lines lines;
    std::vector<Field> fields;
    Content sample;                       // with four words
    Content held;                         // before it reads
    std::string textHead, textMiddle;     // of the sample: up to the length, between it and the words
    std::string binaryHead, binaryMiddle; // likewise

    // The three forms of the sample with a length of its own.
    std::string text(std::size_t count) const
    {
        static const char* const rows[] = {":", "11:", "11:12:", "11:12:13:", "11:12:13:14:"};
        return textHead + std::to_string(count) + ":" + textMiddle + rows[count] + "3:";
    }

    std::string binary(std::size_t count) const
    {
        return binaryHead + be16(static_cast<unsigned int>(count)) + binaryMiddle +
               (be16(11) + be16(12) + be16(13) + be16(14)).substr(0, 2 * count) + zeros(8 - 2 * count) + be16(3);
    }

    std::string xml(const Content& content) const
    {
        std::string document;
        for (std::size_t i = 0; i <= faultCase; ++i)
        {
            if (i < words || i == faultCase || i - words < std::stoul(content[length]))
            {
                document += element(fields[i].tag, content[i]);
            }
        }
        return document;
    }

    // The sample up to a field, what the message held from there on.
    Content upTo(std::size_t field) const
    {
        Content content = held;
        std::copy_n(sample.begin(), field, content.begin());
        return content;
    }

    // Characters stand behind a text's terminator. A text that fills its array has no terminator.
    std::unique_ptr<BciMessageBase> holding(const Content& content) const
    {
        auto message = filled(size, kFill);
        for (std::size_t i = 0; i < content.size(); ++i)
        {
            char* const at = message->getMsg() + fields[i].offset;
            if (fields[i].type == 't')
            {
                std::memcpy(at, content[i].c_str(), std::min<std::size_t>(content[i].size() + 1, 110));
                continue;
            }
            const U32 number = static_cast<U32>(std::stoll(content[i]));
            const U16 half = static_cast<U16>(number);
            fields[i].type == 'u' ? std::memcpy(at, &half, 2) : std::memcpy(at, &number, 4);
        }
        return message;
    }

    Content contentOf(const BciMessageBase& message) const
    {
        Content content;
        for (const Field& field : fields)
        {
            const char* const at = message.getMsg() + field.offset;
            content.push_back(field.type == 'U'   ? load<U32>(at)
                              : field.type == 'S' ? load<S32>(at)
                              : field.type == 'u' ? load<U16>(at)
                                                  : std::string(at, strnlen(at, 110)));
        }
        return content;
    }

    Outcome outcome(Reader reader, const std::string& data) const
    {
        return outcome(reader, data, held);
    }

    Outcome outcome(Reader reader, const std::string& data, const Content& before) const
    {
        const auto message = holding(before);
        const Read read = reader(*message, data);
        return {read, contentOf(*message), takeLog()};
    }

    LogLine missing(std::size_t field, const std::string& document) const
    {
        const Field& row = fields[field];
        const std::string format = "[src/bciFaultMsg:" + std::to_string(row.line) + "] tag %s not found";
        return row.line == 286   ? LogLine{6, format + " buf %s", {row.tag, document}}
               : row.line == 560 ? noWord(std::to_string(field - words), "355") // of 400 without the element's 45
                                 : LogLine{6, format, {row.tag}};
    }
};

template <typename Message>
std::unique_ptr<BciMessageBase> filledMessage(std::size_t size, char fill)
{
    return filled<Message>(size, fill);
}

const Kind kIndication = {
    .name = "Indication",
    .filled = filledMessage<BciFaultIndication>,
    .size = 144,
    .length = 7,
    .words = 9,
    .faultCase = 13,
    .lines = {0, 81, 139, 189, 220, 300},
    .fields = {{"sigNo", 0, 'U', 244},
               {"clientRef", 4, 'S', 251},
               {"serverRef", 8, 'S', 258},
               {"faultId", 12, 'u', 265},
               {"padding0", 14, 'u', 272},
               {"faultDescription", 16, 't', 279},
               {"padding1", 126, 'u', 286},
               {"additionalDataLength", 128, 'u', 293},
               {"padding2", 130, 'u', 306},
               {"additionalData_0", 132, 'u', 318},
               {"additionalData_1", 134, 'u', 318},
               {"additionalData_2", 136, 'u', 318},
               {"additionalData_3", 138, 'u', 318},
               {"faultCase", 140, 'u', 326},
               {nullptr, 142, 'u', 0}},
    .sample = {"23429133", "1", "-2", "100", "7", "fan 3 stopped", "8", "4", "9", "11", "12", "13", "14", "3",
               "99"},
    .held = {"91", "92", "93", "94", "95", "held", "96", "2", "97", "81", "82", "83", "84", "98", "99"},
    .textHead = "23429133:1:-2:100:7:fan 3 stopped:8:", // 36 characters
    .textMiddle = "9:",
    .binaryHead = binaryHeader(23429133, 1, -2) + be16(100) + be16(7) + "fan 3 stopped\0"s +
                  std::string(96, kFill) + be16(8),
    .binaryMiddle = be16(9),
};

const Kind kCease = {
    .name = "Cease",
    .filled = filledMessage<BciFaultCeaseIndication>,
    .size = 28,
    .length = 4,
    .words = 5,
    .faultCase = 9,
    .lines = {350, 382, 426, 467, 492, 550},
    .fields = {{"sigNo", 0, 'U', 515},
               {"clientRef", 4, 'S', 522},
               {"serverRef", 8, 'S', 529},
               {"faultId", 12, 'u', 536},
               {"additionalDataLength", 14, 'u', 543},
               {"additionalData_0", 16, 'u', 560},
               {"additionalData_1", 18, 'u', 560},
               {"additionalData_2", 20, 'u', 560},
               {"additionalData_3", 22, 'u', 560},
               {"faultCase", 24, 'u', 568},
               {nullptr, 26, 'u', 0}},
    .sample = {"23429134", "1", "-2", "100", "4", "11", "12", "13", "14", "3", "99"},
    .held = {"91", "92", "93", "94", "2", "81", "82", "83", "84", "98", "99"},
    .textHead = "23429134:1:-2:100:", // 18 characters
    .textMiddle = "",
    .binaryHead = binaryHeader(23429134, 1, -2) + be16(100),
    .binaryMiddle = "",
};

class Fault : public testing::TestWithParam<const Kind*>, protected Kind
{
protected:
    Fault() : Kind(*GetParam()) {}
};

INSTANTIATE_TEST_SUITE_P(, Fault, testing::Values(&kIndication, &kCease),
                         [](const auto& kind) { return kind.param->name; });

class FaultIndication : public testing::Test, protected Kind
{
protected:
    FaultIndication() : Kind(kIndication) {}
};

class FaultCease : public testing::Test, protected Kind
{
protected:
    FaultCease() : Kind(kCease) {}
};

// Structure and class

TEST_F(FaultIndication, WireStructureHasTheLayoutOfTheSignal)
{
    using Wire = VornBcFaultIndS;
    expectSignal<Wire>(144);
    expectField<VornConstFhFaultIdsT>(&Wire::faultId, 12);
    expectField<U16>(&Wire::padding0, 14);
    expectField<U8[110]>(&Wire::faultDescription, 16);
    expectField<U16>(&Wire::padding1, 126);
    expectField<U16>(&Wire::additionalDataLength, 128);
    expectField<U16>(&Wire::padding2, 130);
    expectField<U16[4]>(&Wire::additionalData, 132);
    expectField<U16>(&Wire::faultCase, 140);
    EXPECT_TRUE((std::is_same_v<VornConstFhFaultIdsT, U16>));
}

TEST_F(FaultCease, WireStructureHasTheLayoutOfTheSignal)
{
    using Wire = VornBcFaultceaseIndS;
    expectSignal<Wire>(28);
    expectField<VornConstFhFaultIdsT>(&Wire::faultId, 12);
    expectField<U16>(&Wire::additionalDataLength, 14);
    expectField<U16[4]>(&Wire::additionalData, 16);
    expectField<U16>(&Wire::faultCase, 24);
}

TEST_F(FaultIndication, HasItsNumberItsStructureAndItsBufferSizes)
{
    EXPECT_EQ(BCI_FAULT_IND, 0x165800DU);
    expectOwnStructure<BciFaultIndication, VornBcFaultIndS>(&BciFaultIndication::m_faultIndication, 644, 144);
}

TEST_F(FaultCease, HasItsNumberItsStructureAndItsBufferSizes)
{
    EXPECT_EQ(BCI_FAULT_CEASE_IND, 0x165800EU);
    expectOwnStructure<BciFaultCeaseIndication, VornBcFaultceaseIndS>(
        &BciFaultCeaseIndication::m_faultCeaseIndication, 77, 28);
}

// They come from the factory.
TEST_P(Fault, MessagesHaveStructuresOfTheirOwn)
{
    const Content content = with(held, {{0, "4294967295"}, {1, "-2147483648"}, {2, "2147483647"}});
    const auto first = holding(content);
    const auto second = holding(sample);

    expectSetMsgCopies(*second, size);

    EXPECT_EQ(contentOf(*first), content);
    EXPECT_EQ(first->getSigNo(), 4294967295U);
    EXPECT_EQ(first->getAddressInfo().clientRef, kLowest);
    EXPECT_EQ(first->getAddressInfo().serverRef, 2147483647);
    EXPECT_EQ(first->getDelim(), ':');
}

// Every length that is allowed

TEST_P(Fault, WritesUpToFourWords)
{
    for (std::size_t count = 0; count <= 4; ++count)
    {
        SCOPED_TRACE(count);
        const Content content = with(sample, {{length, std::to_string(count)}});
        const auto message = holding(content);
        EXPECT_EQ(writeText(*message), (Written{true, text(count), 0}));
        EXPECT_EQ(writeBinary(*message), (Written{true, binary(count), 0}));
        EXPECT_EQ(writeXml(*message), (Written{true, xml(content), 0}));
    }
}

// Text and XML leave the other words alone; binary, which carries them as zeros, sets all.
TEST_P(Fault, ReadsUpToFourWords)
{
    for (std::size_t count = 0; count <= 4; ++count)
    {
        SCOPED_TRACE(count);
        Content content = with(sample, {{length, std::to_string(count)}});
        Content fromBinary = content;
        for (std::size_t word = words + count; word < faultCase; ++word)
        {
            content[word] = held[word];
            fromBinary[word] = "0";
        }
        EXPECT_EQ(outcome(readBinary, binary(count)), (Outcome{{true, 1, sizeOf(binary(0))}, fromBinary}));
        EXPECT_EQ(outcome(readXml, xml(content)), (Outcome{{true, 0, 0}, content}));
        if (count != 0)
        {
            const std::string data = text(count);
            EXPECT_EQ(outcome(readText, data), (Outcome{{true, 1, sizeOf(data)}, content}));
            EXPECT_EQ(outcome(readText, data + "4:"), (Outcome{{true, 0, sizeOf(data)}, content}));
        }
    }
}

TEST_P(Fault, BinaryReaderTakesAllWordsWhateverTheLength)
{
    const std::string data = binaryHead + be16(0) + binaryMiddle + binary(4).substr(binary(4).size() - 10);
    EXPECT_EQ(outcome(readBinary, data + "#"), (Outcome{{true, 0, sizeOf(data)}, with(sample, {{length, "0"}})}));
}

// The reader meets the second of the two delimiters where the fault case should begin.
TEST_P(Fault, TextWithoutAdditionalDataDoesNotReadBack)
{
    const std::string data = textHead + "0:" + textMiddle;
    const Content content = with(upTo(words), {{length, "0"}});
    EXPECT_EQ(outcome(readText, data + ":3:"), (Outcome{{true, 2, sizeOf(data)}, content}));
    EXPECT_EQ(outcome(readText, data + "3:"),
              (Outcome{{true, 1, sizeOf(data) + 2}, with(content, {{faultCase, "3"}})}));
}

// A length above four

TEST_P(Fault, WritersRejectALengthAboveFour)
{
    for (const unsigned int count : {5U, 6U, 65535U})
    {
        const std::string number = std::to_string(count);
        SCOPED_TRACE(number);
        const auto message = holding(with(sample, {{length, number}}));
        const std::string elements = xml(with(sample, {{length, number}}));
        const std::string last = element("additionalDataLength", number);

        EXPECT_EQ(writeBinary(*message), (Written{false, binaryHead + be16(count), 0}));
        EXPECT_EQ(takeLog(), tooLong(3, lines.binaryWrite, number));
        EXPECT_EQ(writeXml(*message), (Written{false, elements.substr(0, elements.find(last) + last.size()), 0}));
        EXPECT_EQ(takeLog(), tooLong(6, lines.xmlWrite, number));
        if (lines.textWrite != 0)
        {
            EXPECT_EQ(writeText(*message), (Written{false, textHead + number + ":", 0}));
            EXPECT_EQ(takeLog(), tooLong(3, lines.textWrite, number));
        }
    }
}

TEST_F(FaultIndication, TextWriterTakesWordsAsFarAsTheStructureReaches)
{
    for (const auto& [number, behind] : {std::pair("5", "11:12:13:14:3:3:"),
                                         {"6", "11:12:13:14:3:99:3:"},
                                         {"7", "11:12:13:14:3:99:3:"},
                                         {"65535", "11:12:13:14:3:99:3:"}})
    {
        SCOPED_TRACE(number);
        EXPECT_EQ(writeText(*holding(with(sample, {{length, number}}))),
                  (Written{true, textHead + number + ":9:" + behind, 0}));
    }
}

// The delimiter behind the length is read before the check.
TEST_P(Fault, ReadersRejectALengthAboveFour)
{
    for (const unsigned int count : {5U, 6U, 65535U})
    {
        const std::string number = std::to_string(count);
        SCOPED_TRACE(number);
        const Content content = with(upTo(length), {{length, number}});
        const std::string inText = textHead + number + ":";
        const std::string inBinary = binaryHead + be16(count);
        EXPECT_EQ(outcome(readText, inText + "1:2:3:4:5:6:7:"),
                  (Outcome{{false, 0, sizeOf(inText)}, content, tooLong(3, lines.textRead, number)}));
        EXPECT_EQ(outcome(readBinary, inBinary + std::string(20, '\1')),
                  (Outcome{{false, 0, sizeOf(inBinary)}, content, tooLong(3, lines.binaryRead, number)}));
    }
}

TEST_P(Fault, XmlReaderChecksTheLengthAsStored)
{
    const std::pair<const char*, const char*> rows[] = {
        {"5", "5"},        {"65535", "65535"}, {"-1", "65535"}, {"70000", "4464"},    {"4000000000", "65535"},
        {" +00005x", "5"}, {"-65531", "5"},    {"4", "4"},      {"65540", "4"},       {"-65532", "4"},
        {"+4.5", "4"},     {"", "0"},          {"abc", "0"},    {"-2147483648", "0"}, {"65536", "0"},
    };
    for (const auto& [given, stored] : rows)
    {
        SCOPED_TRACE(given);
        const bool rejected = std::stoi(stored) > 4;
        const Content content = rejected         ? upTo(length)
                                : *stored == '4' ? sample
                                                 : with(upTo(words), {{faultCase, "3"}});
        EXPECT_EQ(outcome(readXml, element("additionalDataLength", given) + xml(sample)),
                  (Outcome{{!rejected, 0, 0},
                           with(content, {{length, stored}}),
                           rejected ? tooLong(6, lines.xmlRead, stored) : Log{}}));
    }
}

// Where the data end before the length, the one that the message held is checked.
TEST_P(Fault, ReadersCheckTheLengthThatWasHeldIfThereIsNoOther)
{
    const Content before = with(held, {{length, "5"}});
    const Log inText = tooLong(3, lines.textRead, "5");
    const Log inBinary = tooLong(3, lines.binaryRead, "5");
    EXPECT_EQ(outcome(readText, "", before), (Outcome{{false, 3, 0}, before, inText}));
    EXPECT_EQ(outcome(readText, "?:", before), (Outcome{{false, 2, 0}, before, inText}));
    EXPECT_EQ(outcome(readBinary, "", before), (Outcome{{false, 3, 0}, before, inBinary}));
    EXPECT_EQ(outcome(readBinary, binaryHead, before),
              (Outcome{{false, 1, sizeOf(binaryHead)}, with(upTo(length), {{length, "5"}}), inBinary}));
}

// Extreme numbers

TEST_P(Fault, CarriesExtremeNumbers)
{
    const bool described = size == 144;
    Content largest(sample.size(), "65535");
    largest = with(largest, {{0, "4294967295"}, {1, "-2147483648"}, {2, "-2147483648"}, {length, "4"}});
    largest[5] = described ? "d" : "65535";
    const Content before = with(held, {{faultCase + 1, "65535"}});
    const std::string inText =
        "65535:"s + (described ? "65535:d:65535:4:65535:" : "4:") + "65535:65535:65535:65535:65535:";
    const std::string inBinary =
        binaryHeader(4294967295U, kLowest, kLowest) + be16(65535) +
        (described ? be16(65535) + "d\0"s + std::string(108, 'Z') + be16(65535) + be16(4) + be16(65535)
                   : be16(4)) +
        std::string(10, '\xFF');
    const auto message = holding(largest);

    EXPECT_EQ(writeText(*message), (Written{true, "4294967295:-2147483648:-2147483648:" + inText, 0}));
    EXPECT_EQ(writeBinary(*message), (Written{true, inBinary, 0}));
    EXPECT_EQ(writeXml(*message), (Written{true, xml(largest), 0}));
    EXPECT_EQ(outcome(readBinary, inBinary, before), (Outcome{{true, 1, sizeOf(inBinary)}, largest}));
    // Text reads no smaller reference.
    EXPECT_EQ(outcome(readText, "4294967295:-2147483647:-2147483647:" + inText, before),
              (Outcome{{true, 1, 35 + sizeOf(inText)}, with(largest, {{1, "-2147483647"}, {2, "-2147483647"}})}));
}

TEST_P(Fault, XmlNumbersAreTruncatedToTheirFields)
{
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"4294967295", "2147483647", "65535"},
        {"-2147483649", "-2147483648", "0"},
        {"65536", "65536", "0"},
        {"65535", "65535", "65535"},
        {"-3", "-3", "65533"},
        {"12abc", "12", "12"},
        {"abc", "0", "0"},
        {"", "0", "0"},
    };
    for (const auto& [given, in32Bits, in16Bits] : rows)
    {
        SCOPED_TRACE(given);
        Content document = sample;
        Content content = sample;
        for (std::size_t i = 1; i <= faultCase; ++i)
        {
            if (i != length && fields[i].type != 't')
            {
                document[i] = given;
                content[i] = fields[i].type == 'S' ? in32Bits : in16Bits;
            }
        }
        EXPECT_EQ(outcome(readXml, xml(document)), (Outcome{{true, 0, 0}, content}));
    }
}

// Damaged and short data, short buffers

TEST_P(Fault, XmlReaderStopsAtTheFirstMissingElement)
{
    for (std::size_t i = 0; i <= faultCase; ++i)
    {
        SCOPED_TRACE(fields[i].tag);
        const std::string document = without(xml(sample), fields[i].tag);
        const Outcome expected{{false, 0, 0}, upTo(i), {missing(i, document)}};
        EXPECT_EQ(outcome(readXml, document), expected);
        // The document ends at its terminator.
        EXPECT_EQ(outcome(readXml, document + '\0' + xml(sample)), expected);
    }
}

TEST_F(FaultCease, OffsetOfAMissingWordIsTheLengthOfTheDocument)
{
    const std::string document =
        "<sigNo>1</sigNo><clientRef>2</clientRef><serverRef>3</serverRef><faultId>4</faultId>"
        "<additionalDataLength>2</additionalDataLength><additionalData_0>5</additionalData_0>"
        "<additionalData_1>6<additionalData_1>"; // 205 characters
    EXPECT_EQ(outcome(readXml, document), (Outcome{{false, 0, 0},
                                                   {"1", "2", "3", "4", "2", "5", "82", "83", "84", "98", "99"},
                                                   {noWord("1", "205")}}));
}

TEST_P(Fault, XmlReaderDoesNotConsultTheStream)
{
    EXPECT_EQ(outcome(readXmlOffAFailedStream, xml(sample)), (Outcome{{true, 2, 20}, sample}));
}

TEST_P(Fault, ShortBufferTakesTheBeginningOfTextAndXml)
{
    expectBeginnings(writeText, *holding(sample), text(4));
    expectBeginnings(writeXml, *holding(sample), xml(sample));
}

// Numbers that do not fit are left out, the description is cut, and what fits behind them is written.
TEST_P(Fault, ShortBufferTakesWhatFitsOfBinary)
{
    const std::string id = be16(100);
    using Rows = std::vector<std::tuple<unsigned int, std::size_t, std::string, unsigned int>>;
    const Rows indication = {
        {0, 0, "", 3},       {1, 0, "f", 3},    {2, 0, id, 3},     {3, 0, id + "f", 3}, {5, 4, "f", 3},
        {7, 4, id + "f", 3}, {8, 8, "", 3},     {12, 12, "", 3},   {15, 14, "f", 3},    {20, 20, "", 3},
        {126, 126, "", 3},   {127, 126, "", 2}, {130, 130, "", 3}, {137, 136, "", 2},   {141, 140, "", 2},
        {142, 142, "", 1},   {143, 142, "", 0},
    };
    const Rows cease = {
        {0, 0, "", 3},  {1, 0, "", 2},   {3, 0, id, 2},   {4, 4, "", 3},   {7, 4, id, 2},
        {10, 8, id, 3}, {16, 16, "", 3}, {25, 24, "", 2}, {26, 26, "", 1}, {27, 26, "", 0},
    };
    const auto message = holding(sample);
    for (const auto& [room, beginning, rest, status] : size == 144 ? indication : cease)
    {
        SCOPED_TRACE(room);
        EXPECT_EQ(writeBinary(*message, room), (Written{true, binary(4).substr(0, beginning) + rest, status}));
    }
}

// A number at the very end of a text becomes 0, but for the signal number; behind a damaged number nothing is
// read. The result is true all the same.
TEST_P(Fault, ReadsTextAsFarAsItGoes)
{
    // Status, position, how many fields are read, and what the next one becomes if not empty.
    using Rows = std::vector<std::tuple<std::string, unsigned int, unsigned int, std::size_t, std::string>>;
    const Rows indication = {
        {"", 3, 0, 0, ""},
        {"23429133", 3, 8, 0, ""},
        {"?:1:-2:", 2, 0, 0, ""},
        {"23429133:1", 3, 10, 1, "0"},
        {"23429133:1:2147483648:100:7:", 2, 21, 2, ""},
        {"23429133:1:-2:65536:7:", 2, 19, 3, ""},
        {"23429133:1:-2:100:7", 3, 19, 4, "0"},
        {"23429133:1:-2:100:7:", 3, 20, 5, ""},
        {"23429133:1:-2:100:7:fan", 3, 23, 5, "fan"},
        {textHead, 3, 36, 7, ""},
        {textHead + "4", 3, 37, 7, "0"},
        {textHead + "4:", 3, 38, 8, ""},
        {textHead + "65536:9:11:", 2, 41, 7, ""},
        {textHead + "4-:9:11:", 2, 37, 7, "0"},
        {textHead + "4:?:11:", 2, 38, 8, ""},
        {textHead + "4:9:11:70000:13:", 2, 48, 10, ""},
        {textHead + "4:9:11:12:13:14:3", 3, 53, 13, "0"},
    };
    const Rows cease = {
        {"", 3, 0, 0, ""},
        {"23429134", 3, 8, 0, ""},
        {"23429134:?:-2:", 2, 9, 1, ""},
        {"23429134:1:-2:1F:", 2, 16, 3, ""},
        {textHead, 3, 18, 4, ""},
        {textHead + "4", 3, 19, 4, "0"},
        {textHead + "-4:11:", 2, 20, 4, ""},
        {textHead + "4:11:12:13", 3, 28, 7, "0"},
        {textHead + "4:11:12:13:14:65536:", 2, 37, 9, ""},
        {textHead + "4:11:12:13:14:3", 3, 33, 9, "0"},
    };
    for (const auto& [data, status, position, count, next] : size == 144 ? indication : cease)
    {
        SCOPED_TRACE(data);
        const Content content = next.empty() ? upTo(count) : with(upTo(count), {{count, next}});
        EXPECT_EQ(outcome(readText, data), (Outcome{{true, status, position}, content}));
    }
}

TEST_P(Fault, ReadsBinaryAsFarAsItGoes)
{
    using Rows = std::vector<std::tuple<std::size_t, unsigned int, unsigned int, std::size_t>>;
    const Rows indication = {
        {0, 3, 0, 0},     {3, 2, 0, 0},     {4, 1, 4, 1},      {13, 2, 12, 3},
        {14, 1, 14, 4},   {16, 1, 16, 5},   {126, 1, 126, 6},  {128, 1, 128, 7},
        {129, 2, 128, 7}, {130, 1, 130, 8}, {136, 1, 136, 11}, {141, 2, 140, 13},
    };
    const Rows cease = {
        {0, 3, 0, 0},   {3, 2, 0, 0},   {11, 2, 8, 2},  {14, 1, 14, 4},
        {15, 2, 14, 4}, {16, 1, 16, 5}, {23, 2, 22, 8}, {25, 2, 24, 9},
    };
    for (const auto& [end, status, position, count] : size == 144 ? indication : cease)
    {
        SCOPED_TRACE(end);
        EXPECT_EQ(outcome(readBinary, binary(4).substr(0, end)), (Outcome{{true, status, position}, upTo(count)}));
    }
}

// The description, and what the text form has around it

class FaultDescription : public FaultIndication
{
protected:
    Content described(const std::string& description)
    {
        return with(sample, {{5, description}});
    }

    const std::string m_before = "23429133:1:-2:100:7:";
    const std::string m_behind = ":8:4:9:11:12:13:14:3:";
};

TEST_F(FaultDescription, GoesThroughTextAndXmlAsItIs)
{
    for (const std::string& description : {""s, " "s, "  both ends \t"s, "two\nlines\r\n"s, "a < b > c & \"d\""s,
                                           "\xC4\xFF\x80\x01"s, std::string(109, 'd')})
    {
        SCOPED_TRACE(testing::PrintToString(description));
        const Content content = described(description);
        const std::string inText = m_before + description + m_behind;
        const auto message = holding(content);
        EXPECT_EQ(writeText(*message), (Written{true, inText, 0}));
        EXPECT_EQ(writeXml(*message), (Written{true, xml(content), 0}));
        EXPECT_EQ(outcome(readText, inText), (Outcome{{true, 1, sizeOf(inText)}, content}));
        EXPECT_EQ(outcome(readXml, xml(content)), (Outcome{{true, 0, 0}, content}));
    }
}

TEST_F(FaultDescription, EndsWithItsArrayIfItHasNoTerminator)
{
    const std::string d110(110, 'd');
    // As characters, the padding behind the array reads "dd".
    const Content content = with(described(d110), {{6, "25700"}});
    const auto message = holding(content);
    EXPECT_EQ(writeText(*message), (Written{true, m_before + d110 + ":25700:4:9:11:12:13:14:3:", 0}));
    EXPECT_EQ(writeXml(*message), (Written{true, xml(content), 0}));
    EXPECT_EQ(writeBinary(*message).bytes.substr(16, 112), d110 + "dd");
}

// The character behind them is dropped, whatever it is.
TEST_F(FaultDescription, TextReaderTakes109Characters)
{
    const std::string d109(109, 'd');
    EXPECT_EQ(outcome(readText, m_before + d109 + "d8:4:9:11:12:13:14:3:"),
              (Outcome{{true, 1, 150}, described(d109)}));
    EXPECT_EQ(outcome(readText, m_before + d109 + "d" + m_behind),
              (Outcome{{true, 2, 130}, with(upTo(5), {{5, d109}})}));
}

TEST_F(FaultDescription, TextReaderStopsAtADelimiterInIt)
{
    EXPECT_EQ(writeText(*holding(described("door: open"))),
              (Written{true, m_before + "door: open" + m_behind, 0}));
    EXPECT_EQ(outcome(readText, m_before + "door: open" + m_behind),
              (Outcome{{true, 2, 25}, with(upTo(5), {{5, "door"}})}));
    EXPECT_EQ(outcome(readText, m_before + "fan:3" + m_behind),
              (Outcome{{false, 0, 28},
                       with(upTo(5), {{5, "fan"}, {6, "3"}, {7, "8"}}),
                       tooLong(3, lines.textRead, "8")}));
    EXPECT_EQ(
        outcome(readText, m_before + "fan:3:1:4:9:11:12:13:14:3:"),
        (Outcome{{true, 0, 35}, with(upTo(5), {{5, "fan"}, {6, "3"}, {7, "1"}, {8, "4"}, {9, "9"}, {13, "11"}})}));
}

TEST_F(FaultDescription, XmlReaderTakesOffTheLayout)
{
    const std::string d109(109, 'd');
    const std::pair<std::string, std::string> rows[] = {
        {"fan 3", "fan 3"},
        {"  fan 3\r\n", "fan 3"},
        {"\n\t   fan 3 \n\t", " fan 3 "},
        {"\n    fan 3\n", "fan 3"},
        {" \t\n\v\f\r", ""},
        {d109 + "d", d109},
        {std::string(5000, 'd'), d109},
        {std::string(200, ' ') + d109, d109},
        {"a</faultDescription>b", "a"},
    };
    for (const auto& [given, description] : rows)
    {
        SCOPED_TRACE(testing::PrintToString(given));
        EXPECT_EQ(outcome(readXml, "<faultDescription>" + given + "</faultDescription>" + xml(sample)),
                  (Outcome{{true, 0, 0}, described(description)}));
    }
}

TEST_F(FaultDescription, ElementsInItAreTheFirstOfTheirName)
{
    const Content content = described("a<padding1>5</padding1>");
    EXPECT_EQ(outcome(readXml, xml(content)), (Outcome{{true, 0, 0}, with(content, {{6, "5"}})}));
}

TEST_F(FaultDescription, CharactersBehindTheTerminatorAreKeptByTextAndXml)
{
    for (const auto& [reader, data] :
         {std::pair<Reader, std::string>{readText, m_before + "ab" + m_behind}, {readXml, xml(described("ab"))}})
    {
        const auto message = holding(held);
        EXPECT_TRUE(reader(*message, data).result);
        EXPECT_EQ(structureOf(*message, 144).substr(16, 110), "ab\0d\0"s + std::string(105, 'Z'));
    }
}

TEST_F(FaultDescription, BinaryCarriesAllOfTheArray)
{
    std::string all(110, '\0');
    std::generate(all.begin(), all.end(), [next = 0]() mutable { return static_cast<char>(next += 3); });
    const std::string data = binary(4).replace(16, 110, all);
    const auto message = holding(held);

    EXPECT_EQ(readBinary(*message, data), (Read{true, 1, 142}));

    EXPECT_EQ(structureOf(*message, 144).substr(16, 110), all);
    EXPECT_EQ(writeBinary(*message), (Written{true, data, 0}));
}

TEST_F(FaultDescription, CutInBinaryKeepsWhatItHeldBehind)
{
    EXPECT_EQ(outcome(readBinary, binary(4).substr(0, 18)),
              (Outcome{{true, 3, 18}, with(upTo(5), {{5, "fald"}})}));
}

} // namespace

#include "bciLoadLmcInitMsg.h"
#include "bciLoadLmcMsg.h"
#include "logCapture.h"
#include "messageKit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace
{

using Values = std::vector<std::string>; // of the first fields of a message, in their order

struct Field
{
    std::string tag;
    std::size_t offset;
    std::size_t size; // 4 or 2 for a number, else that of a text's array

    bool isNumber() const
    {
        return size <= 4;
    }
};

struct Kind
{
    struct
    {
        std::string name;
        BciMsgFactory create;
        std::size_t size; // of the wire structure
        unsigned int textBufferSize;
    } type;
    std::vector<Field> fields; // behind the header
    struct
    {
        std::string source;
        std::vector<int> lines; // for each element that is missing
    } log;
    // An example and what it renders to.
    Values values;
    std::string text;
    std::string binary;
    std::string xml;

    Field field(std::size_t index) const
    {
        const Field header[] = {{"sigNo", 0, 4}, {"clientRef", 4, 4}, {"serverRef", 8, 4}};
        return index < 3 ? header[index] : fields[index - 3];
    }

    bool isOfTexts() const
    {
        return !fields.front().isNumber();
    }
};

void PrintTo(const Kind& kind, std::ostream* out)
{
    *out << kind.type.name;
}

const Kind kInitReq{{"BciLoadLmcInitReq", &BciLoadLmcInitReq::instantiateBciMsg, 48, 215},
                    {{"loadModule", 12, 36}},
                    {"bciLoadLmcInitMsg", {101, 108, 115, 122}},
                    {"23431171", "1", "-2", "lm 7<&>.bin"},
                    "23431171:1:-2:lm 7<&>.bin:",
                    binaryHeader(23431171, 1, -2) + "lm 7<&>.bin" + zeros(25),
                    headerElements("23431171", "1", "-2") + "\t<loadModule>\n\t  lm 7<&>.bin\n\t</loadModule>\n"};

const Kind kInitCfm{{"BciLoadLmcInitCfm", &BciLoadLmcInitCfm::instantiateBciMsg, 16, 41},
                    {{"loadInitResult", 12, 2}},
                    {"bciLoadLmcInitMsg", {204, 211, 218, 225}},
                    {"23431172", "-1", "2", "4660"},
                    "23431172:-1:2:4660:",
                    binaryHeader(23431172, -1, 2) + bytes({0x12, 0x34}),
                    headerElements("23431172", "-1", "2") + "\t<loadInitResult>\n\t  4660\n\t</loadInitResult>\n"};

const Kind kLoadReq{{"BciLoadLmcReq", &BciLoadLmcReq::instantiateBciMsg, 248, 979},
                    {{"loadModule", 12, 36}, {"searchPath", 48, 200}},
                    {"bciLoadLmcMsg", {115, 122, 129, 136, 143}},
                    {"23431168", "1", "2", "boot", "/c/lm /d"},
                    "23431168:1:2:boot:/c/lm /d:",
                    binaryHeader(23431168, 1, 2) + "boot" + zeros(32) + "/c/lm /d" + zeros(192),
                    headerElements("23431168", "1", "2") + "\t<loadModule>\n\t  boot\n\t</loadModule>\n"
                                                           "\t<searchPath>\n\t  /c/lm /d\n\t</searchPath>\n"};

const Kind kAck{{"BciLoadLmcAck", &BciLoadLmcAck::instantiateBciMsg, 16, 41},
                {{"lmSeqNr", 12, 2}},
                {"bciLoadLmcMsg", {225, 232, 239, 246}},
                {"23431175", "1", "2", "17"},
                "23431175:1:2:17:",
                binaryHeader(23431175, 1, 2) + bytes({0x00, 0x11}),
                headerElements("23431175", "1", "2") + "\t<lmSeqNr>\n\t  17\n\t</loadModule>\n"};

const Kind kEndCfm{{"BciLoadLmcEndCfm", &BciLoadLmcEndCfm::instantiateBciMsg, 16, 41},
                   {{"loadResult", 12, 2}},
                   {"bciLoadLmcMsg", {328, 335, 342, 349}},
                   {"23431177", "1", "2", "32769"},
                   "23431177:1:2:32769:",
                   binaryHeader(23431177, 1, 2) + bytes({0x80, 0x01}),
                   headerElements("23431177", "1", "2") + "\t<loadResult>\n\t  32769\n\t</loadResult>\n"};

const Kind kSelectReq{{"BciSelectLmcReq", &BciSelectLmcReq::instantiateBciMsg, 48, 215},
                      {{"loadModule", 12, 36}},
                      {"bciLoadLmcMsg", {439, 446, 453, 460}},
                      {"23431179", "1", "2", "standby"},
                      "23431179:1:2:standby:",
                      binaryHeader(23431179, 1, 2) + "standby" + zeros(29),
                      headerElements("23431179", "1", "2") + "\t<loadModule>\n\t  standby\n\t</loadModule>\n"};

const std::vector<Kind> kAll{kInitReq, kInitCfm, kLoadReq, kAck, kEndCfm, kSelectReq};
const std::vector<Kind> kNames{kInitReq, kSelectReq};      // those of one text
const std::vector<Kind> kNumbers{kInitCfm, kAck, kEndCfm}; // those of one number

// What messages hold before they read: no number that a test reads, and texts that do not end.
std::string pattern(const Kind& kind)
{
    return std::string(kind.type.size, kFill);
}

// Stores values in a structure. A text that is shorter than its array is terminated; the bytes behind stay.
std::string with(std::string structure, const Kind& kind, const Values& values)
{
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        const Field field = kind.field(i);
        const U32 number = field.isNumber() ? static_cast<U32>(std::stoll(values[i])) : 0;
        const std::string stored = field.size == 4   ? inMemory(number)
                                   : field.size == 2 ? host16(static_cast<U16>(number))
                                                     : (values[i] + '\0').substr(0, field.size);
        structure.replace(field.offset, stored.size(), stored);
    }
    return structure;
}

std::string document(const Kind& kind, const Values& values)
{
    std::string result;
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        result += element(kind.field(i).tag, values[i]);
    }
    return result;
}

std::unique_ptr<BciMessageBase> holding(const Kind& kind, const std::string& structure)
{
    std::unique_ptr<BciMessageBase> message(kind.type.create(1));
    setStructure(*message, structure);
    return message;
}

// The example in a structure that is zero behind its texts.
std::unique_ptr<BciMessageBase> example(const Kind& kind)
{
    return holding(kind, with(zeros(kind.type.size), kind, kind.values));
}

// Reads into the pattern.
void expectRead(const Kind& kind, Reader reader, const std::string& data, const Read& outcome,
                const std::string& structure, const Log& log = {})
{
    SCOPED_TRACE(kind.type.name);
    const std::unique_ptr<BciMessageBase> message(kind.type.create(1));
    expectReading(*message, reader, pattern(kind), {data, outcome, structure, log});
}

class LoadLmcMsg : public testing::TestWithParam<Kind>
{
protected:
    const Kind& m_kind = GetParam();
};

INSTANTIATE_TEST_SUITE_P(, LoadLmcMsg, testing::ValuesIn(kAll),
                         [](const auto& kind) { return kind.param.type.name; });

TEST(LoadLmcStructures, HaveTheLayoutOfTheSignals)
{
    expectSignal<VornBcLoadLmcInitReqS>(48);
    expectField<U8[36]>(&VornBcLoadLmcInitReqS::loadModule, 12);
    expectSignal<VornBcLoadLmcInitCfmS>(16);
    expectField<U16>(&VornBcLoadLmcInitCfmS::loadInitResult, 12);
    expectSignal<VornBcLoadLmcReqS>(248);
    expectField<U8[36]>(&VornBcLoadLmcReqS::loadModule, 12);
    expectField<U8[200]>(&VornBcLoadLmcReqS::searchPath, 48);
    expectSignal<VornBcLoadLmcAckS>(16);
    expectField<U16>(&VornBcLoadLmcAckS::lmSeqNr, 12);
    expectSignal<VornBcLoadLmcEndCfmS>(16);
    expectField<U16>(&VornBcLoadLmcEndCfmS::loadResult, 12);
    expectSignal<VornBcSelectLmcReqS>(48);
    expectField<U8[36]>(&VornBcSelectLmcReqS::loadModule, 12);
}

TEST(LoadLmcStructures, AreHeldByTheMessagesAsTheirStorageWas)
{
    expectOwnStructure<BciLoadLmcInitReq, VornBcLoadLmcInitReqS>(&BciLoadLmcInitReq::m_loadLmcInitReq, 215, 48);
    expectOwnStructure<BciLoadLmcInitCfm, VornBcLoadLmcInitCfmS>(&BciLoadLmcInitCfm::m_loadLmcInitCfm, 41, 16);
    expectOwnStructure<BciLoadLmcReq, VornBcLoadLmcReqS>(&BciLoadLmcReq::m_loadLmcReq, 979, 248);
    expectOwnStructure<BciLoadLmcAck, VornBcLoadLmcAckS>(&BciLoadLmcAck::m_loadLmcAck, 41, 16);
    expectOwnStructure<BciLoadLmcEndCfm, VornBcLoadLmcEndCfmS>(&BciLoadLmcEndCfm::m_loadLmcEndCfm, 41, 16);
    expectOwnStructure<BciSelectLmcReq, VornBcSelectLmcReqS>(&BciSelectLmcReq::m_selectLmcReq, 215, 48);
}

TEST_P(LoadLmcMsg, FactoryMakesANewMessageWithItsBufferSizes)
{
    const std::unique_ptr<BciMessageBase> first(m_kind.type.create(1));
    const std::unique_ptr<BciMessageBase> second(m_kind.type.create(23431168));

    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first->getMsg(), second->getMsg());
    EXPECT_EQ(first->getMaxTextBufferSize(), m_kind.type.textBufferSize);
    EXPECT_EQ(first->getMaxBinaryBufferSize(), m_kind.type.size);
}

TEST_P(LoadLmcMsg, SetMsgCopiesTheStructureFromWhichTheAccessorsAnswer)
{
    const std::unique_ptr<BciMessageBase> message(m_kind.type.create(1));

    expectSetMsgCopies(*message, m_kind.type.size);
}

// Writing

TEST_P(LoadLmcMsg, WritesItsFields)
{
    const auto message = example(m_kind);

    EXPECT_EQ(writeText(*message), (Written{true, m_kind.text, 0}));
    EXPECT_EQ(writeBinary(*message), (Written{true, m_kind.binary, 0}));
    EXPECT_EQ(writeXml(*message), (Written{true, m_kind.xml, 0}));
    EXPECT_EQ(structureOf(*message, m_kind.type.size), with(zeros(m_kind.type.size), m_kind, m_kind.values));
}

// Every byte is 'Z': no text has a terminator. Binary arrays are taken as they are.
TEST_P(LoadLmcMsg, WritesTextsWithoutTerminatorUpToTheirArraysEnd)
{
    std::string text = "1515870810:1515870810:1515870810:";
    std::string binary(12, kFill);
    std::string xml = headerElements("1515870810", "1515870810", "1515870810");
    for (const Field& field : m_kind.fields)
    {
        const std::string value = field.isNumber() ? "23130" : std::string(field.size, kFill);
        text += value + ":";
        binary += std::string(field.size, kFill);
        xml += m_kind.type.name == "BciLoadLmcAck" ? "\t<lmSeqNr>\n\t  23130\n\t</loadModule>\n"
                                                   : element(field.tag, value);
    }
    const auto message = holding(m_kind, pattern(m_kind));

    EXPECT_EQ(writeText(*message), (Written{true, text, 0}));
    EXPECT_EQ(writeBinary(*message), (Written{true, binary, 0}));
    EXPECT_EQ(writeXml(*message), (Written{true, xml, 0}));
    expectRead(m_kind, readBinary, binary, {true, 1, sizeOf(binary)}, pattern(m_kind));
}

TEST(LoadLmcReq, WritesTextsUpToTheirTerminatorAndArraysWhole)
{
    const auto message = holding(kLoadReq, with(pattern(kLoadReq), kLoadReq, {"1", "2", "3", "", "p:q"}));

    EXPECT_EQ(writeText(*message), (Written{true, "1:2:3::p:q:", 0}));
    EXPECT_EQ(writeBinary(*message).bytes,
              binaryHeader(1, 2, 3) + '\0' + std::string(35, 'Z') + "p:q" + '\0' + std::string(196, 'Z'));
    EXPECT_EQ(writeXml(*message),
              (Written{true, headerElements() + element("loadModule", "") + element("searchPath", "p:q"), 0}));
}

TEST(LoadLmcNumbers, LongestTextTakesTheWholeBufferSize)
{
    for (const Kind& kind : kNumbers)
    {
        const auto message =
            holding(kind, with(zeros(16), kind, {"4294967295", "-2147483648", "-2147483648", "65535"}));

        EXPECT_EQ(writeText(*message, 41), (Written{true, "4294967295:-2147483648:-2147483648:65535:", 1}));
        EXPECT_EQ(writeBinary(*message).bytes, binaryHeader(4294967295U, kLowest, kLowest) + be16(0xFFFF));
    }
}

TEST_P(LoadLmcMsg, ShortBufferTakesTheBeginningOfTextAndXml)
{
    expectBeginnings(writeText, *example(m_kind), m_kind.text);
    expectBeginnings(writeXml, *example(m_kind), m_kind.xml);
}

// A number that does not fit is left out, a text is cut; either way what follows is tried.
TEST_P(LoadLmcMsg, ShortBufferTakesTheBinaryFieldsThatFit)
{
    const auto message = example(m_kind);
    for (unsigned int size = 0; size < m_kind.binary.size(); ++size)
    {
        std::string expected = m_kind.binary.substr(0, std::min(size / 4, 3U) * 4);
        const std::size_t room = size - expected.size();
        expected += m_kind.binary.substr(12, m_kind.isOfTexts() ? room : room / 2 * 2);
        EXPECT_EQ(writeBinary(*message, size), (Written{true, expected, expected.size() == size ? 3U : 2U}));
    }
    EXPECT_EQ(writeBinary(*message, sizeOf(m_kind.binary)), (Written{true, m_kind.binary, 1}));
}

// Reading

TEST_P(LoadLmcMsg, ReadsItsFieldsAndLeavesTheRestOfTheStructure)
{
    const unsigned int textLength = sizeOf(m_kind.text);
    const unsigned int binaryLength = sizeOf(m_kind.binary);
    const std::string read = with(pattern(m_kind), m_kind, m_kind.values);
    const std::string readWhole = m_kind.isOfTexts() ? with(zeros(m_kind.type.size), m_kind, m_kind.values) : read;

    expectRead(m_kind, readText, m_kind.text, {true, 1, textLength}, read);
    expectRead(m_kind, readText, m_kind.text + "9:", {true, 0, textLength}, read);
    expectRead(m_kind, readBinary, m_kind.binary, {true, 1, binaryLength}, readWhole);
    expectRead(m_kind, readBinary, m_kind.binary + "9", {true, 0, binaryLength}, readWhole);
    expectRead(m_kind, readXml, document(m_kind, m_kind.values), {true, 0, 0}, read);
}

// Behind a text that fills its array the reader takes one character, whatever it is, for the delimiter.
TEST(LoadLmcText, IsReadAsFarAsItGoesAndCutToTheArrays)
{
    const std::string most(35, 'm');
    const std::string longest(199, 'p');
    const struct
    {
        std::vector<Kind> kinds;
        std::string text;
        Values values;
        unsigned int status;
        unsigned int position;
    } rows[] = {
        {kAll, "", {}, 3, 0},
        {kAll, "1", {}, 3, 1},
        {kAll, "1:", {"1"}, 3, 2},
        {kAll, "1:2", {"1", "0"}, 3, 3},
        {kAll, "1:2:", {"1", "2"}, 3, 4},
        {kAll, "1:2:3", {"1", "2", "0"}, 3, 5},
        {kAll, "1:2:3:", {"1", "2", "3"}, 3, 6},
        {kAll, "1:?:3:4:5:", {"1"}, 2, 2},
        {kNumbers, "1:2:3:5", {"1", "2", "3", "0"}, 3, 7},
        {kNumbers, "1:2:3:0:", {"1", "2", "3", "0"}, 1, 8},
        {kNumbers, "1:2:3:65535:", {"1", "2", "3", "65535"}, 1, 12},
        {kNumbers, "1:2:3:65536:", {"1", "2", "3"}, 2, 11},
        {kNumbers, "1:2:3:-1:", {"1", "2", "3"}, 2, 8},
        {kNumbers, "1:2:3::", {"1", "2", "3"}, 2, 6},
        {kNames, "1:2:3::", {"1", "2", "3", ""}, 1, 7},
        {kNames, "1:2:3:ab", {"1", "2", "3", "ab"}, 3, 8},
        {kNames, "1:2:3: a\n b :", {"1", "2", "3", " a\n b "}, 1, 13},
        {kNames, "1:2:3:a:b:", {"1", "2", "3", "a"}, 0, 8},
        {kNames, "1:2:3:" + most.substr(1) + ":", {"1", "2", "3", most.substr(1)}, 1, 41},
        {kNames, "1:2:3:" + most, {"1", "2", "3", most}, 3, 41},
        {kNames, "1:2:3:" + most + ":", {"1", "2", "3", most}, 1, 42},
        {kNames, "1:2:3:" + most + "n", {"1", "2", "3", most}, 1, 42},
        {kNames, "1:2:3:" + most + "nopq:", {"1", "2", "3", most}, 0, 42},
        {{kLoadReq}, "1:2:3:ab", {"1", "2", "3", "ab"}, 3, 8},
        {{kLoadReq}, "1:2:3:ab:", {"1", "2", "3", "ab"}, 3, 9},
        {{kLoadReq}, "1:2:3:ab:c", {"1", "2", "3", "ab", "c"}, 3, 10},
        {{kLoadReq}, "1:2:3:::", {"1", "2", "3", "", ""}, 1, 8},
        {{kLoadReq}, "1:2:3:c:boot:/d:", {"1", "2", "3", "c", "boot"}, 0, 13},
        {{kLoadReq}, "1:2:3:" + most + ":" + longest + ":", {"1", "2", "3", most, longest}, 1, 242},
        {{kLoadReq}, "1:2:3:" + most + ":" + longest + "qrs:", {"1", "2", "3", most, longest}, 0, 242},
        {{kLoadReq}, "1:2:3:" + most + "n:path:", {"1", "2", "3", most, ""}, 0, 43},
        {{kLoadReq}, "1:2:3:" + most + "nopq:path:", {"1", "2", "3", most, "opq"}, 0, 46},
    };
    for (const auto& row : rows)
    {
        for (const Kind& kind : row.kinds)
        {
            expectRead(kind, readText, row.text, {true, row.status, row.position},
                       with(pattern(kind), kind, row.values));
        }
    }
}

TEST_P(LoadLmcMsg, ReadsAsFarAsShortBinaryDataGo)
{
    for (unsigned int size = 0; size < m_kind.binary.size(); ++size)
    {
        const unsigned int words = std::min(size / 4, 3U);
        const Values values(m_kind.values.begin(), m_kind.values.begin() + words);
        std::string expected = with(pattern(m_kind), m_kind, values);
        unsigned int position = words * 4;
        bool cut = size == 0 || position != size;
        if (size > 12 && m_kind.isOfTexts())
        {
            expected.replace(12, size - 12, m_kind.binary, 12, size - 12);
            position = size;
            cut = size != 48; // where one text ends the other is not begun
        }
        expectRead(m_kind, readBinary, m_kind.binary.substr(0, size),
                   {true, (cut ? 2U : 0U) + (position == size ? 1U : 0U), position}, expected);
    }
}

TEST_P(LoadLmcMsg, FirstMissingElementEndsTheReadingOfXml)
{
    std::vector<Missing> elements;
    for (std::size_t i = 0; i < m_kind.values.size(); ++i)
    {
        const std::string line = m_kind.log.source + ":" + std::to_string(m_kind.log.lines[i]);
        elements.push_back({m_kind.field(i).tag, "[src/" + line + "] tag %s not found", m_kind.field(i).offset});
    }
    expectEachMissingElementStopsTheReader(*example(m_kind), pattern(m_kind), document(m_kind, m_kind.values),
                                           with(pattern(m_kind), m_kind, m_kind.values), elements);
}

TEST_P(LoadLmcMsg, ReadsXmlWithoutItsLayoutInAnyOrder)
{
    std::string reversed = "<any>";
    for (std::size_t i = m_kind.values.size(); i-- != 0;)
    {
        const std::string tag = m_kind.field(i).tag;
        reversed += "<" + tag + ">\r\n " + m_kind.values[i] + "\t</" + tag + ">";
    }

    expectRead(m_kind, readXml, reversed + document(m_kind, {"9", "9", "9", "9"}) + "</any>", {true, 0, 0},
               with(pattern(m_kind), m_kind, m_kind.values));
}

TEST(LoadLmcXml, ContentsAreCutToTheirFields)
{
    const std::string longest(199, 'p');
    const struct
    {
        std::vector<Kind> kinds;
        std::size_t index; // of the element
        std::string content;
        std::string stored;
    } rows[] = {
        {kAll, 0, "4294967295", "2147483647"},
        {kAll, 1, "-2147483649", "-2147483648"},
        {kAll, 2, "\n 7 lm", "7"},
        {kNumbers, 3, "0", "0"},
        {kNumbers, 3, "65535", "65535"},
        {kNumbers, 3, "65536", "0"},
        {kNumbers, 3, "70000", "4464"},
        {kNumbers, 3, "-1", "65535"},
        {kNumbers, 3, "4294967295", "65535"},
        {kNumbers, 3, "", "0"},
        {kNumbers, 3, "result 1", "0"},
        {kNumbers, 3, std::string(600, '0') + "7", "7"},
        {{kInitReq, kLoadReq, kSelectReq}, 3, "", ""},
        {{kInitReq, kLoadReq, kSelectReq}, 3, " \ta:b \n", " \ta:b \n"},
        {{kInitReq, kLoadReq, kSelectReq}, 3, longest.substr(0, 35), longest.substr(0, 35)},
        {{kInitReq, kLoadReq, kSelectReq}, 3, longest.substr(0, 36), longest.substr(0, 35)},
        {{kInitReq, kLoadReq, kSelectReq}, 3, longest + longest, longest.substr(0, 35)},
        {{kLoadReq}, 4, "", ""},
        {{kLoadReq}, 4, longest, longest},
        {{kLoadReq}, 4, longest + "q", longest},
        {{kLoadReq}, 4, longest + longest + longest, longest},
    };
    for (const auto& row : rows)
    {
        for (const Kind& kind : row.kinds)
        {
            Values contents = kind.values;
            contents[row.index] = row.content;
            Values stored = kind.values;
            stored[row.index] = row.stored;
            expectRead(kind, readXml, document(kind, contents), {true, 0, 0}, with(pattern(kind), kind, stored));
        }
    }
}

// Its writer closes the number by the name of another element.
TEST(LoadLmcAck, FindsInXmlItsNumberOnlyWithTheRightClosingTag)
{
    const std::string after = with(pattern(kAck), kAck, kAck.values);

    expectRead(kAck, readXml, kAck.xml, {false, 0, 0}, with(pattern(kAck), kAck, {"23431175", "1", "2"}),
               {{6, "[src/bciLoadLmcMsg:246] tag %s not found", {"lmSeqNr"}}});
    expectRead(kAck, readXml, kAck.xml + "</lmSeqNr>", {true, 0, 0}, after);
    expectRead(kAck, readXml, headerElements("23431175", "1", "2") + "\t<lmSeqNr>\n\t  17\n\t</lmSeqNr>\n",
               {true, 0, 0}, after);
}

} // namespace

// Wire structures from values by name.

#include "build.h"
#include "contents.h"
#include "names.h"
#include "record.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace
{

using namespace bci::tool;
using bci::Signal;
using bci::codec::Field;
using bci::codec::Kind;
using bci::codec::Shape;
using bci::codec::Subscripts;

struct SampleS
{
    U32 sigNo;
    S32 signedWord;
    U16 half;
    S16 signedHalf;
    U8 byte;
    U8 name[4];
};

constexpr Field kRows[] = {
    BCI_FIELD(SampleS, sigNo, "sigNo", 1), BCI_FIELD(SampleS, signedWord, "signedWord", 2),
    BCI_FIELD(SampleS, half, "half", 3),   BCI_FIELD(SampleS, signedHalf, "signedHalf", 4),
    BCI_FIELD(SampleS, byte, "byte", 5),   BCI_FIELD(SampleS, name, "name", 6),
};
constexpr Shape kShape = {"Sample", "SampleS", sizeof(SampleS), {kRows}, ""};
constexpr Signal kSignal = {0xFFFFFFFE, "SAMPLE", &kShape};

using Given = std::vector<std::pair<std::string, std::string>>;

// Values as one writes them; each is its own place.
Values written(const Given& given)
{
    Values values("values");
    for (const auto& [name, content] : given)
    {
        EXPECT_TRUE(values.add(name, {Value::Kind::written, content, name}));
    }
    return values;
}

Values one(const std::string& name, Value::Kind kind, const std::string& content)
{
    Values values("values");
    EXPECT_TRUE(values.add(name, {kind, content, name}));
    return values;
}

std::string problemsOf(const Signal& signal, const Values& values)
{
    try
    {
        buildStructure(signal, values);
    }
    catch (const BadValues& bad)
    {
        std::string lines;
        for (const std::string& problem : bad.problems)
        {
            lines += problem + "\n";
        }
        return lines;
    }
    return "none";
}

std::string problemsOf(const Given& given)
{
    return problemsOf(kSignal, written(given));
}

const Signal& signalOf(const std::string& name)
{
    return *findSignals(name).front();
}

// All fields of a structure: "clientRef=1 ".
class Contents : public bci::codec::Visitor
{
public:
    void field(const Field& field, char* base, const Subscripts* subscripts) override
    {
        const std::string bytes(base + field.offset, field.size);
        m_values.emplace_back(fieldName(field, subscripts),
                              field.kind == Kind::text ? bytes.substr(0, bytes.find('\0'))
                                                       : std::to_string(bci::codec::loadNumber(field, base)));
    }

    void entry(const Field& entry, char* base, const Subscripts& subscripts) override
    {
        field(entry, base, &subscripts);
    }

    void block(const Field& block, char* base) override
    {
        constexpr char kDigits[] = "0123456789abcdef";
        std::string hex;
        for (std::size_t i = 0; i < block.size; ++i)
        {
            const auto byte = static_cast<unsigned char>(base[block.offset + i]);
            hex += kDigits[byte >> 4];
            hex += kDigits[byte & 0xF];
        }
        m_values.emplace_back(block.tag, hex);
    }

    Given m_values;
};

Given contentsOf(const Signal& signal, std::vector<char> structure)
{
    Contents contents;
    walk(*signal.shape, structure.data(), contents);
    return contents.m_values;
}

std::string built(const std::string& signalName, const Given& given)
{
    const Signal& signal = signalOf(signalName);
    std::string text;
    try
    {
        for (const auto& [name, value] : contentsOf(signal, buildStructure(signal, written(given))))
        {
            text += value == "0" || value.empty() || name == "sigNo" ? "" : name + "=" + value + " ";
        }
    }
    catch (const BadValues& bad)
    {
        text = bad.what();
    }
    return text;
}

TEST(Build, PutsEveryKindIntoItsPlace)
{
    const std::vector<char> structure = buildStructure(kSignal, written({{"byte", "0xfF"},
                                                                         {"name", "a:b"},
                                                                         {"signedWord", "-2147483648"},
                                                                         {"half", "65535"},
                                                                         {"signedHalf", "-0x8000"}}));
    SampleS sample;
    ASSERT_EQ(structure.size(), sizeof sample);
    std::memcpy(&sample, structure.data(), sizeof sample);
    EXPECT_EQ(sample.sigNo, 0xFFFFFFFE);
    EXPECT_EQ(sample.signedWord, -2147483647 - 1);
    EXPECT_EQ(sample.half, 65535);
    EXPECT_EQ(sample.signedHalf, -32768);
    EXPECT_EQ(sample.byte, 255);
    EXPECT_EQ(std::memcmp(sample.name, "a:b", 4), 0);
}

TEST(Build, LeavesWhatIsNotGivenZeroOrEmpty)
{
    std::vector<char> structure = buildStructure(kSignal, written({}));
    EXPECT_EQ(std::count(structure.begin() + sizeof(SIGSELECT), structure.end(), '\0'),
              static_cast<std::ptrdiff_t>(sizeof(SampleS) - sizeof(SIGSELECT)));
}

TEST(Build, TellsNumbersOutOfRange)
{
    EXPECT_EQ(
        problemsOf({{"byte", "256"}, {"signedHalf", "-32769"}, {"half", "-1"}, {"signedWord", "2147483648"}}),
        "byte: 256 is not within 0 ... 255\n"
        "signedHalf: -32769 is not within -32768 ... 32767\n"
        "half: -1 is not within 0 ... 65535\n"
        "signedWord: 2147483648 is not within -2147483648 ... 2147483647\n");
    EXPECT_EQ(problemsOf({{"byte", "0x10000000000000000"}}),
              "byte: 0x10000000000000000 is not within 0 ... 255\n");
}

TEST(Build, TellsWhatIsNoNumber)
{
    for (const char* const text : {"", "-", "0x", "1 ", " 1", "+1", "1.0", "--1", "0x-1", "1e3", "ten"})
    {
        EXPECT_EQ(problemsOf({{"byte", text}}),
                  "byte: '" + std::string(text) + "' is no whole number, decimal or 0x...\n");
    }
}

TEST(Build, TellsTextsThatDoNotFit)
{
    EXPECT_EQ(problemsOf({{"name", "abcd"}}), "none"); // fills the array, as binary can
    EXPECT_EQ(problemsOf({{"name", "abcde"}}), "name: 5 characters, where 3 fit\n");
    EXPECT_EQ(problemsOf({{"name", std::string("a\0b", 3)}}),
              "name: a zero byte within the text, behind 1 characters\n");
}

TEST(Build, TellsValuesOfTheWrongKind)
{
    EXPECT_EQ(problemsOf(kSignal, one("name", Value::Kind::number, "5")),
              "name: this is a number, and a text is wanted\n");
    EXPECT_EQ(problemsOf(kSignal, one("byte", Value::Kind::bytes, "5")),
              "byte: these are bytes, and a number is wanted\n");
    EXPECT_EQ(problemsOf(kSignal, one("byte", Value::Kind::hex, "05")),
              "byte: these are bytes, and a number is wanted\n");
    EXPECT_EQ(problemsOf(signalOf("LOAD_LMC_DATA"), one("lmBlock", Value::Kind::number, "5")),
              "lmBlock: this is a number, and bytes are wanted\n");
}

TEST(Build, TakesTextsAsHexAndAsBytes)
{
    for (const Values& values : {one("name", Value::Kind::hex, "fF20"), one("name", Value::Kind::bytes, "\xFF ")})
    {
        EXPECT_EQ(contentsOf(kSignal, buildStructure(kSignal, values)).back().second, "\xFF ");
    }
    EXPECT_EQ(problemsOf(kSignal, one("name", Value::Kind::hex, "ff2")), "name: an odd number of hex digits\n");
    EXPECT_EQ(problemsOf(kSignal, one("name", Value::Kind::hex, "fg")), "name: 'fg' is not hex\n");
}

TEST(Build, TakesNoOtherSignalNumber)
{
    EXPECT_EQ(problemsOf({{"sigNo", "0xFFFFFFFE"}}), "none");
    EXPECT_EQ(problemsOf({{"sigNo", "5"}}), "sigNo: 5 is not 4294967294, the number of SAMPLE\n");
}

TEST(Build, TellsAllProblemsInTheOrderOfTheValues)
{
    EXPECT_EQ(problemsOf({{"nam", "a"}, {"name", "abcde"}, {"byte", "-1"}, {"words", "1"}}),
              "nam: Sample has no field 'nam'; did you mean 'name'?\n"
              "name: 5 characters, where 3 fit\n"
              "byte: -1 is not within 0 ... 255\n"
              "words: Sample has no field 'words'\n");
}

TEST(Build, TellsTwentyProblemsAtMost)
{
    Given given;
    for (int i = 0; i < 100000; ++i)
    {
        given.emplace_back("unknown" + std::to_string(i), "1");
    }
    const std::string problems = problemsOf(given);
    EXPECT_EQ(std::count(problems.begin(), problems.end(), '\n'), 21);
    EXPECT_TRUE(problems.ends_with("values: and 99980 more\n"));
}

TEST(Build, ComparesNoNameThatIsVeryLong)
{
    EXPECT_EQ(problemsOf({{std::string(1 << 20, 'n'), "1"}}),
              std::string(1 << 20, 'n') + ": Sample has no field '" + std::string(40, 'n') + "'...\n");
}

TEST(Build, KeepsTheFirstOfTwoValues)
{
    Values values("values");
    EXPECT_TRUE(values.add("byte", {Value::Kind::written, "1", "byte"}));
    EXPECT_FALSE(values.add("byte", {Value::Kind::written, "2", "byte"}));
    EXPECT_EQ(values.find("byte")->second.content, "1");
}

// What binary carries of every class comes back, with every count and without.
class BuildOfAll : public testing::TestWithParam<Content>
{
protected:
    const Signal& signal() const
    {
        const std::string_view text = GetParam().text;
        return signalOf(std::string(text.substr(0, text.find(':'))));
    }

    bool isBuiltFrom(const Given& given) const
    {
        const std::vector<char> structure = buildStructure(signal(), written(given));
        return sameValues(signal(), structure, GetParam().text, Form::text, std::endian::big);
    }
};

Given contentsOf(const Signal& signal, const char* text)
{
    return contentsOf(signal, inspect({text, Form::text, std::endian::big, &signal}).structure);
}

TEST_P(BuildOfAll, BringsEveryValueBack)
{
    const Given given = contentsOf(signal(), GetParam().text);
    EXPECT_TRUE(isBuiltFrom(given));
    for (std::size_t i = 1; i < given.size(); ++i) // but for the signal number, which is no choice
    {
        Given other = given;
        other[i].second.back() = other[i].second.back() == '1' ? '2' : '1';
        EXPECT_FALSE(problemsOf(signal(), written(other)) == "none" && isBuiltFrom(other)) << given[i].first;
    }
}

TEST_P(BuildOfAll, FindsCountsLengthsAndIdentities)
{
    Given given = contentsOf(signal(), GetParam().text);
    std::erase_if(given,
                  [](const auto& value)
                  {
                      return value.first.starts_with("num") || value.first == "additionalDataLength" ||
                             value.first == "length" || value.first == "lmBlockSize" ||
                             value.first.starts_with("boardCapabilityIdentity");
                  });
    EXPECT_TRUE(isBuiltFrom(given));
}

INSTANTIATE_TEST_SUITE_P(, BuildOfAll, testing::ValuesIn(kContents),
                         [](const auto& content) { return std::string(content.param.className); });

TEST(BuildCapabilities, TakesTheMemberFromWhichFieldsAreGiven)
{
    EXPECT_EQ(
        built("GET_CAPABILITIES_CFM", {{"flash[1]", "7"}, {"setPoint_0_1", "8"}}),
        "numberOfBoardCapabilities=2 boardCapabilityIdentity_0=6 numOfHotspotTempSensors[0]=2 setPoint_0_1=8 "
        "boardCapabilityIdentity_1=1 flash[1]=7 ");
    // A name that two members share, and one that tells them apart.
    EXPECT_EQ(built("GET_CAPABILITIES_CFM", {{"snid_0_0", "7"}}),
              "values: boardCapabilityIdentity_0: missing; by what is given it may be 4 or 5");
    EXPECT_EQ(built("GET_CAPABILITIES_CFM", {{"snid_0_0", "7"}, {"termRole_0_0", "8"}}),
              "numberOfBoardCapabilities=1 boardCapabilityIdentity_0=4 numOfEthTermHosts[0]=1 snid_0_0=7 "
              "termRole_0_0=8 ");
    EXPECT_EQ(built("GET_CAPABILITIES_CFM", {{"snid_0_0", "7"}, {"boardCapabilityIdentity_0", "5"}}),
              "numberOfBoardCapabilities=1 boardCapabilityIdentity_0=5 numOfEthLinks[0]=1 snid_0_0=7 ");
}

TEST(BuildCapabilities, WantsAnIdentityWhereNothingTellsIt)
{
    const Signal& signal = signalOf("GET_CAPABILITIES_CFM");
    EXPECT_EQ(
        problemsOf(signal, written({{"numberOfBoardCapabilities", "2"}, {"boardCapabilityIdentity_0", "3"}})),
        "values: boardCapabilityIdentity_1: missing; it is one of 1, 3, 4, 5, 6\n");
    EXPECT_EQ(problemsOf(signal, written({{"boardCapabilityIdentity_0", "2"}, {"flash[0]", "1"}})),
              "boardCapabilityIdentity_0: 2 is none of 1, 3, 4, 5, 6\n");
}

TEST(BuildCapabilities, TellsWhyANameIsNotThere)
{
    const Signal& signal = signalOf("GET_CAPABILITIES_CFM");
    EXPECT_EQ(problemsOf(signal, written({{"snid_1_0", "1"},
                                          {"snid_0_2", "1"},
                                          {"flash[0]", "1"},
                                          {"numberOfBoardCapabilities", "1"},
                                          {"boardCapabilityIdentity_0", "4"},
                                          {"numOfEthTermHosts[0]", "2"},
                                          {"flash", "1"}})),
              "snid_1_0: numberOfBoardCapabilities is 1, so there is no snid_1_0\n"
              "snid_0_2: numOfEthTermHosts[0] is 2, so there is no snid_0_2\n"
              "flash[0]: boardCapabilityIdentity_0 is 4, so there is no flash[0]\n"
              "flash: BciCapabilityCfmMsg has no field 'flash'; did you mean 'flash[0]' or 'flash[1]'?\n");
}

TEST(BuildCapabilities, TellsCountsAboveTheirBound)
{
    EXPECT_EQ(problemsOf(signalOf("GET_CAPABILITIES_CFM"), written({{"boardCapabilityIdentity_0", "4"},
                                                                    {"boardCapabilityIdentity_1", "3"},
                                                                    {"numOfEthTermHosts[0]", "5"},
                                                                    {"numberOfBoardCapabilities", "3"}})),
              "numOfEthTermHosts[0]: 5 is more than the 4 that there is room for\n"
              "numberOfBoardCapabilities: 3 is more than the 2 that there is room for\n");
    EXPECT_EQ(problemsOf(signalOf("HW_LOG_GET_CFM"), written({{"length", "2"}})),
              "length: 2 is more than the 1 that there is room for\n");
}

TEST(BuildCapabilities, LetsNothingFollowFromACountThatIsWrong)
{
    EXPECT_EQ(problemsOf(signalOf("GET_CAPABILITIES_CFM"),
                         written({{"numberOfBoardCapabilities", "x"}, {"flash[0]", "1"}, {"flash[1]", "1"}})),
              "numberOfBoardCapabilities: 'x' is no whole number, decimal or 0x...\n");
}

TEST(BuildLog, CountsEntriesUpToTheLast)
{
    EXPECT_EQ(built("HW_LOG_SET_REQ", {{"hwLogData_2", "c"}}), "length=3 hwLogData_2=c ");
    EXPECT_EQ(built("HW_LOG_SET_REQ", {{"hwLogData_2", "c"}, {"length", "2"}}),
              "hwLogData_2: length is 2, so there is no hwLogData_2");
    EXPECT_EQ(built("HW_LOG_GET_CFM", {{"hwLogData_0", "c"}}), "length=1 hwLogData_0=c ");
    EXPECT_EQ(built("HW_LOG_GET_CFM", {{"hwLogData_0", "c"}, {"length", "0"}}), "hwLogData_0=c ");
}

TEST(BuildLog, TellsEntriesThatDoNotFitTheArray)
{
    const Signal& signal = signalOf("HW_LOG_SET_REQ");
    EXPECT_EQ(problemsOf(signal, written({{"hwLogData_1", std::string(422, 'x')}})), "none");
    EXPECT_EQ(problemsOf(signal, written({{"hwLogData_1", std::string(423, 'x')}})),
              "hwLogData_1: 423 characters, where 422 fit behind the entries before\n");
    EXPECT_EQ(problemsOf(signal, written({{"hwLogData_0", std::string(422, 'x')}, {"length", "3"}})),
              "length: 3 is more than the 2 that there is room for\n");
    EXPECT_EQ(problemsOf(signal, written({{"hwLogData_0", std::string(423, 'x')}, {"hwLogData_1", "y"}})),
              "values: length: 2 is more than the 1 that there is room for\n");
}

TEST(BuildBlock, TakesItsLengthFromTheBytes)
{
    EXPECT_EQ(built("LOAD_LMC_DATA", {{"lmBlock", "0x0102fF"}}), "lmBlockSize=3 lmBlock=0102ff ");
    EXPECT_EQ(built("LOAD_LMC_DATA", {{"lmBlock", "hex:01"}}), "lmBlockSize=1 lmBlock=01 ");
    EXPECT_EQ(built("LOAD_LMC_DATA", {{"lmBlock", ""}}), "");
    EXPECT_EQ(built("LOAD_LMC_DATA", {{"lmBlockSize", "2"}}), "lmBlockSize=2 lmBlock=0000 ");
    EXPECT_EQ(built("LOAD_LMC_DATA", {{"lmBlockSize", "2"}, {"lmBlock", "01"}}),
              "lmBlock: lmBlockSize is 2, and these are 1 bytes");
}

TEST(BuildBlock, TellsWhatDoesNotFit)
{
    const Signal& signal = signalOf("LOAD_LMC_DATA");
    EXPECT_EQ(problemsOf(signal, one("lmBlock", Value::Kind::bytes, std::string(4100, ':'))), "none");
    EXPECT_EQ(problemsOf(signal, one("lmBlock", Value::Kind::bytes, std::string(70000, ':'))),
              "lmBlock: 70000 bytes are more than the 4100 that fit\n");
    EXPECT_EQ(problemsOf(signal, written({{"lmBlockSize", "4101"}, {"lmBlock", "01"}})),
              "lmBlockSize: 4101 is more than the 4100 that there is room for\n");
    EXPECT_EQ(problemsOf(signal, written({{"lmBlock", "0102a"}})), "lmBlock: an odd number of hex digits\n");
    EXPECT_EQ(problemsOf(signal, written({{"lmBlock", "text"}})), "lmBlock: 'text' is not hex\n");
}

// A row has its members and its fields beside one another.
TEST(Build, HasNoFieldThatIsNamedLikeAMemberOfARow)
{
    for (const Signal& signal : bci::signals())
    {
        for (const char* const member :
             {"schema", "input", "record", "offset", "line", "time", "direction", "form", "firstWord", "signal",
              "name", "class", "numbers", "texts", "bytes", "damages", "notes", "rest", "original"})
        {
            EXPECT_TRUE(problemsOf(signal, written({{member, "1"}})).find("has no field") != std::string::npos)
                << signal.name << " " << member;
        }
    }
}

TEST(LostValue, IsWhatARenderingDoesNotBringBack)
{
    const Signal& signal = signalOf("AUDIT_REJ");
    const std::vector<char> structure = buildStructure(signal, written({{"errorDescription", "a:b"}}));
    const auto lost = lostValue(signal, structure, "23430146:0:0:0:0:a:b:0:", Form::text, std::endian::big);
    ASSERT_TRUE(lost);
    EXPECT_EQ(lost->name, "errorDescription");
    EXPECT_EQ(lost->value, "a:b");
    EXPECT_FALSE(lostValue(signal, buildStructure(signal, written({})), "23430146:0:0:0:0::0:", Form::text,
                           std::endian::big));
}

TEST(SameValues, ReadsStrictly)
{
    const Signal& signal = signalOf("AUDIT_CFM");
    const std::vector<char> structure = buildStructure(signal, written({{"clientRef", "1"}}));
    const auto same = [&](const char* text)
    { return sameValues(signal, structure, text, Form::text, std::endian::big); };
    EXPECT_TRUE(same("23430145:1:0:0:"));
    EXPECT_TRUE(same("23430145:01:0:0:"));
    EXPECT_FALSE(same("23430145:2:0:0:"));
    EXPECT_FALSE(same("23430145:1:0:0"));
    EXPECT_FALSE(same("23430145:1:0:0:1:"));
}

} // namespace

#include "stream.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

using commonStream::istream_text;
using commonStream::ostream_text;
using namespace std::string_view_literals;

namespace
{

const unsigned int eofBit = 1;
const unsigned int failBit = 2;
const unsigned int badBit = 4;

struct State
{
    unsigned int status;
    unsigned int position;
    unsigned int length;
    unsigned int count; // of the last get

    bool operator==(const State&) const = default;
};

std::ostream& operator<<(std::ostream& out, const State& state)
{
    return out << "status " << state.status << " position " << state.position << " length " << state.length
               << " count " << state.count;
}

State stateOf(const istream_text& stream)
{
    EXPECT_FALSE(stream.fail());
    return {stream.status(), stream.tellg(), stream.length(), stream.gcount()};
}

// A stream over data of its own, without a byte behind them.
class Input
{
public:
    explicit Input(std::string_view data) : m_data(data.begin(), data.end())
    {
        stream.attachBuffer(m_data.data(), static_cast<unsigned int>(m_data.size()));
    }

    State state() const
    {
        return stateOf(stream);
    }

    istream_text stream;

private:
    std::vector<char> m_data;
};

// Reads a text into a target of exactly the documented room and returns the whole target.
std::string getText(istream_text& stream, unsigned int count, char delim)
{
    std::vector<char> target(count + 1, '#');
    EXPECT_EQ(&stream.get(target.data(), count, delim), &stream);
    return {target.begin(), target.end()};
}

// What reading one number into a target leaves behind.
template <typename T>
struct Reading
{
    T value;
    unsigned int status;
    unsigned int position;

    bool operator==(const Reading&) const = default;
};

template <typename T>
std::ostream& operator<<(std::ostream& out, const Reading<T>& reading)
{
    return out << "value " << +reading.value << " status " << reading.status << " position " << reading.position;
}

template <typename T>
Reading<T> readInto(T value, Input& input)
{
    const State before = input.state();
    EXPECT_EQ(&(input.stream >> value), &input.stream);
    EXPECT_EQ(input.state().length, before.length);
    EXPECT_EQ(input.state().count, before.count);
    return {value, input.state().status, input.state().position};
}

template <typename T>
Reading<T> read(std::string_view data, T before)
{
    Input input(data);
    return readInto(before, input);
}

template <typename T>
struct Row
{
    std::string_view data;
    Reading<T> reading;
};

template <typename T>
void expectReadings(T before, const std::vector<Row<T>>& rows)
{
    for (const Row<T>& row : rows)
    {
        SCOPED_TRACE(row.data);
        EXPECT_EQ(read(row.data, before), row.reading);
    }
}

// Runs a check with a value of each type that a number can be read into.
template <typename Check>
void withEveryNumberType(Check check)
{
    check(static_cast<unsigned char>(77));
    check(static_cast<short>(77));
    check(static_cast<unsigned short>(77));
    check(77);
    check(77U);
    check(77L);
    check(77UL);
    check(77ULL);
}

// The types whose conversion goes through a value of its own.
template <typename Check>
void withEveryIndirectType(Check check)
{
    check(static_cast<unsigned char>(77));
    check(static_cast<short>(77));
    check(static_cast<unsigned short>(77));
    check(77);
    check(77L);
}

// The types that the conversion writes to directly.
template <typename Check>
void withEveryDirectType(Check check)
{
    check(77U);
    check(77UL);
    check(77ULL);
}

// What scanning one number leaves behind.
struct Scan
{
    std::string number;
    unsigned int consumed;
    unsigned int status;
    unsigned int position;

    bool operator==(const Scan&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Scan& scan)
{
    return out << testing::PrintToString(scan.number) << " consumed " << scan.consumed << " status " << scan.status
               << " position " << scan.position;
}

Scan scan(std::string_view data)
{
    Input input(data);
    std::vector<char> buffer(32, '#');
    const unsigned int consumed = input.stream.getNumber(buffer.data());
    EXPECT_EQ(input.state().count, 0U);
    return {buffer.data(), consumed, input.state().status, input.state().position};
}

struct ScanRow
{
    std::string_view data;
    Scan scan;
};

void expectScans(const std::vector<ScanRow>& rows)
{
    for (const ScanRow& row : rows)
    {
        SCOPED_TRACE(row.data);
        EXPECT_EQ(scan(row.data), row.scan);
    }
}

const std::string_view thirtyOneDigits = "1234567890123456789012345678901";

TEST(TextInput, IsNotGoodWithoutABuffer)
{
    const istream_text stream;
    EXPECT_EQ(stateOf(stream), (State{eofBit | failBit, 0, 0, 0}));
}

TEST(TextInput, ReadsACharacter)
{
    Input input("a:");
    char ch = '?';
    EXPECT_EQ(&input.stream.get(ch), &input.stream);
    EXPECT_EQ(ch, 'a');
    EXPECT_EQ(input.state(), (State{0, 1, 2, 1}));
}

TEST(TextInput, ReachesEofWithTheLastCharacter)
{
    Input input("a:");
    char ch = '?';
    input.stream.get(ch).get(ch);
    EXPECT_EQ(ch, ':');
    EXPECT_EQ(input.state(), (State{eofBit, 2, 2, 1}));
}

TEST(TextInput, SetsFailForACharacterBehindTheLast)
{
    Input input("a");
    char ch = '?';
    input.stream.get(ch);
    ch = '?';
    EXPECT_EQ(&input.stream.get(ch), &input.stream);
    EXPECT_EQ(ch, '?');
    EXPECT_EQ(input.state(), (State{eofBit | failBit, 1, 1, 0}));
}

TEST(TextInput, SetsFailForACharacterWheneverTheStreamIsNotGood)
{
    for (const unsigned int status : {1U, 2U, 3U, 4U})
    {
        SCOPED_TRACE(status);
        Input input("abc");
        char ch = '?';
        input.stream.get(ch);
        input.stream.status(status);
        ch = '?';
        input.stream.get(ch);
        EXPECT_EQ(ch, '?');
        EXPECT_EQ(input.state(), (State{status | failBit, 1, 3, 0}));
    }
}

TEST(TextInput, SetsEofForACharacterAtTheEndWhateverTheStatus)
{
    Input input("a");
    char ch = '?';
    input.stream.get(ch);
    input.stream.status(failBit);
    input.stream.get(ch);
    EXPECT_EQ(input.state(), (State{eofBit | failBit, 1, 1, 0}));
}

TEST(TextInput, ReadsNoCharacterAtTheEndThoughMadeGood)
{
    Input input("a");
    char ch = '?';
    input.stream.get(ch);
    input.stream.setgood();
    ch = '?';
    input.stream.get(ch);
    EXPECT_EQ(ch, '?');
    EXPECT_EQ(input.state(), (State{eofBit | failBit, 1, 1, 0}));
}

TEST(TextInput, ExtractsACharacterLikeGet)
{
    Input input(" :");
    char ch = '?';
    EXPECT_EQ(&(input.stream >> ch), &input.stream);
    EXPECT_EQ(ch, ' ');
    EXPECT_EQ(input.state(), (State{0, 1, 2, 1}));
    input.stream >> ch;
    EXPECT_EQ(ch, ':');
    EXPECT_EQ(input.state(), (State{eofBit, 2, 2, 1}));
    input.stream >> ch;
    EXPECT_EQ(ch, ':');
    EXPECT_EQ(input.state(), (State{eofBit | failBit, 2, 2, 0}));
}

TEST(TextInput, ReadsZeroCharactersLikeAnyOther)
{
    Input input("\0x"sv);
    char ch = '?';
    input.stream >> ch;
    EXPECT_EQ(ch, '\0');
    EXPECT_EQ(input.state(), (State{0, 1, 2, 1}));
}

TEST(TextInput, GetsATextUpToTheDelimiter)
{
    Input input("abc:def");
    EXPECT_EQ(getText(input.stream, 5, ':'), "abc\0##"sv);
    EXPECT_EQ(input.state(), (State{0, 3, 7, 3}));
}

TEST(TextInput, GetsATextUpToTheCount)
{
    Input input("abcdefgh");
    EXPECT_EQ(getText(input.stream, 5, ':'), "abcde\0"sv);
    EXPECT_EQ(input.state(), (State{0, 5, 8, 5}));
}

TEST(TextInput, LeavesADelimiterAtTheCountUnread)
{
    Input input("abc:def");
    EXPECT_EQ(getText(input.stream, 3, ':'), "abc\0"sv);
    EXPECT_EQ(input.state(), (State{0, 3, 7, 3}));
}

TEST(TextInput, GetsAnEmptyTextBeforeADelimiter)
{
    Input input("ab:cd");
    input.stream.seekg(2);
    EXPECT_EQ(getText(input.stream, 2, ':'), "\0##"sv);
    EXPECT_EQ(input.state(), (State{0, 2, 5, 0}));
}

TEST(TextInput, GetsATextFromTheReadPosition)
{
    Input input("ab:cd:");
    input.stream.seekg(3);
    EXPECT_EQ(getText(input.stream, 3, ':'), "cd\0#"sv);
    EXPECT_EQ(input.state(), (State{0, 5, 6, 2}));
}

TEST(TextInput, SetsFailForACutTextWithoutADelimiter)
{
    Input input("ab:xyz");
    input.stream.seekg(3);
    EXPECT_EQ(getText(input.stream, 10, ':'), "xyz\0#######"sv);
    EXPECT_EQ(input.state(), (State{eofBit | failBit, 6, 6, 3}));
}

TEST(TextInput, SetsFailForATextCutByTheWholeLength)
{
    Input input("xyz");
    EXPECT_EQ(getText(input.stream, 4, ':'), "xyz\0#"sv);
    EXPECT_EQ(input.state(), (State{eofBit | failBit, 3, 3, 3}));
}

TEST(TextInput, DoesNotSetFailForACutTextWithADelimiter)
{
    Input input("xyz:");
    EXPECT_EQ(getText(input.stream, 10, ':'), "xyz\0#######"sv);
    EXPECT_EQ(input.state(), (State{0, 3, 4, 3}));
}

TEST(TextInput, ReachesEofWithATextOfExactlyWhatIsLeft)
{
    Input input("ab:xyz");
    input.stream.seekg(3);
    EXPECT_EQ(getText(input.stream, 3, ':'), "xyz\0"sv);
    EXPECT_EQ(input.state(), (State{eofBit, 6, 6, 3}));
}

TEST(TextInput, CutsTheLargestCountOfAText)
{
    Input input("ab:xyz");
    input.stream.seekg(3);
    std::vector<char> target(4, '#');
    input.stream.get(target.data(), 4294967295U, ':');
    EXPECT_EQ(std::string_view(target.data(), 4), "xyz\0"sv);
    EXPECT_EQ(input.state(), (State{eofBit | failBit, 6, 6, 3}));
}

TEST(TextInput, GetsZeroCharactersOfATextLikeAnyOther)
{
    Input input("a\0b:"sv);
    EXPECT_EQ(getText(input.stream, 4, ':'), "a\0b\0#"sv);
    EXPECT_EQ(input.state(), (State{0, 3, 4, 3}));
}

TEST(TextInput, TakesTheZeroCharacterAsADelimiter)
{
    Input input("ab\0cd"sv);
    EXPECT_EQ(getText(input.stream, 4, '\0'), "ab\0##"sv);
    EXPECT_EQ(input.state(), (State{0, 2, 5, 2}));
}

TEST(TextInput, WritesNothingForATextOfNoCharacters)
{
    Input input("abc");
    getText(input.stream, 2, ':');
    EXPECT_EQ(input.state(), (State{0, 2, 3, 2}));
    EXPECT_EQ(getText(input.stream, 0, ':'), "#");
    EXPECT_EQ(input.state(), (State{0, 2, 3, 0}));
}

TEST(TextInput, GetsNoTextWhenNotGood)
{
    for (const unsigned int status : {1U, 2U, 3U, 4U})
    {
        SCOPED_TRACE(status);
        Input input("abc:def");
        getText(input.stream, 2, ':');
        input.stream.status(status);
        EXPECT_EQ(getText(input.stream, 3, ':'), "####");
        EXPECT_EQ(input.state(), (State{status, 2, 7, 2}));
    }
}

TEST(TextInput, GetsNoTextAtTheEndThoughMadeGood)
{
    Input input("abc");
    getText(input.stream, 3, ':');
    input.stream.setgood();
    EXPECT_EQ(getText(input.stream, 3, ':'), "####");
    EXPECT_EQ(input.state(), (State{eofBit, 3, 3, 0}));
}

TEST(TextInput, TakesTheLastGetAloneAsItsCount)
{
    Input input("abc:12:x");
    char ch = '?';
    short number = 0;
    getText(input.stream, 3, ':');
    EXPECT_EQ(input.stream.gcount(), 3U);
    input.stream >> ch;
    EXPECT_EQ(input.stream.gcount(), 1U);
    getText(input.stream, 2, ':');
    EXPECT_EQ(input.stream.gcount(), 2U);
    input.stream.seekg(4);
    input.stream >> number;
    EXPECT_EQ(number, 12);
    EXPECT_EQ(input.state(), (State{0, 6, 8, 2}));
}

TEST(TextInput, ScansDigits)
{
    expectScans({
        {"1:", {"1", 1, 0, 1}},
        {"65535:", {"65535", 5, 0, 5}},
        {"1234567890:", {"1234567890", 10, 0, 10}},
    });
}

TEST(TextInput, ScansUpToAnyOtherCharacter)
{
    expectScans({
        {"12<", {"12", 2, 0, 2}},
        {"12 ", {"12", 2, 0, 2}},
        {"12\n", {"12", 2, 0, 2}},
        {"12\0"sv, {"12", 2, 0, 2}},
        {"12.5", {"12", 2, 0, 2}},
        {"12,5", {"12", 2, 0, 2}},
        {"12/", {"12", 2, 0, 2}},
        {"12@", {"12", 2, 0, 2}},
        {"12`", {"12", 2, 0, 2}},
        {"12g", {"12", 2, 0, 2}},
        {"12G", {"12", 2, 0, 2}},
        {"12w", {"12", 2, 0, 2}},
        {"12\xff", {"12", 2, 0, 2}},
        {"12\xb1", {"12", 2, 0, 2}},
    });
}

TEST(TextInput, DropsLeadingZeros)
{
    expectScans({
        {"007:", {"7", 3, 0, 3}},
        {"-007:", {"-7", 4, 0, 4}},
        {"0100:", {"100", 4, 0, 4}},
        {"10010:", {"10010", 5, 0, 5}},
    });
}

TEST(TextInput, ScansZerosAloneAsOneZero)
{
    expectScans({
        {"0:", {"0", 1, 0, 1}},
        {"000:", {"0", 3, 0, 3}},
        {"-0:", {"0", 2, 0, 2}},
        {"--00:", {"0", 4, 0, 4}},
        {"+0:", {"0", 2, 0, 2}},
    });
}

TEST(TextInput, SkipsPlusAndXBeforeTheFirstDigit)
{
    expectScans({
        {"+12:", {"12", 3, 0, 3}},
        {"x12:", {"12", 3, 0, 3}},
        {"X12:", {"12", 3, 0, 3}},
        {"++xX12:", {"12", 6, 0, 6}},
    });
}

TEST(TextInput, CopiesMinusBeforeTheFirstDigit)
{
    expectScans({
        {"-5:", {"-5", 2, 0, 2}},
        {"--5:", {"--5", 3, 0, 3}},
        {"-+5:", {"-5", 3, 0, 3}},
        {"+x-5:", {"-5", 4, 0, 4}},
    });
}

TEST(TextInput, SetsFailForASignOrXBehindADigit)
{
    expectScans({
        {"5-3:", {"5", 1, failBit, 1}},
        {"5+3:", {"5", 1, failBit, 1}},
        {"5x3:", {"5", 1, failBit, 1}},
        {"5X3:", {"5", 1, failBit, 1}},
        {"-12-:", {"-12", 3, failBit, 3}},
        {"12x", {"12", 2, failBit, 2}},
        {"0x1F:", {"0", 1, failBit, 1}},
        {"-0-1:", {"0", 2, failBit, 2}},
    });
}

TEST(TextInput, CopiesHexLetters)
{
    expectScans({
        {"1abcdefABCDEF:", {"1abcdefABCDEF", 13, 0, 13}},
        {"A5:", {"A5", 2, 0, 2}},
        {"0a5:", {"a5", 3, 0, 3}},
        {"-1F0:", {"-1F0", 4, 0, 4}},
    });
}

TEST(TextInput, ScansHexLettersAndZerosAloneAsOneZero)
{
    expectScans({
        {"FF:", {"0", 2, 0, 2}},
        {"abcdef:", {"0", 6, 0, 6}},
        {"ABCDEF:", {"0", 6, 0, 6}},
        {"-F:", {"0", 2, 0, 2}},
        {"F0:", {"0", 2, 0, 2}},
        {"00ff00:", {"0", 6, 0, 6}},
    });
}

TEST(TextInput, TakesAHexLetterForADigitBeforeASign)
{
    expectScans({
        {"F-5:", {"0", 1, failBit, 1}},
        {"a+5:", {"0", 1, failBit, 1}},
        {"-Bx5:", {"0", 2, failBit, 2}},
    });
}

TEST(TextInput, FindsNoNumberWithoutADigit)
{
    expectScans({
        {":", {"", 0, failBit, 0}},
        {" 12:", {"", 0, failBit, 0}},
        {"g:", {"", 0, failBit, 0}},
        {"-:", {"-", 0, failBit, 1}},
        {"+:", {"", 0, failBit, 1}},
        {"x-X-:", {"--", 0, failBit, 4}},
    });
}

TEST(TextInput, ReachesEofWithANumberAtTheEnd)
{
    expectScans({
        {"12", {"12", 2, eofBit, 2}},
        {"-7", {"-7", 2, eofBit, 2}},
        {"00", {"0", 2, eofBit, 2}},
        {"FF", {"0", 2, eofBit, 2}},
        {"-", {"-", 0, eofBit | failBit, 1}},
        {"+", {"", 0, eofBit | failBit, 1}},
    });
}

TEST(TextInput, FindsNoNumberWithoutData)
{
    EXPECT_EQ(scan(""), (Scan{"", 0, eofBit | failBit, 0}));
}

TEST(TextInput, ScansFromTheReadPosition)
{
    Input input("12:-34:");
    std::vector<char> buffer(32, '#');
    input.stream.seekg(3);
    EXPECT_EQ(input.stream.getNumber(buffer.data()), 3U);
    EXPECT_STREQ(buffer.data(), "-34");
    EXPECT_EQ(input.state(), (State{0, 6, 7, 0}));
}

TEST(TextInput, ScansANumberOf31Characters)
{
    const std::string digits(thirtyOneDigits);
    EXPECT_EQ(scan(digits + ":"), (Scan{digits, 31, 0, 31}));
    EXPECT_EQ(scan(digits), (Scan{digits, 31, eofBit, 31}));
    EXPECT_EQ(scan("-" + digits.substr(0, 30) + ":"), (Scan{"-" + digits.substr(0, 30), 31, 0, 31}));
    EXPECT_EQ(scan("1" + std::string(30, 'F') + ":"), (Scan{"1" + std::string(30, 'F'), 31, 0, 31}));
}

TEST(TextInput, StopsBeforeThe32ndCharacterOfANumber)
{
    const std::string digits(thirtyOneDigits);
    EXPECT_EQ(scan(digits + "2:"), (Scan{digits, 31, failBit, 31}));
    EXPECT_EQ(scan(digits + "2"), (Scan{digits, 31, failBit, 31}));
    EXPECT_EQ(scan(digits + "0:"), (Scan{digits, 31, failBit, 31}));
    EXPECT_EQ(scan(digits + "F:"), (Scan{digits, 31, failBit, 31}));
    EXPECT_EQ(scan("-" + digits + ":"), (Scan{"-" + digits.substr(0, 30), 31, failBit, 31}));
    EXPECT_EQ(scan(std::string(200, '9')), (Scan{std::string(31, '9'), 31, failBit, 31}));
}

TEST(TextInput, StopsBeforeThe32ndHexLetter)
{
    EXPECT_EQ(scan(std::string(31, 'F') + ":"), (Scan{"0", 31, 0, 31}));
    EXPECT_EQ(scan(std::string(32, 'F') + ":"), (Scan{"0", 31, failBit, 31}));
}

TEST(TextInput, StopsBeforeThe32ndMinus)
{
    Input input(std::string(40, '-') + "5:");
    std::vector<char> buffer(32, '#');
    input.stream.getNumber(buffer.data());
    EXPECT_EQ(buffer.data(), std::string(31, '-'));
    EXPECT_EQ(input.state(), (State{failBit, 31, 42, 0}));
}

TEST(TextInput, CountsOnlyCopiedCharactersOfANumber)
{
    const std::string digits(thirtyOneDigits);
    EXPECT_EQ(scan(std::string(40, '0') + digits + ":"), (Scan{digits, 71, 0, 71}));
    EXPECT_EQ(scan(std::string(40, '+') + digits + ":"), (Scan{digits, 71, 0, 71}));
    EXPECT_EQ(scan(std::string(100, '0') + ":"), (Scan{"0", 100, 0, 100}));
    EXPECT_EQ(scan(std::string(31, 'F') + "00:"), (Scan{"0", 33, 0, 33}));
}

TEST(TextInput, ReadsAnUnsignedChar)
{
    expectReadings<unsigned char>(77, {
                                          {"0:", {0, 0, 1}},
                                          {"200:", {200, 0, 3}},
                                          {"255:", {255, 0, 3}},
                                          {"256:", {77, failBit, 3}},
                                          {"4294967295:", {77, failBit, 10}},
                                          {"-5:", {77, failBit, 2}},
                                          {"A5:", {77, failBit, 2}},
                                      });
}

TEST(TextInput, ReadsAShort)
{
    expectReadings<short>(77, {
                                  {"0:", {0, 0, 1}},
                                  {"-1:", {-1, 0, 2}},
                                  {"32767:", {32767, 0, 5}},
                                  {"32768:", {77, failBit, 5}},
                                  {"-32768:", {-32768, 0, 6}},
                                  {"2147483647:", {77, failBit, 10}},
                                  {"2147483648:", {77, failBit, 10}},
                                  {"A5:", {77, failBit, 2}},
                              });
}

TEST(TextInput, TakesTheLow16BitsOfANumberBelowTheRangeOfAShort)
{
    expectReadings<short>(77, {
                                  {"-32769:", {32767, 0, 6}},
                                  {"-40000:", {25536, 0, 6}},
                                  {"-65536:", {0, 0, 6}},
                                  {"-2147483647:", {1, 0, 11}},
                                  {"-2147483648:", {77, failBit, 11}},
                              });
}

TEST(TextInput, ReadsAnUnsignedShort)
{
    expectReadings<unsigned short>(7, {
                                          {"0:", {0, 0, 1}},
                                          {"32768:", {32768, 0, 5}},
                                          {"65535:", {65535, 0, 5}},
                                          {"65536:", {7, failBit, 5}},
                                          {"-5:", {7, failBit, 2}},
                                          {"A5:", {7, failBit, 2}},
                                      });
}

template <typename T>
void expectSigned32BitReadings()
{
    expectReadings<T>(77, {
                              {"0:", {0, 0, 1}},
                              {"-5:", {-5, 0, 2}},
                              {"--5:", {-5, 0, 3}},
                              {"+12:", {12, 0, 3}},
                              {"007:", {7, 0, 3}},
                              {"-0:", {0, 0, 2}},
                              {"FF:", {0, 0, 2}},
                              {"2147483647:", {2147483647, 0, 10}},
                              {"2147483648:", {77, failBit, 10}},
                              {"-2147483647:", {-2147483647, 0, 11}},
                              {"-2147483648:", {77, failBit, 11}},
                              {"4294967295:", {77, failBit, 10}},
                              {"4294967301:", {5, 0, 10}},
                              {"1F:", {77, failBit, 2}},
                              {"A5:", {77, failBit, 2}},
                              {"0x1F:", {0, failBit, 1}},
                              {" 12:", {77, failBit, 0}},
                          });
}

TEST(TextInput, ReadsAnInt)
{
    expectSigned32BitReadings<int>();
}

TEST(TextInput, ReadsALong)
{
    expectSigned32BitReadings<long>();
}

template <typename T>
void expectUnsigned32BitReadings()
{
    expectReadings<T>(77, {
                              {"0:", {0, 0, 1}},
                              {"-0:", {0, 0, 2}},
                              {"+12:", {12, 0, 3}},
                              {"FF:", {0, 0, 2}},
                              {"2147483648:", {2147483648, 0, 10}},
                              {"4294967295:", {4294967295, 0, 10}},
                              {"4294967296:", {0, 0, 10}},
                              {"4294967301:", {5, 0, 10}},
                              {"99999999999999999999:", {1661992959, 0, 20}},
                              {" 12:", {77, failBit, 0}},
                          });
}

TEST(TextInput, ReadsAnUnsignedInt)
{
    expectUnsigned32BitReadings<unsigned int>();
}

TEST(TextInput, ReadsAnUnsignedLong)
{
    expectUnsigned32BitReadings<unsigned long>();
}

TEST(TextInput, ReadsAnUnsignedLongLong)
{
    expectReadings<unsigned long long>(77, {
                                               {"0:", {0, 0, 1}},
                                               {"4294967296:", {4294967296, 0, 10}},
                                               {"18446744073709551615:", {18446744073709551615ULL, 0, 20}},
                                               {"18446744073709551616:", {0, 0, 20}},
                                               {"99999999999999999999:", {7766279631452241919, 0, 20}},
                                               {" 12:", {77, failBit, 0}},
                                           });
}

TEST(TextInput, DetectsNoOverflowInShortTargetsEither)
{
    EXPECT_EQ(read<unsigned char>("4294967551:", 77), (Reading<unsigned char>{255, 0, 10}));
    EXPECT_EQ(read<unsigned short>("4294967301:", 77), (Reading<unsigned short>{5, 0, 10}));
    EXPECT_EQ(read<short>("-4294967301:", 77), (Reading<short>{-5, 0, 11}));
}

TEST(TextInput, ReplacesAllBitsOfALong)
{
    EXPECT_EQ(read<long>("5:", -2), (Reading<long>{5, 0, 1}));
    EXPECT_EQ(read<long>("-5:", 2), (Reading<long>{-5, 0, 2}));
    EXPECT_EQ(read<unsigned long>("5:", ~0UL), (Reading<unsigned long>{5, 0, 1}));
    EXPECT_EQ(read<unsigned long>("-5:", ~0UL), (Reading<unsigned long>{5, failBit, 2}));
    EXPECT_EQ(read<unsigned long>("1F:", ~0UL), (Reading<unsigned long>{0, failBit, 2}));
}

TEST(TextInput, KeepsAllBitsOfAnUnsignedLongThatIsNotConverted)
{
    EXPECT_EQ(read<unsigned long>("12", ~0UL), (Reading<unsigned long>{~0UL, eofBit, 2}));
    EXPECT_EQ(read<unsigned long>("5-3:", ~0UL), (Reading<unsigned long>{~0UL, failBit, 1}));
    EXPECT_EQ(read<unsigned long>(" 12:", ~0UL), (Reading<unsigned long>{~0UL, failBit, 0}));
}

TEST(TextInput, LeavesTheMagnitudeOfANegativeNumberInAnUnsignedTarget)
{
    withEveryDirectType([]<typename T>(T before) { EXPECT_EQ(read("-5:", before), (Reading<T>{5, failBit, 2})); });
}

TEST(TextInput, LeavesTheDigitsBehindAHexLetterInAnUnsignedTarget)
{
    withEveryDirectType(
        []<typename T>(T before)
        {
            EXPECT_EQ(read("1F:", before), (Reading<T>{0, failBit, 2}));
            EXPECT_EQ(read("A5:", before), (Reading<T>{5, failBit, 2}));
        });
}

TEST(TextInput, ReadsHexLettersAloneAsZero)
{
    withEveryNumberType([]<typename T>(T before) { EXPECT_EQ(read("FF:", before), (Reading<T>{0, 0, 2})); });
}

TEST(TextInput, LeavesTheTargetAloneWithoutADigit)
{
    withEveryNumberType(
        []<typename T>(T before)
        {
            EXPECT_EQ(read(":", before), (Reading<T>{before, failBit, 0}));
            EXPECT_EQ(read(" 12:", before), (Reading<T>{before, failBit, 0}));
            EXPECT_EQ(read("-:", before), (Reading<T>{before, failBit, 1}));
            EXPECT_EQ(read("-", before), (Reading<T>{before, eofBit | failBit, 1}));
        });
}

TEST(TextInput, ReadsZeroAtTheEndOfTheData)
{
    withEveryIndirectType(
        []<typename T>(T before)
        {
            EXPECT_EQ(read("12", before), (Reading<T>{0, eofBit, 2}));
            EXPECT_EQ(read("1F", before), (Reading<T>{0, eofBit, 2}));
            EXPECT_EQ(read("99999999999", before), (Reading<T>{0, eofBit, 11}));
        });
}

TEST(TextInput, LeavesADirectTargetAloneAtTheEndOfTheData)
{
    withEveryDirectType(
        []<typename T>(T before)
        {
            EXPECT_EQ(read("12", before), (Reading<T>{before, eofBit, 2}));
            EXPECT_EQ(read("-5", before), (Reading<T>{before, eofBit, 2}));
            EXPECT_EQ(read("1F", before), (Reading<T>{before, eofBit, 2}));
        });
}

TEST(TextInput, ReadsZeroBeforeAMisplacedSign)
{
    withEveryIndirectType(
        []<typename T>(T before)
        {
            EXPECT_EQ(read("5-3:", before), (Reading<T>{0, failBit, 1}));
            EXPECT_EQ(read("5+3:", before), (Reading<T>{0, failBit, 1}));
            EXPECT_EQ(read("0x1F:", before), (Reading<T>{0, failBit, 1}));
        });
}

TEST(TextInput, LeavesADirectTargetAloneBeforeAMisplacedSign)
{
    withEveryDirectType(
        []<typename T>(T before)
        {
            EXPECT_EQ(read("5-3:", before), (Reading<T>{before, failBit, 1}));
            EXPECT_EQ(read("5+3:", before), (Reading<T>{before, failBit, 1}));
            EXPECT_EQ(read("0x1F:", before), (Reading<T>{before, failBit, 1}));
        });
}

TEST(TextInput, ReadsZeroFromANumberOf32Characters)
{
    const std::string data = std::string(thirtyOneDigits) + "2:";
    withEveryIndirectType(
        [&data]<typename T>(T before) {
            EXPECT_EQ(read(data, before), (Reading<T>{0, failBit, 31}));
        });
}

TEST(TextInput, LeavesADirectTargetAloneForANumberOf32Characters)
{
    const std::string data = std::string(thirtyOneDigits) + "2:";
    withEveryDirectType(
        [&data]<typename T>(T before) {
            EXPECT_EQ(read(data, before), (Reading<T>{before, failBit, 31}));
        });
}

TEST(TextInput, ReadsANumberOf31Characters)
{
    const std::string data = std::string(thirtyOneDigits) + ":";
    EXPECT_EQ(read(data, 77L), (Reading<long>{242641973, 0, 31}));
    EXPECT_EQ(read(data, 77UL), (Reading<unsigned long>{242641973, 0, 31}));
    EXPECT_EQ(read(data, 77ULL), (Reading<unsigned long long>{11711269222405794869ULL, 0, 31}));
}

TEST(TextInput, ReadsNoNumberWhenNotGood)
{
    for (const unsigned int status : {1U, 2U, 3U, 4U})
    {
        SCOPED_TRACE(status);
        withEveryNumberType(
            [status]<typename T>(T before)
            {
                Input input("x12:");
                getText(input.stream, 1, ':');
                input.stream.status(status);
                EXPECT_EQ(readInto(before, input), (Reading<T>{before, status, 1}));
            });
    }
}

TEST(TextInput, ReadsNoNumberWithoutABuffer)
{
    withEveryNumberType(
        []<typename T>(T before)
        {
            istream_text stream;
            T value = before;
            stream >> value;
            EXPECT_EQ(value, before);
            EXPECT_EQ(stateOf(stream), (State{eofBit | failBit, 0, 0, 0}));
        });
}

TEST(TextInput, ReadsNoNumberAtTheEndThoughMadeGood)
{
    withEveryNumberType(
        []<typename T>(T before)
        {
            Input input("12");
            input.stream.seekg(2);
            input.stream.setgood();
            EXPECT_EQ(readInto(before, input), (Reading<T>{before, eofBit | failBit, 2}));
        });
}

TEST(TextInput, ReadsNothingFromANullBuffer)
{
    istream_text stream;
    stream.attachBuffer(nullptr, 10);
    char ch = '?';
    stream.get(ch);
    EXPECT_EQ(ch, '?');
    EXPECT_EQ(getText(stream, 3, ':'), "####");
    EXPECT_EQ(stateOf(stream), (State{eofBit | failBit, 0, 0, 0}));
}

TEST(TextInput, ReadsNothingFromANullBufferThoughMadeGood)
{
    istream_text stream;
    stream.attachBuffer(nullptr, 10);
    char ch = '?';
    long number = 77;
    stream.setgood();
    stream.get(ch);
    EXPECT_EQ(ch, '?');
    EXPECT_EQ(stateOf(stream), (State{eofBit | failBit, 0, 0, 0}));
    stream.setgood();
    EXPECT_EQ(getText(stream, 3, ':'), "####");
    EXPECT_EQ(stateOf(stream), (State{eofBit, 0, 0, 0}));
    stream.setgood();
    stream >> number;
    EXPECT_EQ(number, 77);
    EXPECT_EQ(stateOf(stream), (State{eofBit | failBit, 0, 0, 0}));
}

TEST(TextInput, ReadsNothingAfterDetaching)
{
    Input input("abc");
    getText(input.stream, 2, ':');
    input.stream.detachBuffer();
    char ch = '?';
    EXPECT_EQ(getText(input.stream, 2, ':'), "###");
    EXPECT_EQ(input.state(), (State{eofBit | failBit, 0, 0, 2}));
    input.stream.get(ch);
    EXPECT_EQ(ch, '?');
    EXPECT_EQ(input.state(), (State{eofBit | failBit, 0, 0, 0}));
}

// A reset of the base leaves the position where it was, behind the data that it takes away.
TEST(TextInput, ReadsNothingBehindTheDataAfterAReset)
{
    Input input("12:34:");
    char ch = '?';
    long number = 77;
    input.stream.seekg(3);
    input.stream.streambase::reset();
    EXPECT_EQ(input.state(), (State{0, 3, 0, 0}));
    EXPECT_EQ(getText(input.stream, 2, ':'), "###");
    EXPECT_EQ(input.state(), (State{0, 3, 0, 0}));
    input.stream >> number;
    EXPECT_EQ(number, 77);
    EXPECT_EQ(input.state(), (State{failBit, 3, 0, 0}));
    input.stream.setgood();
    input.stream.get(ch);
    EXPECT_EQ(ch, '?');
    EXPECT_EQ(input.state(), (State{failBit, 3, 0, 0}));
}

TEST(TextInput, ReadsFieldsAndTheirDelimiters)
{
    Input input("1:-2:text:255:18446744073709551615:");
    unsigned long first = 0;
    long second = 0;
    unsigned char third = 0;
    unsigned long long fourth = 0;
    char delimiter = '?';
    input.stream >> first >> delimiter >> second >> delimiter;
    EXPECT_EQ(getText(input.stream, 8, ':'), "text\0####"sv);
    input.stream >> delimiter >> third >> delimiter >> fourth >> delimiter;
    EXPECT_EQ(first, 1U);
    EXPECT_EQ(second, -2);
    EXPECT_EQ(third, 255U);
    EXPECT_EQ(fourth, 18446744073709551615ULL);
    EXPECT_EQ(delimiter, ':');
    EXPECT_EQ(input.state(), (State{eofBit, 35, 35, 1}));
}

TEST(TextInput, ReadsWhatTextOutputWrites)
{
    std::vector<char> buffer(23, '#');
    ostream_text output;
    output.attachBuffer(buffer.data(), 23);
    output << static_cast<short>(-32768) << ':' << -2147483647L << ':' << true << ':' << 'c';
    Input input({buffer.data(), output.length()});
    short first = 0;
    long second = 0;
    unsigned char third = 0;
    char fourth = '?';
    char delimiter = '?';
    input.stream >> first >> delimiter >> second >> delimiter >> third >> delimiter >> fourth;
    EXPECT_EQ(first, -32768);
    EXPECT_EQ(second, -2147483647);
    EXPECT_EQ(third, 1U);
    EXPECT_EQ(fourth, 'c');
    EXPECT_EQ(input.state(), (State{eofBit, 22, 22, 1}));
}

// What converting a text leaves behind; the targets start as 77 and, where there is one, true.
template <typename T>
struct Conversion
{
    bool result;
    T value;
    bool negative = true;

    bool operator==(const Conversion&) const = default;
};

template <typename T>
std::ostream& operator<<(std::ostream& out, const Conversion<T>& conversion)
{
    return out << std::boolalpha << conversion.result << " value " << conversion.value << " negative "
               << conversion.negative;
}

// A stream in the middle of data, where no conversion has business.
class TextConversion : public testing::Test
{
protected:
    TextConversion() : m_input("ab:")
    {
        getText(m_input.stream, 2, ':');
    }

    template <typename T>
    Conversion<T> convert(bool (istream_text::*operation)(const char*, T&, bool&) const, const char* text)
    {
        const State before = m_input.state();
        Conversion<T> conversion{false, 77, true};
        conversion.result = (m_input.stream.*operation)(text, conversion.value, conversion.negative);
        EXPECT_EQ(m_input.state(), before);
        return conversion;
    }

    template <typename T>
    Conversion<T> convert(bool (istream_text::*operation)(const char*, T&) const, const char* text)
    {
        const State before = m_input.state();
        Conversion<T> conversion{false, 77};
        conversion.result = (m_input.stream.*operation)(text, conversion.value);
        EXPECT_EQ(m_input.state(), before);
        return conversion;
    }

    template <typename T, typename... Negative>
    void expectConversions(bool (istream_text::*operation)(const char*, T&, Negative...) const,
                           const std::vector<std::pair<const char*, Conversion<T>>>& rows)
    {
        for (const auto& [text, expected] : rows)
        {
            SCOPED_TRACE(text);
            EXPECT_EQ(convert(operation, text), expected);
        }
    }

    Input m_input;
};

TEST_F(TextConversion, ConvertsAMagnitudeAndASign)
{
    expectConversions(&istream_text::asciiToInt, {
                                                     {"0", {true, 0, false}},
                                                     {"7", {true, 7, false}},
                                                     {"1020", {true, 1020, false}},
                                                     {"-5", {true, 5, true}},
                                                     {"4294967295", {true, 4294967295, false}},
                                                     {"-2147483648", {true, 2147483648, true}},
                                                     {"007", {true, 7, false}},
                                                 });
}

TEST_F(TextConversion, ConvertsAMagnitudeModulo32Bits)
{
    expectConversions(&istream_text::asciiToInt,
                      {
                          {"4294967296", {true, 0, false}},
                          {"-4294967301", {true, 5, true}},
                          {"99999999999999999999", {true, 1661992959, false}},
                          {"9999999999999999999999999999999", {true, 2147483647, false}},
                      });
}

TEST_F(TextConversion, ConvertsNoDigitsToZero)
{
    expectConversions(&istream_text::asciiToInt, {{"", {true, 0, false}}, {"-", {true, 0, true}}});
}

TEST_F(TextConversion, IgnoresWhatStandsLeftOfAMinus)
{
    expectConversions(&istream_text::asciiToInt, {
                                                     {"--5", {true, 5, true}},
                                                     {"12-34", {true, 34, true}},
                                                     {"F-6", {true, 6, true}},
                                                 });
}

TEST_F(TextConversion, RefusesAnyOtherCharacter)
{
    expectConversions(&istream_text::asciiToInt, {
                                                     {"1F", {false, 0, false}},
                                                     {"A5", {false, 5, false}},
                                                     {"+5", {false, 5, false}},
                                                     {" 5", {false, 5, false}},
                                                     {"1 23", {false, 23, false}},
                                                     {"/8", {false, 8, false}},
                                                     {":9", {false, 9, false}},
                                                 });
}

TEST_F(TextConversion, ConvertsASignedNumber)
{
    expectConversions(&istream_text::asciiToSigned, {
                                                        {"0", {true, 0}},
                                                        {"5", {true, 5}},
                                                        {"-5", {true, -5}},
                                                        {"2147483647", {true, 2147483647}},
                                                        {"-2147483647", {true, -2147483647}},
                                                        {"-4294967301", {true, -5}},
                                                    });
}

TEST_F(TextConversion, LeavesASignedTargetAloneWhenRefusing)
{
    expectConversions(&istream_text::asciiToSigned, {
                                                        {"2147483648", {false, 77}},
                                                        {"-2147483648", {false, 77}},
                                                        {"4294967295", {false, 77}},
                                                        {"A5", {false, 77}},
                                                    });
}

TEST_F(TextConversion, ConvertsAnUnsignedNumber)
{
    expectConversions(&istream_text::asciiToUnsigned, {
                                                          {"0", {true, 0}},
                                                          {"2147483648", {true, 2147483648}},
                                                          {"4294967295", {true, 4294967295}},
                                                          {"4294967301", {true, 5}},
                                                      });
}

TEST_F(TextConversion, LeavesTheMagnitudeInAnUnsignedTargetWhenRefusing)
{
    expectConversions(&istream_text::asciiToUnsigned, {
                                                          {"-5", {false, 5}},
                                                          {"-0", {false, 0}},
                                                          {"A5", {false, 5}},
                                                          {"1F", {false, 0}},
                                                      });
}

TEST_F(TextConversion, ConvertsA64BitMagnitudeAndASign)
{
    expectConversions(&istream_text::asciiToLongLong,
                      {
                          {"", {true, 0, false}},
                          {"-", {true, 0, true}},
                          {"-12", {true, 12, true}},
                          {"12-34", {true, 34, true}},
                          {"4294967296", {true, 4294967296, false}},
                          {"18446744073709551615", {true, 18446744073709551615ULL, false}},
                          {"A5", {false, 5, false}},
                          {"1F", {false, 0, false}},
                      });
}

TEST_F(TextConversion, ConvertsA64BitMagnitudeModulo64Bits)
{
    expectConversions(&istream_text::asciiToLongLong,
                      {
                          {"18446744073709551616", {true, 0, false}},
                          {"-18446744073709551621", {true, 5, true}},
                          {"9999999999999999999999999999999", {true, 13875954555633532927ULL, false}},
                      });
}

TEST_F(TextConversion, ConvertsASigned64BitNumberUpTo60)
{
    expectConversions(&istream_text::asciiToSignedLongLong, {
                                                                {"0", {true, 0}},
                                                                {"60", {true, 60}},
                                                                {"-60", {true, -60}},
                                                                {"18446744073709551617", {true, 1}},
                                                            });
}

TEST_F(TextConversion, LeavesASigned64BitTargetAloneWhenRefusing)
{
    expectConversions(&istream_text::asciiToSignedLongLong, {
                                                                {"61", {false, 77}},
                                                                {"-61", {false, 77}},
                                                                {"9223372036854775807", {false, 77}},
                                                                {"18446744073709551615", {false, 77}},
                                                                {"A5", {false, 77}},
                                                            });
}

TEST_F(TextConversion, ConvertsAnUnsigned64BitNumber)
{
    expectConversions(&istream_text::asciiToUnsignedLongLong,
                      {
                          {"0", {true, 0}},
                          {"61", {true, 61}},
                          {"18446744073709551615", {true, 18446744073709551615ULL}},
                          {"18446744073709551617", {true, 1}},
                      });
}

TEST_F(TextConversion, LeavesTheMagnitudeInAnUnsigned64BitTargetWhenRefusing)
{
    expectConversions(&istream_text::asciiToUnsignedLongLong, {
                                                                  {"-5", {false, 5}},
                                                                  {"A5", {false, 5}},
                                                                  {"1F", {false, 0}},
                                                              });
}

TEST_F(TextConversion, DoesNothingWhenNotGood)
{
    for (const unsigned int status : {eofBit, failBit, eofBit | failBit, badBit})
    {
        SCOPED_TRACE(status);
        m_input.stream.status(status);
        for (const char* text : {"12", "-5", "1F", ""})
        {
            SCOPED_TRACE(text);
            EXPECT_EQ(convert(&istream_text::asciiToInt, text), (Conversion<unsigned long>{true, 77}));
            EXPECT_EQ(convert(&istream_text::asciiToLongLong, text), (Conversion<unsigned long long>{true, 77}));
            EXPECT_EQ(convert(&istream_text::asciiToUnsigned, text), (Conversion<unsigned long>{true, 77}));
            EXPECT_EQ(convert(&istream_text::asciiToUnsignedLongLong, text),
                      (Conversion<unsigned long long>{true, 77}));
        }
    }
}

TEST_F(TextConversion, ConvertsToASignedZeroWhenNotGood)
{
    for (const unsigned int status : {eofBit, failBit, eofBit | failBit, badBit})
    {
        SCOPED_TRACE(status);
        m_input.stream.status(status);
        for (const char* text : {"12", "-5", "1F", ""})
        {
            SCOPED_TRACE(text);
            EXPECT_EQ(convert(&istream_text::asciiToSigned, text), (Conversion<long>{true, 0}));
            EXPECT_EQ(convert(&istream_text::asciiToSignedLongLong, text), (Conversion<long long>{true, 0}));
        }
    }
}

} // namespace

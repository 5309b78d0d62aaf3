// A table, constants, and the streams' own operations field by field come to the same: wherever the room or the
// data end, and whatever the data are.

#include "codec/codec.h"
#include "codec/constants.h"
#include "codec/tagLookup.h"
#include "logCapture.h"
#include "sampleRows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace
{

using namespace bci::codec;
using commonStream::istream_binary;
using commonStream::istream_text;
using commonStream::ostream_binary;
using commonStream::ostream_text;

// The other two ways: the engine's functions for single fields, and none of them.
struct Exactly
{
};

struct ByOperators
{
};

template <typename Way>
constexpr bool kIsRows = std::is_same_v<Way, AsTable> || std::is_same_v<Way, AsConstants>;

// Calls a function with a field's number as its type.
template <typename Function>
void withNumber(const Field& field, const char* from, Function function)
{
    switch (field.kind)
    {
    case Kind::u8:
        return function(peek<U8>(from));
    case Kind::u16:
        return function(peek<U16>(from));
    case Kind::s16:
        return function(peek<S16>(from));
    case Kind::s32:
        return function(peek<S32>(from));
    default:
        return function(peek<U32>(from));
    }
}

void put(ostream_text& stream, const Field& field, const char* element)
{
    const char* const from = element + field.offset;
    if (field.kind == Kind::text)
    {
        stream.put(from, static_cast<unsigned int>(strnlen(from, field.size)));
    }
    else
    {
        withNumber(field, from, [&stream](auto number) { stream << number; });
    }
}

void put(ostream_text& stream, const std::string& text)
{
    stream.put(text.data(), static_cast<unsigned int>(text.size()));
}

std::string elementNameOf(const Field& field, const Subscripts* subscripts, unsigned int index)
{
    std::string name = field.tag;
    if (subscripts != nullptr && name.ends_with("__"))
    {
        name.pop_back();
        name += std::to_string(subscripts->first) + "_" + std::to_string(subscripts->second + index);
    }
    else if (subscripts != nullptr && name.ends_with("_"))
    {
        name += std::to_string(subscripts->first);
    }
    return name;
}

template <typename Way, const Fields& table>
void writeTextBy(ostream_text& stream, const char* structure, unsigned int count)
{
    if constexpr (kIsRows<Way>)
    {
        TextWriter out(stream);
        writeText(rowsFor<Way, table>, structure, out, count);
    }
    else
    {
        const auto write = [&stream](const Field& field, const char* element, unsigned int /*index*/)
        {
            if (std::is_same_v<Way, Exactly>)
            {
                writeTextExactly(field, element, stream);
                return;
            }
            put(stream, field, element);
            stream << ':';
        };
        TableRows(table, count).forEach(structure, write);
    }
}

template <typename Way, const Fields& table>
void writeBinaryBy(ostream_binary& stream, const char* structure, unsigned int count)
{
    if constexpr (kIsRows<Way>)
    {
        BinaryWriter out(stream);
        writeBinary(rowsFor<Way, table>, structure, out, count);
    }
    else if constexpr (std::is_same_v<Way, Exactly>)
    {
        writeBinaryExactly(table, structure, stream, count);
    }
    else
    {
        TableRows(table, count)
            .forEach(structure,
                     [&stream](const Field& field, const char* element, unsigned int /*index*/)
                     {
                         const char* const from = element + field.offset;
                         if (field.kind == Kind::text)
                         {
                             stream.put(from, field.size);
                         }
                         else
                         {
                             withNumber(field, from, [&stream](auto number) { stream << number; });
                         }
                     });
    }
}

template <typename Way, const Fields& table>
void writeXmlBy(ostream_text& stream, const char* structure, unsigned int count, const Subscripts* subscripts)
{
    if constexpr (kIsRows<Way>)
    {
        TextWriter out(stream);
        if (subscripts != nullptr)
        {
            writeXml(rowsFor<Way, table>, structure, out, subscripts, count);
        }
        else
        {
            writeXml(rowsFor<Way, table>, structure, out);
        }
    }
    else
    {
        const auto write = [&](const Field& field, const char* element, unsigned int index)
        {
            if (std::is_same_v<Way, Exactly>)
            {
                writeXmlExactly(field, element, stream, subscripts, index);
                return;
            }
            const std::string name = elementNameOf(field, subscripts, index);
            const bool bare = field.oddity == Oddity::bareOpening;
            put(stream, bare ? "<" + name + ">\n\t   " : "\t<" + name + ">\n\t  ");
            put(stream, field, element);
            put(stream, "\n\t</" + (field.oddity == Oddity::foreignClosing ? closingTag(field) : name) + ">\n");
        };
        TableRows(table, count).forEach(structure, write);
    }
}

template <typename Way, const Fields& table>
void readTextBy(istream_text& stream, char* structure, unsigned int count)
{
    if constexpr (kIsRows<Way>)
    {
        TextReader in(stream);
        readText(rowsFor<Way, table>, structure, in, count);
    }
    else
    {
        const auto read = [&stream](const Field& field, char* element, unsigned int /*index*/)
        {
            if (std::is_same_v<Way, Exactly>)
            {
                readTextExactly(field, element, stream);
                return;
            }
            char* const to = element + field.offset;
            if (field.kind == Kind::text)
            {
                stream.get(to, field.size - 1U, ':');
            }
            else
            {
                withNumber(field, to,
                           [&stream, to](auto number)
                           {
                               stream >> number;
                               poke(to, number);
                           });
            }
            char delimiter;
            stream.get(delimiter);
        };
        TableRows(table, count).forEach(structure, read);
    }
}

template <typename Way, const Fields& table>
void readBinaryBy(istream_binary& stream, char* structure, unsigned int count)
{
    if constexpr (kIsRows<Way>)
    {
        BinaryReader in(stream);
        readBinary(rowsFor<Way, table>, structure, in, count);
    }
    else if constexpr (std::is_same_v<Way, Exactly>)
    {
        readBinaryExactly(table, structure, stream, count);
    }
    else
    {
        TableRows(table, count)
            .forEach(structure,
                     [&stream](const Field& field, char* element, unsigned int /*index*/)
                     {
                         char* const to = element + field.offset;
                         if (field.kind == Kind::text)
                         {
                             stream.get(to, field.size);
                             return;
                         }
                         withNumber(field, to,
                                    [&stream, to](auto number)
                                    {
                                        stream >> number;
                                        poke(to, number);
                                    });
                     });
    }
}

// Looks every element up in the whole document.
template <typename Way, const Fields& table>
bool readXmlBy(const istream_text& stream, char* structure, unsigned int count, const Subscripts* subscripts)
{
    if constexpr (kIsRows<Way>)
    {
        Elements elements(stream);
        return subscripts != nullptr ? readXml(rowsFor<Way, table>, structure, elements, subscripts, count)
                                     : readXml(rowsFor<Way, table>, structure, elements);
    }
    else
    {
        bool result = true;
        TableRows(table, count)
            .forEach(structure,
                     [&](const Field& field, char* element, unsigned int index)
                     {
                         if (!result || field.oddity == Oddity::notReadFromXml)
                         {
                             return;
                         }
                         const std::string name = elementNameOf(field, subscripts, index);
                         TagContent content = {};
                         result = findTag(stream.getBuffer(), name.c_str(), content) != nullptr;
                         if (!result)
                         {
                             logMissing(table, field, name.c_str(), stream.getBuffer());
                             return;
                         }
                         char* const to = element + field.offset;
                         if (field.kind == Kind::text)
                         {
                             copyContent(content, to, field.size);
                             return;
                         }
                         withNumber(field, to,
                                    [&content, to]<typename T>(T /*number*/)
                                    { poke(to, static_cast<T>(toNumber(content))); });
                     });
        return result;
    }
}

// All that can be seen of an operation: of writing the buffer, of reading the structure.
struct Outcome
{
    std::string bytes;
    unsigned int length;
    unsigned int position;
    unsigned int status;
    unsigned int lastRead = 0;
    bool result = true;
    Log log = {};

    bool operator==(const Outcome&) const = default;
};

void PrintTo(const Outcome& outcome, std::ostream* out) // NOLINT: the name that the test framework asks for
{
    *out << testing::PrintToString(outcome.bytes) << " length " << outcome.length << " position "
         << outcome.position << " status " << outcome.status << " last read " << outcome.lastRead << " result "
         << outcome.result << " log " << testing::PrintToString(outcome.log);
}

// How a stream is found by an operation.
struct Start
{
    unsigned int position; // in a buffer of which as much has been written, or read
    unsigned int status;
};

constexpr Start kStarts[] = {{0, 0}, {1, 0}, {0, 2}, {3, 6}};

// What an operation writes into a buffer of a size, behind which nothing may be touched.
template <typename Stream, typename Write>
Outcome written(unsigned int size, const Start& start, Write write)
{
    std::string buffer(size + 4, '#');
    Stream stream;
    stream.attachBuffer(buffer.data(), size);
    for (unsigned int i = 0; i < start.position; ++i)
    {
        stream.put('.');
    }
    stream.status(stream.status() | start.status);
    write(stream);
    return {buffer, stream.length(), stream.tellp(), stream.status()};
}

// What an operation reads into a structure. The data have an allocation of their own, so that nothing around them
// is read unnoticed where sanitizers look on.
template <typename Stream, typename Read>
Outcome readFrom(std::string_view data, const Start& start, Read read)
{
    std::vector<char> copy(data.begin(), data.end());
    std::string structure(160, '#');
    Stream stream;
    stream.attachBuffer(copy.data(), static_cast<unsigned int>(copy.size()));
    char skipped;
    for (unsigned int i = 0; i < start.position; ++i)
    {
        stream.get(skipped);
    }
    stream.status(stream.status() | start.status);
    read(stream, structure.data());
    Outcome outcome = {structure, stream.length(), stream.tellg(), stream.status()};
    if constexpr (std::is_same_v<Stream, istream_text>)
    {
        outcome.lastRead = stream.gcount();
    }
    return outcome;
}

// Compares all ways. The function makes the outcome of the way that its argument stands for.
template <typename Make>
::testing::AssertionResult agree(Make make)
{
    const Outcome expected = make(ByOperators());
    const struct
    {
        const char* name;
        Outcome outcome;
    } others[] = {{AsTable::kName, make(AsTable())},
                  {AsConstants::kName, make(AsConstants())},
                  {"Exactly", make(Exactly())}};
    for (const auto& [name, outcome] : others)
    {
        if (!(outcome == expected))
        {
            return ::testing::AssertionFailure() << name << ": " << testing::PrintToString(outcome)
                                                 << "\ninstead of: " << testing::PrintToString(expected);
        }
    }
    return ::testing::AssertionSuccess();
}

template <const Fields& table>
auto textOf(const std::vector<char>& structure, unsigned int count, unsigned int size, const Start& start)
{
    return [&structure, count, size, &start]<typename Way>(Way /*way*/)
    {
        return written<ostream_text>(
            size, start, [&](ostream_text& stream) { writeTextBy<Way, table>(stream, structure.data(), count); });
    };
}

template <const Fields& table>
auto binaryOf(const std::vector<char>& structure, unsigned int count, unsigned int size, const Start& start)
{
    return [&structure, count, size, &start]<typename Way>(Way /*way*/)
    {
        return written<ostream_binary>(size, start,
                                       [&](ostream_binary& stream)
                                       { writeBinaryBy<Way, table>(stream, structure.data(), count); });
    };
}

template <const Fields& table>
auto xmlOf(const std::vector<char>& structure, unsigned int count, const Subscripts* subscripts, unsigned int size,
           const Start& start)
{
    return [&structure, count, subscripts, size, &start]<typename Way>(Way /*way*/)
    {
        return written<ostream_text>(size, start,
                                     [&](ostream_text& stream)
                                     { writeXmlBy<Way, table>(stream, structure.data(), count, subscripts); });
    };
}

template <const Fields& table>
auto fromText(std::string_view data, unsigned int count, const Start& start = kStarts[0])
{
    return [data, count, &start]<typename Way>(Way /*way*/)
    {
        return readFrom<istream_text>(data, start,
                                      [count](istream_text& stream, char* structure)
                                      { readTextBy<Way, table>(stream, structure, count); });
    };
}

template <const Fields& table>
auto fromBinary(std::string_view data, unsigned int count, const Start& start)
{
    return [data, count, &start]<typename Way>(Way /*way*/)
    {
        return readFrom<istream_binary>(data, start,
                                        [count](istream_binary& stream, char* structure)
                                        { readBinaryBy<Way, table>(stream, structure, count); });
    };
}

// With the document's terminating zero as part of the data.
template <const Fields& table>
auto fromXml(const std::string& document, unsigned int count = 1, const Subscripts* subscripts = nullptr)
{
    return [&document, count, subscripts]<typename Way>(Way /*way*/)
    {
        bool result = false;
        Outcome outcome =
            readFrom<istream_text>({document.c_str(), document.size() + 1}, kStarts[0],
                                   [&](istream_text& stream, char* structure)
                                   { result = readXmlBy<Way, table>(stream, structure, count, subscripts); });
        outcome.result = result;
        outcome.log = takeLog();
        return outcome;
    };
}

template <typename Make>
unsigned int fullLength(Make make)
{
    return make(ByOperators()).length;
}

SampleS sample()
{
    return {4000000000U, -7, 65535, -32768, 200, {'a', ' ', 'b', 0, 'z'}, 1, 2, {'x', 'y', 0}};
}

template <typename Structure>
std::vector<char> bytesOf(const Structure& structure, std::size_t size)
{
    std::vector<char> bytes(size);
    std::memcpy(bytes.data(), &structure, size);
    return bytes;
}

// Several samples as elements of a list: each with greater numbers and longer texts than the one before.
std::vector<char> samples()
{
    std::vector<char> list;
    const SampleS small = {0, 0, 0, 0, 0, {}, 0, 0, {}};
    const SampleS large = {0xFFFFFFFF, -2147483647 - 1, 0xFFFF,         0x7FFF, 0xFF, {'a', 'b', 'c', 'd', 'e'},
                           0xFFFF,     0xFFFF,          {'x', 'y', 'z'}};
    for (const SampleS& structure : {small, sample(), large})
    {
        const std::vector<char> bytes = bytesOf(structure, kSample.binarySize);
        list.insert(list.end(), bytes.begin(), bytes.end());
    }
    return list;
}

std::vector<char> listOf(unsigned int count)
{
    std::vector<char> list(std::size_t{12} * count);
    for (unsigned int i = 0; i < count; ++i)
    {
        char* const element = &list[std::size_t{12} * i];
        poke(element, static_cast<U16>(10 * i));
        poke(element + 2, static_cast<S32>(-1000 * static_cast<int>(i)));
        std::memcpy(element + 6, "abcdef", i % 7);
    }
    return list;
}

constexpr Subscripts kSubscripts[] = {{0, 0},  {9, 7},   {9, 8},   {9, 9},  {10, 0}, {10, 9},
                                      {0, 10}, {11, 11}, {99, 97}, {1, 98}, {1, 99}, {4294967295U, 8}};

TEST(CodecComparison, TextForEveryLengthOfTheBuffer)
{
    const std::vector<char> list = samples();
    for (const unsigned int count : {0U, 1U, 3U})
    {
        const unsigned int full = fullLength(textOf<kSample>(list, count, 500, kStarts[0]));
        ASSERT_LT(full, 200U);
        for (unsigned int size = 0; size <= full + 12; ++size)
        {
            for (const Start& start : kStarts)
            {
                EXPECT_TRUE(agree(textOf<kSample>(list, count, size, start)))
                    << count << " in " << size << " from " << start.position;
            }
        }
    }
}

TEST(CodecComparison, BinaryForEveryLengthOfTheBuffer)
{
    const std::vector<char> list = samples();
    for (const unsigned int count : {0U, 1U, 3U})
    {
        ASSERT_EQ(fullLength(binaryOf<kSample>(list, count, 500, kStarts[0])), 25U * count);
        for (unsigned int size = 0; size <= 25 * count + 5; ++size)
        {
            for (const Start& start : kStarts)
            {
                EXPECT_TRUE(agree(binaryOf<kSample>(list, count, size, start)))
                    << count << " in " << size << " from " << start.position;
            }
        }
    }
}

TEST(CodecComparison, XmlForEveryLengthOfTheBuffer)
{
    const std::vector<char> list = samples();
    for (const unsigned int element : {0U, 1U, 2U})
    {
        const std::vector<char> structure(list.begin() + 25 * element, list.begin() + 25 * element + 25);
        const unsigned int full = fullLength(xmlOf<kSample>(structure, 1, nullptr, 1000, kStarts[0]));
        ASSERT_LT(full, 500U);
        for (unsigned int size = 0; size <= full + 12; ++size)
        {
            for (const Start& start : kStarts)
            {
                EXPECT_TRUE(agree(xmlOf<kSample>(structure, 1, nullptr, size, start)))
                    << element << " in " << size << " from " << start.position;
            }
        }
    }
}

TEST(CodecComparison, XmlOfAListForEveryLengthOfTheBuffer)
{
    const std::vector<char> list = listOf(3);
    for (const Subscripts& subscripts : kSubscripts)
    {
        const unsigned int full = fullLength(xmlOf<kList>(list, 3, &subscripts, 1000, kStarts[0]));
        ASSERT_LT(full, 700U);
        for (unsigned int size = 0; size <= full + 12; ++size)
        {
            EXPECT_TRUE(agree(xmlOf<kList>(list, 3, &subscripts, size, kStarts[size % 2])))
                << subscripts.first << " " << subscripts.second << " in " << size;
        }
    }
}

TEST(CodecComparison, TextForEveryLengthOfTheData)
{
    const std::vector<char> list = samples();
    for (const unsigned int count : {0U, 1U, 3U})
    {
        const Outcome whole = textOf<kSample>(list, count, 500, kStarts[0])(ByOperators());
        const std::string text = whole.bytes.substr(0, whole.length) + "8:9";
        for (std::size_t length = 0; length <= text.size(); ++length)
        {
            for (const Start& start : kStarts)
            {
                const std::string data = std::string(start.position, '.') + text.substr(0, length);
                EXPECT_TRUE(agree(fromText<kSample>(data, count, start))) << count << " of " << data;
            }
        }
    }
}

TEST(CodecComparison, BinaryForEveryLengthOfTheData)
{
    std::string binary;
    for (int i = 0; i < 80; ++i)
    {
        binary += static_cast<char>(37 * i + 3);
    }
    for (const unsigned int count : {0U, 1U, 3U})
    {
        for (std::size_t length = 0; length <= 25 * count + 5; ++length)
        {
            for (const Start& start : kStarts)
            {
                EXPECT_TRUE(agree(fromBinary<kSample>({binary.data(), length}, count, start)))
                    << count << " of " << length << " from " << start.position;
            }
        }
    }
}

TEST(CodecComparison, XmlForEveryLengthOfTheDocument)
{
    const std::vector<char> list = samples();
    for (const unsigned int element : {0U, 1U, 2U})
    {
        const std::vector<char> structure(list.begin() + 25 * element, list.begin() + 25 * element + 25);
        const Outcome whole = xmlOf<kSample>(structure, 1, nullptr, 1000, kStarts[0])(ByOperators());
        std::string document = whole.bytes.substr(0, whole.length);
        EXPECT_TRUE(agree(fromXml<kSample>(document))) << "closed by another name";
        document.replace(document.find("</other>"), 8, "</foreign>");
        for (std::size_t length = 0; length <= document.size(); ++length)
        {
            EXPECT_TRUE(agree(fromXml<kSample>(document.substr(0, length)))) << length;
        }
    }
}

TEST(CodecComparison, XmlOfAListForEveryLengthOfTheDocument)
{
    const std::vector<char> list = listOf(3);
    for (const Subscripts& subscripts : kSubscripts)
    {
        const Outcome whole = xmlOf<kList>(list, 3, &subscripts, 1000, kStarts[0])(ByOperators());
        for (std::size_t length = 0; length <= whole.length; ++length)
        {
            EXPECT_TRUE(agree(fromXml<kList>(whole.bytes.substr(0, length), 3, &subscripts)))
                << subscripts.first << " " << subscripts.second << ", " << length;
        }
    }
}

// Behind a text of such a length the elements lie across the end of what is looked at in one pass.
TEST(CodecComparison, XmlOfLongDocuments)
{
    const std::vector<char> structure = bytesOf(sample(), kSample.binarySize);
    const Outcome whole = xmlOf<kSample>(structure, 1, nullptr, 1000, kStarts[0])(ByOperators());
    std::string document = whole.bytes.substr(0, whole.length);
    document.replace(document.find("</other>"), 8, "</foreign>");
    const std::size_t value = document.find("a b");
    for (std::size_t longer = 8192 - document.size(); longer <= 8200; ++longer)
    {
        std::string longOne = document;
        longOne.insert(value, longer, 'v');
        const Outcome outcome = fromXml<kSample>(longOne)(ByOperators());
        ASSERT_TRUE(outcome.result);
        EXPECT_TRUE(agree(fromXml<kSample>(longOne))) << longer;
    }
}

// A number of some kind, and another one behind it.
template <Kind kind>
constexpr U16 kSizeOf = kind == Kind::u8                         ? 1
                        : kind == Kind::u16 || kind == Kind::s16 ? 2
                                                                 : 4;
template <Kind kind>
constexpr Field kNumberRows[] = {{0, kSizeOf<kind>, kind, Oddity::none, 1, "number"},
                                 {4, 2, Kind::u16, Oddity::none, 8, "next"}};
template <Kind kind>
constexpr Fields kNumber = {"sampleMsg", kNumberRows<kind>};

constexpr const char* kNumberTexts[] = {
    "0", "1", "9", "10", "99", "100", "126", "127", "128", "129", "254", "255", "256", "257", "260", "300", "999",
    "1000", "9999", "10000", "32766", "32767", "32768", "32769", "65534", "65535", "65536", "65537", "65540",
    "70000", "99999", "100000", "999999", "9999999", "10000000", "12345678", "99999999", "100000000", "123456789",
    "987654321", "999999999", "1000000000", "2147483646", "2147483647", "2147483648", "2147483649", "4294967294",
    "4294967295", "4294967296", "4294967297", "9999999999", "10000000000", "18446744073709551615",
    "18446744073709551616", "1111111111111111111111111111111", "11111111111111111111111111111111",
    // signs
    "-0", "-1", "-9", "-10", "-128", "-255", "-256", "-32767", "-32768", "-32769", "-65535", "-65536", "-99999",
    "-100000", "-999999999", "-1000000000", "-2147483647", "-2147483648", "-2147483649", "-4294967296", "+", "-",
    "+1", "+-1", "-+1", "--1", "1-", "1+", "1-2", "12345678-", "123456789-", "-1-",
    // zeros in front, blanks, letters
    "00", "01", "007", "000000001", "0000000001", "-01", "-00", "00000000000000000000000000000000000001", " 1",
    "1 ", " ", "", "\t7", "1\n", "x", "0x1F", "1x2", "A", "1A", "A1", "ff", "1g", "g1", "12345678a", "1234567a8",
    "1.5", "1;2", "1\0", "\xB1"};

template <Kind kind>
void compareTexts()
{
    SCOPED_TRACE(static_cast<int>(kind));
    for (const char* number : kNumberTexts)
    {
        for (const char* behind : {":7:", ":7", ":", "", ";7:", " 7:", "::7:"})
        {
            const std::string data = std::string(number) + behind;
            EXPECT_TRUE(agree(fromText<kNumber<kind>>(data, 1))) << data;
        }
    }
}

TEST(CodecComparison, NumbersInText)
{
    compareTexts<Kind::u8>();
    compareTexts<Kind::u16>();
    compareTexts<Kind::s16>();
    compareTexts<Kind::u32>();
    compareTexts<Kind::s32>();
}

constexpr Fields kHalf = kSample.part(2, 1);

// Deterministic: the engine's numbers are the same everywhere.
class Random
{
public:
    unsigned int below(unsigned int limit)
    {
        return static_cast<unsigned int>(m_engine() % limit);
    }

    char oneOf(std::string_view characters)
    {
        return characters[below(static_cast<unsigned int>(characters.size()))];
    }

    std::string textOf(std::string_view characters, unsigned int most)
    {
        std::string text(below(most + 1), '\0');
        std::generate(text.begin(), text.end(), [&] { return oneOf(characters); });
        return text;
    }

private:
    std::mt19937 m_engine;
};

TEST(CodecComparison, RandomText)
{
    Random random;
    for (int i = 0; i < 20000; ++i)
    {
        const std::string data = random.textOf("0123456789012345678901234567899999999999::::::-+ xaf;", 40);
        EXPECT_TRUE(agree(fromText<kNumber<Kind::u8>>(data, 3))) << data;
        EXPECT_TRUE(agree(fromText<kNumber<Kind::u16>>(data, 3))) << data;
        EXPECT_TRUE(agree(fromText<kNumber<Kind::s16>>(data, 3))) << data;
        EXPECT_TRUE(agree(fromText<kNumber<Kind::u32>>(data, 3))) << data;
        EXPECT_TRUE(agree(fromText<kNumber<Kind::s32>>(data, 3))) << data;
        EXPECT_TRUE(agree(fromText<kList>(data, 2))) << data;
    }
}

template <Kind kind>
void compareXml()
{
    SCOPED_TRACE(static_cast<int>(kind));
    for (const char* number : kNumberTexts)
    {
        for (const char* front : {"\n\t  ", "", " ", "\n\t   "})
        {
            for (const char* back : {"\n\t", "", " ", "\n"})
            {
                const std::string document =
                    std::string("\t<number>") + front + number + back + "</number>\n\t<next>\n\t  7\n\t</next>\n";
                EXPECT_TRUE(agree(fromXml<kNumber<kind>>(document))) << document;
            }
        }
    }
}

TEST(CodecComparison, NumbersInXml)
{
    compareXml<Kind::u8>();
    compareXml<Kind::u16>();
    compareXml<Kind::s16>();
    compareXml<Kind::u32>();
    compareXml<Kind::s32>();
}

TEST(CodecComparison, DamagedXml)
{
    Random random;
    const std::vector<char> structure = bytesOf(sample(), kSample.binarySize);
    const std::vector<char> list = listOf(2);
    for (const Subscripts& subscripts : {Subscripts{0, 0}, Subscripts{3, 8}, Subscripts{10, 9}})
    {
        const Outcome wholeSample = xmlOf<kSample>(structure, 1, nullptr, 1000, kStarts[0])(ByOperators());
        std::string sampleXml = wholeSample.bytes.substr(0, wholeSample.length);
        sampleXml.replace(sampleXml.find("</other>"), 8, "</foreign>");
        const Outcome wholeList = xmlOf<kList>(list, 2, &subscripts, 1000, kStarts[0])(ByOperators());
        const std::string listXml = wholeList.bytes.substr(0, wholeList.length);
        const auto damaged = [&random](std::string document)
        {
            for (unsigned int changes = 1 + random.below(2); changes != 0; --changes)
            {
                const std::size_t at = random.below(static_cast<unsigned int>(document.size()));
                switch (random.below(4))
                {
                case 0:
                    document.erase(at, 1);
                    break;
                case 1:
                    document.insert(at, 1, random.oneOf("<>/\n\t 0129_ab-"));
                    break;
                case 2:
                    document[at] = random.oneOf("<>/\n\t 0129_ab-");
                    break;
                default: // from somewhere on, the document comes once more
                    document += document.substr(at);
                }
            }
            return document;
        };
        for (int i = 0; i < 4000; ++i)
        {
            const std::string one = damaged(sampleXml);
            EXPECT_TRUE(agree(fromXml<kSample>(one))) << one;
            const std::string two = damaged(listXml);
            EXPECT_TRUE(agree(fromXml<kList>(two, 2, &subscripts))) << two;
        }
    }
}

// Names on both sides of a word's length, and the shortest at the start of the document.
constexpr Field kNameRows[] = {
    {0, 1, Kind::u8, Oddity::none, 1, "ab"},        {1, 1, Kind::u8, Oddity::bareOpening, 2, "bb"},
    {2, 1, Kind::u8, Oddity::none, 3, "abc"},       {3, 1, Kind::u8, Oddity::none, 4, "abcdef"},
    {4, 1, Kind::u8, Oddity::none, 5, "bbcdef"},    {5, 1, Kind::u8, Oddity::none, 6, "abcdefg"},
    {6, 1, Kind::u8, Oddity::none, 7, "abcdefgh"},  {7, 1, Kind::u8, Oddity::bareOpening, 8, "bbcdefgh"},
    {8, 1, Kind::u8, Oddity::none, 9, "abcdefghi"}, {9, 4, Kind::text, Oddity::none, 10, "bbcdefghij"}};
constexpr Fields kNames = {"sampleMsg", kNameRows};

TEST(CodecComparison, XmlInAnyOrder)
{
    std::vector<std::string> elements;
    for (const Field& field : kNameRows)
    {
        const bool bare = field.oddity == Oddity::bareOpening;
        elements.push_back((bare ? "<" : "\t<") + std::string(field.tag) + (bare ? ">\n\t   " : ">\n\t  ") +
                           std::to_string(field.line) + "\n\t</" + field.tag + ">\n");
    }
    Random random;
    for (int i = 0; i < 2000; ++i)
    {
        std::string document;
        const unsigned int count = 1 + random.below(12);
        std::vector<std::string> some = elements;
        for (unsigned int j = 0; j < count; ++j)
        {
            some.push_back(elements[random.below(10)]);
        }
        for (std::size_t j = some.size() - 1; j != 0; --j)
        {
            std::swap(some[j], some[random.below(static_cast<unsigned int>(j + 1))]);
        }
        for (const std::string& element : some)
        {
            document += element;
        }
        ASSERT_TRUE(fromXml<kNames>(document)(ByOperators()).result);
        EXPECT_TRUE(agree(fromXml<kNames>(document))) << document;
    }
}

// What is as the writers write it is read straight from the buffer, and not by the exact ways: these are the
// pieces that do so.

// How many characters of a text are taken for a field and its delimiter; -1 if it is left to the exact way.
template <Kind kind>
int taken(const std::string& text)
{
    std::vector<char> copy(text.begin(), text.end());
    char structure[4] = {};
    const char* const end = lastEnd(copy.data(), copy.data() + copy.size());
    const char* const behind = getOrdinary(kNumberRows<kind>[0], copy.data(), end, structure);
    return behind != nullptr ? static_cast<int>(behind - copy.data()) : -1;
}

TEST(CodecPieces, TakeOrdinaryNumbersFromText)
{
    EXPECT_EQ(taken<Kind::u8>("0:"), 2);
    EXPECT_EQ(taken<Kind::u8>("255:9"), 4);
    EXPECT_EQ(taken<Kind::u8>("256:"), -1);
    EXPECT_EQ(taken<Kind::u8>("1000:"), -1);
    EXPECT_EQ(taken<Kind::u8>("-1:"), -1);
    EXPECT_EQ(taken<Kind::u16>("65535:"), 6);
    EXPECT_EQ(taken<Kind::u16>("65536:"), -1);
    EXPECT_EQ(taken<Kind::u16>("-5:"), -1);
    EXPECT_EQ(taken<Kind::s16>("32767:"), 6);
    EXPECT_EQ(taken<Kind::s16>("32768:"), -1);
    EXPECT_EQ(taken<Kind::s16>("-32767:"), 7);
    EXPECT_EQ(taken<Kind::s16>("-32768:"), -1);
    EXPECT_EQ(taken<Kind::u32>("999999999:"), 10);
    EXPECT_EQ(taken<Kind::u32>("1000000000:"), -1);
    EXPECT_EQ(taken<Kind::u32>("12345678:"), 9);
    EXPECT_EQ(taken<Kind::u32>("1234567:"), 8);
    EXPECT_EQ(taken<Kind::u32>("1234567:8:"), 8);
    EXPECT_EQ(taken<Kind::u32>("-1:"), -1);
    EXPECT_EQ(taken<Kind::s32>("-999999999:"), 11);
    EXPECT_EQ(taken<Kind::s32>("-1000000000:"), -1);
    EXPECT_EQ(taken<Kind::s32>("-0:"), -1);
    EXPECT_EQ(taken<Kind::s32>("-:"), -1);
    for (const char* text :
         {"", ":", "1", "123456789", "1;", "12345678;", "00:", "01:", "+1:", " 1:", "1 :", "a:", "-"})
    {
        EXPECT_EQ(taken<Kind::u32>(text), -1) << text;
        EXPECT_EQ(taken<Kind::s32>(text), -1) << text;
    }
}

// However many digits the data ends with, and however often that is asked for.
TEST(CodecPieces, LookForTheEndOfTheLastNumberWithinSixtyFourDigits)
{
    const auto endOf = [](const std::string& text)
    { return lastEnd(text.data(), text.data() + text.size()) - text.data(); };
    EXPECT_EQ(endOf(""), 0);
    EXPECT_EQ(endOf("1:2:"), 4);
    EXPECT_EQ(endOf("1:2:3"), 4);
    EXPECT_EQ(endOf(std::string(100, '1')), 0);
    EXPECT_EQ(endOf("1:" + std::string(62, '1')), 2);
    EXPECT_EQ(endOf("1:" + std::string(63, '1')), 2);
    EXPECT_EQ(endOf("1:" + std::string(64, '1')), 0);
    EXPECT_EQ(endOf("1:" + std::string(65, '1')), 0);
    EXPECT_EQ(endOf("1:" + std::string(65, '1') + ":"), 68);
}

TEST(CodecPieces, ReadAnOrdinaryDocumentInOnePass)
{
    const std::vector<char> list = listOf(2);
    const Subscripts subscripts = {1, 8};
    const Outcome whole = xmlOf<kList>(list, 2, &subscripts, 1000, kStarts[0])(ByOperators());
    std::string document = whole.bytes.substr(0, whole.length);
    istream_text stream;
    stream.attachBuffer(document.data(), static_cast<unsigned int>(document.size()));
    char structure[24];
    {
        Elements elements(stream);
        EXPECT_TRUE(readXml(rowsFor<AsTable, kList>, structure, elements, &subscripts, 2));
        EXPECT_EQ(elements.next(), document.data() + document.size());
    }
    Elements elements(stream);
    EXPECT_TRUE(readXml(rowsFor<AsConstants, kList>, structure, elements, &subscripts, 2));
    EXPECT_EQ(elements.next(), kForSpeed ? document.data() + document.size() : nullptr)
        << "small builds have tables";
}

// The constants' own way to elements in any order, which small builds have not.
TEST(CodecPieces, TakeTheFirstOfAName)
{
    std::string document = "\t<half>\n\t  7\n\t</half>\n\t<name>\n\t  abc\n\t</name>\n\t<half>\n\t  8\n\t</half>\n"
                           "<bare>\n\t   9\n\t</bare>\n\t<byte>5</byte>\n";
    istream_text stream;
    stream.attachBuffer(document.data(), static_cast<unsigned int>(document.size()));
    Elements elements(stream);
    SampleS structure = {};
    char* const to = reinterpret_cast<char*>(&structure);
    EXPECT_EQ((takeFirst<ConstantField<kSample, 5>, false>(to, elements, {})), kForSpeed);
    EXPECT_EQ((takeFirst<ConstantField<kSample, 2>, false>(to, elements, {})), kForSpeed);
    EXPECT_EQ((takeFirst<ConstantField<kSample, 6>, false>(to, elements, {})), kForSpeed);
    EXPECT_FALSE((takeFirst<ConstantField<kSample, 4>, false>(to, elements, {}))) << "of another layout";
    EXPECT_FALSE((takeFirst<ConstantField<kSample, 0>, false>(to, elements, {}))) << "missing";
    EXPECT_FALSE((takeFirst<ConstantField<kSample, 7>, false>(to, elements, {})));
    if (kForSpeed)
    {
        EXPECT_EQ(structure.half, 7);
        EXPECT_EQ(std::memcmp(structure.name, "abc", 4), 0);
        EXPECT_EQ(structure.bare, 9);
    }
    EXPECT_EQ(structure.byte, 0);
}

// Names that repeat are asked for again: the first one is found each time.
TEST(CodecPieces, FindTheFirstAgainWhereNamesRepeat)
{
    std::string document = "\t<half>\n\t  7\n\t</half>\n\t<half>\n\t  8\n\t</half>\n";
    istream_text stream;
    stream.attachBuffer(document.data(), static_cast<unsigned int>(document.size()));
    SampleS structure = {};
    const auto readTwice = [&](const auto& rows)
    {
        Elements elements(stream);
        EXPECT_TRUE(readXml(rows, &structure, elements));
        EXPECT_EQ(structure.half, 7);
        elements.repeat(true);
        structure.half = 0;
        EXPECT_TRUE(readXml(rows, &structure, elements));
        EXPECT_EQ(structure.half, 7);
    };
    readTwice(rowsFor<AsTable, kHalf>);
    readTwice(rowsFor<AsConstants, kHalf>);
}

} // namespace

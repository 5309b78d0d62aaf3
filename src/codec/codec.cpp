#include "codec.h"

#include "byteOrder.h"
#include "decimal.h"
#include "streamAccess.h"
#include "tagLookup.h"

#include <cstdio>
#include <cstring>
#include <string_view>
#include <syslog.h>
#include <type_traits>

using commonStream::istream_binary;
using commonStream::istream_text;
using commonStream::ostream_binary;
using commonStream::ostream_text;

namespace bci::codec
{

namespace
{

constexpr char kDelimiter = ':';

// T, const where Byte is.
template <typename T, typename Byte>
using ConstLike = std::conditional_t<std::is_const_v<Byte>, const T, T>;

// Calls one of two functions with a field: `number` with the field itself, `text` with its characters
// and their count. Constness of the structure carries over.
template <typename Byte, typename Number, typename Text>
void visit(const Field& field, Byte* structure, Number number, Text text)
{
    Byte* const characters = structure + field.offset;
    ConstLike<void, Byte>* const at = characters;
    switch (field.kind)
    {
    case Kind::u8:
        return number(*static_cast<ConstLike<U8, Byte>*>(at));
    case Kind::u16:
        return number(*static_cast<ConstLike<U16, Byte>*>(at));
    case Kind::s16:
        return number(*static_cast<ConstLike<S16, Byte>*>(at));
    case Kind::u32:
        return number(*static_cast<ConstLike<U32, Byte>*>(at));
    case Kind::s32:
        return number(*static_cast<ConstLike<S32, Byte>*>(at));
    case Kind::text:
        return text(characters, field.size);
    }
}

unsigned int textLength(const char* text, unsigned int size)
{
    return static_cast<unsigned int>(strnlen(text, size));
}

void put(ostream_text& stream, const char* text)
{
    stream.put(text, static_cast<unsigned int>(std::strlen(text)));
}

char* copy(char* to, std::string_view text)
{
    std::memcpy(to, text.data(), text.size());
    return to + text.size();
}

bool isDigit(char ch)
{
    return ch >= '0' && ch <= '9';
}

// What the scanner of numbers would not stop at.
bool belongsToNumber(char ch)
{
    const char lower = static_cast<char>(ch | ' ');
    return isDigit(ch) || (lower >= 'a' && lower <= 'f') || lower == 'x' || ch == '+' || ch == '-';
}

// Greatest magnitude that a number of a kind is read with, of those that have nine digits.
constexpr U32 greatest(Kind kind)
{
    switch (kind)
    {
    case Kind::u8:
        return 0xFF;
    case Kind::u16:
        return 0xFFFF;
    case Kind::s16:
        return 0x7FFF;
    default:
        return 999999999;
    }
}

// Reads one number as the writers write it: no sign or '-', no zeros in front, at most nine digits, and a
// character behind it that ends it. Returns the place behind that character; null, with nothing read, for
// any other, which the stream's own scanner has to judge.
const char* readOrdinaryNumber(const Field& field, const char* from, const char* end, char* structure)
{
    const bool negative = *from == '-' && (field.kind == Kind::s16 || field.kind == Kind::s32);
    if (negative)
    {
        ++from;
    }
    if (end - from < 2 || !isDigit(*from) || (*from == '0' && (negative || isDigit(from[1]))))
    {
        return nullptr;
    }
    const char* const limit = end - from > 9 ? from + 9 : end - 1;
    U32 magnitude = 0;
    for (; from != limit && isDigit(*from); ++from)
    {
        magnitude = magnitude * 10 + static_cast<U32>(*from - '0');
    }
    if (belongsToNumber(*from) || magnitude > greatest(field.kind))
    {
        return nullptr;
    }
    const U32 number = negative ? 0 - magnitude : magnitude;
    visit(
        field, structure, [number](auto& to) { to = static_cast<std::remove_reference_t<decltype(to)>>(number); },
        [](char*, unsigned int) {});
    return from + 1;
}

// Likewise a text that its delimiter, or the end of its array, ends within the data.
const char* readOrdinaryText(const Field& field, const char* from, const char* end, char* structure)
{
    const auto left = static_cast<std::size_t>(end - from);
    const std::size_t longest = field.size - 1U;
    const void* const found = std::memchr(from, kDelimiter, left < longest ? left : longest);
    if (found == nullptr && left <= longest)
    {
        return nullptr;
    }
    const std::size_t length =
        found != nullptr ? static_cast<std::size_t>(static_cast<const char*>(found) - from) : longest;
    std::memcpy(structure + field.offset, from, length);
    structure[field.offset + length] = '\0';
    return from + length + 1;
}

// Reads fields for as long as they are as the writers write them, straight from the buffer. Returns the first that
// is not, which is left to the stream.
const Field* readOrdinary(const Field* field, const Field* end, char* structure, istream_text& stream)
{
    const unsigned int left = StreamAccess::left(stream);
    const char* from = StreamAccess::next(stream);
    const char* const behind = from + left;
    const Field* const first = field;
    for (; field != end && from != behind; ++field)
    {
        const char* const next = field->kind == Kind::text ? readOrdinaryText(*field, from, behind, structure)
                                                           : readOrdinaryNumber(*field, from, behind, structure);
        if (next == nullptr)
        {
            break;
        }
        from = next;
    }
    if (field != first)
    {
        StreamAccess::readTo(stream, from);
        StreamAccess::countOne(stream);
    }
    return field;
}

} // namespace

void putOpening(ostream_text& stream, const Field& field, const Subscripts* subscripts)
{
    const bool bare = field.oddity == Oddity::bareOpening;
    put(stream, bare ? "<" : "\t<");
    put(stream, ElementName(field.tag, subscripts).text());
    put(stream, bare ? ">\n\t   " : ">\n\t  ");
}

void putClosing(ostream_text& stream, const Field& field, const Subscripts* subscripts)
{
    put(stream, "\n\t</");
    put(stream, ElementName(field.closingTag, subscripts).text());
    put(stream, ">\n");
}

// The format is made here, so that the log receives the same format and argument for every message.
void logMissing(const Fields& fields, const Field& field, const char* name, const char* document)
{
    const bool quotes = field.oddity == Oddity::quotesDocument;
    char format[80];
    std::snprintf(format, sizeof format, "[src/%s:%u] %s %%s not found%s", fields.source, unsigned{field.line},
                  field.oddity == Oddity::doubledWord ? "tag tag" : "tag", quotes ? " buf %s" : "");
    if (quotes)
    {
        syslog(LOG_INFO, format, name, document);
    }
    else
    {
        syslog(LOG_INFO, format, name);
    }
}

bool writeText(const Fields& fields, const void* structure, ostream_text& stream)
{
    const char* const from = static_cast<const char*>(structure);
    if (StreamAccess::hasRoom(stream, fields.longestText))
    {
        char* to = StreamAccess::next(stream);
        for (const Field& field : fields.rows)
        {
            visit(
                field, from, [&](const auto& number) { to = putDecimal(to, number); },
                [&](const char* text, unsigned int size) {
                    to = copy(to, {text, textLength(text, size)});
                });
            *to++ = kDelimiter;
        }
        StreamAccess::wroteTo(stream, to);
        return true;
    }
    for (const Field& field : fields.rows)
    {
        visit(
            field, from, [&](const auto& number) { stream << number; },
            [&](const char* text, unsigned int size) { stream.put(text, textLength(text, size)); });
        stream << kDelimiter;
    }
    return !stream.fail();
}

bool readText(const Fields& fields, void* structure, istream_text& stream)
{
    char* const to = static_cast<char*>(structure);
    for (const Field *field = fields.rows.data(), *end = field + fields.rows.size(); field != end; ++field)
    {
        field = readOrdinary(field, end, to, stream);
        if (field == end)
        {
            break;
        }
        visit(
            *field, to, [&](auto& number) { stream >> number; },
            [&](char* text, unsigned int size) { stream.get(text, size - 1, kDelimiter); });
        char delimiter;
        stream >> delimiter;
    }
    return !stream.fail();
}

bool writeBinary(const Fields& fields, const void* structure, ostream_binary& stream)
{
    const char* const from = static_cast<const char*>(structure);
    if (StreamAccess::hasRoom(stream, fields.binarySize))
    {
        const bool atStart = StreamAccess::atStart(stream);
        char* const begin = StreamAccess::next(stream);
        char* to = begin;
        for (const Field& field : fields.rows)
        {
            visit(
                field, from, [&](const auto& number) { storeBigEndian(to, number); },
                [&](const char* text, unsigned int size) { std::memcpy(to, text, size); });
            to += field.size;
        }
        if (const Field& first = fields.rows.front(); atStart && first.kind == Kind::u32)
        {
            std::memcpy(begin, from + first.offset, sizeof(U32)); // the signal number keeps the host's order
        }
        StreamAccess::wroteTo(stream, to);
        return true;
    }
    for (const Field& field : fields.rows)
    {
        visit(
            field, from, [&](const auto& number) { stream << number; },
            [&](const char* text, unsigned int size) { stream.put(text, size); });
    }
    return !stream.fail();
}

bool readBinary(const Fields& fields, void* structure, istream_binary& stream)
{
    char* const to = static_cast<char*>(structure);
    if (fields.binarySize != 0 && StreamAccess::left(stream) >= fields.binarySize)
    {
        const bool atStart = StreamAccess::atStart(stream);
        const char* const begin = StreamAccess::next(stream);
        const char* from = begin;
        for (const Field& field : fields.rows)
        {
            visit(
                field, to,
                [&](auto& number) { number = loadBigEndian<std::remove_reference_t<decltype(number)>>(from); },
                [&](char* text, unsigned int size) { std::memcpy(text, from, size); });
            from += field.size;
        }
        if (const Field& first = fields.rows.front(); atStart && first.kind == Kind::u32)
        {
            std::memcpy(to + first.offset, begin, sizeof(U32)); // the signal number has the host's order
        }
        StreamAccess::readTo(stream, from);
        return true;
    }
    for (const Field& field : fields.rows)
    {
        visit(
            field, to, [&](auto& number) { stream >> number; },
            [&](char* text, unsigned int size) { stream.get(text, size); });
    }
    return !stream.fail();
}

bool writeXml(const Fields& fields, const void* structure, ostream_text& stream, const Subscripts* subscripts)
{
    const char* const from = static_cast<const char*>(structure);
    // An index stands in both tags.
    const std::size_t indexes = subscripts != nullptr ? fields.rows.size() * 2 * kLongestSubscripts : 0;
    if (StreamAccess::hasRoom(stream, fields.longestXml + indexes))
    {
        char* to = StreamAccess::next(stream);
        for (const Field& field : fields.rows)
        {
            const ElementName name(field.tag, subscripts);
            const bool bare = field.oddity == Oddity::bareOpening;
            to = copy(to, bare ? std::string_view("<") : std::string_view("\t<"));
            to = copy(to, {name.text(), name.size()});
            to = copy(to, bare ? std::string_view(">\n\t   ") : std::string_view(">\n\t  "));
            visit(
                field, from, [&](const auto& number) { to = putDecimal(to, number); },
                [&](const char* text, unsigned int size) {
                    to = copy(to, {text, textLength(text, size)});
                });
            to = copy(to, "\n\t</");
            to = field.closingTag == field.tag ? copy(to, {name.text(), name.size()})
                                               : copy(to, ElementName(field.closingTag, subscripts).text());
            to = copy(to, ">\n");
        }
        StreamAccess::wroteTo(stream, to);
        return true;
    }
    for (const Field& field : fields.rows)
    {
        putOpening(stream, field, subscripts);
        visit(
            field, from, [&](const auto& number) { stream << number; },
            [&](const char* text, unsigned int size) { stream.put(text, textLength(text, size)); });
        putClosing(stream, field, subscripts);
    }
    return !stream.fail();
}

bool readXml(const Fields& fields, void* structure, istream_text& stream)
{
    Elements elements(stream);
    return readXml(fields, structure, elements);
}

bool readXml(const Fields& fields, void* structure, Elements& elements, const Subscripts* subscripts)
{
    for (const Field& field : fields.rows)
    {
        if (field.oddity == Oddity::notReadFromXml)
        {
            continue;
        }
        const ElementName name(field.tag, subscripts);
        TagContent content;
        if (!elements.find(name.text(), name.size(), content))
        {
            logMissing(fields, field, name.text(), elements.document());
            return false;
        }
        visit(
            field, static_cast<char*>(structure),
            [&](auto& number)
            { number = static_cast<std::remove_reference_t<decltype(number)>>(toNumber(content)); },
            [&](char* text, unsigned int size) { copyContent(content, text, size); });
    }
    return true;
}

} // namespace bci::codec

#include "codec.h"

#include "tagLookup.h"

#include <cstdio>
#include <cstring>
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
    for (const Field& field : fields.rows)
    {
        visit(
            field, static_cast<const char*>(structure), [&](const auto& number) { stream << number; },
            [&](const char* text, unsigned int size) { stream.put(text, textLength(text, size)); });
        stream << kDelimiter;
    }
    return !stream.fail();
}

bool readText(const Fields& fields, void* structure, istream_text& stream)
{
    for (const Field& field : fields.rows)
    {
        visit(
            field, static_cast<char*>(structure), [&](auto& number) { stream >> number; },
            [&](char* text, unsigned int size) { stream.get(text, size - 1, kDelimiter); });
        char delimiter;
        stream >> delimiter;
    }
    return !stream.fail();
}

bool writeBinary(const Fields& fields, const void* structure, ostream_binary& stream)
{
    for (const Field& field : fields.rows)
    {
        visit(
            field, static_cast<const char*>(structure), [&](const auto& number) { stream << number; },
            [&](const char* text, unsigned int size) { stream.put(text, size); });
    }
    return !stream.fail();
}

bool readBinary(const Fields& fields, void* structure, istream_binary& stream)
{
    for (const Field& field : fields.rows)
    {
        visit(
            field, static_cast<char*>(structure), [&](auto& number) { stream >> number; },
            [&](char* text, unsigned int size) { stream.get(text, size); });
    }
    return !stream.fail();
}

bool writeXml(const Fields& fields, const void* structure, ostream_text& stream, const Subscripts* subscripts)
{
    for (const Field& field : fields.rows)
    {
        putOpening(stream, field, subscripts);
        visit(
            field, static_cast<const char*>(structure), [&](const auto& number) { stream << number; },
            [&](const char* text, unsigned int size) { stream.put(text, textLength(text, size)); });
        putClosing(stream, field, subscripts);
    }
    return !stream.fail();
}

bool readXml(const Fields& fields, void* structure, istream_text& stream, const Subscripts* subscripts)
{
    for (const Field& field : fields.rows)
    {
        if (field.oddity == Oddity::notReadFromXml)
        {
            continue;
        }
        const ElementName name(field.tag, subscripts);
        TagContent content;
        if (findTag(stream.getBuffer(), name.text(), content) == nullptr)
        {
            logMissing(fields, field, name.text(), stream.getBuffer());
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

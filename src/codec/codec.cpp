#include "codec.h"

#include "tagLookup.h"

#include <cstdio>
#include <cstring>
#include <syslog.h>

using commonStream::istream_binary;
using commonStream::istream_text;
using commonStream::ostream_binary;
using commonStream::ostream_text;

namespace bci::codec
{

namespace
{

constexpr char kDelimiter = ':';

// Calls one of two functions with a field: `number` with the field itself, `text` with its characters
// and their count. Constness of the structure carries over.
template <typename Byte, typename Number, typename Text>
void visit(const Field& field, Byte* structure, Number number, Text text)
{
    constexpr bool isConst = std::is_const_v<Byte>;
    using Address = std::conditional_t<isConst, const void*, void*>;
    Byte* const at = structure + field.offset;
    const Address address = at;
    switch (field.kind)
    {
    case Kind::u8:
        return number(*static_cast<std::conditional_t<isConst, const U8, U8>*>(address));
    case Kind::u16:
        return number(*static_cast<std::conditional_t<isConst, const U16, U16>*>(address));
    case Kind::s16:
        return number(*static_cast<std::conditional_t<isConst, const S16, S16>*>(address));
    case Kind::u32:
        return number(*static_cast<std::conditional_t<isConst, const U32, U32>*>(address));
    case Kind::s32:
        return number(*static_cast<std::conditional_t<isConst, const S32, S32>*>(address));
    case Kind::text:
        return text(at, field.size);
    }
}

unsigned int textLength(const char* text, unsigned int size)
{
    return static_cast<unsigned int>(strnlen(text, size));
}

// The name of a row's element.
class ElementName
{
public:
    ElementName(const char* tag, const Subscripts* subscripts) : m_name(tag)
    {
        if (subscripts == nullptr)
        {
            return;
        }
        const int length = static_cast<int>(std::strlen(tag));
        const bool isDouble = length > 1 && tag[length - 2] == '_';
        if (isDouble)
        {
            std::snprintf(m_indexed, sizeof m_indexed, "%.*s%u_%u", length - 1, tag, subscripts->first,
                          subscripts->second);
        }
        else
        {
            std::snprintf(m_indexed, sizeof m_indexed, "%s%u", tag, subscripts->first);
        }
        m_name = m_indexed;
    }

    ElementName(const ElementName&) = delete;
    ElementName& operator=(const ElementName&) = delete;

    const char* text() const
    {
        return m_name;
    }

private:
    char m_indexed[kMaxTagLength + 22]; // two indexes of at most ten digits, '_' and the zero
    const char* m_name;
};

void put(ostream_text& stream, const char* text)
{
    stream.put(text, static_cast<unsigned int>(std::strlen(text)));
}

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
void logMissing(const char* source, const Field& field, const char* name)
{
    char format[80];
    std::snprintf(format, sizeof format, "[src/%s:%u] %s %%s not found", source, unsigned{field.line},
                  field.oddity == Oddity::doubledWord ? "tag tag" : "tag");
    syslog(LOG_INFO, format, name);
}

} // namespace

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
            logMissing(fields.source, field, name.text());
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

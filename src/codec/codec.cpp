#include "codec.h"

#include "loops.h"
#include "tagLookup.h"

#include <cstdio>
#include <syslog.h>

using commonStream::istream_binary;
using commonStream::istream_text;
using commonStream::ostream_binary;
using commonStream::ostream_text;

namespace bci::codec
{

namespace
{

// What one field takes in text or XML, apart from the characters of a text.
class Piece
{
public:
    void add(char ch)
    {
        *m_end++ = ch;
    }

    void add(const Field& field, const char* structure, ostream_text& stream)
    {
        if (field.kind == Kind::text)
        {
            put(stream);
            const char* const text = structure + field.offset;
            stream.put(text, textLength(text, field.size));
            return;
        }
        m_end = putNumber(m_end, load(field, structure));
    }

    char* end()
    {
        return m_end;
    }

    void moveTo(char* end)
    {
        m_end = end;
    }

    // Writes as much of it as there is room for, and begins anew.
    void put(ostream_text& stream)
    {
        stream.put(m_characters, static_cast<unsigned int>(m_end - m_characters));
        m_end = m_characters;
    }

private:
    char m_characters[2 * kLongestElementText + textWidth(Kind::s32)];
    char* m_end = m_characters;
};

void readNumber(const Field& field, char* to, istream_text& stream)
{
    const auto read = [&](auto value)
    {
        value = peek<decltype(value)>(to);
        stream >> value;
        poke(to, value);
    };
    switch (field.kind)
    {
    case Kind::u8:
        return read(U8{});
    case Kind::u16:
        return read(U16{});
    case Kind::s16:
        return read(S16{});
    case Kind::s32:
        return read(S32{});
    default:
        return read(U32{});
    }
}

} // namespace

void putOpening(ostream_text& stream, const Field& field)
{
    Piece piece;
    piece.moveTo(ElementText(field, nullptr).putOpening(piece.end()));
    piece.put(stream);
}

void putClosing(ostream_text& stream, const Field& field)
{
    Piece piece;
    piece.moveTo(ElementText(field, nullptr).putClosing(piece.end()));
    piece.put(stream);
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

void writeTextExactly(const Field& field, const void* structure, ostream_text& stream)
{
    Piece piece;
    piece.add(field, static_cast<const char*>(structure), stream);
    piece.add(kDelimiter);
    piece.put(stream);
}

void writeTextTable(const Fields& fields, const void* structure, TextWriter::Argument argument, unsigned int count)
{
    auto&& out = cursorFor(argument);
    const auto exactly = [](const Field& field, const char* element, unsigned int /*index*/, ostream_text& stream)
    { writeTextExactly(field, element, stream); };
    putText(TableRows(fields, count), static_cast<const char*>(structure), out, exactly);
}

void readTextExactly(const Field& field, void* structure, istream_text& stream)
{
    char* const to = static_cast<char*>(structure) + field.offset;
    if (field.kind == Kind::text)
    {
        stream.get(to, field.size - 1U, kDelimiter);
    }
    else
    {
        readNumber(field, to, stream);
    }
    char delimiter;
    stream >> delimiter;
}

void readTextTable(const Fields& fields, void* structure, TextReader::Argument argument, unsigned int count)
{
    auto&& in = cursorFor(argument);
    getText(TableRows(fields, count), static_cast<char*>(structure), in,
            [](const Field& field, char* element, istream_text& stream)
            { readTextExactly(field, element, stream); });
}

namespace
{

// Turns a number round between structure and form; the signal number, alone at position 0, keeps the host's order.
void copyNumber(const Field& field, char* to, const char* from, bool atStart)
{
    if (std::endian::native != std::endian::big && atStart && field.kind == Kind::u32)
    {
        std::memcpy(to, from, sizeof(U32));
    }
    else
    {
        copyBigEndian(field, to, from);
    }
}

} // namespace

void writeBinaryExactly(const Fields& fields, const void* structure, ostream_binary& stream, unsigned int count)
{
    TableRows(fields, count)
        .forEach(static_cast<const char*>(structure),
                 [&stream](const Field& field, const char* element, unsigned int /*index*/)
                 {
                     const char* const from = element + field.offset;
                     const DirectCursor<ostream_binary> out(stream);
                     if (field.kind == Kind::text)
                     {
                         stream.put(from, field.size);
                     }
                     else if (out.left() < field.size)
                     {
                         stream << 0ULL; // like any number that does not fit
                     }
                     else
                     {
                         char bytes[sizeof(U32)];
                         copyNumber(field, bytes, from, out.isAtStart());
                         stream.put(bytes, field.size);
                     }
                 });
}

void writeBinaryTable(const Fields& fields, const void* structure, BinaryWriter::Argument argument,
                      unsigned int count)
{
    auto&& out = cursorFor(argument);
    if (!putBinary(TableRows(fields, count), static_cast<const char*>(structure), out))
    {
        out.through([&](ostream_binary& stream) { writeBinaryExactly(fields, structure, stream, count); });
    }
}

void readBinaryExactly(const Fields& fields, void* structure, istream_binary& stream, unsigned int count)
{
    TableRows(fields, count)
        .forEach(static_cast<char*>(structure),
                 [&stream](const Field& field, char* element, unsigned int /*index*/)
                 {
                     char* const to = element + field.offset;
                     const DirectCursor<istream_binary> in(stream);
                     if (field.kind == Kind::text)
                     {
                         stream.get(to, field.size);
                     }
                     else if (in.left() < field.size)
                     {
                         unsigned long long nothing;
                         stream >> nothing; // like any number that is not all there
                     }
                     else
                     {
                         char bytes[sizeof(U32)];
                         const bool atStart = in.isAtStart();
                         stream.get(bytes, field.size);
                         copyNumber(field, to, bytes, atStart);
                     }
                 });
}

void readBinaryTable(const Fields& fields, void* structure, BinaryReader::Argument argument, unsigned int count)
{
    auto&& in = cursorFor(argument);
    if (!getBinary(TableRows(fields, count), static_cast<char*>(structure), in))
    {
        in.through([&](istream_binary& stream) { readBinaryExactly(fields, structure, stream, count); });
    }
}

void writeXmlExactly(const Field& field, const void* structure, ostream_text& stream, const Subscripts* subscripts,
                     unsigned int index)
{
    const ElementText text = elementText(field, subscripts, index);
    Piece piece;
    piece.moveTo(text.putOpening(piece.end()));
    piece.add(field, static_cast<const char*>(structure), stream);
    piece.moveTo(text.putClosing(piece.end()));
    piece.put(stream);
}

void writeXmlTable(const Fields& fields, const void* structure, TextWriter::Argument argument,
                   const Subscripts* subscripts, unsigned int count)
{
    auto&& out = cursorFor(argument);
    putXml(TableRows(fields, count), static_cast<const char*>(structure), out, subscripts,
           [subscripts](const Field& field, const char* element, unsigned int index, ostream_text& stream)
           { writeXmlExactly(field, element, stream, subscripts, index); });
}

bool readXml(const Fields& fields, void* structure, Elements& elements, const Subscripts* subscripts,
             unsigned int count)
{
    Subscripts ofElement = subscripts != nullptr ? *subscripts : Subscripts();
    char* to = static_cast<char*>(structure);
    for (unsigned int i = 0; i < count; ++i)
    {
        for (const Field& field : fields.rows)
        {
            if (!readXml(fields, field, to, elements, subscripts != nullptr ? &ofElement : nullptr))
            {
                return false;
            }
        }
        to += fields.binarySize;
        ++ofElement.second;
    }
    return true;
}

bool readXml(const Fields& fields, const Field& field, void* structure, Elements& elements,
             const Subscripts* subscripts)
{
    if (field.oddity == Oddity::notReadFromXml)
    {
        return true;
    }
    const ElementName name(field.tag, subscripts);
    TagContent content;
    if (!elements.find(name.text(), name.size(), content))
    {
        logMissing(fields, field, name.text(), elements.document());
        return false;
    }
    char* const to = static_cast<char*>(structure);
    if (field.kind == Kind::text)
    {
        copyContent(content, to + field.offset, field.size);
    }
    else
    {
        store(field, to, static_cast<U32>(toNumber(content)));
    }
    return true;
}

} // namespace bci::codec

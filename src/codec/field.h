// Rows: the constant description of a message's fields, which everything else reads.
#ifndef BCI_CODEC_FIELD_H
#define BCI_CODEC_FIELD_H

#include "scalarTypes.h"

#include <concepts>
#include <cstddef>
#include <span>
#include <string_view>
#include <type_traits>

namespace bci::codec
{

// The stream overload by which a field travels. It follows from the field's type in the wire structure.
enum class Kind : U8
{
    u8,
    u16,
    s16,
    u32,
    s32,
    // A character array: in text and XML its characters up to the first zero, in binary all of it.
    text
};

// Where a field leaves the common way. Each is a fact of the format.
enum class Oddity : U8
{
    none,
    // The log line of the missing element says "tag tag".
    doubledWord,
    // The log line of the missing element goes on with the whole document.
    quotesDocument,
    // The log line of the missing element has a wording of its own.
    ownLogLine,
    // The XML element starts without its tab, and three blanks stand before its value.
    bareOpening,
    // The XML element's closing tag has another name: its row gives both, "tag\0closing".
    foreignClosing,
    // The XML reader passes the field over.
    notReadFromXml
};

// One field of a wire structure.
struct Field
{
    U16 offset; // in the wire structure, in bytes
    U16 size;   // in the wire structure and in the binary form, in bytes
    Kind kind;
    Oddity oddity;
    U16 line;        // line number in the log line of the missing element
    const char* tag; // name of the XML element
};

// The name in a field's closing tag: its tag but for one field of the format.
constexpr const char* closingTag(const Field& field)
{
    return field.oddity == Oddity::foreignClosing ? field.tag + std::string_view(field.tag).size() + 1 : field.tag;
}

template <typename T>
consteval Kind kindOf()
{
    if constexpr (std::same_as<std::remove_extent_t<T>, U8> && std::is_array_v<T>)
    {
        return Kind::text;
    }
    else if constexpr (std::same_as<T, U8>)
    {
        return Kind::u8;
    }
    else if constexpr (std::same_as<T, U16>)
    {
        return Kind::u16;
    }
    else if constexpr (std::same_as<T, S16>)
    {
        return Kind::s16;
    }
    else if constexpr (std::same_as<T, U32>)
    {
        return Kind::u32;
    }
    else
    {
        static_assert(std::same_as<T, S32>, "no stream overload carries this type");
        return Kind::s32;
    }
}

// Longest tag that a row may hold.
constexpr std::size_t kMaxTagLength = 32;

template <typename T, std::size_t N>
consteval Field makeField(std::size_t offset, const char (&tag)[N], unsigned int line,
                          Oddity oddity = Oddity::none)
{
    static_assert(N - 1 <= kMaxTagLength);
    return {static_cast<U16>(offset), sizeof(T), kindOf<T>(), oddity, static_cast<U16>(line), tag};
}

// BCI_FIELD(structure, member, tag, line [, oddity])
#define BCI_FIELD(structure, member, ...)                                                                         \
    ::bci::codec::makeField<decltype(structure::member)>(offsetof(structure, member), __VA_ARGS__)

// BCI_HEADER(structure, line): the fields that every signal begins with. Their log lines are always seven
// lines apart.
#define BCI_HEADER(structure, line)                                                                               \
    BCI_FIELD(structure, sigNo, "sigNo", line),                                                                   \
        BCI_FIELD(structure, addressInfo.clientRef, "clientRef", (line) + 7),                                     \
        BCI_FIELD(structure, addressInfo.serverRef, "serverRef", (line) + 14)

// Bytes that fields take in the binary form.
constexpr unsigned int binarySize(std::span<const Field> rows)
{
    unsigned int size = 0;
    for (const Field& field : rows)
    {
        size += field.size;
    }
    return size;
}

// Characters that one number of a kind takes in text at most. Not for texts.
constexpr unsigned int textWidth(Kind kind)
{
    switch (kind)
    {
    case Kind::u8:
        return 3;
    case Kind::u16:
        return 5;
    case Kind::s16:
        return 6;
    case Kind::u32:
        return 10;
    default:
        return 11;
    }
}

// The bound that getMaxTextBufferSize() is made of: a number counts with its delimiter, a text as four
// characters for each of its bytes.
constexpr unsigned int maxTextSize(std::span<const Field> rows)
{
    unsigned int size = 0;
    for (const Field& field : rows)
    {
        size += field.kind == Kind::text ? 4U * field.size : textWidth(field.kind) + 1;
    }
    return size;
}

// Whether fields follow one another in the structure without gaps, as they do in the binary form.
constexpr bool areAdjacent(std::span<const Field> rows)
{
    for (std::size_t i = 1; i < rows.size(); ++i)
    {
        if (rows[i].offset != rows[i - 1].offset + rows[i - 1].size)
        {
            return false;
        }
    }
    return !rows.empty();
}

// A message's fields in wire order, and the source file that their log lines name. Spans of them too.
struct Fields
{
    constexpr Fields() = default;
    constexpr Fields(const char* theSource, std::span<const Field> theRows)
        : source(theSource), rows(theRows), binarySize(static_cast<U16>(codec::binarySize(theRows))),
          adjacent(areAdjacent(theRows))
    {
    }

    constexpr Fields part(std::size_t first, std::size_t count) const
    {
        return {source, rows.subspan(first, count)};
    }

    const char* source = nullptr;
    std::span<const Field> rows;
    U16 binarySize = 0; // bytes that they take in the binary form
    bool adjacent = false;
};

} // namespace bci::codec

#endif

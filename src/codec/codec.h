// The engine: one message's rows in, one rendering out, and back.
//
// Each function takes rows, the address of the structure (or list element) that their offsets count
// from, and a cursor over a stream. Messages call them with their whole table or with parts of it. With a
// count they run over so many list elements, which follow one another without gaps.
#ifndef BCI_CODEC_CODEC_H
#define BCI_CODEC_CODEC_H

#include "cursor.h"
#include "elementName.h"
#include "elements.h"
#include "field.h"

#pragma GCC visibility push(hidden) // calls to these need no way round through the linker's tables
namespace bci::codec
{

// The functions over a table.
void writeTextTable(const Fields& fields, const void* structure, TextWriter::Argument argument,
                    unsigned int count);
void readTextTable(const Fields& fields, void* structure, TextReader::Argument argument, unsigned int count);
void writeBinaryTable(const Fields& fields, const void* structure, BinaryWriter::Argument argument,
                      unsigned int count);
void readBinaryTable(const Fields& fields, void* structure, BinaryReader::Argument argument, unsigned int count);
void writeXmlTable(const Fields& fields, const void* structure, TextWriter::Argument argument,
                   const Subscripts* subscripts, unsigned int count);

// Every field as a decimal number or its characters up to the first zero, each followed by ':'.
BCI_ALWAYS_INLINE void writeText(const Fields& fields, const void* structure, TextWriter& out,
                                 unsigned int count = 1)
{
    writeTextTable(fields, structure, out.argument(), count);
}

// The same read back; whatever character stands behind a field is taken for its delimiter.
BCI_ALWAYS_INLINE void readText(const Fields& fields, void* structure, TextReader& in, unsigned int count = 1)
{
    readTextTable(fields, structure, in.argument(), count);
}

// Every field at its width, texts whole.
BCI_ALWAYS_INLINE void writeBinary(const Fields& fields, const void* structure, BinaryWriter& out,
                                   unsigned int count = 1)
{
    writeBinaryTable(fields, structure, out.argument(), count);
}

// The same read back.
BCI_ALWAYS_INLINE void readBinary(const Fields& fields, void* structure, BinaryReader& in, unsigned int count = 1)
{
    readBinaryTable(fields, structure, in.argument(), count);
}

// Every field as one element. In a list the second index counts on.
BCI_ALWAYS_INLINE void writeXml(const Fields& fields, const void* structure, TextWriter& out,
                                const Subscripts* subscripts = nullptr, unsigned int count = 1)
{
    writeXmlTable(fields, structure, out.argument(), subscripts, count);
}

// Looks every field up in the whole document, which ends at its terminating zero. Logs the first element that is
// missing, and stops there. Returns whether every element was found.
bool readXml(const Fields& fields, void* structure, Elements& elements, const Subscripts* subscripts = nullptr,
             unsigned int count = 1);

// One field of them.
bool readXml(const Fields& fields, const Field& field, void* structure, Elements& elements,
             const Subscripts* subscripts);

// What stands around a value in XML, for messages that write it themselves.
void putOpening(commonStream::ostream_text& stream, const Field& field);
void putClosing(commonStream::ostream_text& stream, const Field& field);

// The log line of a missing element, for messages that look it up themselves.
void logMissing(const Fields& fields, const Field& field, const char* name, const char* document);

// Through the stream itself: fields for which there may be no room, or that are not all there, or not as the
// writers write them.
[[gnu::cold]] void writeTextExactly(const Field& field, const void* structure, commonStream::ostream_text& stream);
[[gnu::cold]] void readTextExactly(const Field& field, void* structure, commonStream::istream_text& stream);
[[gnu::cold]] void writeBinaryExactly(const Fields& fields, const void* structure,
                                      commonStream::ostream_binary& stream, unsigned int count);
[[gnu::cold]] void readBinaryExactly(const Fields& fields, void* structure, commonStream::istream_binary& stream,
                                     unsigned int count);
[[gnu::cold]] void writeXmlExactly(const Field& field, const void* structure, commonStream::ostream_text& stream,
                                   const Subscripts* subscripts, unsigned int index);

} // namespace bci::codec
#pragma GCC visibility pop

#if BCI_OPTIMIZE_SPEED
#include "constants.h"
#endif

namespace bci::codec
{

// Rows as the build wants them: constants, for which the loops are unrolled, or a table that they read.
#if BCI_OPTIMIZE_SPEED
template <const Fields& table>
inline constexpr Constant<table> rows = {};
#else
template <const Fields& table>
inline constexpr const Fields& rows = table;
#endif

// A whole message. The results are those of the codec operations.

template <typename Rows>
BCI_ALWAYS_INLINE bool writeText(const Rows& rows, const void* structure, commonStream::ostream_text& stream)
{
    TextWriter out(stream);
    writeText(rows, structure, out);
    return !stream.fail();
}

template <typename Rows>
BCI_ALWAYS_INLINE bool readText(const Rows& rows, void* structure, commonStream::istream_text& stream)
{
    TextReader in(stream);
    readText(rows, structure, in);
    return !stream.fail();
}

template <typename Rows>
BCI_ALWAYS_INLINE bool writeBinary(const Rows& rows, const void* structure, commonStream::ostream_binary& stream)
{
    BinaryWriter out(stream);
    writeBinary(rows, structure, out);
    return !stream.fail();
}

template <typename Rows>
BCI_ALWAYS_INLINE bool readBinary(const Rows& rows, void* structure, commonStream::istream_binary& stream)
{
    BinaryReader in(stream);
    readBinary(rows, structure, in);
    return !stream.fail();
}

template <typename Rows>
BCI_ALWAYS_INLINE bool writeXml(const Rows& rows, const void* structure, commonStream::ostream_text& stream)
{
    TextWriter out(stream);
    writeXml(rows, structure, out);
    return !stream.fail();
}

// The stream itself is not read: its buffer is searched.
template <typename Rows>
BCI_ALWAYS_INLINE bool readXml(const Rows& rows, void* structure, commonStream::istream_text& stream)
{
    Elements elements(stream);
    return readXml(rows, structure, elements);
}

} // namespace bci::codec

#endif

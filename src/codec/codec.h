// The engine: one message's rows in, one rendering out, and back.
//
// Each function takes rows, the address of the structure (or array element) that their offsets count
// from, and a stream. Messages call them with their whole table or with parts of it. Results are those
// of the codec operations: the negation of the stream's fail(), and for readXml() whether every element
// was found.
#ifndef BCI_CODEC_CODEC_H
#define BCI_CODEC_CODEC_H

#include "elementName.h"
#include "elements.h"
#include "field.h"
#include "stream.h"

#pragma GCC visibility push(hidden) // calls to these need no way round through the linker's tables
namespace bci::codec
{

// Every field as a decimal number or its characters up to the first zero, each followed by ':'.
bool writeText(const Fields& fields, const void* structure, commonStream::ostream_text& stream);

// The same read back; whatever character stands behind a field is taken for its delimiter.
bool readText(const Fields& fields, void* structure, commonStream::istream_text& stream);

// Every field at its width, texts whole.
bool writeBinary(const Fields& fields, const void* structure, commonStream::ostream_binary& stream);

// The same read back.
bool readBinary(const Fields& fields, void* structure, commonStream::istream_binary& stream);

// Every field as one element.
bool writeXml(const Fields& fields, const void* structure, commonStream::ostream_text& stream,
              const Subscripts* subscripts = nullptr);

// Looks every field up in the whole of the stream's buffer, which ends at its terminating zero. Logs the
// first element that is missing, and stops there. The stream itself is not read.
bool readXml(const Fields& fields, void* structure, commonStream::istream_text& stream);

// The same for a message that looks its fields up in several runs.
bool readXml(const Fields& fields, void* structure, Elements& elements, const Subscripts* subscripts = nullptr);

// What stands around a value in XML, for messages that write it themselves.
void putOpening(commonStream::ostream_text& stream, const Field& field, const Subscripts* subscripts);
void putClosing(commonStream::ostream_text& stream, const Field& field, const Subscripts* subscripts);

// The log line of a missing element, for messages that look it up themselves.
void logMissing(const Fields& fields, const Field& field, const char* name, const char* document);

} // namespace bci::codec
#pragma GCC visibility pop

#endif

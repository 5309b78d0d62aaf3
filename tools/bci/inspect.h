// Walks a rendering by the shape of its signal.
//
// The codecs are lenient on purpose; this is strict about every field: a number that is none or out of its
// range, a count above its bound, a text that does not fit and a field that is missing are damage, told with
// position and field, and in text and binary so is anything behind the last field. Of an XML document the
// signal's elements are read and nothing else is looked at: the first of each name, but where a list's
// elements share a name, one after another. What the codecs lose comes through (an unsigned number above
// 2147483647 in XML, -2147483648 in text, a ':' in a block, values shared by name in XML), and so does what
// they stumble over (the ':' in the place of an empty list, the foreign closing tag). Bytes of a binary form
// that hold nothing, behind the last element of a list or the member of a union, are passed over.
#ifndef BCI_TOOL_INSPECT_H
#define BCI_TOOL_INSPECT_H

#include "input.h"

#include <cstddef>
#include <string>
#include <vector>

namespace bci::tool
{

struct FieldValue
{
    std::string name; // of the XML element
    codec::Kind kind;
    bool raw;             // a block: bytes, not characters
    std::size_t position; // of the value in the rendering, in bytes
    std::string value;    // as text; the bytes of a block as they are
};

struct Record
{
    std::vector<FieldValue> fields;
    std::vector<char> structure; // the wire structure, in the host's layout; what no field fills is zero
};

// Reads all fields of a rendering. Throws Damage.
Record inspect(const Rendering& rendering);

// The first of a record's fields that a rendering of it does not bring back (a ':' within a text is one that
// text does not), or null.
const FieldValue* firstLost(const Record& record, const Rendering& rendering);

// The name of a field's type, as the wire structures have it; texts are "text".
const char* typeName(codec::Kind kind);

} // namespace bci::tool

#endif

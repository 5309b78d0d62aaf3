// The layout of a message's forms: its shape, with every name, offset and size worked out.
#ifndef BCI_TOOL_LAYOUT_H
#define BCI_TOOL_LAYOUT_H

#include "catalogue.h"

#include <string>
#include <vector>

namespace bci::tool
{

struct Alternative;

// One part of a message. Names have the letters i and j where an element has its indexes: "snid_i_j",
// "loadable[i]".
struct Piece
{
    enum class Kind
    {
        field,
        list,
        choice,
        entries, // zero-terminated texts, packed into one array
        block,   // raw bytes
        limit    // says that a number must not be greater
    };

    Kind kind = Kind::field;
    const codec::Field* field = nullptr;   // the field, the array, the block or what is limited
    std::string name;                      // of that
    std::string element;                   // of that, in XML
    const codec::Field* counter = nullptr; // what counts elements, entries or bytes, or selects the alternative
    std::string counterName;
    unsigned int offset = 0; // in the binary form, from the begin of the message or of the innermost list element
    unsigned int size = 0;   // in the binary form, in bytes, at most
    unsigned int bound = 0;  // elements, bytes of a block, or the limit
    unsigned int stride = 0; // of list elements in the binary form, in bytes
    bool isWhole = false;    // the binary form carries all elements, zeros from the count on
    bool endsEmptyText = false; // the text form has one ':' more in the place of an empty list
    std::vector<Piece> content; // of a list element
    std::vector<Alternative> alternatives;
};

struct Alternative
{
    int value; // of the selector
    std::string member;
    std::vector<Piece> content;
    unsigned int size; // in the binary form, in bytes; what is left of the choice's are zeros
};

struct Layout
{
    std::vector<Piece> pieces;
    unsigned int leastBinary; // bytes
    unsigned int mostBinary;  // bytes
    unsigned int mostText;    // characters
};

Layout layoutOf(const codec::Shape& shape);

// "U32", or "U8[30]".
std::string typeName(const codec::Field& field);

} // namespace bci::tool

#endif

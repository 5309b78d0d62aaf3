// The shape of a message, for tools: what a rendering consists of, in wire order. It points at the same
// rows that the codecs read; the codecs themselves never look at it.
#ifndef BCI_CODEC_SCHEMA_H
#define BCI_CODEC_SCHEMA_H

#include "elementName.h"
#include "field.h"
#include "unaligned.h"

#include <cstdint>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace bci::codec
{

struct List;
struct Choice;
struct LogEntries;
struct Block;
struct Limit;

// One part of a message. Everything in it counts offsets from the address that the message, list element
// or chosen member begins at.
using Part = std::variant<std::span<const Field>, const List*, const Choice*, const LogEntries*, const Block*,
                          const Limit*>;

// Fields, and what follows them.
struct Group
{
    std::span<const Field> rows;
    std::span<const Part> further = {};
};

// As many elements as a field says.
struct List
{
    const Field* count;
    unsigned int bound; // greatest count
    U16 offset;         // of the first element, in bytes
    U16 stride;         // from element to element, in bytes
    Group element;
    bool wholeInBinary;      // the binary form carries all `bound` elements, zeros from the count on
    bool delimiterWhenEmpty; // the text form has one ':' more in the place of an empty list
};

struct Case
{
    S16 value; // of the selector
    const char* member;
    Group content;
};

// A union: a field says which member there is. The binary form takes the size of the union in every case,
// zeros behind the member.
struct Choice
{
    const Field* selector;
    U16 offset; // of the union, in bytes
    U16 size;   // of the union, in bytes
    std::span<const Case> cases;
};

// As many zero-terminated texts as a field says, packed into one array, which the binary form carries
// whole. Text and XML have each by itself.
struct LogEntries
{
    const Field* count;
    const Field* array;
};

// As many raw bytes as a field says.
struct Block
{
    const Field* length;
    unsigned int bound; // greatest length, in bytes
    const Field* bytes; // where they begin; its size means nothing
};

// A number that must not be greater.
struct Limit
{
    const Field* field;
    unsigned int bound;
};

struct Shape
{
    const char* className;
    const char* structureName;
    unsigned int structureSize; // bytes
    Group content;
    const char* source; // the source file that log lines name
};

// The number that a field holds in a wire structure of the host. Not for texts.
inline std::int64_t loadNumber(const Field& field, const char* structure)
{
    const char* const from = structure + field.offset;
    switch (field.kind)
    {
    case Kind::u8:
        return peek<U8>(from);
    case Kind::u16:
        return peek<U16>(from);
    case Kind::s16:
        return peek<S16>(from);
    case Kind::u32:
        return peek<U32>(from);
    default:
        return peek<S32>(from);
    }
}

// Puts a number there, cut to the field's width.
inline void storeNumber(const Field& field, std::int64_t number, char* structure)
{
    char* const to = structure + field.offset;
    switch (field.size)
    {
    case 1:
        return poke(to, static_cast<U8>(number));
    case 2:
        return poke(to, static_cast<U16>(number));
    default:
        return poke(to, static_cast<U32>(number));
    }
}

// Is led through a message by walk(). `base` is always what offsets count from.
class Visitor
{
public:
    Visitor() = default;
    Visitor(const Visitor&) = delete;
    Visitor& operator=(const Visitor&) = delete;
    virtual ~Visitor() = default;

    static constexpr bool isOver()
    {
        return false;
    }

    virtual void field(const Field& field, char* base, const Subscripts* subscripts) = 0;
    // A packed log entry: a text that may take all of the array that is left.
    virtual void entry(const Field& entry, char* base, const Subscripts& subscripts) = 0;
    // A block, whose field has the block's length as its size.
    virtual void block(const Field& block, char* base) = 0;

    // Around lists, choices and entries, and before blocks. Counts and lengths come as they stand.
    virtual void beginList(const List& list, std::int64_t count, char* base);
    virtual void endList(const List& list, std::int64_t count, char* base);
    virtual void beginChoice(const Choice& choice, const Case* chosen, char* base);
    virtual void endChoice(const Choice& choice, char* base);
    virtual void beginEntries(const LogEntries& entries, std::int64_t count, char* base);
    // `written` is how many of them there was room for.
    virtual void endEntries(const LogEntries& entries, std::int64_t count, std::int64_t written, char* base);
    virtual void beginBlock(const Block& block, std::int64_t length, char* base);
    virtual void limit(const Limit& limit, char* base);
};

// Leads a visitor through a message in wire order. Counts, lengths and selectors are taken from the
// structure when it is their turn, so a visitor may fill the structure as it goes. What lies beyond a
// bound is not visited.
void walk(const Shape& shape, char* structure, Visitor& visitor);

// One field, log entry or block of a message, as it stands in its wire structure.
struct Leaf
{
    std::string name; // of its XML element
    Field field;
    char* base;
    bool raw; // a block: all bytes count, zeros too
};

// All of them, in wire order.
std::vector<Leaf> leaves(const Shape& shape, char* structure);

} // namespace bci::codec

#endif

#include "layout.h"

#include <algorithm>
#include <string_view>

namespace bci::tool
{

namespace
{

using codec::Field;

// How many lists a part lies in.
enum class Depth
{
    message,
    element,
    innerElement
};

// The XML name of a field, and what tells its elements apart where that does not.
struct Names
{
    std::string name;
    std::string element;
};

Names namesOf(const Field& field, Depth depth)
{
    std::string tag = field.tag;
    if (depth == Depth::message)
    {
        return {tag, tag};
    }
    if (tag.ends_with("__"))
    {
        tag.back() = 'i';
        tag += "_j";
        return {tag, tag};
    }
    if (tag.ends_with("_"))
    {
        tag += "i";
        return {tag, tag};
    }
    return {tag + "[i]", tag};
}

unsigned int characters(std::int64_t number)
{
    return static_cast<unsigned int>(std::to_string(number).size());
}

class Builder
{
public:
    explicit Builder(Depth depth, unsigned int offset = 0) : m_depth(depth), m_offset(offset) {}

    void add(const codec::Group& group)
    {
        (*this)(group.rows);
        for (const codec::Part& part : group.further)
        {
            std::visit(*this, part);
        }
    }

    void operator()(std::span<const Field> rows)
    {
        for (const Field& field : rows)
        {
            Piece& piece = append(Piece::Kind::field, &field, nullptr);
            take(piece, field.size);
            m_mostText += field.kind == codec::Kind::text ? field.size + 1U : codec::textWidth(field.kind) + 1U;
        }
    }

    void operator()(const codec::List* list)
    {
        Builder element(m_depth == Depth::message ? Depth::element : Depth::innerElement);
        element.add(list->element);
        Piece& piece = append(Piece::Kind::list, nullptr, list->count);
        piece.bound = list->bound;
        piece.stride = element.m_offset;
        piece.isWhole = list->wholeInBinary;
        piece.endsEmptyText = list->delimiterWhenEmpty;
        piece.content = std::move(element.pieces);
        take(piece, list->bound * piece.stride, list->wholeInBinary);
        m_mostText += list->bound * element.m_mostText;
        narrow(*list->count, characters(list->bound));
    }

    void operator()(const codec::Choice* choice)
    {
        Piece& piece = append(Piece::Kind::choice, nullptr, choice->selector);
        unsigned int mostText = 0;
        unsigned int longestSelector = 0;
        for (const codec::Case& one : choice->cases)
        {
            Builder content(m_depth, m_offset);
            content.add(one.content);
            piece.alternatives.push_back(
                {one.value, one.member, std::move(content.pieces), content.m_offset - m_offset});
            mostText = std::max(mostText, content.m_mostText);
            longestSelector = std::max(longestSelector, characters(one.value));
        }
        take(piece, choice->size);
        m_mostText += mostText;
        narrow(*choice->selector, longestSelector);
    }

    void operator()(const codec::LogEntries* entries)
    {
        Piece& piece = append(Piece::Kind::entries, entries->array, entries->count);
        piece.name = std::string(entries->array->tag) + "i";
        piece.element = piece.name;
        take(piece, entries->array->size);
        // Each entry has a ':' for its zero, and the last need not have one.
        m_mostText += entries->array->size + 1U;
    }

    void operator()(const codec::Block* block)
    {
        Piece& piece = append(Piece::Kind::block, block->bytes, block->length);
        piece.bound = block->bound;
        take(piece, block->bound, false);
        m_mostText += block->bound + 1;
        narrow(*block->length, characters(block->bound));
    }

    void operator()(const codec::Limit* limit)
    {
        append(Piece::Kind::limit, limit->field, nullptr).bound = limit->bound;
        narrow(*limit->field, characters(limit->bound));
    }

    Layout layout() &&
    {
        return {std::move(pieces), m_offset - m_varying, m_offset, m_mostText};
    }

    std::vector<Piece> pieces;

private:
    Piece& append(Piece::Kind kind, const Field* field, const Field* counter)
    {
        Piece piece;
        piece.kind = kind;
        piece.offset = m_offset;
        piece.field = field;
        piece.counter = counter;
        if (field != nullptr)
        {
            const Names names = namesOf(*field, m_depth);
            piece.name = names.name;
            piece.element = names.element;
        }
        if (counter != nullptr)
        {
            piece.counterName = namesOf(*counter, m_depth).name;
        }
        return pieces.emplace_back(std::move(piece));
    }

    // What has no fixed size stands at the end of its message, so all offsets are fixed.
    void take(Piece& piece, unsigned int size, bool isFixed = true)
    {
        piece.size = size;
        m_offset += size;
        m_varying += isFixed ? 0 : size;
    }

    // A number of few characters has been counted with what its type can hold.
    void narrow(const Field& number, unsigned int most)
    {
        m_mostText -= codec::textWidth(number.kind) - most;
    }

    Depth m_depth;
    unsigned int m_offset;
    unsigned int m_varying = 0;
    unsigned int m_mostText = 0;
};

} // namespace

Layout layoutOf(const codec::Shape& shape)
{
    Builder builder(Depth::message);
    builder.add(shape.content);
    return std::move(builder).layout();
}

std::string typeName(const Field& field)
{
    switch (field.kind)
    {
    case codec::Kind::u8:
        return "U8";
    case codec::Kind::u16:
        return "U16";
    case codec::Kind::s16:
        return "S16";
    case codec::Kind::u32:
        return "U32";
    case codec::Kind::s32:
        return "S32";
    case codec::Kind::text:
        break;
    }
    return "U8[" + std::to_string(field.size) + "]";
}

} // namespace bci::tool

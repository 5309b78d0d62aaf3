#include "schema.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace bci::codec
{

namespace
{

template <typename T>
std::int64_t load(const char* from)
{
    T number;
    std::memcpy(&number, from, sizeof number);
    return number;
}

template <typename T>
void store(T number, char* to)
{
    std::memcpy(to, &number, sizeof number);
}

// NOLINTBEGIN(misc-no-recursion): as deep as the shape
class Walker
{
public:
    Walker(char* base, Visitor& visitor, const Subscripts* subscripts)
        : m_base(base), m_visitor(visitor), m_subscripts(subscripts)
    {
    }

    void walk(const Group& group)
    {
        (*this)(group.rows);
        for (const Part& part : group.further)
        {
            std::visit(*this, part);
        }
    }

    void operator()(std::span<const Field> rows)
    {
        for (const Field& field : rows)
        {
            m_visitor.field(field, m_base, m_subscripts);
        }
    }

    void operator()(const List* list)
    {
        const std::int64_t count = loadNumber(*list->count, m_base);
        m_visitor.beginList(*list, count, m_base);
        for (unsigned int i = 0; i < std::min<std::int64_t>(count, list->bound); ++i)
        {
            const Subscripts subscripts =
                m_subscripts == nullptr ? Subscripts{i, 0} : Subscripts{m_subscripts->first, i};
            Walker(m_base + list->offset + std::size_t{i} * list->stride, m_visitor, &subscripts)
                .walk(list->element);
        }
        m_visitor.endList(*list, count, m_base);
    }

    void operator()(const Choice* choice)
    {
        const std::int64_t selector = loadNumber(*choice->selector, m_base);
        const auto chosen = std::find_if(choice->cases.begin(), choice->cases.end(),
                                         [selector](const Case& one) { return one.value == selector; });
        const bool found = chosen != choice->cases.end();
        m_visitor.beginChoice(*choice, found ? &*chosen : nullptr, m_base);
        if (found)
        {
            Walker(m_base + choice->offset, m_visitor, m_subscripts).walk(chosen->content);
        }
        m_visitor.endChoice(*choice, m_base);
    }

    void operator()(const LogEntries* entries)
    {
        const std::int64_t count = loadNumber(*entries->count, m_base);
        m_visitor.beginEntries(*entries, count, m_base);
        Field entry = *entries->array;
        unsigned int written = 0;
        for (; written < count && entry.size != 0; ++written)
        {
            m_visitor.entry(entry, m_base, {written, 0});
            const std::size_t length = strnlen(m_base + entry.offset, entry.size);
            const auto taken = static_cast<U16>(std::min<std::size_t>(length + 1, entry.size));
            entry.offset = static_cast<U16>(entry.offset + taken);
            entry.size = static_cast<U16>(entry.size - taken);
        }
        m_visitor.endEntries(*entries, count, written, m_base);
    }

    void operator()(const Block* block)
    {
        const std::int64_t length = loadNumber(*block->length, m_base);
        m_visitor.beginBlock(*block, length, m_base);
        Field bytes = *block->bytes;
        bytes.size = static_cast<U16>(std::min<std::int64_t>(length, block->bound));
        m_visitor.block(bytes, m_base);
    }

    void operator()(const Limit* limit)
    {
        m_visitor.limit(*limit, m_base);
    }

private:
    char* m_base;
    Visitor& m_visitor;
    const Subscripts* m_subscripts;
};
// NOLINTEND(misc-no-recursion)

class Leaves : public Visitor
{
public:
    void field(const Field& field, char* base, const Subscripts* subscripts) override
    {
        m_leaves.push_back({ElementName(field.tag, subscripts).text(), field, base, false});
    }

    void entry(const Field& entry, char* base, const Subscripts& subscripts) override
    {
        field(entry, base, &subscripts);
    }

    void block(const Field& block, char* base) override
    {
        m_leaves.push_back({block.tag, block, base, true});
    }

    std::vector<Leaf> m_leaves;
};

} // namespace

void Visitor::beginList(const List& /*list*/, std::int64_t /*count*/, char* /*base*/) {}
void Visitor::endList(const List& /*list*/, std::int64_t /*count*/, char* /*base*/) {}
void Visitor::beginChoice(const Choice& /*choice*/, const Case* /*chosen*/, char* /*base*/) {}
void Visitor::endChoice(const Choice& /*choice*/, char* /*base*/) {}
void Visitor::beginEntries(const LogEntries& /*entries*/, std::int64_t /*count*/, char* /*base*/) {}
void Visitor::endEntries(const LogEntries& /*entries*/, std::int64_t /*count*/, std::int64_t /*written*/,
                         char* /*base*/)
{
}
void Visitor::beginBlock(const Block& /*block*/, std::int64_t /*length*/, char* /*base*/) {}
void Visitor::limit(const Limit& /*limit*/, char* /*base*/) {}

void walk(const Shape& shape, char* structure, Visitor& visitor)
{
    Walker(structure, visitor, nullptr).walk(shape.content);
}

std::vector<Leaf> leaves(const Shape& shape, char* structure)
{
    Leaves visitor;
    walk(shape, structure, visitor);
    return std::move(visitor.m_leaves);
}

std::int64_t loadNumber(const Field& field, const char* structure)
{
    const char* const from = structure + field.offset;
    switch (field.kind)
    {
    case Kind::u8:
        return load<U8>(from);
    case Kind::u16:
        return load<U16>(from);
    case Kind::s16:
        return load<S16>(from);
    case Kind::u32:
        return load<U32>(from);
    case Kind::s32:
        return load<S32>(from);
    case Kind::text:
        break;
    }
    return 0;
}

void storeNumber(const Field& field, std::int64_t number, char* structure)
{
    char* const to = structure + field.offset;
    switch (field.size)
    {
    case 1:
        return store(static_cast<U8>(number), to);
    case 2:
        return store(static_cast<U16>(number), to);
    default:
        return store(static_cast<U32>(number), to);
    }
}

} // namespace bci::codec

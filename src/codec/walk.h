// Leads a visitor of any type through a message: the inside of walk().
#ifndef BCI_CODEC_WALK_H
#define BCI_CODEC_WALK_H

#include "schema.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace bci::codec
{

// `Visitor` has the functions of the class of that name; once its isOver() is true, it is told nothing more.
template <typename Visitor>
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
            if (m_visitor.isOver())
            {
                return;
            }
            std::visit(*this, part);
        }
    }

    void operator()(std::span<const Field> rows)
    {
        for (const Field& field : rows)
        {
            m_visitor.field(field, m_base, m_subscripts);
            if (m_visitor.isOver())
            {
                return;
            }
        }
    }

    void operator()(const List* list)
    {
        const std::int64_t count = loadNumber(*list->count, m_base);
        m_visitor.beginList(*list, count, m_base);
        for (unsigned int i = 0; i < std::min<std::int64_t>(count, list->bound) && !m_visitor.isOver(); ++i)
        {
            const Subscripts subscripts =
                m_subscripts == nullptr ? Subscripts{i, 0} : Subscripts{m_subscripts->first, i};
            Walker<Visitor>(m_base + list->offset + std::size_t{i} * list->stride, m_visitor, &subscripts)
                .walk(list->element);
        }
        if (!m_visitor.isOver())
        {
            m_visitor.endList(*list, count, m_base);
        }
    }

    void operator()(const Choice* choice)
    {
        const std::int64_t selector = loadNumber(*choice->selector, m_base);
        const auto chosen = std::find_if(choice->cases.begin(), choice->cases.end(),
                                         [selector](const Case& one) { return one.value == selector; });
        const bool found = chosen != choice->cases.end();
        m_visitor.beginChoice(*choice, found ? &*chosen : nullptr, m_base);
        if (found && !m_visitor.isOver())
        {
            Walker<Visitor>(m_base + choice->offset, m_visitor, m_subscripts).walk(chosen->content);
        }
        if (!m_visitor.isOver())
        {
            m_visitor.endChoice(*choice, m_base);
        }
    }

    void operator()(const LogEntries* entries)
    {
        const std::int64_t count = loadNumber(*entries->count, m_base);
        m_visitor.beginEntries(*entries, count, m_base);
        Field entry = *entries->array;
        unsigned int written = 0;
        for (; written < count && entry.size != 0 && !m_visitor.isOver(); ++written)
        {
            m_visitor.entry(entry, m_base, Subscripts{written, 0});
            const std::size_t length = strnlen(m_base + entry.offset, entry.size);
            const auto taken = static_cast<U16>(std::min<std::size_t>(length + 1, entry.size));
            entry.offset = static_cast<U16>(entry.offset + taken);
            entry.size = static_cast<U16>(entry.size - taken);
        }
        if (!m_visitor.isOver())
        {
            m_visitor.endEntries(*entries, count, written, m_base);
        }
    }

    void operator()(const Block* block)
    {
        const std::int64_t length = loadNumber(*block->length, m_base);
        m_visitor.beginBlock(*block, length, m_base);
        if (m_visitor.isOver())
        {
            return;
        }
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

} // namespace bci::codec

#endif

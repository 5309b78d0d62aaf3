#include "elementIndex.h"

namespace bci::codec
{

namespace
{

template <typename Table>
const char* findIn(const Table& table, const char* document, const char* name, std::size_t size)
{
    const U32 hash = nameHash(name, size, false);
    unsigned int slot = Table::firstSlot(hash);
    while (const auto* const tag = table.next(slot, hash))
    {
        const char* const at = document + tag->place;
        if (std::strncmp(at, name, size) == 0 && at[size] == '>')
        {
            return at + size + 1;
        }
    }
    return nullptr;
}

template <typename Table>
const char* firstIn(const Table& table, const char* document, U32 hash)
{
    unsigned int slot = Table::firstSlot(hash);
    const auto* const tag = table.next(slot, hash);
    return tag != nullptr ? document + tag->place : nullptr;
}

} // namespace

template <typename Number, unsigned int most>
typename TagTable<Number, most>::State TagTable<Number, most>::make(const char* document)
{
    std::memset(m_slots, 0, sizeof m_slots);
    unsigned int count = 0;
    for (const char* at = document; (at = std::strchr(at, '<')) != nullptr;)
    {
        const char* const name = ++at;
        if (*name == '/')
        {
            continue;
        }
        // No name has a '<' in it.
        while (*at != '>' && *at != '<' && *at != '\0')
        {
            ++at;
        }
        const auto place = static_cast<std::size_t>(name - document);
        if (*at != '>' || at == name)
        {
            continue;
        }
        if (count == most || place > 0xFFFFFFFF)
        {
            return State::tooManyTags;
        }
        const U32 hash = nameHash(name, static_cast<std::size_t>(at - name), place >= sizeof(std::uint64_t));
        m_tags[count++] = {hash, static_cast<U32>(place)};
        unsigned int slot = hash % kSlots;
        while (m_slots[slot] != 0)
        {
            slot = (slot + 1) % kSlots;
        }
        m_slots[slot] = static_cast<Number>(count);
    }
    return State::made;
}

template <typename Number, unsigned int most>
bool TagTable<Number, most>::isMade(const char* document)
{
    if (m_state == State::unmade && document != nullptr)
    {
        m_state = make(document);
    }
    return m_state == State::made;
}

template <typename Number, unsigned int most>
const typename TagTable<Number, most>::Tag* TagTable<Number, most>::next(unsigned int& slot, U32 hash) const
{
    for (; m_slots[slot] != 0; slot = (slot + 1) % kSlots)
    {
        const Tag& tag = m_tags[m_slots[slot] - 1];
        if (tag.hash == hash)
        {
            slot = (slot + 1) % kSlots;
            return &tag;
        }
    }
    return nullptr;
}

bool ElementIndex::find(const char* document, const char* name, std::size_t size, const char*& behind)
{
    if (m_few.isMade(document))
    {
        behind = findIn(m_few, document, name, size);
        return true;
    }
    if (m_many.isMade(document))
    {
        behind = findIn(m_many, document, name, size);
        return true;
    }
    return false;
}

const char* ElementIndex::first(const char* document, U32 hash)
{
    if (m_few.isMade(document))
    {
        return firstIn(m_few, document, hash);
    }
    return m_many.isMade(document) ? firstIn(m_many, document, hash) : nullptr;
}

} // namespace bci::codec

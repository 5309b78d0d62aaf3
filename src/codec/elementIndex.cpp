#include "elementIndex.h"

namespace bci::codec
{

ElementIndex::State ElementIndex::make(const char* document)
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
        if (count == kMostTags || place > 0xFFFFFFFF)
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
        m_slots[slot] = static_cast<U8>(count);
    }
    return State::made;
}

bool ElementIndex::isMade(const char* document)
{
    if (m_state == State::unmade && document != nullptr)
    {
        m_state = make(document);
    }
    return m_state == State::made;
}

// The first tag of a hash from a slot on, which moves behind it. Of several, the first one in the document comes
// first.
const ElementIndex::Tag* ElementIndex::next(unsigned int& slot, U32 hash) const
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
    if (!isMade(document))
    {
        return false;
    }
    const U32 hash = nameHash(name, size, false);
    unsigned int slot = hash % kSlots;
    behind = nullptr;
    while (const Tag* const tag = next(slot, hash))
    {
        const char* const at = document + tag->place;
        if (std::strncmp(at, name, size) == 0 && at[size] == '>')
        {
            behind = at + size + 1;
            break;
        }
    }
    return true;
}

const char* ElementIndex::first(const char* document, U32 hash)
{
    if (!isMade(document))
    {
        return nullptr;
    }
    unsigned int slot = hash % kSlots;
    const Tag* const tag = next(slot, hash);
    return tag != nullptr ? document + tag->place : nullptr;
}

} // namespace bci::codec

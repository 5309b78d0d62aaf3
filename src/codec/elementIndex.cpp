#include "elementIndex.h"

#include "optimize.h"

#include <algorithm>
#include <bit>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace bci::codec
{

namespace
{

constexpr std::size_t kBlock = 64;

// Where a block of characters has '<' or '>': a bit for each, the first one's the lowest.
inline std::uint64_t bracketsIn(const char* block)
{
    std::uint64_t brackets = 0;
#ifdef __SSE2__
    constexpr std::size_t kVector = sizeof(__m128i);
#pragma GCC unroll 4
    for (std::size_t i = 0; i < kBlock; i += kVector)
    {
        // The two differ in one bit.
        const __m128i characters = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block + i));
        const __m128i alike = _mm_or_si128(characters, _mm_set1_epi8('<' ^ '>'));
        const int found = _mm_movemask_epi8(_mm_cmpeq_epi8(alike, _mm_set1_epi8('>')));
        brackets |= std::uint64_t{static_cast<unsigned int>(found)} << i;
    }
#else
    for (std::size_t i = 0; i < kBlock; ++i)
    {
        brackets |= std::uint64_t{block[i] == '<' || block[i] == '>'} << i;
    }
#endif
    return brackets;
}

// Calls a function with the place of every '<' and '>', until it returns false. Returns whether it never did.
template <typename Function>
bool forEachBracket(std::string_view document, Function function)
{
    char padded[kBlock];
    const char* text = document.data();
    std::size_t last = document.size() - kBlock; // block
    if (document.size() < kBlock)
    {
        std::memset(padded, 0, sizeof padded);
        std::memcpy(padded, text, document.size());
        text = padded;
        last = 0;
    }
    for (std::size_t at = 0; at < document.size(); at += kBlock)
    {
        std::uint64_t brackets;
        if (at <= last) [[likely]]
        {
            brackets = bracketsIn(text + at);
        }
        else // begins within the one before
        {
            brackets = bracketsIn(text + last) >> (at - last);
        }
        for (; brackets != 0; brackets &= brackets - 1)
        {
            if (!function(at + static_cast<unsigned int>(std::countr_zero(brackets))))
            {
                return false;
            }
        }
    }
    return true;
}

} // namespace

// By now the number of tags is known, and no more slots than they need are cleared.
void ElementIndex::fillSlots()
{
    const unsigned int slots = std::bit_ceil(2 * m_count);
    m_mask = slots - 1;
    std::memset(m_slots, 0, slots * sizeof m_slots[0]);
    for (unsigned int number = 0; number < m_count; ++number)
    {
        unsigned int slot = m_tags[number].hash & m_mask;
        while (m_slots[slot] != 0)
        {
            slot = (slot + 1) & m_mask;
        }
        m_slots[slot] = static_cast<U16>(number + 1);
    }
}

void ElementIndex::make(std::string_view document)
{
    m_document = document.data();
    unsigned int count = 0;
    std::size_t name = 0; // where the last '<' ends; 0 if a '>' has been since
    const auto passBracket = [&](std::size_t at)
    {
        if (document[at] == '<')
        {
            name = at + 1;
            return true;
        }
        const std::size_t place = name;
        name = 0;
        if (place == 0 || place == at || document[place] == '/') // no name has a bracket in it
        {
            return true;
        }
        if (count == kMost || place > 0xFFFFFFFF) // COVERAGE_EXCLUDED: needs a document of 4 GB
        {
            return false;
        }
        m_tags[count++] = {nameHash(&document[place], at - place, place >= sizeof(std::uint64_t)),
                           static_cast<U32>(place)};
        return true;
    };
    if (!forEachBracket(document, passBracket))
    {
        m_state = State::tooManyTags;
        return;
    }
    m_count = count;
    m_mask = 0;
    if (count > kFew)
    {
        fillSlots();
    }
    m_state = State::made;
}

inline const ElementIndex::Tag* ElementIndex::next(unsigned int& at, U32 hash) const
{
    if (m_mask == 0)
    {
        while (at < m_count)
        {
            const Tag& tag = m_tags[at++];
            if (tag.hash == hash)
            {
                return &tag;
            }
        }
        return nullptr;
    }
    while (const unsigned int number = m_slots[at])
    {
        at = (at + 1) & m_mask;
        const Tag& tag = m_tags[number - 1];
        if (tag.hash == hash)
        {
            return &tag;
        }
    }
    return nullptr;
}

bool ElementIndex::find(const char* name, std::size_t size, const char*& behind) const
{
    if (m_state != State::made)
    {
        return false;
    }
    const U32 hash = nameHash(name, size, false);
    unsigned int at = hash & m_mask;
    behind = nullptr;
    while (const Tag* const tag = next(at, hash))
    {
        const char* const found = m_document + tag->place;
        if (std::strncmp(found, name, size) == 0 && found[size] == '>')
        {
            behind = found + size + 1;
            break;
        }
    }
    return true;
}

const char* ElementIndex::first(U32 hash) const
{
    if (m_state != State::made)
    {
        return nullptr;
    }
    unsigned int at = hash & m_mask;
    const Tag* const tag = next(at, hash);
    return tag != nullptr ? m_document + tag->place : nullptr;
}

} // namespace bci::codec

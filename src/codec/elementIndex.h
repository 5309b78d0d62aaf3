// Where the elements of a document begin, for documents in any order.
#ifndef BCI_CODEC_ELEMENT_INDEX_H
#define BCI_CODEC_ELEMENT_INDEX_H

#include "scalarTypes.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#pragma GCC visibility push(hidden)
namespace bci::codec
{

// Of a name's length, its first character and its last eight, the first of them in the lowest bits.
constexpr U32 nameHash(std::size_t size, char first, std::uint64_t lastEight)
{
    const std::uint64_t mixed = lastEight ^ (static_cast<std::uint64_t>(size) << 56) ^
                                (std::uint64_t{static_cast<unsigned char>(first)} << 48);
    return static_cast<U32>((mixed * 0x9E3779B97F4A7C15) >> 32);
}

// The same of characters in memory, in front of which are more if it says so.
inline U32 nameHash(const char* name, std::size_t size, bool afterOthers)
{
    std::uint64_t last = 0;
    if (size >= sizeof last || afterOthers)
    {
        std::memcpy(&last, name + size - sizeof last, sizeof last);
        if constexpr (std::endian::native == std::endian::big)
        {
            last = __builtin_bswap64(last); // COVERAGE_EXCLUDED: on big-endian hosts alone
        }
        if (size < sizeof last)
        {
            last >>= 8 * (sizeof last - size);
        }
    }
    else
    {
        std::memcpy(&last, name, size);
        if constexpr (std::endian::native == std::endian::big)
        {
            last = __builtin_bswap64(last); // COVERAGE_EXCLUDED: on big-endian hosts alone
        }
    }
    return nameHash(size, *name, last);
}

// The tags of a document, for questions about them. Without a document, or with one that has too many tags to
// tell, it has no answers.
class ElementIndex
{
public:
    bool isMade() const
    {
        return m_state != State::unmade;
    }

    // In one pass. The document stays where it is.
    void make(std::string_view document);

    // Finds the first "<name>"; `behind` receives the place behind it, or null if there is none. Returns false
    // without an answer.
    bool find(const char* name, std::size_t size, const char*& behind) const;

    // The first name with a hash, which may be another one's too; null if there is none, or no answer.
    const char* first(U32 hash) const;

private:
    struct Tag
    {
        U32 hash;
        U32 place; // of the name
    };

    enum class State : U8
    {
        unmade,
        made,
        tooManyTags
    };

    static constexpr unsigned int kMost = 512; // no message has more elements
    static constexpr unsigned int kMostSlots = 2 * kMost;
    static constexpr unsigned int kFew = 8; // tags, which are gone through one after another

    void fillSlots();

    // The first tag of a hash from a slot on, or of few from a number on, which moves behind it; null if there is
    // none. Of several, the first one in the document comes first.
    const Tag* next(unsigned int& at, U32 hash) const;

    State m_state = State::unmade;
    U32 m_count;
    U32 m_mask; // of a hash: number of its slot; 0 for few tags, which have none
    const char* m_document;
    U16 m_slots[kMostSlots]; // by the hash, or behind: number of the tag + 1, or 0
    Tag m_tags[kMost];
};

// In its stead: a document is searched anew for every name.
class NoIndex
{
public:
    bool isMade() const
    {
        return true;
    }

    void make(std::string_view /*document*/) {}

    bool find(const char* /*name*/, std::size_t /*size*/, const char*& /*behind*/) const
    {
        return false;
    }

    const char* first(U32 /*hash*/) const
    {
        return nullptr;
    }
};

} // namespace bci::codec
#pragma GCC visibility pop

#endif

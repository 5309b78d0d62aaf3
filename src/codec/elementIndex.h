// Where the elements of a document begin, for documents in any order.
#ifndef BCI_CODEC_ELEMENT_INDEX_H
#define BCI_CODEC_ELEMENT_INDEX_H

#include "scalarTypes.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

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
    if (size >= sizeof last || (afterOthers && size != 0))
    {
        std::memcpy(&last, name + size - sizeof last, sizeof last);
        if constexpr (std::endian::native == std::endian::big)
        {
            last = __builtin_bswap64(last);
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
            last = __builtin_bswap64(last);
        }
    }
    return nameHash(size, *name, last);
}

// The tags of a document that has no more than so many, made in one pass with the first question.
template <typename Number, unsigned int most>
class TagTable
{
public:
    struct Tag
    {
        U32 hash;
        U32 place; // of the name
    };

    // Returns whether the document's tags are all there.
    bool isMade(const char* document);

    static unsigned int firstSlot(U32 hash)
    {
        return hash % kSlots;
    }

    // The first tag of a hash from a slot on, which moves behind it; null if there is none. Of several, the first
    // one in the document comes first.
    const Tag* next(unsigned int& slot, U32 hash) const;

private:
    static constexpr unsigned int kSlots = 2 * most;

    enum class State : U8
    {
        unmade,
        made,
        tooManyTags
    };

    State make(const char* document);

    State m_state = State::unmade;
    Number m_slots[kSlots]; // by the hash, or behind: number of the tag + 1, or 0
    Tag m_tags[most];
};

// A small table first: most documents have few tags, and clearing it takes its time.
class ElementIndex
{
public:
    // Finds the first "<name>"; `behind` receives the place behind it, or null if there is none. Returns false if
    // the document has too many tags to tell.
    bool find(const char* document, const char* name, std::size_t size, const char*& behind);

    // The first name with a hash, which may be another one's too; null if there is none, or too many tags to tell.
    const char* first(const char* document, U32 hash);

private:
    TagTable<U8, 128> m_few;
    TagTable<U16, 512> m_many; // no message has more elements
};

// In its stead: a document is searched anew for every name.
class NoIndex
{
public:
    bool find(const char* /*document*/, const char* /*name*/, std::size_t /*size*/, const char*& /*behind*/)
    {
        return false;
    }

    const char* first(const char* /*document*/, U32 /*hash*/)
    {
        return nullptr;
    }
};

} // namespace bci::codec
#pragma GCC visibility pop

#endif

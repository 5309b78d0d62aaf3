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

// Made with the first question, in one pass.
class ElementIndex
{
public:
    // Finds the first "<name>"; `behind` receives the place behind it, or null if there is none. Returns false if
    // the document has too many tags to tell.
    bool find(const char* document, const char* name, std::size_t size, const char*& behind);

    // The first name with a hash, which may be another one's too; null if there is none, or too many tags to tell.
    const char* first(const char* document, U32 hash);

private:
    enum class State : U8
    {
        unmade,
        made,
        tooManyTags
    };

    struct Tag
    {
        U32 hash;
        U32 place; // of the name
    };

    static constexpr unsigned int kMostTags = 128;
    static constexpr unsigned int kSlots = 256; // a power of two

    bool isMade(const char* document);
    State make(const char* document);
    const Tag* next(unsigned int& slot, U32 hash) const;

    State m_state = State::unmade;
    U8 m_slots[kSlots]; // by the hash, or behind: number of the tag + 1, or 0
    Tag m_tags[kMostTags];
};

// In its stead: a document is searched anew for every name.
class NoIndex
{
public:
    bool find(const char* /*document*/, const char* /*name*/, std::size_t /*size*/, const char*& /*behind*/)
    {
        return false;
    }
};

} // namespace bci::codec
#pragma GCC visibility pop

#endif

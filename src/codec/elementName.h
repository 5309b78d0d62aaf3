// Names of XML elements.
#ifndef BCI_CODEC_ELEMENT_NAME_H
#define BCI_CODEC_ELEMENT_NAME_H

#include "decimal.h"
#include "field.h"

#include <cstddef>
#include <cstring>

namespace bci::codec
{

// Indexes of an array element in XML names. A tag that ends in one underscore receives the first index
// behind it; one that ends in two receives the first between them and the second at its end; any other
// receives none.
struct Subscripts
{
    unsigned int first;
    unsigned int second;
};

// Characters that indexes add to a name at most: ten digits each, and an underscore less than there was.
constexpr unsigned int kLongestSubscripts = 20;

// The name of an element: a tag with the indexes that it takes.
class ElementName
{
public:
    ElementName(const char* tag, const Subscripts* subscripts) : m_name(tag), m_size(std::strlen(tag))
    {
        if (subscripts == nullptr || tag[m_size - 1] != '_')
        {
            return;
        }
        const bool twofold = tag[m_size - 2] == '_';
        std::memcpy(m_indexed, tag, m_size);
        char* end = putDecimal(m_indexed + m_size - (twofold ? 1 : 0), subscripts->first);
        if (twofold)
        {
            *end++ = '_';
            end = putDecimal(end, subscripts->second);
        }
        *end = '\0';
        m_name = m_indexed;
        m_size = static_cast<std::size_t>(end - m_indexed);
    }

    ElementName(const ElementName&) = delete;
    ElementName& operator=(const ElementName&) = delete;

    const char* text() const
    {
        return m_name;
    }

    std::size_t size() const
    {
        return m_size;
    }

private:
    char m_indexed[kMaxTagLength + kLongestSubscripts + 1];
    const char* m_name;
    std::size_t m_size;
};

} // namespace bci::codec

#endif

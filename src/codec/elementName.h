// Names of XML elements.
#ifndef BCI_CODEC_ELEMENT_NAME_H
#define BCI_CODEC_ELEMENT_NAME_H

#include "field.h"

#include <cstdio>
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

// The name of an element: a tag with the indexes that it takes.
class ElementName
{
public:
    ElementName(const char* tag, const Subscripts* subscripts) : m_name(tag)
    {
        const std::size_t length = std::strlen(tag);
        if (subscripts == nullptr || tag[length - 1] != '_')
        {
            return;
        }
        if (tag[length - 2] == '_')
        {
            std::snprintf(m_indexed, sizeof m_indexed, "%.*s%u_%u", static_cast<int>(length - 1), tag,
                          subscripts->first, subscripts->second);
        }
        else
        {
            std::snprintf(m_indexed, sizeof m_indexed, "%s%u", tag, subscripts->first);
        }
        m_name = m_indexed;
    }

    ElementName(const ElementName&) = delete;
    ElementName& operator=(const ElementName&) = delete;

    const char* text() const
    {
        return m_name;
    }

private:
    char m_indexed[kMaxTagLength + 22]; // two indexes of at most ten digits, '_' and the zero
    const char* m_name;
};

} // namespace bci::codec

#endif

// The layout of an XML element: what stands around its value.
#ifndef BCI_CODEC_ELEMENT_TEXT_H
#define BCI_CODEC_ELEMENT_TEXT_H

#include "elementName.h"
#include "field.h"

#include <algorithm>
#include <cstring>

namespace bci::codec
{

// Characters of an opening or closing text at most.
constexpr std::size_t kLongestElementText = 7 + kMaxTagLength + kLongestSubscripts;

// For a row of a table.
class ElementText
{
public:
    ElementText(const Field& field, const Subscripts* subscripts) : m_field(field), m_name(field.tag, subscripts)
    {
    }

    // Characters of both.
    std::size_t size() const
    {
        constexpr std::size_t kLayout = 13;
        return kLayout + m_name.size() + std::strlen(closingName());
    }

    // Both return the place behind.
    char* putOpening(char* to) const
    {
        const bool bare = m_field.oddity == Oddity::bareOpening;
        to = put(to, bare ? "<" : "\t<");
        to = put(to, m_name.text());
        return put(to, bare ? ">\n\t   " : ">\n\t  ");
    }

    char* putClosing(char* to) const
    {
        to = put(to, "\n\t</");
        to = put(to, closingName());
        return put(to, ">\n");
    }

private:
    const char* closingName() const
    {
        return m_field.oddity == Oddity::foreignClosing ? closingTag(m_field) : m_name.text();
    }

    static char* put(char* to, const char* text)
    {
        return std::copy_n(text, std::strlen(text), to);
    }

    const Field& m_field;
    ElementName m_name;
};

inline ElementText elementText(const Field& field, const Subscripts* subscripts, unsigned int index)
{
    if (subscripts == nullptr)
    {
        return {field, nullptr};
    }
    const Subscripts ofElement = {subscripts->first, subscripts->second + index};
    return {field, &ofElement};
}

} // namespace bci::codec

#endif
